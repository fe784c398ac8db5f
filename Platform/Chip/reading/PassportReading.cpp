#include "Platform/Chip/reading/PassportReading.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

using Kind = NFCPassportReaderError::Kind;
using Event = NFCViewDisplayMessage::Kind;

/// Presentations in a row that gain nothing before the read is given up: a hand that shakes is given more of them than
/// a chip that talks nonsense.
constexpr int kVainWhenLost = 10;
constexpr int kVainWhenBroken = 4;
/// And in all, so that a read ends even if each gains a byte.
constexpr int kMostPresentations = 200;

constexpr std::chrono::milliseconds kForCardThatStayed { 1'500 };

Kind kindOf(TransportError::Kind kind)
{
    switch (kind) {
    case TransportError::Kind::NoReader:
        return Kind::NoReader;
    case TransportError::Kind::NoCard:
        return Kind::Timeout;
    case TransportError::Kind::Cancelled:
        return Kind::UserCancelled;
    case TransportError::Kind::CardLost:
        return Kind::TagLost;
    case TransportError::Kind::Failed:
        break;
    }
    return Kind::ConnectionFailed;
}

std::string sentenceOf(const LineFailure& broken)
{
    switch (broken.kind) {
    case LineFailure::Kind::Transport:
        return broken.transport.detail;
    case LineFailure::Kind::SessionEnded:
        return "the chip ended its session";
    case LineFailure::Kind::Tampered:
        return "an answer was changed on its way";
    case LineFailure::Kind::Nonsense:
        break;
    }
    return "the chip answered what no chip should";
}

} // namespace

PassportReading::PassportReading(
    MrzKey key, ReadWish wish, CardTerminal& terminal, const CancelToken& cancel, Patience patience, Report report)
    : m_wish(std::move(wish)), m_terminal(terminal), m_cancel(cancel), m_patience(patience),
      m_report(std::move(report)), m_state(std::move(key)),
      m_fetcher(m_state, [this](DataGroupId id) { reportPiece(id); }), m_judgement(m_state, m_wish)
{
    expectFiles();
}

PassportReading::Outcome PassportReading::run()
{
    std::optional<LineFailure> lastBreak;
    while (true) {
        Channel channel = waitForCard(lastBreak);
        Stop stop;
        if (auto* error = std::get_if<TransportError>(&channel))
            stop = LineFailure { LineFailure::Kind::Transport, std::move(*error), 0 };
        else
            stop = present(*std::get<std::unique_ptr<CardChannel>>(channel));
        if (!stop)
            break;
        if (auto* error = std::get_if<NFCPassportReaderError>(&*stop))
            return std::move(*error);
        lastBreak = std::get<LineFailure>(*stop);
        if (auto error = judgeBreak(*lastBreak))
            return std::move(*error);
    }
    m_progress.finish();
    auto outcome = m_judgement.conclude();
    if (m_cancel.isCancelled()) // whoever no longer wants the data does not get them
        return m_state.error(Kind::UserCancelled, "cancelled");
    return outcome;
}

PassportReading::Channel PassportReading::waitForCard(const std::optional<LineFailure>& lastBreak)
{
    const bool isLost = lastBreak && lastBreak->kind == LineFailure::Kind::Transport
        && lastBreak->transport.kind == TransportError::Kind::CardLost;
    if (lastBreak && !isLost) { // the card is still there, and must only be powered up anew
        Channel channel = m_terminal.waitForCard(kForCardThatStayed, m_cancel);
        const auto* const error = std::get_if<TransportError>(&channel);
        if (!error || error->kind != TransportError::Kind::NoCard)
            return channel;
    }
    NFCViewDisplayMessage request { .kind = Event::requestPresentCard, .progress = m_progress.percent() };
    request.isCardLost = m_presentations > 0;
    m_report(request);
    m_lastReport = request;
    return m_terminal.waitForCard(request.isCardLost ? m_patience.forLostCard : m_patience.forCard, m_cancel);
}

PassportReading::Stop PassportReading::present(CardChannel& channel)
{
    ++m_presentations;
    NFCViewDisplayMessage message { .kind = Event::authenticating, .progress = m_progress.percent() };
    m_report(message);
    m_lastReport = message;
    if (m_presentations == 1)
        m_state.blockSize = BlockSize::widest(channel.passesExtendedLength());
    m_state.shelf.resume();
    ChipLine line(channel, m_cancel, m_budget);
    Stop stop = AccessOpening(m_state, m_fetcher).open(line);
    if (!stop)
        stop = readFiles(line);
    m_commands += line.commands();
    return stop;
}

PassportReading::Stop PassportReading::readFiles(ChipLine& line)
{
    for (const DataGroupId id : { DataGroupId::COM, DataGroupId::SOD }) {
        if (auto stop = m_fetcher.fetch(line, id))
            return stop;
    }
    if (auto error = m_judgement.takeSecurityObject())
        return *error;
    expectFiles();

    // What proves the chip comes first: nobody should wait for the pictures of a copy.
    ChipProofs proofs(m_state);
    if (auto stop = readDataGroup(line, DataGroupId::DG14))
        return stop;
    if (auto stop = m_judgement.takeDataGroup14())
        return stop;
    if (auto stop = proofs.authenticateChip(line))
        return stop;
    if (auto stop = readDataGroup(line, DataGroupId::DG15))
        return stop;
    if (auto stop = proofs.authenticateActively(line))
        return stop;
    if (auto stop = readDataGroup(line, DataGroupId::DG1))
        return stop;
    if (m_state.shelf.has(DataGroupId::DG1)) {
        if (auto error = m_judgement.judgeZone())
            return *error;
    }
    for (const DataGroupId id : furtherGroups()) {
        if (auto stop = readDataGroup(line, id))
            return stop;
    }
    return std::nullopt;
}

PassportReading::Stop PassportReading::readDataGroup(ChipLine& line, DataGroupId id)
{
    // Without a signed hash nothing could be said of it.
    if (!m_state.securityObject->hashes.contains(id) || m_state.shelf.has(id))
        return std::nullopt;
    if (auto stop = m_fetcher.fetch(line, id))
        return stop;
    if (auto error = m_judgement.judge(id))
        return *error;
    return std::nullopt;
}

std::vector<DataGroupId> PassportReading::furtherGroups() const
{
    std::vector<DataGroupId> groups;
    for (const auto& [id, hash] : m_state.securityObject->hashes) {
        const bool isRead = id == DataGroupId::DG1 || id == DataGroupId::DG14 || id == DataGroupId::DG15;
        if (!isRead && m_wish.wants(id))
            groups.push_back(id);
    }
    return groups;
}

void PassportReading::expectFiles()
{
    std::vector<DataGroupId> files { DataGroupId::COM, DataGroupId::SOD };
    if (!m_state.securityObject) { // what nearly every document has
        files.insert(files.end(), { DataGroupId::DG1, DataGroupId::DG2, DataGroupId::DG14 });
    } else {
        for (const DataGroupId id : { DataGroupId::DG14, DataGroupId::DG15, DataGroupId::DG1 }) {
            if (m_state.securityObject->hashes.contains(id))
                files.push_back(id);
        }
        const auto further = furtherGroups();
        files.insert(files.end(), further.begin(), further.end());
    }
    m_state.shelf.expect(std::move(files));
}

std::optional<NFCPassportReaderError> PassportReading::judgeBreak(const LineFailure& broken)
{
    const bool isTransport = broken.kind == LineFailure::Kind::Transport;
    const Kind kind = isTransport ? kindOf(broken.transport.kind) : Kind::ConnectionFailed;
    const bool isWorthATry = kind == Kind::TagLost || kind == Kind::ConnectionFailed;
    m_vainPresentations = gained() > m_gainedBefore ? 0 : m_vainPresentations + 1;
    m_gainedBefore = gained();
    const int most = kind == Kind::TagLost ? kVainWhenLost : kVainWhenBroken;
    if (isWorthATry && !m_budget.isSpent() && !m_cancel.isCancelled() && m_vainPresentations < most
        && m_presentations < kMostPresentations)
        return std::nullopt;
    auto error = m_state.error(m_cancel.isCancelled() ? Kind::UserCancelled : kind, sentenceOf(broken), broken.sw);
    if (m_lastReport.kind == Event::readingDataGroup)
        error.dataGroup = m_lastReport.dataGroup;
    return error;
}

/// Bytes, proofs, and the block size that was learned: whatever the next presentation need not do again.
std::size_t PassportReading::gained() const
{
    const ChipVerification& found = m_state.verification;
    std::size_t steps = m_state.shelf.bytesRead() + (BlockSize::widest(true).bytes - m_state.blockSize.bytes);
    steps += m_state.blockSize.headFirst ? 1 : 0;
    steps += found.chipAuthentication != ProtocolOutcome::NotOffered ? 1 : 0;
    steps += found.activeAuthentication != ProtocolOutcome::NotOffered ? 1 : 0;
    return steps;
}

void PassportReading::reportPiece(DataGroupId id)
{
    m_progress.update(m_state.shelf.bytesRead(), m_state.shelf.bytesInAll());
    NFCViewDisplayMessage message {
        .kind = Event::readingDataGroup, .dataGroup = id, .progress = m_progress.percent()
    };
    const bool isNew = m_lastReport.kind != message.kind || m_lastReport.dataGroup != id
        || m_lastReport.progress != message.progress;
    if (!isNew || id == DataGroupId::CardAccess || id == DataGroupId::CardSecurity)
        return;
    m_report(message);
    m_lastReport = message;
}

} // namespace kelvara::chip
