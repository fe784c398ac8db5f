#include "Platform/Chip/software/ChipSigner.h"

namespace kelvara::chip {

ChipSigner::ChipSigner(SignatureKey key, DigestAlgorithm digest, bool hasShortTrailer, RandomSource random)
    : m_key(std::move(key)), m_digest(digest), m_hasShortTrailer(hasShortTrailer), m_random(std::move(random))
{ }

ResponseApdu ChipSigner::answer(const CommandApdu& command) const
{
    constexpr std::size_t challengeSize = 8, longestSignature = 512;
    constexpr std::uint16_t success = 0x9000, wrongLength = 0x6700, conditionsNotSatisfied = 0x6985;
    if (command.data.size() != challengeSize)
        return { {}, wrongLength };
    auto signature = m_key.isRsa()
        ? m_key.signRecovery(m_digest, command.data, m_random(longestSignature), m_hasShortTrailer)
        : m_key.signPlain(m_digest, command.data);
    if (!signature)
        return { {}, conditionsNotSatisfied };
    return { std::move(*signature), success };
}

} // namespace kelvara::chip
