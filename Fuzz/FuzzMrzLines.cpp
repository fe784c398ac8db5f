#include "Platform/Mrz/MrzLines.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace kelvara;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto lines = mrzLines(text);
    std::vector<MrzLineReading> read;
    for (const QString& line : text.split(u'\n'))
        read.push_back({ line, std::vector(size % 50, 0.5F), std::vector(size % 30, QStringLiteral("8")) });
    const auto readings = mrzLines(read);
    // Both ways keep the same lines, and never none.
    if (lines.has_value() != readings.has_value() || (lines && lines->isEmpty()))
        std::abort();
    if (!lines)
        return 0;
    if (static_cast<std::size_t>(lines->size()) != readings->size())
        std::abort();
    for (std::size_t i = 0; i < readings->size(); ++i) {
        const QString& line = (*lines)[static_cast<qsizetype>(i)];
        const MrzLineReading& reading = (*readings)[i];
        const bool isRight = line == reading.text && !line.isEmpty() && !line.contains(u' ')
            && reading.certainties.size() <= static_cast<std::size_t>(line.size());
        if (!isRight)
            std::abort();
    }
    return 0;
}
