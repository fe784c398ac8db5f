#include "Tools/Replay/FlowStepReader.h"

#include "Platform/Chip/software/ChipProfileFile.h"
#include "Tools/Replay/FlowEvents.h"

#include <QJsonDocument>

namespace kelvara::replay {

namespace {

using chip::software::JsonFields;

constexpr int kLongestWait = 600'000;
constexpr int kWidestView = 4000;
constexpr auto kAddress = "https://meet.example.com";

Act show(JsonFields& fields, const QDir& base)
{
    const QString key = QStringLiteral("show");
    if (fields.isText(key))
        return Show { fields.choice(key, Picture::Nothing,
                          { { "front", Picture::Front }, { "back", Picture::Back }, { "selfie", Picture::Selfie },
                              { "nothing", Picture::Nothing } }),
            {} };
    JsonFields part = fields.object(key);
    Show shown { part.choice(QStringLiteral("as"), Picture::Front,
                     { { "front", Picture::Front }, { "back", Picture::Back }, { "selfie", Picture::Selfie } }),
        part.text(QStringLiteral("file")) };
    if (shown.file.isEmpty())
        part.fail(QStringLiteral("file"), QStringLiteral("must name a picture, a folder or a video"));
    else if (shown.file = base.absoluteFilePath(shown.file); !QFileInfo::exists(shown.file))
        part.fail(QStringLiteral("file"), QStringLiteral("names no file that is there: %1").arg(shown.file));
    part.finish();
    return shown;
}

Act wait(JsonFields& fields)
{
    const QString key = QStringLiteral("wait");
    if (!fields.isText(key))
        return Wait { {}, std::chrono::milliseconds(fields.number(key, 0, 0, kLongestWait)) };
    const QString until = fields.text(key);
    if (!isAwaitable(until))
        fields.fail(key, QStringLiteral("knows nothing to wait for that is called \"%1\"").arg(until));
    return Wait { until, {} };
}

Act tap(JsonFields& fields)
{
    return Tap { fields.choice(QStringLiteral("tap"), Control::Shutter,
        { { "shutter", Control::Shutter }, { "close", Control::Close }, { "read", Control::Read },
            { "next", Control::Next }, { "flash", Control::Flash }, { "sheet", Control::Sheet },
            { "call", Control::Call } }) };
}

Act chipAct(JsonFields& fields, const QJsonObject& written)
{
    const QString key = QStringLiteral("chip");
    if (fields.isText(key))
        return fields.choice(key, Act(TakeChip {}), { { "hold", Act(HoldChip {}) }, { "take", Act(TakeChip {}) } });
    JsonFields part = fields.object(key);
    FaultChip fault;
    // By the profile's own reader, so that both formats are one.
    static_cast<void>(part.object(QStringLiteral("fault")));
    const QJsonObject list { { QStringLiteral("list"), written.value(key).toObject().value(QStringLiteral("fault")) } };
    const QJsonObject profileObject { { QStringLiteral("faults"), list } };
    const auto profile = chip::software::chipProfileFromJson(QJsonDocument(profileObject).toJson(), QDir());
    if (const auto* problem = std::get_if<QString>(&profile))
        part.fail(QStringLiteral("fault"), QStringLiteral("is wrong: ") + problem->chopped(1));
    else
        fault.faults = std::get<chip::software::ChipProfile>(profile).faults;
    part.finish();
    return fault;
}

Act conference(JsonFields& fields)
{
    const QString key = QStringLiteral("conference");
    const QString said = fields.text(key);
    if (said == u"join")
        return Join { QString::fromLatin1(kAddress) };
    if (said.startsWith(u"join:"))
        return Join { said.mid(5) };
    if (said.startsWith(u"failed:")) {
        for (int kind = 0; kind <= static_cast<int>(ConferenceErrorKind::Unavailable); ++kind) {
            const auto candidate = static_cast<ConferenceErrorKind>(kind);
            if (ConferenceError { candidate }.name() == said.mid(7))
                return FailCall { candidate };
        }
        fields.fail(key, QStringLiteral("knows no failure \"%1\"").arg(said.mid(7)));
        return FailCall {};
    }
    return TellCall { fields.choice(key, CallEvent::Joined,
        { { "willJoin", CallEvent::WillJoin }, { "presented", CallEvent::Presented }, { "joined", CallEvent::Joined },
            { "ended", CallEvent::Ended }, { "deaf", CallEvent::Deaf } }) };
}

ViewType stepOf(JsonFields& fields, const QString& key, const QString& name)
{
    for (const ViewType step : { ViewType::idPhoto, ViewType::selfie, ViewType::nfcRead, ViewType::jitsi }) {
        if (description(step) == name)
            return step;
    }
    fields.fail(key, QStringLiteral("knows no step \"%1\"").arg(name));
    return ViewType::idPhoto;
}

Act steps(JsonFields& fields)
{
    const QString key = QStringLiteral("steps");
    SetSteps set;
    for (const QString& name : fields.texts(key))
        set.steps.append(stepOf(fields, key, name));
    return set;
}

Act plugCameras(JsonFields& fields)
{
    return PlugCameras { fields.choice(
                             QStringLiteral("camera"), Plug::Out, { { "plug", Plug::In }, { "unplug", Plug::Out } }),
        fields.choice(QStringLiteral("which"), Cameras::Both,
            { { "both", Cameras::Both }, { "back", Cameras::Back }, { "front", Cameras::Front } }) };
}

Act destroy(JsonFields& fields)
{
    const QString key = QStringLiteral("destroy");
    const QString when = fields.text(key);
    if (when == u"now")
        return Destroy {};
    if (when.startsWith(u"in:") && callNames().contains(when.mid(3)))
        return Destroy { when.mid(3) };
    fields.fail(key, QStringLiteral("must be now or in: and one of ") + callNames().join(QStringLiteral(", ")));
    return Destroy {};
}

Act resize(JsonFields& fields)
{
    JsonFields part = fields.object(QStringLiteral("resize"));
    const QSize size(part.number(QStringLiteral("width"), 390, 0, kWidestView),
        part.number(QStringLiteral("height"), 844, 0, kWidestView));
    part.finish();
    return Resize { size };
}

std::optional<Act> act(JsonFields& fields, const QJsonObject& written, const QString& key, const QDir& base)
{
    if (key == u"show")
        return show(fields, base);
    if (key == u"wait")
        return wait(fields);
    if (key == u"tap")
        return tap(fields);
    if (key == u"camera")
        return plugCameras(fields);
    if (key == u"reader")
        return PlugReader { fields.choice(key, Plug::Out, { { "plug", Plug::In }, { "unplug", Plug::Out } }) };
    if (key == u"chip")
        return chipAct(fields, written);
    if (key == u"conference")
        return conference(fields);
    if (key == u"background")
        return Background { fields.flag(key, true) };
    if (key == u"steps")
        return steps(fields);
    if (key == u"goTo")
        return GoTo { stepOf(fields, key, fields.text(key)) };
    if (key == u"scanning")
        return Scan { fields.choice(key, true, { { "start", true }, { "stop", false } }) };
    if (key == u"clock")
        return fields.choice(key, Act(Tick {}), { { "tick", Act(Tick {}) } });
    if (key == u"resize")
        return resize(fields);
    if (key == u"destroy")
        return destroy(fields);
    return std::nullopt;
}

} // namespace

FlowStep readFlowStep(JsonFields fields, const QJsonObject& written, const QDir& base)
{
    FlowStep step;
    step.written = written;
    QStringList acts;
    for (const QString& key : fields.names()) {
        if (auto found = act(fields, written, key, base)) {
            step.act = std::move(*found);
            acts.append(key);
        }
    }
    if (acts.size() > 1)
        fields.fail(acts.back(), QStringLiteral("comes on top of \"%1\": a step does one thing").arg(acts.front()));
    if (std::holds_alternative<Wait>(step.act) || std::holds_alternative<Tap>(step.act)) {
        step.atMost = std::chrono::milliseconds(
            fields.number(QStringLiteral("atMost"), static_cast<int>(step.atMost.count()), 0, kLongestWait));
        step.mayMiss = fields.flag(QStringLiteral("mayMiss"), false);
    }
    fields.finish();
    if (acts.isEmpty())
        fields.fail(QStringLiteral("do"), QStringLiteral("is missing: this step does nothing"));
    return step;
}

} // namespace kelvara::replay
