#include "Tools/Replay/soak/SoakRun.h"

#include "Tools/Replay/FlowScriptFile.h"
#include "Tools/Replay/ReplaySession.h"
#include "Tools/Replay/soak/FlowGenerator.h"
#include "Tools/Replay/soak/Watchdog.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>

#include <cstdlib>

namespace kelvara::soak {

namespace {

constexpr std::chrono::seconds kLongestFlow { 300 };

bool write(const QString& path, const QJsonObject& object)
{
    QFile file(path);
    const QByteArray json = QJsonDocument(object).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(json) == json.size();
}

} // namespace

QString SoakRun::scriptOf(std::uint32_t seed) const
{
    return m_folder.filePath(QStringLiteral("flow-%1.json").arg(seed));
}

void SoakRun::run(std::chrono::seconds time, std::uint32_t seed)
{
    QElapsedTimer clock;
    clock.start();
    Watchdog watchdog(kLongestFlow, [output = m_output] {
        std::fputs("A flow hangs.\n", output);
        std::fflush(output);
        std::abort(); // with all threads as they stand, for whoever looks at the core
    });
    for (std::uint32_t flow = seed; clock.elapsed() < std::chrono::milliseconds(time).count(); ++flow) {
        watchdog.pat();
        play(flow);
        m_gauge.read();
    }
    m_lasted = std::chrono::seconds(clock.elapsed() / 1000);
}

void SoakRun::play(std::uint32_t seed)
{
    const QJsonObject written = generateFlow(seed);
    // Before it is played: so it is there should the process not live to tell.
    if (!write(scriptOf(seed), written)) {
        breaks(QStringLiteral("The script cannot be written."), seed, {});
        return;
    }
    ++m_flows;
    m_realFlows += written.value(QStringLiteral("detectors")) == QJsonValue(QStringLiteral("real")) ? 1 : 0;
    auto script = replay::flowScriptFromFile(scriptOf(seed));
    if (const auto* problem = std::get_if<QString>(&script)) {
        breaks(*problem, seed, {});
        return;
    }
    auto opened = replay::ReplaySession::open(std::get<replay::FlowScript>(std::move(script)));
    if (const auto* problem = std::get_if<QString>(&opened)) {
        breaks(*problem, seed, {});
        return;
    }
    auto& session = *std::get<std::unique_ptr<replay::ReplaySession>>(opened);
    session.run();
    const QJsonObject report = session.report(true);
    count(report);
    if (!session.problems().isEmpty())
        breaks(session.problems().join(u' '), seed, report);
    else if (!session.isMet())
        breaks(QStringLiteral("The view did not come to rest as it must."), seed, report);
    else
        QFile::remove(scriptOf(seed));
}

void SoakRun::breaks(const QString& sentence, std::uint32_t seed, const QJsonObject& report)
{
    ++m_broken;
    const QString log = m_folder.filePath(QStringLiteral("flow-%1-log.json").arg(seed));
    static_cast<void>(write(log, report));
    std::fprintf(m_output, "Flow %u broke: %s\n  script: %s\n  log:    %s\n%s\n", seed, qUtf8Printable(sentence),
        qUtf8Printable(scriptOf(seed)), qUtf8Printable(log), QJsonDocument(generateFlow(seed)).toJson().constData());
    std::fflush(m_output);
}

void SoakRun::count(const QJsonObject& report)
{
    const QJsonArray events = report.value(QStringLiteral("events")).toArray();
    for (const auto& event : events) {
        const QString name = event.toObject().value(QStringLiteral("event")).toString();
        if (!name.startsWith(u"step:"))
            ++m_counts[name];
    }
}

bool SoakRun::conclude()
{
    std::fprintf(m_output, "%d flows (%d with the real detectors) in %lld s, %d broke something; %s\n", m_flows,
        m_realFlows, static_cast<long long>(m_lasted.count()), m_broken, qUtf8Printable(m_gauge.summary()));
    for (const auto& [name, times] : m_counts)
        std::fprintf(m_output, "  %6d  %s\n", times, qUtf8Printable(name));
    const auto growth = m_gauge.growth();
    if (growth)
        std::fprintf(m_output, "%s\n", qUtf8Printable(*growth));
    std::fflush(m_output);
    return m_broken == 0 && !growth && m_flows > 0;
}

} // namespace kelvara::soak
