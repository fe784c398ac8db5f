#include "Platform/Chip/software/ChipBac.h"

#include "Platform/Chip/access/Bac.h"
#include "Platform/Chip/software/ChipCodes.h"

#include <utility>

namespace kelvara::chip {

namespace {

constexpr std::uint8_t getChallenge = 0x84, externalAuthenticate = 0x82;

} // namespace

ChipBac::ChipBac(const MrzKey& key, RandomSource random)
    : m_documentKeys(SessionKeys::derived(CipherAlgorithm::TripleDES, key.seed())), m_random(std::move(random))
{ }

bool ChipBac::isFor(const CommandApdu& command)
{
    return command.ins == getChallenge || command.ins == externalAuthenticate;
}

ResponseApdu ChipBac::answer(const CommandApdu& command)
{
    if (command.ins == getChallenge) {
        m_challenge = m_random(bac::challengeSize);
        return { m_challenge, codes::success };
    }
    const Bytes challenge = std::exchange(m_challenge, {});
    if (challenge.empty())
        return { {}, codes::conditionsNotSatisfied };
    const auto text = bac::opened(m_documentKeys, command.data);
    if (!text || !equalInConstantTime(ByteView(*text).subspan(bac::challengeSize, bac::challengeSize), challenge))
        return { {}, codes::authenticationFailed };
    const ByteView terminalChallenge = ByteView(*text).first(bac::challengeSize);
    const Bytes key = m_random(bac::keyMaterialSize);
    m_session = bac::session(ByteView(*text).last(bac::keyMaterialSize), key, terminalChallenge, challenge);
    return { bac::sealed(m_documentKeys, joined({ challenge, terminalChallenge, key })), codes::success };
}

std::optional<SessionKeys> ChipBac::takeSession()
{
    return std::exchange(m_session, std::nullopt);
}

} // namespace kelvara::chip
