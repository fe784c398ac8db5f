#pragma once

#include "Platform/Chip/ChipVerification.h"
#include "Platform/Chip/NFCPassportReaderError.h"
#include "Platform/Chip/access/MrzKey.h"
#include "Platform/Chip/access/Pace.h"
#include "Platform/Chip/reading/ChipLine.h"
#include "Platform/Chip/reading/FileShelf.h"
#include "Platform/Chip/trust/SecurityObject.h"

#include <optional>
#include <variant>

namespace kelvara::chip {

/// Everything that a read has gained so far and that outlives the card's presentations. The reader's thread only.
struct ReadState
{
    explicit ReadState(MrzKey accessKey) : key(std::move(accessKey)) { }

    MrzKey key;
    BlockSize blockSize;
    FileShelf shelf;

    std::optional<SecurityInfos> cardAccess; ///< What the chip says of its access control, unsigned.
    std::optional<SecurityObject> securityObject;
    std::optional<SecurityInfos> dataGroup14; ///< Only if its hash is the signed one.

    /// What the chip authentication mapping of this presentation left behind, to be compared with the document's keys.
    std::optional<MappedChipAuthentication> mapping;
    bool isLocked = false; ///< The chip has asked for its key once.

    ChipVerification verification;
    int downgrades = 0; ///< Times that the chip seemed to offer less than what it was signed to offer.
    int brokenProofs = 0; ///< Times that the session which chip authentication agreed did not work.

    /// An error of this kind with what was proven until now.
    [[nodiscard]] NFCPassportReaderError error(
        NFCPassportReaderError::Kind kind, std::string detail, std::uint16_t sw = 0) const
    {
        return { kind, std::move(detail), sw, {}, verification };
    }
};

/// Why a presentation of the card ends before the read does: the line broke, and the card may be tried again; or the
/// read as a whole has failed.
using ReadStop = std::variant<LineFailure, NFCPassportReaderError>;

} // namespace kelvara::chip
