#include "Platform/Chip/crypto/KeyAgreementGroup.h"

namespace kelvara::chip {

bool KeyAgreementGroup::isSame(const KeyAgreementGroup& other) const
{
    if (this == &other)
        return true;
    if (kind() != other.kind() || fieldBits() != other.fieldBits() || generator() != other.generator())
        return false;
    // Through two given points there are other curves too: only in the same group is any power the same.
    constexpr std::size_t kScalarSize = 16;
    const Bytes scalar = secureRandom()(kScalarSize);
    const auto power = this->power(generator(), scalar);
    return power && power == other.power(generator(), scalar);
}

std::optional<KeyPair> KeyAgreementGroup::generateKeyPair(ByteView base, const RandomSource& random) const
{
    KeyPair pair;
    pair.privateKey = randomScalar(random);
    auto publicKey = power(base, pair.privateKey);
    if (!publicKey)
        return std::nullopt;
    pair.publicKey = std::move(*publicKey);
    return pair;
}

} // namespace kelvara::chip
