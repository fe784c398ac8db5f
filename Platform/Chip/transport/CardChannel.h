#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <string>
#include <variant>

namespace kelvara::chip {

/// Why a command got no answer.
struct TransportError
{
    enum class Kind {
        NoReader, ///< There is no reader any more, or its service does not run. Remedy: connect it, start the service.
        NoCard, ///< No card was held to the reader in time. Remedy: hold it there.
        CardLost, ///< The card left the field. Remedy: hold it there again; reading goes on from where it was.
        Cancelled, ///< Somebody asked to stop.
        Failed ///< The reader or its driver failed otherwise; `detail` says how.
    };

    Kind kind = Kind::Failed;
    std::string detail; ///< For engineers; nothing of the card.
};

/// The way to one card in a reader's field. Closing it (by destruction) powers the card off, so that nothing of its
/// session is left. One thread at a time, the reader's own.
class KELVARA_EXPORT CardChannel
{
public:
    virtual ~CardChannel() = default;

    /// Sends a command's bytes and waits for the answer (data and status word). Other programs cannot come in between.
    [[nodiscard]] virtual std::variant<Bytes, TransportError> transmit(ByteView command) = 0;

    /// Whether commands of extended length pass through this reader.
    [[nodiscard]] virtual bool passesExtendedLength() const = 0;
};

} // namespace kelvara::chip
