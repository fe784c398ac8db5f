#include "Platform/Imaging/ColorKernelCompiler.h"

#include <QRegularExpression>
#include <QStringList>

#include <map>

namespace kelvara::imaging {

namespace {

using Operation = KernelProgram::Operation;
using Register = KernelProgram::Register;

// A text of any length could ask for any number of registers; kernels that are meant need a few dozen.
constexpr int kMostRegisters = 1024;
constexpr int kDeepest = 64;
// More than any kernel of that many registers needs, few enough to be refused at once.
constexpr qsizetype kLongestSource = 1 << 16;

/// A text's words, numbers and signs; empty when it holds anything else.
std::vector<QString> tokens(const QString& source)
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(\s+|[A-Za-z_]\w*|(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?|[<>=!]=|[-+*/(){},;.?:<>=])"));
    std::vector<QString> found;
    if (source.size() > kLongestSource || !source.isValidUtf16())
        return found;
    qsizetype at = 0;
    while (at < source.size()) {
        const auto match = pattern.match(source, at, QRegularExpression::NormalMatch,
            QRegularExpression::AnchorAtOffsetMatchOption
                | QRegularExpression::DontCheckSubjectStringMatchOption); // or each word would check the whole text
        if (!match.hasMatch())
            return {};
        at = match.capturedEnd();
        if (!match.captured().trimmed().isEmpty())
            found.push_back(match.captured());
    }
    return found;
}

/// What an expression has been compiled to.
struct Value
{
    std::vector<Register> registers; ///< One for each component.
    bool condition = false;
};

/// Thrown and caught within this file.
struct NotUnderstood
{ };

class Compiler
{
public:
    explicit Compiler(std::vector<QString> tokens) : m_tokens(std::move(tokens)) { }

    KernelProgram function()
    {
        expect("kernel");
        expect("vec4");
        m_program.name = identifier();
        expect("(");
        if (!accept(")")) {
            do
                parameter();
            while (accept(","));
            expect(")");
        }
        expect("{");
        while (!accept("return"))
            declaration();
        const Value result = expression();
        expect(";");
        expect("}");
        if (m_at != m_tokens.size() || result.registers.size() != 4 || result.condition)
            throw NotUnderstood();
        std::copy(result.registers.begin(), result.registers.end(), m_program.result.begin());
        return m_program;
    }

private:
    bool next(const char* token) const { return m_at < m_tokens.size() && m_tokens[m_at] == QLatin1String(token); }

    bool accept(const char* token)
    {
        const bool found = next(token);
        m_at += found ? 1 : 0;
        return found;
    }

    void expect(const char* token)
    {
        if (!accept(token))
            throw NotUnderstood();
    }

    QString identifier()
    {
        if (m_at >= m_tokens.size() || !(m_tokens[m_at].front().isLetter() || m_tokens[m_at].front() == u'_'))
            throw NotUnderstood();
        return m_tokens[m_at++];
    }

    Register newRegister()
    {
        if (m_program.registers >= kMostRegisters)
            throw NotUnderstood();
        return m_program.registers++;
    }

    Value newValue(std::size_t components)
    {
        Value made;
        for (std::size_t i = 0; i < components; ++i)
            made.registers.push_back(newRegister());
        return made;
    }

    void name(const QString& variable, Value value)
    {
        if (!m_variables.emplace(variable, std::move(value)).second)
            throw NotUnderstood();
    }

    void parameter()
    {
        const bool sample = accept("__sample");
        if (!sample)
            expect("float");
        const Value value = newValue(sample ? 4 : 1);
        m_program.parameters.push_back({ sample, value.registers.front() });
        name(identifier(), value);
    }

    static std::size_t componentsOf(const QString& type)
    {
        static const QStringList types { QString(), QStringLiteral("float"), QStringLiteral("vec2"),
            QStringLiteral("vec3"), QStringLiteral("vec4") };
        return std::size_t(std::max(qsizetype { 0 }, types.indexOf(type)));
    }

    void declaration()
    {
        const std::size_t components = componentsOf(identifier());
        const QString variable = identifier();
        expect("=");
        const Value value = expression();
        expect(";");
        if (components == 0 || value.condition || value.registers.size() != components)
            throw NotUnderstood();
        name(variable, value);
    }

    /// Where the operation's result stands; what has been computed before is not computed again.
    Register result(Operation operation, Register a, Register b, Register c = 0)
    {
        if (operation == Operation::Select && b == c)
            return b;
        for (const auto& known : m_program.instructions) {
            if (known.operation == operation && known.a == a && known.b == b && known.c == c)
                return known.to;
        }
        const Register to = newRegister();
        m_program.instructions.push_back({ operation, to, a, b, c });
        return to;
    }

    /// The operation for each component; a single number goes with every component of the other operand.
    Value combined(Operation operation, const Value& a, const Value& b)
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

    Value compared(Operation operation, const Value& a, const Value& b)
    {
        if (a.registers.size() != 1 || b.registers.size() != 1)
            throw NotUnderstood();
        Value made = combined(operation, a, b);
        made.condition = true;
        return made;
    }

    Value expression()
    {
        if (++m_depth > kDeepest)
            throw NotUnderstood();
        Value value = comparison();
        if (accept("?")) {
            const Value whenTrue = expression();
            expect(":");
            const Value whenFalse = expression();
            if (!value.condition || whenTrue.registers.size() != whenFalse.registers.size() || whenTrue.condition
                || whenFalse.condition)
                throw NotUnderstood();
            Value made;
            for (std::size_t i = 0; i < whenTrue.registers.size(); ++i)
                made.registers.push_back(
                    result(Operation::Select, value.registers.front(), whenTrue.registers[i], whenFalse.registers[i]));
            value = made;
        }
        --m_depth;
        return value;
    }

    Value comparison()
    {
        Value value = sum();
        if (accept(">"))
            return compared(Operation::Greater, value, sum());
        if (accept(">="))
            return compared(Operation::GreaterEqual, value, sum());
        if (accept("<"))
            return compared(Operation::Greater, sum(), value);
        if (accept("<="))
            return compared(Operation::GreaterEqual, sum(), value);
        if (accept("=="))
            return compared(Operation::Equal, value, sum());
        return value;
    }

    Value sum()
    {
        Value value = product();
        for (;;) {
            if (accept("+"))
                value = combined(Operation::Add, value, product());
            else if (accept("-"))
                value = combined(Operation::Subtract, value, product());
            else
                return value;
        }
    }

    Value product()
    {
        Value value = operand();
        for (;;) {
            if (accept("*"))
                value = combined(Operation::Multiply, value, operand());
            else if (accept("/"))
                value = combined(Operation::Divide, value, operand());
            else
                return value;
        }
    }

    Value operand()
    {
        bool negative = false;
        while (accept("-"))
            negative = !negative;
        Value value = primary();
        while (accept("."))
            value = swizzled(value, identifier());
        return negative ? combined(Operation::Subtract, constant(0), value) : value;
    }

    static Value swizzled(const Value& value, const QString& components)
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

    Value constant(float number)
    {
        for (const auto& known : m_program.constants) {
            if (known.value == number)
                return { { known.in } };
        }
        Value made = newValue(1);
        m_program.constants.push_back({ made.registers.front(), number });
        return made;
    }

    Value primary()
    {
        if (accept("(")) {
            Value value = expression();
            expect(")");
            return value;
        }
        // Words that Qt would take for numbers, such as "inf", are names here.
        if (m_at < m_tokens.size() && (m_tokens[m_at].front().isDigit() || m_tokens[m_at].front() == u'.')) {
            bool isNumber = false;
            const float number = m_tokens[m_at].toFloat(&isNumber);
            if (isNumber) {
                ++m_at;
                return constant(number);
            }
        }
        const QString word = identifier();
        if (accept("("))
            return call(word);
        const auto variable = m_variables.find(word);
        if (variable == m_variables.end())
            throw NotUnderstood();
        return variable->second;
    }

    Value call(const QString& function)
    {
        std::vector<Value> arguments;
        do
            arguments.push_back(expression());
        while (accept(","));
        expect(")");
        const auto is = [&](const char* name, std::size_t count) {
            return function == QLatin1String(name) && arguments.size() == count;
        };
        if (function.startsWith(u"vec"))
            return vector(componentsOf(function), arguments);
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

    Value summed(const Value& value)
    {
        Value total { { value.registers.front() } };
        for (std::size_t i = 1; i < value.registers.size(); ++i)
            total = combined(Operation::Add, total, Value { { value.registers[i] } });
        return total;
    }

    static Value vector(std::size_t components, const std::vector<Value>& arguments)
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

    const std::vector<QString> m_tokens;
    std::size_t m_at = 0;
    int m_depth = 0;
    std::map<QString, Value> m_variables;
    KernelProgram m_program;
};

} // namespace

std::optional<KernelProgram> compileColorKernel(const QString& source)
{
    try {
        return Compiler(tokens(source)).function();
    } catch (const NotUnderstood&) {
        return std::nullopt;
    }
}

} // namespace kelvara::imaging
