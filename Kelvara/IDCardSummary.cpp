#include "Kelvara/IDCardSummary.h"

#include "Kelvara/IDCardUtil.h"
#include "Platform/Chip/NFCPassportModel.h"
#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/UIImage.h"

namespace kelvara {

namespace {

QString genderText(const QString& gender)
{
    if (gender == QLatin1String("F"))
        return QStringLiteral("FEMALE");
    return gender == QLatin1String("M") ? QStringLiteral("MALE") : QStringLiteral("N/A");
}

QByteArray encoded(const QImage& picture)
{
    const UIImage image(picture);
    const auto jpeg = UIImageJPEGRepresentation(image, getImageQuality(image));
    if (!jpeg)
        fatalError("The chip's portrait must be present and encodable.");
    return *jpeg;
}

QByteArray hashOf(const NFCPassportModel& passport, chip::DataGroupId id)
{
    const auto hash = passport.dataGroupHashes.find(id);
    if (hash == passport.dataGroupHashes.end())
        return {};
    return QByteArray(reinterpret_cast<const char*>(hash->second.data()), static_cast<qsizetype>(hash->second.size()));
}

} // namespace

double getImageQuality(const UIImage&)
{
    return 1.0;
}

IDCardSummary IDCardSummary::of(const IDCardUtil& holder)
{
    using chip::DataGroupId;
    IDCardSummary summary;
    const auto passport = holder.passport();
    summary.gender = genderText(passport ? passport->gender : QString());
    if (!passport)
        return summary;
    summary.name = (passport->givenNames + u' ' + passport->surname).trimmed();
    summary.documentNumber = passport->documentNumber;
    summary.nationality = passport->nationality;
    if (const auto* com = passport->dataGroup<chip::COM>(DataGroupId::COM))
        summary.ldsVersion = QString::fromStdString(com->ldsVersion);
    if (const auto* details = passport->dataGroup<chip::DataGroup11>(DataGroupId::DG11))
        summary.placeOfBirth = details->placeOfBirth.join(QStringLiteral(", "));
    summary.portraitHash = hashOf(*passport, DataGroupId::DG2);
    summary.portrait = encoded(passport->faceImage);
    summary.picture = encoded(passport->faceImage);
    summary.lines = QStringList { summary.name, summary.documentNumber, summary.nationality, summary.gender };
    return summary;
}

} // namespace kelvara
