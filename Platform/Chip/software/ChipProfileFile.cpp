#include "Platform/Chip/software/ChipProfileFile.h"

#include "Platform/Chip/software/ProfileFields.h"
#include "Platform/Chip/software/ZoneText.h"

#include <QJsonDocument>

namespace kelvara::chip::software {

namespace {

constexpr qsizetype kLongestJson = qsizetype { 1 } << 20;

void readZone(ChipProfile& profile, JsonFields& fields)
{
    if (!fields.has(QStringLiteral("mrz")))
        return;
    profile.zone = fields.texts(QStringLiteral("mrz"));
    const auto zone = ZoneText::of(profile.zone);
    if (const auto* problem = std::get_if<QString>(&zone))
        fields.fail(QStringLiteral("mrz"), QStringLiteral("is no zone: ") + problem->chopped(1));
}

void readForgeries(ChipProfile& profile, JsonFields& fields)
{
    for (const QString& name : fields.texts(QStringLiteral("forgeries"))) {
        if (const auto forgery = forgeryOfName(name.toStdString()))
            profile.forgeries.insert(*forgery);
        else
            fields.fail(QStringLiteral("forgeries"), QStringLiteral("knows no \"%1\"").arg(name));
    }
}

} // namespace

std::variant<ChipProfile, QString> chipProfileFromJson(const QByteArray& json, const QDir& base)
{
    if (json.size() > kLongestJson)
        return QStringLiteral("The profile is longer than a mebibyte.");
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        return QStringLiteral("The profile is no JSON: %1 at byte %2.").arg(error.errorString()).arg(error.offset);
    if (!document.isObject())
        return QStringLiteral("The profile is no JSON object.");
    ChipProfile profile;
    QString problem;
    JsonFields fields(document.object(), {}, problem);
    profile.isPassport = fields.flag(QStringLiteral("passport"), true);
    profile.hasAtrInfo = fields.flag(QStringLiteral("atrInfo"), false);
    readZone(profile, fields);
    readHolder(profile, fields, base);
    readFiles(profile, fields, base);
    readProtocols(profile, fields);
    readAuthority(profile, fields);
    readManners(profile, fields);
    readForgeries(profile, fields);
    readFaults(profile, fields);
    fields.finish();
    if (!problem.isEmpty())
        return problem;
    return profile;
}

} // namespace kelvara::chip::software
