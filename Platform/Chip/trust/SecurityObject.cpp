#include "Platform/Chip/trust/SecurityObject.h"

#include "Platform/Chip/lds/LdsText.h"
#include "Platform/Chip/trust/OpenSsl_p.h"

namespace kelvara::chip {

namespace {

constexpr Tag kInteger = 0x02, kOctets = 0x04, kIdentifier = 0x06, kPrintable = 0x13, kSequence = 0x30;

std::optional<int> smallNumber(const Tlv& object)
{
    if (object.tag != kInteger || object.value.size() != 1 || object.value[0] > 0x7F)
        return std::nullopt;
    return object.value[0];
}

std::optional<DigestAlgorithm> digestIn(const Tlv& algorithm)
{
    const auto identifier = algorithm.tag == kSequence ? findTlv(algorithm.value, kIdentifier) : std::nullopt;
    if (!identifier)
        return std::nullopt;
    const openssl::QuietErrors quiet;
    const unsigned char* at = identifier->whole.data();
    const openssl::Object object(d2i_ASN1_OBJECT(nullptr, &at, static_cast<long>(identifier->whole.size())));
    return object ? openssl::digestOf(object.get()) : std::nullopt;
}

/// One hash; false for anything that is none, and for a second one of the same data group.
bool takeHash(const Tlv& object, SecurityObject& into)
{
    const auto parts = object.tag == kSequence ? allTlvs(object.value) : std::nullopt;
    if (!parts || parts->size() != 2 || (*parts)[1].tag != kOctets)
        return false;
    const auto number = smallNumber((*parts)[0]);
    const auto group = number ? dataGroupOfNumber(*number) : std::nullopt;
    const ByteView hash = (*parts)[1].value;
    return group && hash.size() == digestSize(into.digestAlgorithm) && into.hashes.emplace(*group, bytes(hash)).second;
}

std::string printable(const Tlv& object)
{
    return object.tag == kPrintable ? std::string(object.value.begin(), object.value.end()) : std::string();
}

bool readContent(ByteView content, SecurityObject& into)
{
    const auto list = ldsContent(content, kSequence);
    const auto parts = list ? allTlvs(*list) : std::nullopt;
    if (!parts || parts->size() < 3 || (*parts)[2].tag != kSequence)
        return false;
    const auto version = smallNumber((*parts)[0]);
    const auto digestAlgorithm = digestIn((*parts)[1]);
    const auto hashes = allTlvs((*parts)[2].value);
    if (!version || *version > 1 || !digestAlgorithm || !hashes || hashes->empty())
        return false;
    into.version = *version;
    into.digestAlgorithm = *digestAlgorithm;
    for (const Tlv& hash : *hashes) {
        if (!takeHash(hash, into))
            return false;
    }
    if (*version == 1 && parts->size() > 3) {
        const auto versions = allTlvs((*parts)[3].value);
        if (versions && versions->size() >= 2) {
            into.ldsVersion = printable((*versions)[0]);
            into.unicodeVersion = printable((*versions)[1]);
        }
    }
    return true;
}

} // namespace

std::optional<SecurityObject> SecurityObject::parse(ByteView file)
{
    const auto message = ldsContent(file, 0x77);
    auto signedData = message ? SignedData::parse(*message, SignedData::kLdsSecurityObject) : std::nullopt;
    if (!signedData)
        return std::nullopt;
    SecurityObject object;
    if (!readContent(signedData->content, object))
        return std::nullopt;
    object.signedData = std::move(*signedData);
    object.raw = bytes(file);
    return object;
}

} // namespace kelvara::chip
