#pragma once

#include "Tools/Replay/soak/ProcessGauge.h"

#include <QDir>
#include <QJsonObject>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>

namespace kelvara::soak {

/// Plays generated flows one after the other, and keeps the scripts of those that broke something. Main thread.
class SoakRun
{
public:
    /// Scripts go to `folder`; reports to `output`, borrowed.
    SoakRun(const QDir& folder, std::FILE* output) : m_folder(folder), m_output(output) { }

    /// Plays until the time is over. Flow n has the seed `seed` + n.
    void run(std::chrono::seconds time, std::uint32_t seed);
    /// Says how it went; true when nothing broke.
    [[nodiscard]] bool conclude();

private:
    void play(std::uint32_t seed);
    void breaks(const QString& sentence, std::uint32_t seed, const QJsonObject& report);
    void count(const QJsonObject& report);
    [[nodiscard]] QString scriptOf(std::uint32_t seed) const;

    const QDir m_folder;
    std::FILE* const m_output;
    ProcessGauge m_gauge;
    int m_flows = 0;
    int m_realFlows = 0; ///< Those with the real detectors.
    int m_broken = 0;
    std::map<QString, int> m_counts; ///< Events of all flows.
    std::chrono::seconds m_lasted { 0 };
};

} // namespace kelvara::soak
