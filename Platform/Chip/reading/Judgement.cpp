#include "Platform/Chip/reading/Judgement.h"

#include "Platform/Chip/lds/DataGroup1.h"
#include "Platform/Chip/lds/DataGroup12.h"
#include "Platform/Chip/lds/DataGroup14.h"
#include "Platform/Chip/reading/PassportModelBuilder.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

using Kind = NFCPassportReaderError::Kind;

std::optional<QDate> issueDateOf(const FileShelf& shelf)
{
    const Bytes* const file = shelf.file(DataGroupId::DG12);
    const auto details = file ? DataGroup12::parse(*file) : std::nullopt;
    if (!details || !details->issueDate)
        return std::nullopt;
    const QDate date = QDate::fromString(*details->issueDate, QStringLiteral("yyyyMMdd"));
    return date.isValid() ? std::optional(date) : std::nullopt;
}

NFCPassportReaderError about(DataGroupId id, NFCPassportReaderError error)
{
    error.dataGroup = id;
    return error;
}

bool offers(const SecurityInfos& infos, const PaceInfo& wanted)
{
    return std::any_of(infos.pace.begin(), infos.pace.end(), [&wanted](const PaceInfo& info) {
        return info.protocol == wanted.protocol && info.parameterId == wanted.parameterId;
    });
}

/// Whether all that is known to be on offer by `signedInfos` is to be had by `infos`, in the same groups.
bool offersAll(const SecurityInfos& infos, const SecurityInfos& signedInfos)
{
    const auto offered = paceSelections(infos);
    const auto wanted = paceSelections(signedInfos);
    const auto isHad = [&offered](const PaceSelection& one) {
        return std::any_of(offered.begin(), offered.end(), [&one](const PaceSelection& other) {
            return other.protocol == one.protocol && other.parameterId == one.parameterId
                && other.group->isSame(*one.group);
        });
    };
    return std::all_of(wanted.begin(), wanted.end(), isHad)
        && std::all_of(signedInfos.pace.begin(), signedInfos.pace.end(),
            [&infos](const PaceInfo& info) { return offers(infos, info); });
}

} // namespace

bool ReadWish::wants(DataGroupId id) const
{
    const bool isSecure = id == DataGroupId::DG3 || id == DataGroupId::DG4;
    if (isSecure && skipsSecureElements)
        return false;
    return tags.empty() || std::find(tags.begin(), tags.end(), id) != tags.end();
}

std::optional<NFCPassportReaderError> Judgement::takeSecurityObject()
{
    if (m_state.securityObject)
        return std::nullopt;
    const Bytes* const file = m_state.shelf.file(DataGroupId::SOD);
    if (file == nullptr)
        return about(DataGroupId::SOD,
            m_state.error(Kind::UnsupportedCard, "the chip has no security object, so that nothing can be proven"));
    m_state.securityObject = SecurityObject::parse(*file);
    if (!m_state.securityObject)
        return about(DataGroupId::SOD, m_state.error(Kind::UnreadableData, "the security object is none"));
    m_state.verification.passiveAuthentication = passiveAuthentication();
    if (auto error = judgeSigner())
        return about(DataGroupId::SOD, *error);
    return std::nullopt;
}

PassiveAuthentication Judgement::passiveAuthentication() const
{
    PassiveAuthentication::Options options;
    options.authorities = m_wish.authorities ? &*m_wish.authorities : nullptr;
    options.issueDate = issueDateOf(m_state.shelf);
    return PassiveAuthentication::judge(*m_state.securityObject, m_state.shelf.files(), options);
}

std::optional<NFCPassportReaderError> Judgement::judgeSigner() const
{
    const PassiveAuthentication& found = *m_state.verification.passiveAuthentication;
    if (found.signature == SignatureOutcome::Unsupported)
        return m_state.error(Kind::UnsupportedCard, "the security object is signed in a way that is not known here");
    if (found.signature == SignatureOutcome::Invalid)
        return m_state.error(Kind::NotGenuine, "the security object's signature is wrong");
    if (found.signer == SignerTrust::NotTrusted)
        return m_state.error(Kind::NotGenuine, "no trusted authority issued the signer's certificate");
    if (found.signer == SignerTrust::Trusted && found.period == SignerPeriod::NotAtSigning)
        return m_state.error(Kind::NotGenuine, "the signer's certificate was not valid when the document was signed");
    return std::nullopt;
}

std::optional<NFCPassportReaderError> Judgement::judge(DataGroupId id)
{
    const Bytes* const file = m_state.shelf.file(id);
    const auto hash = m_state.securityObject->hashes.find(id);
    if (file == nullptr || hash == m_state.securityObject->hashes.end())
        return std::nullopt;
    const bool isRight = digest(m_state.securityObject->digestAlgorithm, *file) == hash->second;
    m_state.verification.passiveAuthentication->hashes[id] = isRight ? HashOutcome::Match : HashOutcome::Mismatch;
    if (isRight)
        return std::nullopt;
    return about(id, m_state.error(Kind::NotGenuine, "a file is not the one that was signed"));
}

std::optional<ReadStop> Judgement::takeDataGroup14()
{
    const Bytes* const file = m_state.shelf.file(DataGroupId::DG14);
    if (m_state.dataGroup14 || file == nullptr)
        return std::nullopt;
    const auto group = DataGroup14::parse(*file);
    m_state.dataGroup14 = group ? SecurityInfos::parsed(group->securityInfos) : std::nullopt;
    if (!m_state.dataGroup14)
        return about(DataGroupId::DG14, m_state.error(Kind::UnreadableData, "DG14 holds no security infos"));
    // Whoever stands between card and reader can change what the chip offers, but not what it was signed to offer.
    m_state.verification.isAccessDowngraded = !offersAll(*m_state.cardAccess, *m_state.dataGroup14);
    if (!m_state.verification.isAccessDowngraded)
        return std::nullopt;
    if (++m_state.downgrades == 1) { // or it was noise: what is said in the clear is asked for once more
        m_state.verification.isAccessDowngraded = false;
        m_state.dataGroup14.reset();
        m_state.cardAccess.reset();
        m_state.shelf.drop(DataGroupId::CardAccess);
        return LineFailure { LineFailure::Kind::Nonsense, {}, 0 };
    }
    return about(DataGroupId::DG14,
        m_state.error(Kind::NotGenuine, "the chip keeps quiet about the access control that it was issued with"));
}

std::optional<NFCPassportReaderError> Judgement::judgeZone()
{
    const Bytes* const file = m_state.shelf.file(DataGroupId::DG1);
    const auto group = file ? DataGroup1::parse(*file) : std::nullopt;
    if (!group)
        return about(DataGroupId::DG1, m_state.error(Kind::UnreadableData, "DG1 holds no machine-readable zone"));
    const auto key = MrzKey::fromFields(
        group->documentNumber.toStdString(), group->birthDate.toStdString(), group->expiryDate.toStdString());
    m_state.verification.isForeignDocument = !key || !equalInConstantTime(key->secret(), m_state.key.secret());
    if (!m_state.verification.isForeignDocument)
        return std::nullopt;
    return about(DataGroupId::DG1,
        m_state.error(Kind::NotGenuine, "the chip holds another document's zone than the one that opened it"));
}

std::optional<NFCPassportReaderError> Judgement::judgeCardSecurity() const
{
    if (!m_state.verification.isChipAuthenticatedByPace)
        return std::nullopt;
    const Bytes* const file = m_state.shelf.file(DataGroupId::CardSecurity);
    const auto content = file ? SignedData::parse(*file, SignedData::kCardSecurity) : std::nullopt;
    const bool isSigned = content && content->signature == SignatureOutcome::Valid;
    if (isSigned && (!m_wish.authorities || m_wish.authorities->hasIssued(content->signer)))
        return std::nullopt;
    return about(DataGroupId::CardSecurity,
        m_state.error(Kind::NotGenuine, "the key that the chip proved to hold is not signed by a trusted authority"));
}

std::optional<NFCPassportReaderError> Judgement::judgeAbsences()
{
    for (const auto& [id, hash] : m_state.securityObject->hashes) {
        // Whoever hides the keys of a chip's proofs has a copy to hide.
        const bool isProof = id == DataGroupId::DG14 || id == DataGroupId::DG15;
        const bool isObligatory = id == DataGroupId::DG1 || (id == DataGroupId::DG2 && m_wish.wants(DataGroupId::DG2));
        if ((isProof || isObligatory) && !m_state.shelf.has(id))
            return about(id, m_state.error(Kind::NotGenuine, "a file that was signed is not on the chip"));
    }
    if (!m_state.shelf.has(DataGroupId::DG1))
        return about(DataGroupId::DG1, m_state.error(Kind::UnsupportedCard, "the document has no signed DG1"));
    if (m_wish.wants(DataGroupId::DG2) && !m_state.shelf.has(DataGroupId::DG2))
        return about(DataGroupId::DG2, m_state.error(Kind::UnsupportedCard, "the document has no signed portrait"));
    return std::nullopt;
}

std::variant<std::shared_ptr<NFCPassportModel>, NFCPassportReaderError> Judgement::conclude()
{
    m_state.verification.passiveAuthentication = passiveAuthentication();
    for (auto error : { judgeSigner(), judgeCardSecurity(), judgeAbsences(), judgeZone() }) {
        if (error)
            return std::move(*error);
    }
    return buildPassportModel(m_state, m_wish.wants(DataGroupId::DG2));
}

} // namespace kelvara::chip
