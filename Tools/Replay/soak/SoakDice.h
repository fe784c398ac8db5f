#pragma once

#include <QString>

#include <cstdint>
#include <initializer_list>
#include <random>

namespace kelvara::soak {

/// Scripts are full of words.
[[nodiscard]] inline QString text(const char* latin)
{
    return QString::fromLatin1(latin);
}

/// Chance from a seed, the same on every machine (the standard's distributions are not).
class SoakDice
{
public:
    explicit SoakDice(std::uint32_t seed) : m_engine(seed) { }

    /// 0 to `count` − 1.
    [[nodiscard]] int below(int count) { return static_cast<int>(m_engine() % static_cast<std::uint32_t>(count)); }
    [[nodiscard]] int between(int least, int greatest) { return least + below(greatest - least + 1); }
    [[nodiscard]] bool percent(int chance) { return below(100) < chance; }
    [[nodiscard]] QString one(std::initializer_list<const char*> names)
    {
        return QLatin1String(names.begin()[below(static_cast<int>(names.size()))]);
    }

private:
    std::mt19937 m_engine;
};

} // namespace kelvara::soak
