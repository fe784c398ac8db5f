#include "Platform/Chip/software/SoftwareTerminal.h"

#include "Tests/Chip/ChipDriver.h"

#include <QElapsedTimer>

#include <functional>
#include <thread>

namespace kelvara::chip {
namespace {

using namespace std::chrono_literals;
using namespace software;
using Channel = std::unique_ptr<CardChannel>;
using Kind = TransportError::Kind;

const Bytes kSelect = *fromHex("00A4040C07A0000002471001");

std::shared_ptr<SoftwareChip> openChip(ChipFaults faults = {})
{
    ChipProfile profile = quickProfile();
    profile.hasAccessControl = false;
    profile.chipAuthentication.clear();
    profile.faults = std::move(faults);
    return chipOf(profile);
}

ChipFaults delayed(std::chrono::milliseconds delay)
{
    ChipFaults faults;
    faults.delay = delay;
    return faults;
}

template<typename Outcome> std::optional<Kind> problemOf(const Outcome& outcome)
{
    const auto* error = std::get_if<TransportError>(&outcome);
    return error == nullptr ? std::nullopt : std::optional(error->kind);
}

/// Does something a little later on another thread.
template<typename Work> std::thread later(Work work, std::chrono::milliseconds delay = 60ms)
{
    return std::thread([=] {
        std::this_thread::sleep_for(delay);
        work();
    });
}

class SoftwareTerminalTest : public testing::Test
{
protected:
    Channel opened()
    {
        auto outcome = terminal.waitForCard(10s, cancel);
        auto* channel = std::get_if<Channel>(&outcome);
        EXPECT_NE(channel, nullptr);
        return channel == nullptr ? nullptr : std::move(*channel);
    }

    SoftwareTerminal terminal;
    CancelToken cancel;
};

TEST_F(SoftwareTerminalTest, CarriesCommandsToTheChipThatLiesThere)
{
    EXPECT_TRUE(terminal.isAvailable());
    const auto chip = openChip();
    terminal.place(chip);
    Channel channel = opened();
    ASSERT_TRUE(channel);
    EXPECT_TRUE(channel->passesExtendedLength());
    EXPECT_EQ(toHex(std::get<Bytes>(channel->transmit(kSelect))), "9000");
    EXPECT_EQ(std::get<Bytes>(channel->transmit(*fromHex("00B081000000FF"))).size(),
        chip->files().at(DataGroupId::DG1).size() + 2);
    channel = opened();
    EXPECT_EQ(toHex(std::get<Bytes>(channel->transmit(*fromHex("00B0810006")))), "6A82") << "powered up anew";
    EXPECT_EQ(terminal.counts().commands, 3U);
    EXPECT_EQ(terminal.counts().presentations, 1U);
    EXPECT_EQ(terminal.counts().connections, 2U);

    terminal.setPassesExtendedLength(false);
    EXPECT_FALSE(opened()->passesExtendedLength());
    EXPECT_EQ(problemOf(channel->transmit(*fromHex("00B081000000FF"))), Kind::Failed);
    SoftwareTerminal other(openChip());
    EXPECT_TRUE(std::holds_alternative<Channel>(other.waitForCard(0ms, cancel)));
}

TEST_F(SoftwareTerminalTest, WaitsAsLongAsItIsToldAndWakesForWhatComes)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(problemOf(terminal.waitForCard(120ms, cancel)), Kind::NoCard);
    EXPECT_GE(clock.elapsed(), 119);

    std::thread placing = later([this, chip = openChip()] { terminal.place(chip); });
    EXPECT_FALSE(problemOf(terminal.waitForCard(1h, cancel)));
    placing.join();
    terminal.remove();

    std::thread cancelling = later([this] { cancel.cancel(); });
    EXPECT_EQ(problemOf(terminal.waitForCard(1h, cancel)), Kind::Cancelled);
    cancelling.join();

    const CancelToken fresh;
    std::thread unplugging = later([this] { terminal.unplug(); });
    EXPECT_EQ(problemOf(terminal.waitForCard(1h, fresh)), Kind::NoReader);
    unplugging.join();
    EXPECT_FALSE(terminal.isAvailable());
    terminal.place(openChip());
    EXPECT_EQ(problemOf(terminal.waitForCard(1h, fresh)), Kind::NoReader);
    terminal.plugIn();
    EXPECT_EQ(problemOf(terminal.waitForCard(0ms, fresh)), Kind::NoCard) << "what lay there is gone";
}

TEST_F(SoftwareTerminalTest, ALongCommandEndsWhenTheCardGoesOrNobodyWantsIt)
{
    const struct
    {
        std::function<void(CancelToken&)> interrupt;
        Kind kind;
    } rows[] = { { [this](CancelToken&) { terminal.remove(); }, Kind::CardLost },
        { [this](CancelToken&) { terminal.place(openChip()); }, Kind::CardLost },
        { [](CancelToken& token) { token.cancel(); }, Kind::Cancelled },
        { [this](CancelToken&) { terminal.unplug(); }, Kind::NoReader } };
    const auto chip = openChip(delayed(60s));
    for (const auto& row : rows) {
        CancelToken token;
        terminal.place(chip);
        auto outcome = terminal.waitForCard(0ms, token);
        ASSERT_FALSE(problemOf(outcome)) << static_cast<int>(row.kind);
        std::thread interrupting = later([&] { row.interrupt(token); });
        EXPECT_EQ(problemOf(std::get<Channel>(outcome)->transmit(kSelect)), row.kind);
        interrupting.join();
    }
}

TEST_F(SoftwareTerminalTest, ALostCardComesBackAsAPersonWouldBringIt)
{
    ChipFaults faults;
    faults.list = { ChipFault::tagLost(2, ChipFault::Counting::Presentation) };
    terminal.place(openChip(faults));
    Channel channel = opened();
    EXPECT_FALSE(problemOf(channel->transmit(kSelect)));
    EXPECT_EQ(problemOf(channel->transmit(kSelect)), Kind::CardLost);
    EXPECT_EQ(problemOf(terminal.waitForCard(50ms, cancel)), Kind::NoCard) << "nobody brings it";

    terminal.setReturnAfterLoss(100ms);
    terminal.place(openChip(faults));
    for (unsigned time = 1; time <= 2; ++time) {
        channel = opened();
        EXPECT_FALSE(problemOf(channel->transmit(kSelect)));
        EXPECT_EQ(problemOf(channel->transmit(kSelect)), Kind::CardLost);
        QElapsedTimer clock;
        clock.start();
        Channel next = opened();
        EXPECT_GE(clock.elapsed(), 80);
        EXPECT_EQ(problemOf(channel->transmit(kSelect)), Kind::CardLost) << "the way to it before leads nowhere";
        EXPECT_EQ(terminal.counts().presentations, 2 + time);
    }
    channel = opened();
    EXPECT_FALSE(problemOf(channel->transmit(kSelect)));
    EXPECT_TRUE(problemOf(channel->transmit(kSelect)));
    terminal.remove();
    EXPECT_EQ(problemOf(terminal.waitForCard(200ms, cancel)), Kind::NoCard) << "taken away on purpose";
}

TEST_F(SoftwareTerminalTest, ManyHandsAtOnce)
{
    const auto one = openChip(delayed(1ms));
    const auto other = openChip();
    terminal.setReturnAfterLoss(1ms);
    std::atomic<bool> isOver = false;
    std::vector<std::thread> hands;
    hands.emplace_back([&] {
        for (int i = 0; i < 60; ++i) {
            terminal.place(i % 2 == 0 ? one : other);
            std::this_thread::sleep_for(2ms);
            if (i % 5 == 0)
                terminal.remove();
        }
        isOver = true;
    });
    hands.emplace_back([&] {
        while (!isOver) {
            one->setFaults({ { ChipFault::tagLost(3, ChipFault::Counting::Presentation) } });
            one->setTrace([](const TraceEntry&) {});
            terminal.setPassesExtendedLength(terminal.counts().commands % 2 == 0);
            EXPECT_TRUE(terminal.isAvailable());
            std::this_thread::yield();
        }
    });
    unsigned answers = 0;
    while (!isOver) {
        auto outcome = terminal.waitForCard(5ms, cancel);
        if (problemOf(outcome))
            continue;
        for (int i = 0; i < 4 && !problemOf(std::get<Channel>(outcome)->transmit(kSelect)); ++i)
            ++answers;
    }
    for (std::thread& hand : hands)
        hand.join();
    EXPECT_GT(answers, 0U);
}

} // namespace
} // namespace kelvara::chip
