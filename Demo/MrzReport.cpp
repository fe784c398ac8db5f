#include "Demo/MrzReport.h"

#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/SdkModel.h"

#include <QJsonObject>

namespace kelvara::demo {

namespace {

QJsonValue dateOrNull(const std::optional<QDate>& date)
{
    return date ? QJsonValue(date->toString(Qt::ISODate)) : QJsonValue();
}

QJsonValue textOrNull(const std::optional<QString>& text)
{
    return text ? QJsonValue(*text) : QJsonValue();
}

} // namespace

QJsonValue mrzReport(const std::shared_ptr<SdkModel>& record)
{
    if (!record || !record->mrzInfo)
        return {};
    QKMRZScanResult& mrz = *record->mrzInfo;
    return QJsonObject { { QStringLiteral("documentType"), mrz.documentType },
        { QStringLiteral("countryCode"), mrz.countryCode }, { QStringLiteral("surnames"), mrz.surnames },
        { QStringLiteral("givenNames"), mrz.givenNames }, { QStringLiteral("documentNumber"), mrz.documentNumber },
        { QStringLiteral("nationality"), mrz.nationality }, { QStringLiteral("birthDate"), dateOrNull(mrz.birthDate) },
        { QStringLiteral("sex"), textOrNull(mrz.sex) }, { QStringLiteral("expiryDate"), dateOrNull(mrz.expiryDate) },
        { QStringLiteral("personalNumber"), mrz.personalNumber },
        { QStringLiteral("personalNumber2"), textOrNull(mrz.personalNumber2) },
        { QStringLiteral("documentImageWidth"), QImage(mrz.documentImage).width() },
        { QStringLiteral("documentImageHeight"), QImage(mrz.documentImage).height() } };
}

} // namespace kelvara::demo
