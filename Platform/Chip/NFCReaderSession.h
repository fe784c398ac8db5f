#pragma once

#include "Platform/Foundation/Export.h"

#include <memory>

namespace kelvara {

namespace chip {
class CardTerminal;
}

/// The device's contactless reader as the view gets it from its platform. Main thread.
class KELVARA_EXPORT NFCReaderSession
{
public:
    virtual ~NFCReaderSession() = default;

    /// Whether contactless cards can be read on this device. Asked once, when a view starts.
    [[nodiscard]] virtual bool readingAvailable() const = 0;

    /// Where cards come from. Shared; null on a device that reads none.
    [[nodiscard]] virtual std::shared_ptr<chip::CardTerminal> terminal() const { return nullptr; }

    /// The device's own reader: PC/SC, or Qt's contactless module on phones. A device without one says so once in the
    /// log and reads nothing.
    [[nodiscard]] static std::shared_ptr<NFCReaderSession> native();

    /// A given terminal, such as one that software plays; reading is available when the terminal says so.
    [[nodiscard]] static std::shared_ptr<NFCReaderSession> of(std::shared_ptr<chip::CardTerminal> terminal);
};

} // namespace kelvara
