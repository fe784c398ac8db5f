#include "Tools/Replay/FlowScriptFile.h"

#include "Platform/Chip/software/ChipProfileFile.h"
#include "Platform/Chip/software/JsonFields.h"
#include "Tools/Replay/FlowStepReader.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace kelvara::replay {

namespace {

using chip::software::JsonFields;

constexpr qsizetype kLongestJson = qsizetype { 4 } << 20;
constexpr qsizetype kMostSteps = 10'000;
constexpr int kWidestFrame = 8192;
constexpr int kMostFramesPerSecond = 1000;
constexpr int kMillion = 1'000'000;

QSize sizeIn(JsonFields& fields, const QString& name, QSize otherwise, int most)
{
    JsonFields part = fields.object(name);
    const QSize size(part.number(QStringLiteral("width"), otherwise.width(), 1, most),
        part.number(QStringLiteral("height"), otherwise.height(), 1, most));
    part.finish();
    return size;
}

void readDevice(FlowScript& script, JsonFields& fields)
{
    using Detectors = FlowScript::Detectors;
    using Trust = FlowScript::Trust;
    script.seed = static_cast<std::uint32_t>(fields.number(QStringLiteral("seed"), 1, 0, kMillion));
    script.view = sizeIn(fields, QStringLiteral("view"), script.view, kWidestFrame);
    script.frame = sizeIn(fields, QStringLiteral("frame"), script.frame, kWidestFrame);
    script.framesPerSecond = fields.number(QStringLiteral("framesPerSecond"), 30, 1, kMostFramesPerSecond);
    script.hasCameras = fields.flag(QStringLiteral("cameras"), true);
    script.hasReader = fields.flag(QStringLiteral("reader"), true);
    script.hasCalls = fields.flag(QStringLiteral("calls"), true);
    script.forceNfc = fields.flag(QStringLiteral("forceNfc"), false);
    script.detectors = fields.choice(
        QStringLiteral("detectors"), Detectors::Real, { { "real", Detectors::Real }, { "told", Detectors::Told } });
    script.trust = fields.choice(QStringLiteral("trust"), Trust::Issuer,
        { { "issuer", Trust::Issuer }, { "nobody", Trust::Nobody }, { "somebodyElse", Trust::SomebodyElse } });
}

/// Empty when all is well.
QString readChip(FlowScript& script, const QJsonObject& written, const QDir& base)
{
    auto profile = chip::software::chipProfileFromJson(QJsonDocument(written).toJson(), base);
    if (const auto* problem = std::get_if<QString>(&profile))
        return QStringLiteral("In \"chip\": ") + *problem;
    script.chip = std::get<chip::software::ChipProfile>(std::move(profile));
    script.chipFields = written.keys();
    return {};
}

} // namespace

std::variant<FlowScript, QString> flowScriptFromJson(const QByteArray& json, const QDir& base)
{
    if (json.size() > kLongestJson)
        return QStringLiteral("The script is longer than four mebibytes.");
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return QStringLiteral("The script is no JSON: %1 at byte %2.").arg(error.errorString()).arg(error.offset);
    if (!document.isObject())
        return QStringLiteral("The script is no JSON object.");
    QJsonObject object = document.object();
    const QJsonValue flow = object.take(QStringLiteral("flow"));
    if (!flow.isArray() || flow.toArray().size() > kMostSteps)
        return QStringLiteral("The field \"flow\" must be a list of at most %1 steps.").arg(kMostSteps);

    FlowScript script;
    QString problem;
    JsonFields fields(object, {}, problem);
    readDevice(script, fields);
    const QJsonObject chip = object.value(QStringLiteral("chip")).toObject();
    static_cast<void>(fields.object(QStringLiteral("chip")));
    static_cast<void>(fields.text(QStringLiteral("about")));
    fields.finish();
    if (problem.isEmpty())
        problem = readChip(script, chip, base);
    const QJsonArray steps = flow.toArray();
    for (qsizetype i = 0; i < steps.size() && problem.isEmpty(); ++i) {
        const QString place = QStringLiteral("flow[%1]").arg(i);
        if (!steps[i].isObject())
            return QStringLiteral("The field \"%1\" must be an object.").arg(place);
        const QJsonObject written = steps[i].toObject();
        script.flow.push_back(readFlowStep(JsonFields(written, place, problem), written, base));
    }
    if (!problem.isEmpty())
        return problem;
    return script;
}

std::variant<FlowScript, QString> flowScriptFromFile(const QString& path)
{
    QFile file(path);
    const QFileInfo info(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1 cannot be read.").arg(path);
    if (file.size() > kLongestJson)
        return QStringLiteral("%1 is too long for a script.").arg(path);
    auto script = flowScriptFromJson(file.readAll(), info.dir());
    if (const auto* problem = std::get_if<QString>(&script))
        return QStringLiteral("%1: %2").arg(path, *problem);
    return script;
}

} // namespace kelvara::replay
