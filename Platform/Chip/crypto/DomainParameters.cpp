#include "Platform/Chip/crypto/DomainParameters.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/crypto/EllipticCurveGroup.h"
#include "Platform/Chip/crypto/PrimeFieldGroup.h"

#include <array>
#include <string_view>

namespace kelvara::chip {

namespace {

constexpr Tag integerTag = 0x02, bitStringTag = 0x03, oidTag = 0x06, sequenceTag = 0x30;

// The contents of object identifiers.
constexpr std::string_view standardizedParameters = "04007F00070102";
constexpr std::string_view ecPublicKey = "2A8648CE3D0201";
constexpr std::string_view x942PublicNumber = "2A8648CE3E0201";
constexpr std::string_view pkcs3KeyAgreement = "2A864886F70D010301";

/// A non-negative INTEGER's digits.
std::optional<ByteView> unsignedInteger(const Tlv& object)
{
    if (object.tag != integerTag || object.value.empty() || (object.value[0] & 0x80) != 0)
        return std::nullopt;
    return object.value;
}

GroupPointer primeFieldFromParameters(ByteView encoded, bool hasOrder)
{
    const auto sequence = findTlv(encoded, sequenceTag);
    if (!sequence)
        return nullptr;
    const auto numbers = allTlvs(sequence->value);
    const std::size_t least = hasOrder ? 3 : 2;
    if (!numbers || numbers->size() < least)
        return nullptr;
    const auto prime = unsignedInteger((*numbers)[0]);
    const auto generator = unsignedInteger((*numbers)[1]);
    const auto order = hasOrder ? unsignedInteger((*numbers)[2]) : ByteView {};
    if (!prime || !generator || !order)
        return nullptr;
    return primeField(*prime, *order, *generator);
}

} // namespace

GroupPointer standardizedGroup(unsigned identifier)
{
    constexpr std::array primeFields { "dh_1024_160", "dh_2048_224", "dh_2048_256" };
    constexpr std::array curves { "prime192v1", "brainpoolP192r1", "secp224r1", "brainpoolP224r1", "prime256v1",
        "brainpoolP256r1", "brainpoolP320r1", "secp384r1", "brainpoolP384r1", "brainpoolP512r1", "secp521r1" };
    constexpr unsigned firstCurve = 8;
    if (identifier < primeFields.size())
        return namedPrimeField(primeFields[identifier]);
    if (identifier >= firstCurve && identifier - firstCurve < curves.size())
        return namedCurve(curves[identifier - firstCurve]);
    return nullptr;
}

GroupPointer groupFromAlgorithm(ByteView encoded)
{
    const auto sequence = findTlv(encoded, sequenceTag);
    if (!sequence)
        return nullptr;
    const auto parts = allTlvs(sequence->value);
    if (!parts || parts->size() != 2 || (*parts)[0].tag != oidTag)
        return nullptr;
    const std::string algorithm = toHex((*parts)[0].value);
    const Tlv& parameters = (*parts)[1];
    if (algorithm == standardizedParameters) {
        const auto identifier = unsignedInteger(parameters);
        return identifier && identifier->size() == 1 ? standardizedGroup((*identifier)[0]) : nullptr;
    }
    if (algorithm == ecPublicKey)
        return curveFromParameters(parameters.whole);
    if (algorithm == x942PublicNumber || algorithm == pkcs3KeyAgreement)
        return primeFieldFromParameters(parameters.whole, algorithm == x942PublicNumber);
    return nullptr;
}

std::optional<PublicKey> publicKeyFromInfo(ByteView subjectPublicKeyInfo)
{
    const auto info = findTlv(subjectPublicKeyInfo, sequenceTag);
    if (!info)
        return std::nullopt;
    const auto parts = allTlvs(info->value);
    if (!parts || parts->size() != 2 || (*parts)[1].tag != bitStringTag || (*parts)[1].value.size() < 2
        || (*parts)[1].value[0] != 0)
        return std::nullopt;
    PublicKey key { groupFromAlgorithm((*parts)[0].whole), {} };
    if (!key.group)
        return std::nullopt;
    ByteView encoded = (*parts)[1].value.subspan(1);
    if (key.group->kind() == KeyAgreementGroup::Kind::DH) { // the bit string wraps an INTEGER
        const auto number = findTlv(encoded, integerTag);
        const auto digits = number ? unsignedInteger(*number) : std::nullopt;
        if (!digits)
            return std::nullopt;
        encoded = *digits;
        while (encoded.size() > 1 && encoded[0] == 0)
            encoded = encoded.subspan(1);
    }
    auto element = key.group->element(encoded);
    if (!element)
        return std::nullopt;
    key.element = std::move(*element);
    return key;
}

} // namespace kelvara::chip
