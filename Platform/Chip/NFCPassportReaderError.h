#pragma once

#include "Platform/Chip/ChipVerification.h"
#include "Platform/Chip/lds/DataGroupId.h"
#include "Platform/Foundation/Export.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>

namespace kelvara {

/// Why a chip could not be read. A value; nothing in it is personal.
struct KELVARA_EXPORT NFCPassportReaderError
{
    enum class Kind {
        /// Cause: the device has no contactless reader, its service does not run, or it was unplugged in mid-read.
        /// Remedy: connect the reader, start its service (pcscd on Linux), read again.
        NoReader,
        /// Cause: a read is under way already. Remedy: wait until it has ended, or cancel it.
        AlreadyReading,
        /// Cause: the text cannot be a key (a length, character or check digit is wrong). No card was asked for.
        /// Remedy: read the machine-readable zone again.
        InvalidKey,
        /// Cause: the list of trusted authorities could not be loaded. No card was asked for. Remedy: check the file.
        MasterListUnusable,
        /// Cause: the person pressed the cancel button, or the reader was destroyed. Remedy: read again when wanted.
        UserCancelled,
        /// Cause: no card was presented, or not presented again, in time. Remedy: read again.
        Timeout,
        /// Cause: the card left the field again and again before anything was gained. Remedy: lay card and reader on a
        /// table, take covers off, read again.
        TagLost,
        /// Cause: the chip works but refuses the key. Most often the zone was misread or belongs to another document.
        /// Remedy: read the zone again, or compare it with the card.
        WrongKey,
        /// Cause: a card without an identity document's application, without its obligatory files, or with protocols
        /// that are not known here. Remedy: present the document itself and no other card.
        UnsupportedCard,
        /// Cause: the data are not what the issuer signed, or the chip is a copy; `verification` says which proof
        /// failed. Remedy: do not accept the document.
        NotGenuine,
        /// Cause: a file that is needed (`dataGroup`) cannot be understood, such as a portrait in an unknown format.
        /// Remedy: read again; if it comes back, the document cannot be used.
        UnreadableData,
        /// Cause: the chip answered what no chip should, or the reader failed, more often than a retry could mend.
        /// Remedy: read again; another reader or cover if it comes back.
        ConnectionFailed,
    };

    Kind kind = Kind::ConnectionFailed;
    std::string detail; ///< What exactly went wrong, in English, for engineers. Nothing of the card's data.
    std::uint16_t sw = 0; ///< The status word it was seen by; 0 where there was none.
    std::optional<chip::DataGroupId> dataGroup; ///< The file that was being read, where there was one.
    chip::ChipVerification verification; ///< What had been proven until then.

    /// What to tell a person, in Turkish: cause and remedy in one or two short sentences.
    [[nodiscard]] QString message() const;
    /// One line for logs and consoles: kind, detail, file and status word.
    [[nodiscard]] QString debugDescription() const;
};

/// "WrongKey" and so on.
[[nodiscard]] KELVARA_EXPORT std::string_view nameOf(NFCPassportReaderError::Kind kind);

} // namespace kelvara
