#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <span>

namespace kelvara::specimen {

/// Seeded chance that falls the same way on every machine: the engine's numbers are fixed by the language standard, and
/// the mapping to reals and ranges is our own, because the standard leaves that of its distributions to the library.
class Dice
{
public:
    /// `purpose` keeps draws for different uses of one seed apart.
    Dice(std::uint32_t seed, std::uint32_t purpose) : m_engine(mixed(seed ^ mixed(purpose))) { }

    [[nodiscard]] std::uint32_t bits() { return static_cast<std::uint32_t>(m_engine()); }
    [[nodiscard]] double unit() { return bits() * (1.0 / 4294967296.0); }
    [[nodiscard]] double real(double low, double high) { return low + (high - low) * unit(); }
    [[nodiscard]] bool chance(double probability) { return unit() < probability; }

    /// Both ends included.
    [[nodiscard]] int integer(int low, int high)
    {
        const auto span = static_cast<std::uint64_t>(high - low) + 1;
        return low + static_cast<int>((bits() * span) >> 32);
    }

    template<typename T> [[nodiscard]] const T& pick(std::span<const T> choices)
    {
        return choices[static_cast<std::size_t>(integer(0, static_cast<int>(choices.size()) - 1))];
    }

    /// Nearly normal, within ±6 sigma: a sum of uniforms needs no library function that could round differently.
    [[nodiscard]] double normal(double sigma)
    {
        double sum = -6;
        for (int i = 0; i < 12; ++i)
            sum += unit();
        return sum * sigma;
    }

    [[nodiscard]] static std::uint32_t mixed(std::uint32_t value)
    {
        value = (value ^ (value >> 16)) * 0x7feb352dU;
        value = (value ^ (value >> 15)) * 0x846ca68bU;
        return value ^ (value >> 16);
    }

private:
    std::mt19937 m_engine;
};

} // namespace kelvara::specimen
