#pragma once

#include <QString>

#include <cstddef>
#include <optional>
#include <vector>

namespace kelvara::soak {

/// What the process holds at one moment.
struct ProcessReading
{
    std::size_t heapBytes = 0; ///< In use, not merely kept by the allocator.
    int threads = 0;
    int descriptors = 0;

    [[nodiscard]] static ProcessReading now();
};

/// Readings between flows, and whether they grow.
class ProcessGauge
{
public:
    void read() { m_readings.push_back(ProcessReading::now()); }

    /// Compares the medians of the last quarter and of the second one (the first is for warming up); a sentence for
    /// what grew, absent when nothing did or there are too few readings to say.
    [[nodiscard]] std::optional<QString> growth() const;
    /// Both medians, to be read.
    [[nodiscard]] QString summary() const;

private:
    [[nodiscard]] ProcessReading median(std::size_t begin, std::size_t end) const;
    [[nodiscard]] ProcessReading early() const;
    [[nodiscard]] ProcessReading late() const;

    std::vector<ProcessReading> m_readings;
};

} // namespace kelvara::soak
