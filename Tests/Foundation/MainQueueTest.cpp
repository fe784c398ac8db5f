#include "Platform/Foundation/MainQueue.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QObject>

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace kelvara {
namespace {

/// Serves the event loop until a block queued now has run, and with it everything queued before.
void serveQueue()
{
    const LifeToken life;
    QEventLoop loop;
    MainQueue::async(life.token(), [&] { loop.quit(); });
    loop.exec();
}

TEST(MainQueue, RunsBlocksLaterAndInOrder)
{
    const LifeToken life;
    QObject object;
    std::vector<int> ran;
    MainQueue::async(life.token(), [&] { ran.push_back(1); });
    MainQueue::async(&object, [&] {
        ran.push_back(2);
        MainQueue::async(&object, [&] { ran.push_back(4); });
    });
    MainQueue::async(life.token(), [&] { ran.push_back(3); });
    EXPECT_TRUE(ran.empty());
    serveQueue();
    serveQueue();
    EXPECT_EQ(ran, (std::vector { 1, 2, 3, 4 }));
}

TEST(MainQueue, DropsBlocksWhoseContextHasGone)
{
    int ran = 0;
    auto captured = std::make_shared<int>();
    LifeToken ended;
    {
        const LifeToken life;
        QObject object;
        for (const auto& token : { life.token(), ended.token() })
            MainQueue::async(token, [&ran, captured] { ++ran; });
        MainQueue::async(&object, [&ran, captured] { ++ran; });
        MainQueue::async(std::weak_ptr<const void>(), [&ran, captured] { ++ran; });
        MainQueue::async(static_cast<QObject*>(nullptr), [&ran, captured] { ++ran; });
        ended.end();
    }
    MainQueue::async(ended.token(), [&ran, captured] { ++ran; });
    serveQueue();
    EXPECT_EQ(ran, 0);
    EXPECT_EQ(captured.use_count(), 1) << "dropped blocks must be destroyed, not kept";
}

TEST(MainQueue, ABlockMayEndItsOwnContext)
{
    auto object = std::make_unique<QObject>();
    int ran = 0;
    MainQueue::async(object.get(), [&] {
        object.reset();
        ++ran;
    });
    MainQueue::async(object.get(), [&] { ++ran; });
    serveQueue();
    EXPECT_EQ(ran, 1);
}

TEST(MainQueue, ServesTheRestInsideANestedEventLoop)
{
    const LifeToken life;
    std::vector<int> ran;
    MainQueue::async(life.token(), [&] {
        ran.push_back(1);
        serveQueue();
        ran.push_back(3);
    });
    MainQueue::async(life.token(), [&] { ran.push_back(2); });
    serveQueue();
    EXPECT_EQ(ran, (std::vector { 1, 2, 3 }));
}

TEST(MainQueue, KeepsEachThreadsOrderWhenManyPost)
{
    constexpr int kThreads = 4;
    constexpr int kPosts = 500;
    const LifeToken life;
    std::vector<std::vector<int>> ran(kThreads);
    bool allOnMain = true;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread, token = life.token()] {
            EXPECT_FALSE(MainQueue::isCurrent());
            for (int post = 0; post < kPosts; ++post) {
                MainQueue::async(token, [&, thread, post] {
                    allOnMain &= MainQueue::isCurrent();
                    ran[std::size_t(thread)].push_back(post);
                });
            }
        });
    }
    serveQueue(); // some run while others are still being posted
    for (std::thread& thread : threads)
        thread.join();
    serveQueue();
    EXPECT_TRUE(allOnMain);
    for (const std::vector<int>& posts : ran) {
        ASSERT_EQ(posts.size(), std::size_t(kPosts));
        EXPECT_TRUE(std::is_sorted(posts.begin(), posts.end()));
    }
}

} // namespace
} // namespace kelvara
