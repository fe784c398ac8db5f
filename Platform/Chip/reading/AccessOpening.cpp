#include "Platform/Chip/reading/AccessOpening.h"

#include "Platform/Chip/access/Bac.h"

#include <array>

namespace kelvara::chip {

namespace {

using Kind = NFCPassportReaderError::Kind;

QString nameOfProtocol(const PaceProtocol& protocol)
{
    static constexpr std::array kMappings { "GM", "IM", "CAM" };
    static constexpr std::array kCiphers { "3DES", "AES-128", "AES-192", "AES-256" };
    return QStringLiteral("PACE-%1-%2-%3")
        .arg(QLatin1String(protocol.agreement == KeyAgreementGroup::Kind::DH ? "DH" : "ECDH"),
            QLatin1String(kMappings.at(static_cast<std::size_t>(protocol.mapping))),
            QLatin1String(kCiphers.at(static_cast<std::size_t>(protocol.cipher))));
}

} // namespace

std::optional<ReadStop> AccessOpening::open(ChipLine& line)
{
    // What counts is how this presentation is opened.
    m_state.mapping.reset();
    m_state.verification.pace = ProtocolOutcome::NotOffered;
    m_state.verification.paceProtocol.clear();
    m_state.verification.bac = ProtocolOutcome::NotOffered;
    if (auto stop = learnOffers(line))
        return stop;
    const auto selections = paceSelections(*m_state.cardAccess);
    if (!selections.empty()) {
        if (auto stop = openByPace(line, selections))
            return stop;
        return selectApplication(line);
    }
    if (auto stop = selectApplication(line))
        return stop;
    return openByBac(line);
}

std::optional<ReadStop> AccessOpening::learnOffers(ChipLine& line)
{
    if (m_state.cardAccess)
        return std::nullopt;
    if (auto stop = m_fetcher.fetch(line, DataGroupId::CardAccess))
        return stop;
    const Bytes* const file = m_state.shelf.file(DataGroupId::CardAccess);
    if (file == nullptr) { // chips from before PACE
        m_state.cardAccess.emplace();
        return std::nullopt;
    }
    m_state.cardAccess = SecurityInfos::parsed(*file);
    if (m_state.cardAccess)
        return std::nullopt;
    // Rather read it again than take noise for a chip without PACE.
    m_state.shelf.drop(DataGroupId::CardAccess);
    return LineFailure { LineFailure::Kind::Nonsense, {}, 0 };
}

std::optional<ReadStop> AccessOpening::openByPace(ChipLine& line, const std::vector<PaceSelection>& selections)
{
    for (const PaceSelection& selection : selections) {
        Pace pace(selection, PacePassword::fromMrz(m_state.key));
        if (auto broken = line.run(pace))
            return *broken;
        if (pace.failure() && pace.failure()->error == AccessError::Unsupported)
            continue;
        if (pace.failure())
            return afterFailure(*pace.failure(), m_state.verification.pace);
        line.protect(std::move(*pace.takeSession()));
        m_state.isLocked = true;
        m_state.verification.pace = ProtocolOutcome::Succeeded;
        m_state.verification.paceProtocol = nameOfProtocol(selection.protocol);
        if (pace.chipAuthentication())
            return judgeMapping(line, *pace.chipAuthentication());
        return std::nullopt;
    }
    m_state.verification.pace = ProtocolOutcome::NotSupported;
    return m_state.error(Kind::UnsupportedCard, "the chip refuses every way of PACE that it offers");
}

std::optional<ReadStop> AccessOpening::judgeMapping(ChipLine& line, const MappedChipAuthentication& mapped)
{
    if (auto stop = m_fetcher.fetch(line, DataGroupId::CardSecurity))
        return stop;
    const Bytes* const file = m_state.shelf.file(DataGroupId::CardSecurity);
    const auto infos = file ? SecurityInfos::fromCardSecurity(*file) : std::nullopt;
    if (infos && mapped.isProvenBy(*infos)) {
        m_state.mapping = mapped; // which says nothing yet of the document that the chip will show
        return std::nullopt;
    }
    m_state.verification.chipAuthentication = ProtocolOutcome::Failed;
    return m_state.error(Kind::NotGenuine, "the chip does not hold the key that its mapping is to prove");
}

std::optional<ReadStop> AccessOpening::selectApplication(ChipLine& line)
{
    const Bytes identifier { 0xA0, 0x00, 0x00, 0x02, 0x47, 0x10, 0x01 };
    const ChipLine::Answer answer = line.exchange({ 0x00, 0xA4, 0x04, 0x0C, identifier, std::nullopt });
    if (const auto* broken = std::get_if<LineFailure>(&answer))
        return *broken;
    const std::uint16_t sw = std::get<ResponseApdu>(answer).sw;
    if (sw == 0x9000)
        return std::nullopt;
    const bool isUnknown = sw == 0x6A82 || sw == 0x6D00 || sw == 0x6E00 || sw == 0x6A86 || sw == 0x6999;
    if (isUnknown)
        return m_state.error(Kind::UnsupportedCard, "the card has no identity document's application", sw);
    return LineFailure { LineFailure::Kind::Nonsense, {}, sw };
}

std::optional<ReadStop> AccessOpening::openByBac(ChipLine& line)
{
    Bac bac(m_state.key);
    if (auto broken = line.run(bac))
        return *broken;
    if (bac.failure() && bac.failure()->error == AccessError::Unsupported) {
        if (m_state.isLocked) // it was another chip before, or is disturbed
            return LineFailure { LineFailure::Kind::Nonsense, {}, bac.failure()->sw };
        return std::nullopt; // a chip that hands out its files to everybody, or to nobody: its files will tell
    }
    if (bac.failure())
        return afterFailure(*bac.failure(), m_state.verification.bac);
    line.protect(std::move(*bac.takeSession()));
    m_state.isLocked = true;
    m_state.verification.bac = ProtocolOutcome::Succeeded;
    return std::nullopt;
}

ReadStop AccessOpening::afterFailure(const AccessFailure& failure, ProtocolOutcome& outcome) const
{
    if (failure.error != AccessError::WrongKey)
        return LineFailure { LineFailure::Kind::Nonsense, {}, failure.sw };
    outcome = ProtocolOutcome::Failed;
    return m_state.error(Kind::WrongKey, "the chip refuses the key", failure.sw);
}

} // namespace kelvara::chip
