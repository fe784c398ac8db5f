// Joins and ends video calls on a conference server in this process, one after the other, and measures how long joining
// takes and what remains in memory. Cold: the first call of a process, which starts the browser.
//
//   kelvara-evaluate-calls [calls = 20]

#include "Kelvara/QorvelKycView.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Conference/local/LocalConference.h"
#include "Platform/PlatformServices.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QMap>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

using namespace kelvara;

namespace {

constexpr int kLongestMilliseconds = 30000;
constexpr int kTalkMilliseconds = 1500;
constexpr int kRestMilliseconds = 1000; ///< After a call, for the browser to tidy up.

bool run(const std::function<bool()>& condition, int limit)
{
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    look.start(2);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec();
    return condition();
}

void rest(int milliseconds)
{
    run([] { return false; }, milliseconds);
}

QByteArray read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Proportional memory of this process and of all that it started, in megabytes.
double memory()
{
    QMap<qint64, qint64> parents;
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const QByteArray stat = read(QStringLiteral("/proc/%1/stat").arg(name));
        const auto fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        if (fields.size() > 1)
            parents[name.toLongLong()] = fields[1].toLongLong();
    }
    double kilobytes = 0;
    for (auto process = parents.keyBegin(); process != parents.keyEnd(); ++process) {
        qint64 ancestor = *process;
        while (ancestor > 1 && ancestor != QCoreApplication::applicationPid())
            ancestor = parents.value(ancestor);
        if (ancestor != QCoreApplication::applicationPid())
            continue;
        for (const QByteArray& line : read(QStringLiteral("/proc/%1/smaps_rollup").arg(*process)).split('\n'))
            if (line.startsWith("Pss:"))
                kilobytes += line.mid(4).trimmed().split(' ').first().toDouble();
    }
    return kilobytes / 1024;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const int calls = argc > 1 ? std::atoi(argv[1]) : 20;
    LocalConference server;
    if (!server.listen()) {
        std::fputs("No free port.\n", stderr);
        return 1;
    }
    PlatformServices services;
    services.conference = ConferenceService::native();
    QorvelKycView view(QRectF(0, 0, 390, 844), services);
    int terminated = 0;
    view.setDidConferenceTerminated([&terminated](const auto&) { ++terminated; });
    view.setViewTypes({ ViewType::jitsi });
    view.show();
    rest(500);
    std::printf("before the first call: %.1f MB\n", memory());

    std::vector<qint64> joining;
    for (int call = 1; call <= calls; ++call) {
        QElapsedTimer clock;
        clock.start();
        view.setJitsiConference(server.url().toString(), QStringLiteral("room"), QStringLiteral("token"));
        if (!run([&view] { return view.inJitsi(); }, kLongestMilliseconds)) {
            std::printf("call %d was not joined\n", call);
            return 1;
        }
        joining.push_back(clock.elapsed());
        rest(kTalkMilliseconds);
        const double during = memory();
        server.hangUp();
        if (!run([&] { return terminated == call; }, kLongestMilliseconds)) {
            std::printf("call %d did not end, or more than once\n", call);
            return 1;
        }
        rest(kRestMilliseconds);
        if (call <= 5 || call % 5 == 0)
            std::printf("call %2d: joined after %4lld ms; %.1f MB during, %.1f MB after\n", call, joining.back(),
                during, memory());
        std::fflush(stdout);
    }
    if (joining.size() > 1) {
        std::sort(joining.begin() + 1, joining.end());
        std::printf("cold %lld ms; later ones median %lld ms, longest %lld ms\n", joining.front(),
            joining[1 + (joining.size() - 1) / 2], joining.back());
    }
    return 0;
}
