#include "Kelvara/LinkedListViewType.h"
#include "Kelvara/ViewType.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <ranges>
#include <vector>

namespace kelvara::test {
namespace {

using List = LinkedListViewType<int>;
using Node = List::Node;
using testing::ElementsAre;
using testing::ElementsAreArray;

static_assert(std::ranges::forward_range<const List>);
static_assert(!std::is_copy_constructible_v<List> && std::is_nothrow_move_constructible_v<List>);

/// The values from the front, having checked every link back.
std::vector<int> walked(const List& list)
{
    std::vector<int> values;
    std::shared_ptr<Node> before;
    for (std::shared_ptr<Node> node = list.head(); node; before = node, node = node->next) {
        EXPECT_EQ(node->previous.lock(), before) << "at " << values.size();
        values.push_back(node->value);
    }
    EXPECT_EQ(list.last(), before);
    return values;
}

TEST(LinkedList, DoesWhatAnArrayDoes)
{
    std::mt19937 random(20);
    const auto below = [&random](std::size_t end) { return std::ptrdiff_t(random() % end); };
    List list;
    std::vector<int> model;
    for (int step = 0; step < 3000; ++step) {
        SCOPED_TRACE(step);
        const auto at = below(model.size() + 1);
        switch (model.size() > 12 ? 3 : below(6)) {
        case 0:
            list.append(step);
            model.push_back(step);
            break;
        case 1:
            list.insert(step, at);
            model.insert(model.begin() + at, step);
            break;
        case 2:
            list.append(List { step, step });
            model.insert(model.end(), 2, step);
            break;
        case 3:
            if (!model.empty()) {
                const auto gone = below(model.size());
                EXPECT_EQ(list.remove(gone), model[gone]);
                model.erase(model.begin() + gone);
            }
            break;
        case 4:
            if (!model.empty()) {
                EXPECT_EQ(list.removeLast(), model.back());
                model.pop_back();
            }
            break;
        default:
            list.reverse();
            std::ranges::reverse(model);
        }
        ASSERT_THAT(walked(list), ElementsAreArray(model));
        ASSERT_EQ(list.count(), std::ptrdiff_t(model.size()));
        ASSERT_EQ(list.isEmpty(), model.empty());
        ASSERT_TRUE(std::ranges::equal(list, model));
        for (std::size_t i = 0; i < model.size(); ++i)
            ASSERT_EQ(list[std::ptrdiff_t(i)], model[i]);
    }
}

TEST(LinkedList, SharesTheNodesOfAnInsertedListAndLeavesTheOldHeadAlone)
{
    List list { 1, 2 };
    List other { 8, 9 };
    const auto oldHead = list.head();
    list.insert(other, 0);
    EXPECT_TRUE(std::ranges::equal(list, std::array { 8, 9, 1, 2 }));
    EXPECT_EQ(list.head(), other.head());
    EXPECT_TRUE(oldHead->previous.expired());
    EXPECT_EQ(other.count(), 4);
    list.removeAll();
    EXPECT_TRUE(std::ranges::equal(other, std::array { 8, 9, 1, 2 })) << "the other list owns the chain now";

    List middle { 1, 2 };
    middle.insert(List { 8, 9 }, 1);
    EXPECT_THAT(walked(middle), ElementsAre(1, 8, 9, 2));
    middle.insert(List(), 1);
    middle.insert(List { 7 }, middle.count());
    EXPECT_THAT(walked(middle), ElementsAre(1, 8, 9, 2, 7));
    middle.append(middle);
    EXPECT_THAT(walked(middle), ElementsAre(1, 8, 9, 2, 7, 1, 8, 9, 2, 7));
}

TEST(LinkedList, RemovesTheNodeThatALinkNames)
{
    List list { 1, 2, 3 };
    EXPECT_EQ(list.remove(list.head()), 1);
    EXPECT_EQ(list.remove(list.head()->next), 3);
    EXPECT_THAT(walked(list), ElementsAre(2));
}

TEST(LinkedList, CountsPositionsByNumberAlone)
{
    const List list { 5, 6 };
    const List empty;
    EXPECT_TRUE(empty.startIndex() == empty.endIndex());
    EXPECT_EQ(empty.endIndex().node(), nullptr);
    EXPECT_EQ(list.endIndex().node(), list.head());
    EXPECT_TRUE(list.startIndex() == empty.startIndex());

    std::vector<int> values;
    for (auto index = list.startIndex(); index < list.endIndex(); index = list.index(index))
        values.push_back(list[index]);
    EXPECT_THAT(values, ElementsAre(5, 6));
    const auto beyond = list.index(list.index(list.index(list.startIndex())));
    EXPECT_EQ(beyond.tag(), 3);
    EXPECT_EQ(beyond.node(), nullptr);
    EXPECT_TRUE(beyond > list.endIndex() && list.startIndex() <= list.endIndex());
}

TEST(LinkedList, DescribesMapsAndFilters)
{
    using enum ViewType;
    const LinkedListViewType<ViewType> steps { idPhoto, selfie, nfcRead, jitsi, idPhoto };
    EXPECT_EQ(steps.description(), QStringLiteral("[idPhoto, selfie, nfcRead, jitsi, idPhoto]"));
    EXPECT_EQ(List().description(), QStringLiteral("[]"));
    EXPECT_EQ((List { 1, -2 }).description(), QStringLiteral("[1, -2]"));
    EXPECT_EQ(
        LinkedListViewType<QString>({ QStringLiteral("ş"), QString() }).description(), QString::fromUtf8("[ş, ]"));

    const auto ordinals = steps.map([](ViewType step) { return static_cast<int>(step); });
    EXPECT_THAT(walked(ordinals), ElementsAre(0, 1, 2, 3, 0));
    EXPECT_THAT(walked(ordinals.filter([](int ordinal) { return ordinal == 0; })), ElementsAre(0, 0));
    EXPECT_EQ(qHash(jitsi, 7), ::qHash(3, 7));
}

TEST(LinkedList, LetsGoOfAMillionNodesAndKeepsWhatIsHeld)
{
    const std::vector<int> many(1'000'000, 1);
    List list(many);
    std::weak_ptr<Node> last = list.last();
    list = List { 1 };
    EXPECT_TRUE(last.expired());

    List held(many);
    const auto inside = held.node(10);
    std::weak_ptr<Node> before = inside->previous;
    held.removeAll();
    EXPECT_TRUE(before.expired());
    ASSERT_TRUE(inside->next);
    EXPECT_TRUE(inside->next->next) << "the rest belongs to the node that is held";
}

TEST(LinkedListDeathTest, StopsAtWhatCannotBe)
{
    List empty;
    List list { 1, 2 };
    EXPECT_DEATH((void)empty.node(-1), "Assertion failed: List is empty");
    EXPECT_DEATH((void)list.node(-1), "Assertion failed: index must be greater or equal to 0");
    EXPECT_DEATH((void)list.node(2), "Assertion failed: index is out of bounds\\.");
    EXPECT_DEATH((void)list[100], "Assertion failed: index is out of bounds\\.");
    EXPECT_DEATH(list.insert(3, 4), "Assertion failed: index is out of bounds\\.");
    EXPECT_DEATH(empty.removeLast(), "Assertion failed\n");
    EXPECT_DEATH((void)empty[empty.endIndex()], "Fatal error");
}

} // namespace
} // namespace kelvara::test
