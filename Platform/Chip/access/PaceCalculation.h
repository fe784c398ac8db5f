#pragma once

#include "Platform/Chip/access/PaceSelection.h"
#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/messaging/SessionKeys.h"

/// What both sides of PACE calculate alike (ICAO Doc 9303-11 §4.4).
namespace kelvara::chip::pace {

/// Tags of the dynamic authentication data.
inline constexpr std::uint32_t authenticationData = 0x7C;
inline constexpr std::uint32_t encryptedNonce = 0x80;
inline constexpr std::uint32_t terminalMapping = 0x81;
inline constexpr std::uint32_t chipMapping = 0x82;
inline constexpr std::uint32_t terminalKey = 0x83;
inline constexpr std::uint32_t chipKey = 0x84;
inline constexpr std::uint32_t terminalToken = 0x85;
inline constexpr std::uint32_t chipToken = 0x86;
inline constexpr std::uint32_t chipAuthenticationData = 0x8A;

/// The key that the nonce is encrypted with, from the password.
[[nodiscard]] Bytes passwordKey(CipherAlgorithm cipher, ByteView password);
/// The nonce; absent for a cryptogram of a size that nonces do not have (one to four blocks).
[[nodiscard]] std::optional<Bytes> decryptedNonce(
    const PaceProtocol& protocol, ByteView passwordKey, ByteView cryptogram);
/// How long a chip makes its nonce: whole blocks, at least as long as the key.
[[nodiscard]] std::size_t nonceSize(CipherAlgorithm cipher);

/// The generator of the generic mapping; absent when the other side's value is none of the group.
[[nodiscard]] std::optional<Bytes> genericGenerator(
    const KeyAgreementGroup& group, ByteView nonce, ByteView ownPrivateKey, ByteView otherPublicKey);

/// The pseudo-random number R(s, t) of the integrated mapping, before it is reduced modulo the prime; absent when the
/// nonce is shorter than the key.
[[nodiscard]] std::optional<Bytes> pseudoRandomNumber(
    CipherAlgorithm cipher, ByteView nonce, ByteView terminalNonce, std::size_t fieldBits);
[[nodiscard]] std::optional<Bytes> integratedGenerator(
    const KeyAgreementGroup& group, CipherAlgorithm cipher, ByteView nonce, ByteView terminalNonce);

/// The session of an agreed element; absent when it is none.
[[nodiscard]] std::optional<SessionKeys> session(
    const KeyAgreementGroup& group, CipherAlgorithm cipher, ByteView agreed);

/// What one side shows to know the keys: a checksum over the other side's public key.
[[nodiscard]] Bytes authenticationToken(const SessionKeys& keys, const PaceProtocol& protocol, ByteView otherPublicKey);

/// The initial vector that the chip authentication data are encrypted with.
[[nodiscard]] Bytes chipAuthenticationVector(const SessionKeys& keys);

/// Wrapped as dynamic authentication data.
[[nodiscard]] Bytes wrapped(std::uint32_t tag, ByteView value);
/// The value of a data object in dynamic authentication data that are nothing but that; absent when it is not there.
[[nodiscard]] std::optional<ByteView> unwrapped(ByteView data, std::uint32_t tag);

} // namespace kelvara::chip::pace
