#include "Platform/Chip/crypto/KeyAgreementGroup.h"

namespace kelvara::chip {

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
