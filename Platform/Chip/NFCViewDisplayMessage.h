#pragma once

#include "Platform/Chip/NFCPassportReaderError.h"
#include "Platform/Foundation/Export.h"

namespace kelvara {

/// One change of what a person should see during a read. A value.
struct KELVARA_EXPORT NFCViewDisplayMessage
{
    enum class Kind {
        requestPresentCard, ///< Hold the card to the reader: at the start, and again whenever the card was lost.
        authenticating, ///< Access control and the chip's proofs.
        readingDataGroup, ///< Reading goes on; see `dataGroup` and `progress`.
        error, ///< The read has failed; see `failure`.
        successfulRead,
    };

    Kind kind = Kind::requestPresentCard;
    chip::DataGroupId dataGroup = chip::DataGroupId::COM; ///< What is being read.
    /// 0 to 100: of the whole read, by bytes. Never falls within a read, not even when the card was lost.
    int progress = 0;
    bool isCardLost = false; ///< The card was there already and is asked for again.
    std::optional<NFCPassportReaderError> failure = std::nullopt;

    /// The library's own Turkish text.
    [[nodiscard]] QString text() const;
};

} // namespace kelvara
