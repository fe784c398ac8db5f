#include "Tools/Replay/FlowRecorder.h"

#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/SdkModel.h"
#include "Platform/Chip/NFCPassportModel.h"
#include "Tools/Specimen/Specimen.h"

namespace kelvara::replay {

namespace {

QJsonArray sizeOf(const UIImage& image)
{
    const QImage pixels = image;
    return { pixels.width(), pixels.height() };
}

bool isAsPrinted(const QKMRZScanResult& zone, std::uint32_t seed)
{
    const auto printed = specimen::SpecimenData::fromSeed(seed);
    return zone.documentNumber == printed.documentNumber && zone.birthDate == printed.birthDate
        && zone.expiryDate == printed.expiryDate && zone.personalNumber == printed.identityNumber;
}

} // namespace

void FlowRecorder::told(const QString& call, const QString& event, const QJsonObject& facts)
{
    m_log.add(event, facts);
    if (m_isViewGone)
        m_problems.append(QStringLiteral("%1 came after the view had been deleted.").arg(event));
    else if (const auto action = during) // a copy: it may end the session
        action(call);
}

void FlowRecorder::terminated(const std::optional<QVariantMap>& data, bool inJitsi)
{
    QJsonObject facts { { QStringLiteral("inJitsi"), inJitsi } };
    if (data && data->contains(QStringLiteral("error")))
        facts.insert(QStringLiteral("error"), data->value(QStringLiteral("error")).toString());
    told(QStringLiteral("terminated"), QStringLiteral("call:terminated"), facts);
}

void FlowRecorder::scanning(bool isScanning)
{
    told({}, isScanning ? QStringLiteral("scanning:on") : QStringLiteral("scanning:off"), {});
}

void FlowRecorder::photo(const QString& call, const UIImage& image, const UIImage& crop)
{
    told(call, QStringLiteral("delegate:") + call,
        { { QStringLiteral("image"), sizeOf(image) }, { QStringLiteral("crop"), sizeOf(crop) } });
}

QJsonObject FlowRecorder::factsOf(const SdkModel& record) const
{
    QJsonArray has;
    const auto note = [&has](bool isThere, const char* name) {
        if (isThere)
            has.append(QLatin1String(name));
    };
    note(record.idFrontImage.has_value(), "front");
    note(record.idBackImage.has_value(), "back");
    note(record.selfieImage.has_value(), "selfie");
    note(record.mrzInfo != nullptr, "mrz");
    note(record.nfcData != nullptr, "chip");
    QJsonObject facts { { QStringLiteral("has"), has } };
    if (record.mrzInfo && m_seed)
        facts.insert(QStringLiteral("mrzAsPrinted"), isAsPrinted(*record.mrzInfo, *m_seed));
    return facts;
}

void FlowRecorder::didDetectSdkDataBeforeJitsi(QorvelKycView&, const std::shared_ptr<SdkModel>& record)
{
    const QString call = QStringLiteral("didDetectSdkDataBeforeJitsi");
    told(call, QStringLiteral("delegate:") + call, factsOf(*record));
}

void FlowRecorder::didCaptureIdFrontPhoto(
    QorvelKycView&, const UIImage& image, const QString&, const UIImage& crop, const QString&)
{
    photo(QStringLiteral("didCaptureIdFrontPhoto"), image, crop);
}

void FlowRecorder::didCaptureIdBackPhoto(
    QorvelKycView&, const UIImage& image, const QString&, const UIImage& crop, const QString&)
{
    photo(QStringLiteral("didCaptureIdBackPhoto"), image, crop);
}

void FlowRecorder::didCaptureSelfiePhoto(
    QorvelKycView&, const UIImage& image, const QString&, const UIImage& crop, const QString&)
{
    photo(QStringLiteral("didCaptureSelfiePhoto"), image, crop);
}

void FlowRecorder::didReadNfc(QorvelKycView&, const NFCPassportModel& passport)
{
    QJsonObject facts { { QStringLiteral("portrait"), sizeOf(UIImage(passport.faceImage)) },
        { QStringLiteral("isChipGenuine"), passport.verification.isChipGenuine() },
        { QStringLiteral("isSignerTrusted"), passport.isSignerTrusted() } };
    if (m_seed)
        facts.insert(QStringLiteral("asPrinted"),
            passport.mrz == specimen::SpecimenData::fromSeed(*m_seed).mrzLines().join(QString()));
    const QString call = QStringLiteral("didReadNfc");
    told(call, QStringLiteral("delegate:") + call, facts);
}

void FlowRecorder::didClose(QorvelKycView&, const std::shared_ptr<SdkModel>& record)
{
    const QString call = QStringLiteral("didClose");
    told(call, QStringLiteral("delegate:") + call, factsOf(*record));
}

} // namespace kelvara::replay
