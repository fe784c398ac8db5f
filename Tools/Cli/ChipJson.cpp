#include "Tools/Cli/ChipJson.h"

#include <QJsonArray>

namespace kelvara::cli {

namespace {

using namespace chip;

QString latin1(std::string_view text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

QString nameOf(DataGroupId id)
{
    return latin1(entryOf(id).name);
}

QString nameOf(ProtocolOutcome outcome)
{
    switch (outcome) {
    case ProtocolOutcome::NotOffered:
        return QStringLiteral("notOffered");
    case ProtocolOutcome::NotSupported:
        return QStringLiteral("notSupported");
    case ProtocolOutcome::Succeeded:
        return QStringLiteral("succeeded");
    case ProtocolOutcome::Failed:
        break;
    }
    return QStringLiteral("failed");
}

QString nameOf(HashOutcome outcome)
{
    switch (outcome) {
    case HashOutcome::Match:
        return QStringLiteral("match");
    case HashOutcome::Mismatch:
        return QStringLiteral("mismatch");
    case HashOutcome::NotSigned:
        return QStringLiteral("notSigned");
    case HashOutcome::NotRead:
        break;
    }
    return QStringLiteral("notRead");
}

QString nameOf(SignatureOutcome outcome)
{
    switch (outcome) {
    case SignatureOutcome::Valid:
        return QStringLiteral("valid");
    case SignatureOutcome::Invalid:
        return QStringLiteral("invalid");
    case SignatureOutcome::Unsupported:
        break;
    }
    return QStringLiteral("unsupported");
}

QString nameOf(SignerTrust trust)
{
    switch (trust) {
    case SignerTrust::NotChecked:
        return QStringLiteral("notChecked");
    case SignerTrust::Trusted:
        return QStringLiteral("trusted");
    case SignerTrust::NotTrusted:
        break;
    }
    return QStringLiteral("notTrusted");
}

QString nameOf(SignerPeriod period)
{
    switch (period) {
    case SignerPeriod::Unknown:
        return QStringLiteral("unknown");
    case SignerPeriod::Current:
        return QStringLiteral("current");
    case SignerPeriod::Expired:
        return QStringLiteral("expired");
    case SignerPeriod::NotAtSigning:
        break;
    }
    return QStringLiteral("notAtSigning");
}

/// What is empty is left out.
class Object
{
public:
    Object& with(const char* name, const QString& text)
    {
        if (!text.isEmpty())
            m_object.insert(QLatin1String(name), text);
        return *this;
    }
    Object& with(const char* name, const std::optional<QDate>& date)
    {
        return with(name, date ? date->toString(Qt::ISODate) : QString());
    }
    operator QJsonObject() const { return m_object; }

private:
    QJsonObject m_object;
};

} // namespace

QJsonObject jsonOf(const ChipVerification& verification)
{
    QJsonObject object { { QStringLiteral("pace"), nameOf(verification.pace) },
        { QStringLiteral("bac"), nameOf(verification.bac) },
        { QStringLiteral("chipAuthentication"), nameOf(verification.chipAuthentication) },
        { QStringLiteral("activeAuthentication"), nameOf(verification.activeAuthentication) },
        { QStringLiteral("chipAuthenticatedByPace"), verification.isChipAuthenticatedByPace },
        { QStringLiteral("accessDowngraded"), verification.isAccessDowngraded },
        { QStringLiteral("foreignDocument"), verification.isForeignDocument } };
    if (!verification.paceProtocol.isEmpty())
        object.insert(QStringLiteral("paceProtocol"), verification.paceProtocol);
    if (const auto& passive = verification.passiveAuthentication) {
        QJsonObject hashes;
        for (const auto& [id, outcome] : passive->hashes)
            hashes.insert(nameOf(id), nameOf(outcome));
        object.insert(QStringLiteral("signature"), nameOf(passive->signature));
        object.insert(QStringLiteral("signer"), nameOf(passive->signer));
        object.insert(QStringLiteral("signerPeriod"), nameOf(passive->period));
        object.insert(QStringLiteral("signerCountry"), passive->signerCountry);
        object.insert(QStringLiteral("hashes"), hashes);
    }
    return object;
}

QJsonObject jsonOf(const NFCPassportReaderError& error)
{
    QJsonObject object { { QStringLiteral("kind"), latin1(kelvara::nameOf(error.kind)) },
        { QStringLiteral("detail"), QString::fromStdString(error.detail) },
        { QStringLiteral("message"), error.message() } };
    if (error.sw != 0)
        object.insert(
            QStringLiteral("statusWord"), QStringLiteral("%1").arg(error.sw, 4, 16, QLatin1Char('0')).toUpper());
    if (error.dataGroup)
        object.insert(QStringLiteral("file"), nameOf(*error.dataGroup));
    return object;
}

QJsonObject jsonOf(const NFCPassportModel& passport)
{
    const QJsonObject document = Object()
                                     .with("code", passport.documentCode)
                                     .with("issuingState", passport.issuingState)
                                     .with("number", passport.documentNumber)
                                     .with("surname", passport.surname)
                                     .with("givenNames", passport.givenNames)
                                     .with("nationality", passport.nationality)
                                     .with("gender", passport.gender)
                                     .with("birthDate", passport.birthDate)
                                     .with("expiryDate", passport.expiryDate)
                                     .with("personalNumber", passport.personalNumber)
                                     .with("mrz", passport.mrz);
    const QJsonObject details = Object()
                                    .with("fullName", passport.fullName)
                                    .with("placeOfBirth", passport.placeOfBirth)
                                    .with("address", passport.address)
                                    .with("telephone", passport.telephone)
                                    .with("profession", passport.profession)
                                    .with("issuingAuthority", passport.issuingAuthority)
                                    .with("issueDate", passport.issueDate);
    QJsonArray files;
    for (const auto& [id, group] : passport.dataGroupsRead) {
        QJsonObject file { { QStringLiteral("file"), nameOf(id) },
            { QStringLiteral("bytes"), static_cast<qint64>(rawOf(group).size()) } };
        if (const auto hash = passport.dataGroupHashes.find(id); hash != passport.dataGroupHashes.end())
            file.insert(QStringLiteral("signedHash"), latin1(toHex(hash->second)));
        files.append(file);
    }
    return { { QStringLiteral("document"), document }, { QStringLiteral("details"), details },
        { QStringLiteral("files"), files }, { QStringLiteral("verification"), jsonOf(passport.verification) } };
}

} // namespace kelvara::cli
