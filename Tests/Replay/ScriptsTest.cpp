#include "Tools/Replay/FlowScriptFile.h"
#include "Tools/Replay/ReplaySession.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

namespace kelvara::replay {
namespace {

QJsonObject played(const FlowScript& script)
{
    auto opened = ReplaySession::open(script);
    if (const auto* problem = std::get_if<QString>(&opened)) {
        ADD_FAILURE() << problem->toStdString();
        return {};
    }
    auto& session = *std::get<std::unique_ptr<ReplaySession>>(opened);
    testing::internal::CaptureStdout(); // what the view itself says
    session.run();
    testing::internal::GetCapturedStdout();
    return session.report(false);
}

FlowScript scriptOf(const QByteArray& json)
{
    auto script = flowScriptFromJson(json, QDir());
    if (const auto* problem = std::get_if<QString>(&script))
        ADD_FAILURE() << problem->toStdString();
    return std::get<FlowScript>(std::move(script));
}

/// The events without what the script itself did.
QStringList eventsOf(const QJsonObject& report)
{
    QStringList events;
    for (const auto& entry : report.value(QStringLiteral("events")).toArray()) {
        const QString event = entry.toObject().value(QStringLiteral("event")).toString();
        if (event != u"do")
            events.append(event);
    }
    return events;
}

std::string textOf(const QJsonObject& report)
{
    return QJsonDocument(report).toJson().toStdString();
}

struct ScriptRow
{
    const char* file;
    const char* events; ///< In their order.
};

void PrintTo(const ScriptRow& row, std::ostream* out)
{
    *out << row.file;
}

class Scripts : public testing::TestWithParam<ScriptRow>
{ };

TEST_P(Scripts, GoAsTheyShouldAndTheSameWayTwice)
{
    const auto script
        = flowScriptFromFile(QStringLiteral(KELVARA_SCRIPTS "/%1.json").arg(QLatin1String(GetParam().file)));
    ASSERT_FALSE(std::holds_alternative<QString>(script)) << std::get<QString>(script).toStdString();
    const QJsonObject first = played(std::get<FlowScript>(script));
    EXPECT_TRUE(first.value(QStringLiteral("met")).toBool()) << textOf(first);
    EXPECT_TRUE(first.value(QStringLiteral("problems")).toArray().isEmpty()) << textOf(first);
    EXPECT_EQ(eventsOf(first).join(u' ').toStdString(), GetParam().events);
    EXPECT_EQ(textOf(first), textOf(played(std::get<FlowScript>(script))));
}

INSTANTIATE_TEST_SUITE_P(Replay, Scripts,
    testing::Values(
        ScriptRow { "whole-flow",
            "scanning:on step:idPhoto delegate:didCaptureIdFrontPhoto delegate:didCaptureIdBackPhoto step:selfie "
            "delegate:didCaptureSelfiePhoto step:nfcRead sheet:present sheet:reading sheet:done delegate:didReadNfc "
            "delegate:didDetectSdkDataBeforeJitsi step:jitsi sheet:gone scanning:off call:terminated scanning:on "
            "delegate:didClose" },
        ScriptRow { "tag-lost",
            "scanning:on step:idPhoto delegate:didCaptureIdFrontPhoto delegate:didCaptureIdBackPhoto step:nfcRead "
            "sheet:present sheet:reading sheet:presentAgain sheet:reading sheet:done delegate:didReadNfc step:finished "
            "sheet:gone" },
        ScriptRow { "camera-lost",
            "scanning:on step:idPhoto scanning:off scanning:on delegate:didCaptureIdFrontPhoto scanning:off "
            "scanning:on scanning:off scanning:on delegate:didCaptureIdBackPhoto step:finished scanning:off "
            "delegate:didClose" },
        ScriptRow { "delete-in-callback", "scanning:on step:selfie delegate:didCaptureSelfiePhoto destroyed" },
        ScriptRow { "call-lost",
            "delegate:didDetectSdkDataBeforeJitsi scanning:on step:jitsi scanning:off call:terminated scanning:on "
            "scanning:off call:hangUp step:selfie call:terminated scanning:on" }),
    [](const auto& row) { return QString::fromLatin1(row.param.file).remove(u'-').toStdString(); });

TEST(Session, AWaitInVainEndsIt)
{
    const QJsonObject report = played(scriptOf(R"({ "detectors": "told", "reader": false, "flow": [
        { "steps": ["idPhoto", "selfie"] },
        { "tap": "read", "atMost": 0, "mayMiss": true },
        { "wait": "step:selfie", "atMost": 50 },
        { "steps": ["selfie"] } ] })"));
    EXPECT_FALSE(report.value(QStringLiteral("met")).toBool());
    const QJsonObject unmet = report.value(QStringLiteral("unmet")).toObject();
    EXPECT_EQ(unmet.value(QStringLiteral("index")).toInt(), 2);
    EXPECT_EQ(unmet.value(QStringLiteral("screen")).toString(), "idPhoto");
    EXPECT_EQ(eventsOf(report).join(u' '), "scanning:on step:idPhoto missed") << textOf(report);
}

struct DeviceRow
{
    const char* name;
    const char* device;
    const char* event; ///< That it brings about.
};

void PrintTo(const DeviceRow& row, std::ostream* out)
{
    *out << row.name;
}

class Devices : public testing::TestWithParam<DeviceRow>
{ };

TEST_P(Devices, AreAsTheScriptSays)
{
    const QJsonObject report = played(scriptOf(QByteArray(R"({ "detectors": "told", )") + GetParam().device
        + R"(, "flow": [ { "steps": ["idPhoto", "jitsi"] }, { "goTo": "jitsi" }, { "conference": "join:http://a.example" },
            { "wait": "call:terminated", "atMost": 300, "mayMiss": true } ] })"));
    EXPECT_TRUE(eventsOf(report).contains(QLatin1String(GetParam().event))) << textOf(report);
}

INSTANTIATE_TEST_SUITE_P(Replay, Devices,
    testing::Values(DeviceRow { "noCameras", R"("cameras": false)", "step:noBackCamera" },
        DeviceRow { "noReader", R"("forceNfc": true, "reader": false)", "step:nfcRequired" },
        DeviceRow { "noCalls", R"("calls": false)", "call:terminated" },
        DeviceRow { "all", R"("reader": true)", "call:terminated" }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Recorder, HoldsWordsAfterTheViewsEndAgainstIt)
{
    FlowLog log;
    FlowRecorder recorder(log, 1);
    recorder.scanning(true);
    EXPECT_TRUE(recorder.problems().isEmpty());
    recorder.viewGone();
    recorder.scanning(false);
    recorder.terminated({}, false);
    EXPECT_EQ(recorder.problems().size(), 2);
}

TEST(Log, WaitsPassWhatTheyWaitedFor)
{
    FlowLog log;
    for (const char* event : { "a", "b", "a", "c" })
        log.add(QLatin1String(event));
    EXPECT_TRUE(log.pass("b"));
    EXPECT_TRUE(log.pass("a"));
    EXPECT_FALSE(log.pass("a"));
    EXPECT_FALSE(log.pass("b")) << "passed by already";
    EXPECT_TRUE(log.pass("c"));
}

} // namespace
} // namespace kelvara::replay
