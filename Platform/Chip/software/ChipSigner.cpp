#include "Platform/Chip/software/ChipSigner.h"

#include "Platform/Chip/software/ChipCodes.h"

namespace kelvara::chip {

ChipSigner::ChipSigner(SignatureKey key, DigestAlgorithm digest, bool hasShortTrailer, RandomSource random)
    : m_key(std::move(key)), m_digest(digest), m_hasShortTrailer(hasShortTrailer), m_random(std::move(random))
{ }

ResponseApdu ChipSigner::answer(const CommandApdu& command) const
{
    constexpr std::size_t challengeSize = 8, longestSignature = 512;
    if (command.data.size() != challengeSize)
        return { {}, codes::wrongLength };
    auto signature = m_key.isRsa()
        ? m_key.signRecovery(m_digest, command.data, m_random(longestSignature), m_hasShortTrailer)
        : m_key.signPlain(m_digest, command.data);
    if (!signature)
        return { {}, codes::conditionsNotSatisfied };
    return { std::move(*signature), codes::success };
}

} // namespace kelvara::chip
