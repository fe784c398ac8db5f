#include "Platform/Foundation/SerialQueue.h"

#include <QThread>

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace kelvara {
namespace {

TEST(SerialQueue, RunsBlocksInOrderOnOneThreadNamedAfterTheLabel)
{
    SerialQueue queue(QStringLiteral("videoQueue"), QualityOfService::UserInteractive);
    EXPECT_EQ(queue.label(), QStringLiteral("videoQueue"));
    EXPECT_EQ(queue.quality(), QualityOfService::UserInteractive);
    std::vector<int> ran;
    QString name;
    bool current = false;
    for (int block = 0; block < 100; ++block)
        queue.async([&ran, block] { ran.push_back(block); });
    queue.async([&] {
        name = QThread::currentThread()->objectName();
        current = queue.isCurrent();
    });
    queue.drain();
    ASSERT_EQ(ran.size(), 100U);
    EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
    EXPECT_EQ(name, QStringLiteral("videoQueue"));
    EXPECT_TRUE(current);
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueue, SyncWaitsForWhatWasQueuedBeforeAndForTheBlock)
{
    SerialQueue queue(QStringLiteral("queue"));
    std::promise<void> gate;
    std::vector<int> ran;
    queue.async([&] {
        gate.get_future().wait();
        ran.push_back(1);
    });
    std::thread opener([&] { gate.set_value(); });
    queue.sync([&] { ran.push_back(2); });
    EXPECT_EQ(ran, (std::vector { 1, 2 }));
    opener.join();
}

TEST(SerialQueue, DestructionRunsWhatIsQueuedAndWhatThatQueues)
{
    std::vector<int> ran;
    std::promise<void> gate;
    {
        SerialQueue queue(QStringLiteral("queue"));
        queue.async([&] {
            gate.get_future().wait();
            ran.push_back(1);
            queue.async([&] { ran.push_back(3); });
        });
        queue.async([&] { ran.push_back(2); });
        gate.set_value();
    }
    EXPECT_EQ(ran, (std::vector { 1, 2, 3 }));
}

TEST(SerialQueue, AnUnusedQueueDrainsAndGoesAtOnce)
{
    SerialQueue queue(QStringLiteral("idle"));
    queue.drain();
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueue, CapturesDieOnTheQueueBeforeTheNextBlock)
{
    SerialQueue queue(QStringLiteral("queue"));
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    queue.async([captured = std::move(captured)] { ++*captured; });
    bool gone = false;
    queue.sync([&] { gone = watched.expired(); });
    EXPECT_TRUE(gone);
}

TEST(SerialQueue, ManyThreadsMayPostAndWait)
{
    SerialQueue queue(QStringLiteral("queue"));
    int counter = 0; // touched on the queue only: a second thread there would lose counts
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                queue.async([&] { ++counter; });
                if (round % 10 == 0)
                    queue.sync([&] { ++counter; });
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    queue.drain();
    EXPECT_EQ(counter, 4 * (200 + 20));
}

TEST(SerialQueueDeathTest, WaitingForOneselfStops)
{
    EXPECT_DEATH(
        {
            SerialQueue queue(QStringLiteral("queue"));
            queue.async([&] { queue.sync([] {}); });
            queue.drain();
        },
        "Fatal error: A block cannot wait");
    EXPECT_DEATH(
        {
            auto queue = std::make_unique<SerialQueue>(QStringLiteral("queue"));
            queue->async([&] { queue.reset(); });
            queue->drain();
        },
        "Fatal error: A serial queue cannot be destroyed");
}

} // namespace
} // namespace kelvara
