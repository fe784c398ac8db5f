#pragma once

namespace kelvara {

/// The device's contactless reader, as far as the view asks for it at start-up. Main thread.
class NFCReaderSession
{
public:
    virtual ~NFCReaderSession() = default;

    /// Whether contactless cards can be read on this device.
    [[nodiscard]] virtual bool readingAvailable() const = 0;
};

} // namespace kelvara
