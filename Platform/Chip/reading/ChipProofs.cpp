#include "Platform/Chip/reading/ChipProofs.h"

#include "Platform/Chip/access/ActiveAuthentication.h"
#include "Platform/Chip/access/ChipAuthentication.h"
#include "Platform/Chip/lds/DataGroup15.h"

namespace kelvara::chip {

namespace {

using Kind = NFCPassportReaderError::Kind;

/// Failing before a word was exchanged is our own shortcoming.
bool isOurs(const AccessFailure& failure)
{
    return failure.error == AccessError::Unsupported && failure.sw == 0;
}

} // namespace

std::optional<ReadStop> ChipProofs::authenticateChip(ChipLine& line)
{
    ProtocolOutcome& outcome = m_state.verification.chipAuthentication;
    if (outcome != ProtocolOutcome::NotOffered || !m_state.dataGroup14)
        return std::nullopt;
    // EF.CardSecurity, which the mapping is checked against at first, is no file of this document's: a copy may bring
    // its own, or another genuine document's.
    if (m_state.mapping && m_state.mapping->isProvenBy(*m_state.dataGroup14)) {
        outcome = ProtocolOutcome::Succeeded;
        m_state.verification.isChipAuthenticatedByPace = true;
        return std::nullopt;
    }
    if (m_state.dataGroup14->chipAuthenticationKeys.empty()) {
        const bool isOffered = m_state.mapping || !m_state.dataGroup14->chipAuthentication.empty();
        outcome = isOffered ? ProtocolOutcome::NotSupported : ProtocolOutcome::NotOffered;
        return std::nullopt;
    }
    const auto selection = chooseChipAuthentication(*m_state.dataGroup14);
    if (!selection) {
        outcome = ProtocolOutcome::NotSupported;
        return std::nullopt;
    }
    ChipAuthentication protocol(*selection);
    if (auto broken = line.run(protocol))
        return *broken;
    if (protocol.failure() && isOurs(*protocol.failure())) {
        outcome = ProtocolOutcome::NotSupported;
        return std::nullopt;
    }
    if (protocol.failure()) {
        outcome = ProtocolOutcome::Failed;
        return m_state.error(
            Kind::NotGenuine, "the chip does not do the chip authentication it announces", protocol.failure()->sw);
    }
    line.protect(std::move(*protocol.takeSession()));
    return tryNewSession(line);
}

std::optional<ReadStop> ChipProofs::tryNewSession(ChipLine& line)
{
    // Only a chip with the private key can answer under the new session's keys. Which file is selected does not matter.
    const Bytes com { 0x01, 0x1E };
    const ChipLine::Answer answer = line.exchange({ 0x00, 0xA4, 0x02, 0x0C, com, std::nullopt });
    if (const auto* broken = std::get_if<LineFailure>(&answer)) {
        // Once may be noise.
        if (broken->kind == LineFailure::Kind::Transport || ++m_state.brokenProofs == 1)
            return *broken;
        m_state.verification.chipAuthentication = ProtocolOutcome::Failed;
        return m_state.error(Kind::NotGenuine, "the chip does not hold the key of its chip authentication", broken->sw);
    }
    m_state.verification.chipAuthentication = ProtocolOutcome::Succeeded;
    return std::nullopt;
}

std::optional<ReadStop> ChipProofs::authenticateActively(ChipLine& line)
{
    ProtocolOutcome& outcome = m_state.verification.activeAuthentication;
    const Bytes* const file = m_state.shelf.file(DataGroupId::DG15);
    if (outcome != ProtocolOutcome::NotOffered || file == nullptr)
        return std::nullopt;
    const auto group = DataGroup15::parse(*file);
    if (!group) {
        outcome = ProtocolOutcome::NotSupported;
        return std::nullopt;
    }
    // The signature of a key of 2,048 bits or more does not fit into a short answer with its protection around it.
    constexpr std::size_t kShortKeyInfo = 250;
    const bool isLong = group->publicKey.size() > kShortKeyInfo && line.passesExtendedLength();
    const auto info = m_state.dataGroup14 ? m_state.dataGroup14->activeAuthentication : std::nullopt;
    ActiveAuthentication protocol(group->publicKey, info, isLong ? 1024 : 256);
    if (auto broken = line.run(protocol))
        return *broken;
    if (!protocol.failure()) {
        outcome = ProtocolOutcome::Succeeded;
        return std::nullopt;
    }
    if (isOurs(*protocol.failure())) {
        outcome = ProtocolOutcome::NotSupported;
        return std::nullopt;
    }
    outcome = ProtocolOutcome::Failed;
    return m_state.error(
        Kind::NotGenuine, "the chip does not hold the key of its active authentication", protocol.failure()->sw);
}

} // namespace kelvara::chip
