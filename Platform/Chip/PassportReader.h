#pragma once

#include "Platform/Chip/NFCPassportModel.h"
#include "Platform/Chip/NFCPassportReaderError.h"
#include "Platform/Chip/NFCViewDisplayMessage.h"
#include "Platform/Chip/transport/CardTerminal.h"
#include "Platform/Foundation/Export.h"

#include <QList>
#include <QUrl>

#include <functional>
#include <memory>
#include <optional>

class QWidget;

namespace kelvara {

/// How much a reader tells the log (category "kelvara.chip"). Never anything of a card's data.
enum class ReaderLogLevel { Verbose = 0, Debug = 1, Info = 2, Warning = 3, Error = 4 };

/// Reads identity documents' chips (ICAO Doc 9303 parts 10 and 11), one at a time, on a thread of its own.
///
/// Access control is PACE where the chip offers it, else BAC, never BAC after PACE failed. Files are verified against
/// the issuer's signature, the chip against its keys. A card that is lost in between is asked for again, and reading
/// goes on where it was.
///
/// Made and destroyed on the main thread. Destroying it cancels a read that is under way and waits for its end.
class KELVARA_EXPORT PassportReader
{
public:
    /// The text to show, or nothing to show the library's own. Called on the reader's thread. Like `Completed` it must
    /// neither throw nor wait for the main thread, which may itself be waiting for this reader's end.
    using DisplayMessage = std::function<std::optional<QString>(const NFCViewDisplayMessage&)>;
    /// Exactly one of both is there. Called exactly once a read, never within `readPassport`: on the reader's thread,
    /// or, for a read that was refused because another is under way, on one of its own.
    using Completed
        = std::function<void(std::shared_ptr<NFCPassportModel> passport, std::optional<NFCPassportReaderError> error)>;

    /// `masterListURL`: a local file with the authorities to trust, in any form `chip::MasterList` reads; loaded with
    /// the first read. Empty: signers are not checked.
    explicit PassportReader(ReaderLogLevel logLevel = ReaderLogLevel::Info, const QUrl& masterListURL = {});
    ~PassportReader();
    PassportReader(const PassportReader&) = delete;
    PassportReader& operator=(const PassportReader&) = delete;

    /// Where cards come from; null: there is no reader. Shared. Before the first read only.
    void setTerminal(std::shared_ptr<chip::CardTerminal> terminal);
    /// Over whose window the sheet with message, progress and cancel button slides up; null: no sheet. Borrowed; the
    /// widget may go at any time.
    void setSheetParent(QWidget* widget);
    /// By how much the sheet's letters are larger than ordinary, at least; see `chip::ReaderSheet::setTextScale`. Also
    /// for the sheet that is shown now. Main thread.
    void setSheetTextScale(double scale);

    /// How long a card is waited for, at the start and whenever it was lost. Before the first read only.
    void setPatience(std::chrono::milliseconds forCard, std::chrono::milliseconds forLostCard);

    /// Starts a read and returns at once.
    ///
    /// `mrzKey`: document number, birth and expiry date, each with its check digit. `tags`: the data groups wanted;
    /// empty: all that the chip has. The files that verification needs are read in any case. `skipSecureElements`
    /// leaves out DG3 and DG4, which only their issuer can read. Main thread.
    void readPassport(const QString& mrzKey, const QList<chip::DataGroupId>& tags = {}, bool skipSecureElements = true,
        DisplayMessage customDisplayMessage = {}, Completed completed = {});

    /// Ends the read that is under way with `UserCancelled`; nothing without one. Main thread.
    void cancel();
    [[nodiscard]] bool isReading() const;

private:
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
