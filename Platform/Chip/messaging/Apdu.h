#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <cstdint>
#include <optional>

namespace kelvara::chip {

/// A command to a card (ISO/IEC 7816-3 §12.1). A value.
struct KELVARA_EXPORT CommandApdu
{
    std::uint8_t cla = 0;
    std::uint8_t ins = 0;
    std::uint8_t p1 = 0;
    std::uint8_t p2 = 0;
    Bytes data; ///< At most 65,535 bytes.
    std::optional<std::uint32_t> le; ///< Bytes expected at most: 1 to 65,536; absent: none.

    /// Short form where lengths allow it (at most 255 bytes of data and 256 expected), else extended.
    [[nodiscard]] Bytes encoded() const;
    [[nodiscard]] bool isExtended() const { return data.size() > 255 || (le && *le > 256); }
    /// Absent for bytes that are no command.
    [[nodiscard]] static std::optional<CommandApdu> decoded(ByteView bytes);
};

/// A card's answer.
struct KELVARA_EXPORT ResponseApdu
{
    Bytes data;
    std::uint16_t sw = 0; ///< SW1 and SW2.

    [[nodiscard]] bool isSuccess() const { return sw == 0x9000; }
    [[nodiscard]] Bytes encoded() const;
    /// Absent for fewer than two bytes.
    [[nodiscard]] static std::optional<ResponseApdu> decoded(ByteView bytes);
};

} // namespace kelvara::chip
