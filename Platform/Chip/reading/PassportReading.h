#pragma once

#include "Platform/Chip/NFCViewDisplayMessage.h"
#include "Platform/Chip/reading/AccessOpening.h"
#include "Platform/Chip/reading/ChipProofs.h"
#include "Platform/Chip/reading/Judgement.h"
#include "Platform/Chip/reading/ReadProgress.h"

#include <chrono>
#include <functional>
#include <memory>

namespace kelvara::chip {

/// How long cards are waited for.
struct Patience
{
    std::chrono::milliseconds forCard { 60'000 };
    std::chrono::milliseconds forLostCard { 30'000 };
};

/// One read of one document from the first presentation of its card to the end: keeps what is gained over losses of the
/// card, verifies every file as it comes in, and ends, whatever the card does. Blocks; the reader's thread only.
class PassportReading
{
public:
    using Report = std::function<void(const NFCViewDisplayMessage&)>;
    using Outcome = std::variant<std::shared_ptr<NFCPassportModel>, NFCPassportReaderError>;

    /// Terminal and token are borrowed.
    PassportReading(
        MrzKey key, ReadWish wish, CardTerminal& terminal, const CancelToken& cancel, Patience patience, Report report);

    /// Once.
    [[nodiscard]] Outcome run();

    /// Commands sent over all presentations, and how many presentations there were.
    [[nodiscard]] std::size_t commands() const { return m_commands; }
    [[nodiscard]] int presentations() const { return m_presentations; }

private:
    using Stop = std::optional<ReadStop>;
    using Channel = std::variant<std::unique_ptr<CardChannel>, TransportError>;

    [[nodiscard]] Channel waitForCard(const std::optional<LineFailure>& lastBreak);
    [[nodiscard]] Stop present(CardChannel& channel);
    [[nodiscard]] Stop readFiles(ChipLine& line);
    [[nodiscard]] Stop readDataGroup(ChipLine& line, DataGroupId id);
    [[nodiscard]] std::vector<DataGroupId> furtherGroups() const;
    void expectFiles();
    /// The error that ends the read, if it is not worth while to try once more.
    [[nodiscard]] std::optional<NFCPassportReaderError> judgeBreak(const LineFailure& broken);
    [[nodiscard]] std::size_t gained() const;
    void reportPiece(DataGroupId id);

    ReadWish m_wish;
    CardTerminal& m_terminal;
    const CancelToken& m_cancel;
    Patience m_patience;
    Report m_report;

    ReadState m_state;
    FileFetcher m_fetcher;
    Judgement m_judgement;
    ReadBudget m_budget;
    ReadProgress m_progress;
    NFCViewDisplayMessage m_lastReport;
    std::size_t m_commands = 0;
    int m_presentations = 0;
    int m_vainPresentations = 0; ///< In a row.
    std::size_t m_gainedBefore = 0;
};

} // namespace kelvara::chip
