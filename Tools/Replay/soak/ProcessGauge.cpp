#include "Tools/Replay/soak/ProcessGauge.h"

#include <QDir>

#include <algorithm>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Of the sanitizers' own interface; not every compiler brings the header along.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace kelvara::soak {

namespace {

constexpr std::size_t kFewestReadings = 40;
/// The last picture of a camera, a string more or less: no flow leaves so little behind that this hides it for long.
constexpr std::size_t kTolerance = std::size_t { 2 } << 20;
/// A worker of Qt's pool goes half a minute after its last work.
constexpr int kThreadTolerance = 1;

int entriesOf(const char* folder)
{
    return static_cast<int>(
        QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size());
}

std::size_t heapInUse()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

double mebibytes(std::size_t bytes)
{
    return static_cast<double>(bytes) / (1 << 20);
}

} // namespace

ProcessReading ProcessReading::now()
{
    return { heapInUse(), entriesOf("/proc/self/task"), entriesOf("/proc/self/fd") };
}

ProcessReading ProcessGauge::median(std::size_t begin, std::size_t end) const
{
    const auto middle = [&](auto member) {
        std::vector<std::size_t> values;
        for (std::size_t i = begin; i < end; ++i)
            values.push_back(static_cast<std::size_t>(m_readings[i].*member));
        std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
        return values[values.size() / 2];
    };
    return { middle(&ProcessReading::heapBytes), static_cast<int>(middle(&ProcessReading::threads)),
        static_cast<int>(middle(&ProcessReading::descriptors)) };
}

ProcessReading ProcessGauge::early() const
{
    return median(m_readings.size() / 4, m_readings.size() / 2);
}

ProcessReading ProcessGauge::late() const
{
    return median(m_readings.size() * 3 / 4, m_readings.size());
}

std::optional<QString> ProcessGauge::growth() const
{
    if (m_readings.size() < kFewestReadings)
        return std::nullopt;
    const ProcessReading before = early();
    const ProcessReading after = late();
    if (after.heapBytes > before.heapBytes + kTolerance)
        return QStringLiteral("Memory in use grew: ") + summary();
    if (after.threads > before.threads + kThreadTolerance)
        return QStringLiteral("Threads grew: ") + summary();
    if (after.descriptors > before.descriptors)
        return QStringLiteral("Open files grew: ") + summary();
    return std::nullopt;
}

QString ProcessGauge::summary() const
{
    if (m_readings.size() < kFewestReadings)
        return QStringLiteral("too few flows to tell growth from warming up");
    const ProcessReading before = early();
    const ProcessReading after = late();
    return QStringLiteral("memory in use %1 -> %2 MiB, threads %3 -> %4, open files %5 -> %6")
        .arg(mebibytes(before.heapBytes), 0, 'f', 1)
        .arg(mebibytes(after.heapBytes), 0, 'f', 1)
        .arg(before.threads)
        .arg(after.threads)
        .arg(before.descriptors)
        .arg(after.descriptors);
}

} // namespace kelvara::soak
