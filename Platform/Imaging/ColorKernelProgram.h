#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <vector>

namespace kelvara::imaging {

/// A compiled colour kernel: operations on registers, each of which holds one number for every pixel of a run. Vectors
/// are so many registers; conditions are 1 or 0.
struct KernelProgram
{
    enum class Operation : std::uint8_t {
        Add,
        Subtract,
        Multiply,
        Divide,
        Minimum,
        Maximum,
        Greater,
        GreaterEqual,
        Equal,
        Select
    };
    using Register = std::uint16_t;

    struct Instruction
    {
        Operation operation;
        Register to;
        Register a;
        Register b;
        Register c = 0; ///< `Select`: a ? b : c.
    };
    struct Parameter
    {
        bool sample; ///< A pixel (four registers); otherwise a number (one).
        Register first;
    };
    struct Constant
    {
        Register in;
        float value;
    };

    QString name;
    std::vector<Parameter> parameters;
    std::vector<Constant> constants;
    std::vector<Instruction> instructions;
    std::array<Register, 4> result {};
    Register registers = 0; ///< How many there are.
};

} // namespace kelvara::imaging
