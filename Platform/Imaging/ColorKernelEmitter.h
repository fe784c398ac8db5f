#pragma once

#include "Platform/Imaging/ColorKernelProgram.h"

#include <QString>

#include <vector>

namespace kelvara::imaging {

/// Writes a kernel's program, an operation on whole values at a time, and computes nothing twice.
class KernelEmitter
{
public:
    using Operation = KernelProgram::Operation;
    using Register = KernelProgram::Register;

    /// What an expression has been compiled to.
    struct Value
    {
        std::vector<Register> registers; ///< One for each component.
        bool condition = false;
    };

    /// Thrown by all that follows where it makes no sense; the compiler catches it.
    struct NotUnderstood
    { };

    [[nodiscard]] Value newValue(std::size_t components);
    [[nodiscard]] Value constant(float number);
    /// Where the operation's result stands; what has been computed before is not computed again.
    [[nodiscard]] Register result(Operation operation, Register a, Register b, Register c = 0);
    /// The operation for each component; a single number goes with every component of the other operand.
    [[nodiscard]] Value combined(Operation operation, const Value& a, const Value& b);
    [[nodiscard]] Value compared(Operation operation, const Value& a, const Value& b);
    /// A built-in function.
    [[nodiscard]] Value called(const QString& function, const std::vector<Value>& arguments);
    [[nodiscard]] static Value swizzled(const Value& value, const QString& components);
    [[nodiscard]] static Value vector(std::size_t components, const std::vector<Value>& arguments);

    KernelProgram program;

private:
    [[nodiscard]] Register newRegister();
    [[nodiscard]] Value summed(const Value& value);
};

} // namespace kelvara::imaging
