#pragma once

#include "Platform/Chip/crypto/RandomSource.h"
#include "Platform/Foundation/Export.h"

#include <memory>
#include <optional>

namespace kelvara::chip {

/// A private number and the public element that belongs to it.
struct KeyPair
{
    Bytes privateKey;
    Bytes publicKey;
};

/// A group that keys are agreed in: the points of an elliptic curve or the numbers modulo a prime. Elements are byte
/// strings as they go over the air (an uncompressed point; a number without leading zeros), scalars are big-endian
/// numbers. Every element handed in is checked to lie in the group and not to be its neutral element before anything is
/// calculated with it. Immutable; any thread.
class KELVARA_EXPORT KeyAgreementGroup
{
public:
    enum class Kind { DH, ECDH };

    virtual ~KeyAgreementGroup() = default;

    [[nodiscard]] virtual Kind kind() const = 0;
    /// Bits of the prime that is reckoned modulo.
    [[nodiscard]] virtual std::size_t fieldBits() const = 0;
    [[nodiscard]] virtual Bytes generator() const = 0;

    /// The element in its one form; absent for bytes that are no element, the neutral one included.
    [[nodiscard]] virtual std::optional<Bytes> element(ByteView encoded) const = 0;

    /// A private key.
    [[nodiscard]] virtual Bytes randomScalar(const RandomSource& random) const = 0;
    /// The element multiplied (raised) by the scalar; absent for a bad element or a neutral result.
    [[nodiscard]] virtual std::optional<Bytes> power(ByteView element, ByteView scalar) const = 0;
    /// One element added to (multiplied with) the other; absent likewise.
    [[nodiscard]] virtual std::optional<Bytes> combined(ByteView one, ByteView other) const = 0;
    /// `numerator` / `denominator` modulo the group's order; absent when there is no such number.
    [[nodiscard]] virtual std::optional<Bytes> quotient(ByteView numerator, ByteView denominator) const = 0;

    /// The shared secret that an agreed element stands for: its x coordinate, or the number, at full length.
    [[nodiscard]] virtual std::optional<Bytes> secret(ByteView element) const = 0;

    /// The element that a pseudo-random number maps to (the integrated mapping of ICAO Doc 9303-11 §4.4.3.3.2); absent
    /// where the group has no such mapping or the number hits one of its few holes.
    [[nodiscard]] virtual std::optional<Bytes> mapped(ByteView pseudoRandom) const = 0;

    /// Whether both are the same group with the same generator, however they were written down.
    [[nodiscard]] bool isSame(const KeyAgreementGroup& other) const;

    /// A fresh pair; absent when `base` is no element.
    [[nodiscard]] std::optional<KeyPair> generateKeyPair(ByteView base, const RandomSource& random) const;
};

using GroupPointer = std::shared_ptr<const KeyAgreementGroup>;

} // namespace kelvara::chip
