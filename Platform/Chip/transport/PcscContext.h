#pragma once

#include "Platform/Chip/transport/CardChannel.h"

#include <optional>
#include <string>
#include <vector>
#include <winscard.h>

namespace kelvara::chip {

/// A connection to the PC/SC service. Internal: for the PC/SC back end only.
class PcscContext
{
public:
    PcscContext();
    ~PcscContext();
    PcscContext(PcscContext&& other) noexcept;
    PcscContext& operator=(PcscContext&&) = delete;

    /// Why there is no connection.
    [[nodiscard]] const std::optional<TransportError>& problem() const { return m_problem; }
    [[nodiscard]] SCARDCONTEXT handle() const { return m_handle; }
    /// Names of the readers that are there now.
    [[nodiscard]] std::vector<std::string> readers() const;

private:
    SCARDCONTEXT m_handle = 0;
    bool m_isOpen = false;
    std::optional<TransportError> m_problem;
};

/// What a return code of PC/SC means for a card that was there.
[[nodiscard]] TransportError transportError(LONG code);

} // namespace kelvara::chip
