#include "Platform/Chip/software/ChipSecrets.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/software/ExplicitParameters.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"

#include <algorithm>

namespace kelvara::chip::software {

namespace {

constexpr std::size_t kMostKeys = 16;

Bytes integer(unsigned number)
{
    return makeTlv(0x02, bigEndian(number)); // all are below 128
}

QString addPace(ChipSecrets& secrets, const std::vector<PaceOffer>& offers)
{
    if (offers.size() > kMostKeys)
        return QStringLiteral("There are too many PACE offers.");
    for (std::size_t i = 0; i < offers.size(); ++i) {
        const PaceOffer& offer = offers[i];
        const GroupPointer group = standardizedGroup(offer.parameterId);
        const PaceProtocol protocol { group ? group->kind() : KeyAgreementGroup::Kind::ECDH, offer.mapping,
            offer.cipher };
        const Bytes info = securityInfo(protocol.identifier(), { integer(2), integer(offer.parameterId) });
        // Whatever no reader could make sense of is no offer.
        const auto understood = group ? SecurityInfos::parsed(securityInfos({ info })) : std::nullopt;
        if (!understood || paceSelections(*understood).empty())
            return QStringLiteral("PACE offer %1 is no mapping, parameters and cipher that go together.").arg(i + 1);
        secrets.paceInfos.push_back(info);
    }
    secrets.paceOffers = paceSelections(*SecurityInfos::parsed(securityInfos(secrets.paceInfos)));
    return {};
}

/// The public key as it stands in a bit string.
Bytes encodedElement(const PublicKey& key)
{
    if (key.group->kind() == KeyAgreementGroup::Kind::ECDH)
        return key.element;
    const std::uint8_t zero[] = { 0 };
    return makeTlv(0x02, (key.element[0] & 0x80) != 0 ? joined({ ByteView(zero), key.element }) : key.element);
}

/// The parameters of PACE's chip authentication mapping, which all offers with it must share.
std::variant<std::optional<unsigned>, QString> mappedParameters(const std::vector<PaceOffer>& offers)
{
    std::optional<unsigned> mapped;
    for (const PaceOffer& offer : offers) {
        if (offer.mapping != PaceMapping::ChipAuthentication)
            continue;
        if (mapped.value_or(offer.parameterId) != offer.parameterId)
            return QStringLiteral("PACE offers with chip authentication mapping must share their parameters.");
        mapped = offer.parameterId;
    }
    return mapped;
}

/// False for a key whose parameters are not standardised. `keyId` is empty where there is one key only.
bool addAgreementKey(ChipSecrets& secrets, const ChipAuthenticationKey& wish, const Bytes& keyId)
{
    const GroupPointer group = standardizedGroup(wish.parameterId);
    const auto pair = group ? group->generateKeyPair(group->generator(), secureRandom()) : std::nullopt;
    const auto algorithm
        = wish.hasExplicitParameters ? explicitAlgorithm(wish.parameterId) : standardizedAlgorithm(wish.parameterId);
    if (!pair || !algorithm)
        return false;
    const auto withId = [&](Bytes field) {
        std::vector<Bytes> fields { std::move(field) };
        if (!keyId.empty())
            fields.push_back(makeTlv(0x02, keyId));
        return fields;
    };
    ChipKeyAgreement::Key key { { { group, pair->publicKey }, wish.cipher, keyId }, pair->privateKey };
    const std::uint8_t kind = group->kind() == KeyAgreementGroup::Kind::DH ? 1 : 2;
    secrets.chipAuthenticationInfos.push_back(securityInfo(key.announced.identifier(), withId(integer(1))));
    secrets.chipAuthenticationInfos.push_back(securityInfo(
        smartcardIdentifier({ 1, kind }), withId(publicKeyInfo(*algorithm, encodedElement(key.announced.key)))));
    secrets.agreementKeys.push_back(std::move(key));
    return true;
}

QString addChipAuthentication(ChipSecrets& secrets, const ChipProfile& profile)
{
    const auto mapped = mappedParameters(profile.hasAccessControl ? profile.pace : std::vector<PaceOffer> {});
    if (const auto* problem = std::get_if<QString>(&mapped))
        return *problem;
    const auto parameters = std::get<std::optional<unsigned>>(mapped);
    const auto isMapped = [&](const auto& one) { return one.parameterId == parameters; };
    std::vector<ChipAuthenticationKey> wanted = profile.chipAuthentication;
    if (parameters && std::none_of(wanted.begin(), wanted.end(), isMapped))
        wanted.push_back(
            { *parameters, std::find_if(profile.pace.begin(), profile.pace.end(), isMapped)->cipher, false });
    if (wanted.size() > kMostKeys)
        return QStringLiteral("There are too many keys for chip authentication.");
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (!addAgreementKey(secrets, wanted[i], wanted.size() > 1 ? bigEndian(i + 1) : Bytes {}))
            return QStringLiteral("Key %1 for chip authentication has no standardised parameters.").arg(i + 1);
    }
    if (profile.forgeries.contains(Forgery::ChipAuthenticationClone)) {
        for (ChipKeyAgreement::Key& key : secrets.agreementKeys)
            key.privateKey = key.announced.key.group->randomScalar(secureRandom());
    }
    if (parameters) {
        const auto place = std::find_if(wanted.begin(), wanted.end(), isMapped) - wanted.begin();
        const ChipKeyAgreement::Key& key = secrets.agreementKeys[static_cast<std::size_t>(place)];
        secrets.staticKey = { key.privateKey, key.announced.key.element };
    }
    return {};
}

std::optional<SignatureKey> freshKey(const ActiveAuthenticationKey& wish)
{
    return wish.curve.empty() ? SignatureKey::generateRsa(wish.rsaBits) : SignatureKey::generateEc(wish.curve.c_str());
}

/// ecdsa-plain-signatures with a digest.
Bytes plainSignature(DigestAlgorithm digest)
{
    return Bytes { 0x04, 0x00, 0x7F, 0x00, 0x07, 0x01, 0x01, 0x04, 0x01,
        static_cast<std::uint8_t>(static_cast<int>(digest) + 1) };
}

QString addActiveAuthentication(ChipSecrets& secrets, const ChipProfile& profile)
{
    if (!profile.activeAuthentication)
        return {};
    const ActiveAuthenticationKey& wish = *profile.activeAuthentication;
    if (!wish.key && wish.curve.empty() && (wish.rsaBits < 1024 || wish.rsaBits > 4096 || wish.rsaBits % 8 != 0))
        return QStringLiteral("The RSA key for active authentication needs 1024 to 4096 bits, in whole bytes.");
    const auto announced = wish.key ? wish.key : freshKey(wish);
    if (!announced)
        return QStringLiteral("There is no curve for active authentication by the name of \"%1\".")
            .arg(QString::fromStdString(wish.curve));
    if (wish.hasShortTrailer && (!announced->isRsa() || wish.digest != DigestAlgorithm::SHA1))
        return QStringLiteral("The short trailer of active authentication belongs to RSA with SHA1.");
    const bool isClone = profile.forgeries.contains(Forgery::ActiveAuthenticationClone);
    const auto own = isClone ? freshKey(wish) : announced;
    if (!own || own->isRsa() != announced->isRsa())
        return QStringLiteral("A clone of active authentication needs the kind of the given key to make its own.");
    secrets.activeAuthenticationKey = announced->subjectPublicKeyInfo();
    secrets.signer.emplace(*own, wish.digest, wish.hasShortTrailer);
    if (!announced->isRsa()) {
        const Bytes identifier { 0x67, 0x81, 0x08, 0x01, 0x01, 0x05 };
        secrets.activeAuthenticationInfos.push_back(
            securityInfo(identifier, { integer(1), makeTlv(0x06, plainSignature(wish.digest)) }));
    }
    return {};
}

} // namespace

std::variant<ChipSecrets, QString> ChipSecrets::of(const ChipProfile& profile)
{
    ChipSecrets secrets;
    if (profile.hasAccessControl) {
        if (QString problem = addPace(secrets, profile.pace); !problem.isEmpty())
            return problem;
    }
    if (QString problem = addChipAuthentication(secrets, profile); !problem.isEmpty())
        return problem;
    if (QString problem = addActiveAuthentication(secrets, profile); !problem.isEmpty())
        return problem;
    return secrets;
}

} // namespace kelvara::chip::software
