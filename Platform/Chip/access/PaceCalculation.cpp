#include "Platform/Chip/access/PaceCalculation.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/crypto/Mac.h"

namespace kelvara::chip::pace {

namespace {

constexpr std::size_t shortNonce = 16;
constexpr std::size_t longNonce = 32;

// Constants of the integrated mapping's pseudo-random function.
constexpr std::string_view shortKeyConstant = "A668892A7C41E3CA739F40B057D85904";
constexpr std::string_view shortOutputConstant = "A4E136AC725F738B01C1F60217C188AD";
constexpr std::string_view longKeyConstant = "D463D65234124EF7897054986DCA0A174E28DF758CBAA03F240616414D5A1676";
constexpr std::string_view longOutputConstant = "54BD7255F0AAF831BEC3423FCF39D69B6CBF066677D0FAAE5AADD99DF8E53517";

} // namespace

Bytes passwordKey(CipherAlgorithm cipher, ByteView password)
{
    return deriveKey(cipher, password, KeyUse::Password);
}

std::size_t nonceSize(CipherAlgorithm cipher)
{
    return keySize(cipher) <= shortNonce ? shortNonce : longNonce;
}

std::optional<Bytes> decryptedNonce(const PaceProtocol& protocol, ByteView key, ByteView cryptogram)
{
    // The chip chooses the length, in whole blocks; only the integrated mapping needs as much as a key, and says so
    // itself. Of triple DES a single block is met.
    if (cryptogram.empty() || cryptogram.size() > longNonce)
        return std::nullopt;
    return decryptCBC(protocol.cipher, key, {}, cryptogram);
}

std::optional<Bytes> genericGenerator(
    const KeyAgreementGroup& group, ByteView nonce, ByteView ownPrivateKey, ByteView otherPublicKey)
{
    const auto shared = group.power(otherPublicKey, ownPrivateKey);
    const auto multiple = group.power(group.generator(), nonce);
    if (!shared || !multiple)
        return std::nullopt;
    return group.combined(*multiple, *shared);
}

std::optional<Bytes> pseudoRandomNumber(
    CipherAlgorithm cipher, ByteView nonce, ByteView terminalNonce, std::size_t fieldBits)
{
    const std::size_t size = keySize(cipher);
    if (nonce.size() < size || (nonce.size() != shortNonce && nonce.size() != longNonce)
        || terminalNonce.size() != size)
        return std::nullopt;
    const bool isShort = nonce.size() == shortNonce;
    const Bytes keyConstant = *fromHex(isShort ? shortKeyConstant : longKeyConstant);
    const Bytes outputConstant = *fromHex(isShort ? shortOutputConstant : longOutputConstant);
    Bytes key = encryptCBC(cipher, terminalNonce, {}, nonce);
    Bytes number;
    constexpr std::size_t surplus = 64; // makes the remainder modulo the prime even
    while (8 * number.size() < fieldBits + surplus) {
        key.resize(size);
        number = joined({ number, encryptCBC(cipher, key, {}, outputConstant) });
        key = encryptCBC(cipher, key, {}, keyConstant);
    }
    return number;
}

std::optional<Bytes> integratedGenerator(
    const KeyAgreementGroup& group, CipherAlgorithm cipher, ByteView nonce, ByteView terminalNonce)
{
    const auto number = pseudoRandomNumber(cipher, nonce, terminalNonce, group.fieldBits());
    return number ? group.mapped(*number) : std::nullopt;
}

std::optional<SessionKeys> session(const KeyAgreementGroup& group, CipherAlgorithm cipher, ByteView agreed)
{
    const auto secret = group.secret(agreed);
    return secret ? std::optional(SessionKeys::derived(cipher, *secret)) : std::nullopt;
}

Bytes authenticationToken(const SessionKeys& keys, const PaceProtocol& protocol, ByteView otherPublicKey)
{
    constexpr Tag publicKeyTag = 0x7F49, oidTag = 0x06, numberTag = 0x84, pointTag = 0x86;
    const Tag tag = protocol.agreement == KeyAgreementGroup::Kind::DH ? numberTag : pointTag;
    return messageAuthenticationCode(keys.cipher, keys.authentication,
        makeTlv(publicKeyTag, joined({ makeTlv(oidTag, protocol.identifier()), makeTlv(tag, otherPublicKey) })));
}

Bytes chipAuthenticationVector(const SessionKeys& keys)
{
    return encryptBlock(keys.cipher, keys.encryption, Bytes(blockSize(keys.cipher), 0xFF));
}

Bytes wrapped(std::uint32_t tag, ByteView value)
{
    return makeTlv(authenticationData, makeTlv(tag, value));
}

std::optional<ByteView> unwrapped(ByteView data, std::uint32_t tag)
{
    const auto outer = allTlvs(data);
    if (!outer || outer->size() != 1 || outer->front().tag != authenticationData)
        return std::nullopt;
    const auto inner = allTlvs(outer->front().value);
    if (!inner)
        return std::nullopt;
    for (const Tlv& object : *inner) {
        if (object.tag == tag)
            return object.value;
    }
    return std::nullopt;
}

} // namespace kelvara::chip::pace
