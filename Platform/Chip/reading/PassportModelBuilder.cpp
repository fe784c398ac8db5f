#include "Platform/Chip/reading/PassportModelBuilder.h"

#include "Platform/Chip/lds/Portrait.h"
#include "Platform/Foundation/MrzDates.h"

namespace kelvara::chip {

namespace {

using Kind = NFCPassportReaderError::Kind;

std::string_view sentenceOf(PortraitProblem problem)
{
    switch (problem) {
    case PortraitProblem::UnknownKind:
        return "the portrait is neither JPEG nor JPEG 2000";
    case PortraitProblem::TooLarge:
        return "the portrait has more pixels than a chip's picture can have";
    case PortraitProblem::TooCostly:
        return "the portrait would take more to decode than a chip's picture can";
    case PortraitProblem::Damaged:
        break;
    }
    return "the portrait cannot be decoded";
}

QImage pictureOf(const EncodedImage& encoded)
{
    auto decoded = decodePortrait(encoded.data);
    auto* const image = std::get_if<QImage>(&decoded);
    return image ? std::move(*image) : QImage();
}

/// Turkish cards put a filler before the identity number in the optional data.
QString withoutLeadingFillers(QString text)
{
    while (text.startsWith(u'<'))
        text.remove(0, 1);
    return text;
}

void fillZone(NFCPassportModel& model, const DataGroup1& zone)
{
    model.documentCode = zone.documentCode;
    model.issuingState = zone.issuingState;
    model.documentNumber = zone.documentNumber;
    model.surname = zone.name.primary;
    model.givenNames = zone.name.secondary;
    model.nationality = zone.nationality;
    model.gender = zone.sex == QLatin1String("F") || zone.sex == QLatin1String("M") ? zone.sex : QString();
    model.birthDateDigits = zone.birthDate;
    model.expiryDateDigits = zone.expiryDate;
    const QDate today = QDate::currentDate();
    model.birthDate = mrzBirthDate(zone.birthDate, today);
    model.expiryDate = mrzExpiryDate(zone.expiryDate, today);
    model.personalNumber = withoutLeadingFillers(zone.optionalData);
    model.mrz = zone.lines.join(QString());
}

void fillDetails(NFCPassportModel& model)
{
    if (const auto* person = model.dataGroup<DataGroup11>(DataGroupId::DG11)) {
        if (!person->personalNumber.isEmpty())
            model.personalNumber = person->personalNumber;
        if (person->fullName)
            model.fullName = (person->fullName->secondary + u' ' + person->fullName->primary).trimmed();
        model.placeOfBirth = person->placeOfBirth.join(QStringLiteral(", "));
        model.address = person->address.join(QStringLiteral(", "));
        model.telephone = person->telephone;
        model.profession = person->profession;
    }
    if (const auto* document = model.dataGroup<DataGroup12>(DataGroupId::DG12)) {
        model.issuingAuthority = document->issuingAuthority;
        const QDate day = QDate::fromString(document->issueDate.value_or(QString()), QStringLiteral("yyyyMMdd"));
        if (day.isValid())
            model.issueDate = day;
    }
    if (const auto* signature = model.dataGroup<DataGroup7>(DataGroupId::DG7))
        model.signatureImage = pictureOf(signature->images.front());
}

} // namespace

std::variant<std::shared_ptr<NFCPassportModel>, NFCPassportReaderError> buildPassportModel(
    const ReadState& state, bool needsPortrait)
{
    const auto model = std::make_shared<NFCPassportModel>();
    model->verification = state.verification;
    model->dataGroupHashes = state.securityObject->hashes;
    for (const auto& [id, file] : state.shelf.files()) {
        if (id != DataGroupId::CardAccess && id != DataGroupId::CardSecurity) // no one's data, and the first unsigned
            model->dataGroupsRead.emplace(id, parseDataGroup(id, file));
    }
    fillZone(*model, *model->dataGroup<DataGroup1>(DataGroupId::DG1));
    fillDetails(*model);
    if (!needsPortrait)
        return model;
    const auto refused = [&state](std::string_view sentence) {
        auto error = state.error(Kind::UnreadableData, std::string(sentence));
        error.dataGroup = DataGroupId::DG2;
        return error;
    };
    const auto* const faces = model->dataGroup<DataGroup2>(DataGroupId::DG2);
    if (!faces)
        return refused("DG2 holds no portrait");
    auto portrait = decodePortrait(faces->faces.front().image.data);
    if (const auto* problem = std::get_if<PortraitProblem>(&portrait))
        return refused(sentenceOf(*problem));
    model->faceImage = std::get<QImage>(std::move(portrait));
    return model;
}

} // namespace kelvara::chip

namespace kelvara {

bool NFCPassportModel::isSignerTrusted() const
{
    return verification.passiveAuthentication
        && verification.passiveAuthentication->signer == chip::SignerTrust::Trusted;
}

} // namespace kelvara
