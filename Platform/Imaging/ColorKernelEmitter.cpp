#include "Platform/Imaging/ColorKernelEmitter.h"

#include <algorithm>

namespace kelvara::imaging {

namespace {

// A text of any length could ask for any number of registers; kernels that are meant need a few dozen.
constexpr int kMostRegisters = 1024;

} // namespace

KernelEmitter::Register KernelEmitter::newRegister()
{
    if (program.registers >= kMostRegisters)
        throw NotUnderstood();
    return program.registers++;
}

KernelEmitter::Value KernelEmitter::newValue(std::size_t components)
{
    Value made;
    for (std::size_t i = 0; i < components; ++i)
        made.registers.push_back(newRegister());
    return made;
}

KernelEmitter::Value KernelEmitter::constant(float number)
{
    for (const auto& known : program.constants) {
        if (known.value == number)
            return { { known.in } };
    }
    Value made = newValue(1);
    program.constants.push_back({ made.registers.front(), number });
    return made;
}

KernelEmitter::Register KernelEmitter::result(Operation operation, Register a, Register b, Register c)
{
    if (operation == Operation::Select && b == c)
        return b;
    for (const auto& known : program.instructions) {
        if (known.operation == operation && known.a == a && known.b == b && known.c == c)
            return known.to;
    }
    const Register to = newRegister();
    program.instructions.push_back({ operation, to, a, b, c });
    return to;
}

KernelEmitter::Value KernelEmitter::combined(Operation operation, const Value& a, const Value& b)
{
    const std::size_t components = std::max(a.registers.size(), b.registers.size());
    const auto fits = [&](const Value& v) { return v.registers.size() == components || v.registers.size() == 1; };
    if (!fits(a) || !fits(b) || a.condition || b.condition)
        throw NotUnderstood();
    Value made;
    const auto of = [](const Value& v, std::size_t i) { return v.registers[v.registers.size() == 1 ? 0 : i]; };
    for (std::size_t i = 0; i < components; ++i)
        made.registers.push_back(result(operation, of(a, i), of(b, i)));
    return made;
}

KernelEmitter::Value KernelEmitter::compared(Operation operation, const Value& a, const Value& b)
{
    if (a.registers.size() != 1 || b.registers.size() != 1)
        throw NotUnderstood();
    Value made = combined(operation, a, b);
    made.condition = true;
    return made;
}

KernelEmitter::Value KernelEmitter::swizzled(const Value& value, const QString& components)
{
    Value made;
    const QString letters
        = QStringLiteral("rgba").contains(components.front()) ? QStringLiteral("rgba") : QStringLiteral("xyzw");
    for (const QChar component : components) {
        const qsizetype index = letters.indexOf(component);
        if (index < 0 || std::size_t(index) >= value.registers.size() || components.size() > 4 || value.condition)
            throw NotUnderstood();
        made.registers.push_back(value.registers[std::size_t(index)]);
    }
    return made;
}

KernelEmitter::Value KernelEmitter::called(const QString& function, const std::vector<Value>& arguments)
{
    const auto is = [&](const char* name, std::size_t count) {
        return function == QLatin1String(name) && arguments.size() == count;
    };
    if (is("min", 2))
        return combined(Operation::Minimum, arguments[0], arguments[1]);
    if (is("max", 2))
        return combined(Operation::Maximum, arguments[0], arguments[1]);
    if (is("abs", 1))
        return combined(Operation::Maximum, arguments[0], combined(Operation::Subtract, constant(0), arguments[0]));
    if (is("clamp", 3))
        return combined(Operation::Minimum, combined(Operation::Maximum, arguments[0], arguments[1]), arguments[2]);
    if (is("mix", 3)) {
        const Value difference = combined(Operation::Subtract, arguments[1], arguments[0]);
        return combined(Operation::Add, arguments[0], combined(Operation::Multiply, difference, arguments[2]));
    }
    if (is("dot", 2) && arguments[0].registers.size() == arguments[1].registers.size())
        return summed(combined(Operation::Multiply, arguments[0], arguments[1]));
    throw NotUnderstood();
}

KernelEmitter::Value KernelEmitter::summed(const Value& value)
{
    Value total { { value.registers.front() } };
    for (std::size_t i = 1; i < value.registers.size(); ++i)
        total = combined(Operation::Add, total, Value { { value.registers[i] } });
    return total;
}

KernelEmitter::Value KernelEmitter::vector(std::size_t components, const std::vector<Value>& arguments)
{
    Value made;
    for (const Value& argument : arguments) {
        if (argument.condition)
            throw NotUnderstood();
        made.registers.insert(made.registers.end(), argument.registers.begin(), argument.registers.end());
    }
    if (arguments.size() == 1 && made.registers.size() == 1)
        made.registers.resize(components, made.registers.front());
    if (components < 2 || made.registers.size() != components)
        throw NotUnderstood();
    return made;
}

} // namespace kelvara::imaging
