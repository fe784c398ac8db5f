#include "Reader.h"

#include "Platform/Foundation/MainQueue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <thread>

namespace kelvara {
namespace {

/// Runs the main thread's events until something is so.
template<typename Condition> bool spinUntil(Condition condition)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < 20'000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    return condition();
}

std::unique_ptr<PassportReader> readerOf(std::shared_ptr<SoftwareTerminal> terminal)
{
    auto reader = std::make_unique<PassportReader>(ReaderLogLevel::Warning);
    reader->setTerminal(std::move(terminal));
    reader->setPatience(2s, 2s);
    return reader;
}

TEST(ReadersLife, EndsAtAnyMomentOfARead)
{
    ChipProfile profile = plainProfile();
    profile.faults.delay = 1ms;
    const auto chip = makeChip(profile);
    for (int moment = 0; moment < 40; moment += 3) {
        SCOPED_TRACE(moment);
        auto reader = readerOf(std::make_shared<SoftwareTerminal>(chip)); // the terminal lives as long as it is used
        Read read;
        std::atomic<int> messages = 0;
        reader->readPassport(
            chip->mrzKey(), {}, true,
            [&](const NFCViewDisplayMessage&) {
                if (messages++ == moment / 3)
                    std::this_thread::sleep_for(2ms);
                return std::optional<QString>();
            },
            read.completed());
        std::this_thread::sleep_for(std::chrono::milliseconds(moment));
        reader->cancel();
        reader->cancel();
        reader.reset();
        const Outcome outcome = read.get();
        EXPECT_TRUE(outcome.passport || outcome.error->kind == ErrorKind::UserCancelled) << outcome.sentence();
    }
}

TEST(ReadersLife, ACompletionMayEndItOrGoOnByTheMainThread)
{
    const auto chip = makeChip(plainProfile());
    auto reader = readerOf(std::make_shared<SoftwareTerminal>(chip));
    int reads = 0;
    const auto context = std::make_shared<char>();
    std::function<void()> next = [&] {
        reader->readPassport(chip->mrzKey(), {}, true, {}, [&](const auto& passport, const auto&) {
            EXPECT_TRUE(passport);
            MainQueue::async(context, [&] {
                if (++reads < 3)
                    next();
                else
                    reader.reset();
            });
        });
    };
    next();
    EXPECT_TRUE(spinUntil([&] { return !reader; }));
    EXPECT_EQ(reads, 3);
}

TEST(ReadersLife, CancellingHoldsAgainstAnEndThatIsNear)
{
    const auto chip = makeChip(plainProfile());
    auto reader = readerOf(std::make_shared<SoftwareTerminal>(chip));
    Read read;
    reader->readPassport(
        chip->mrzKey(), {}, true,
        [&](const NFCViewDisplayMessage& message) {
            if (message.dataGroup == DataGroupId::DG2) // which comes last, and in one piece
                reader->cancel();
            return std::optional<QString>();
        },
        read.completed());
    EXPECT_EQ(failureOf(read.get()), ErrorKind::UserCancelled);
    // What was cancelled leaves nothing behind.
    EXPECT_TRUE(spinUntil([&] { return !reader->isReading(); }));
    Read again;
    reader->readPassport(chip->mrzKey(), {}, true, again.display(), again.completed());
    expectWhole(again.get(), *chip);
}

TEST(ReadersLife, AListThatIsAPipeIsNotWaitedFor)
{
    const QTemporaryDir folder;
    const QString pipe = folder.filePath(QStringLiteral("authorities.pem"));
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    const auto chip = makeChip(plainProfile());
    for (const QString& path : { pipe, folder.path(), QStringLiteral("/dev/zero") }) {
        const auto terminal = std::make_shared<SoftwareTerminal>(chip);
        EXPECT_EQ(failureOf(readFrom(terminal, chip->mrzKey(), QUrl::fromLocalFile(path))),
            ErrorKind::MasterListUnusable);
    }
}

} // namespace
} // namespace kelvara
