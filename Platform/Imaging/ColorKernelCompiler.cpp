#include "Platform/Imaging/ColorKernelCompiler.h"

#include "Platform/Imaging/ColorKernelEmitter.h"

#include <QRegularExpression>
#include <QStringList>

#include <map>

namespace kelvara::imaging {

namespace {

using Operation = KernelProgram::Operation;
using Value = KernelEmitter::Value;
using NotUnderstood = KernelEmitter::NotUnderstood;

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

class Compiler
{
public:
    explicit Compiler(std::vector<QString> tokens) : m_tokens(std::move(tokens)) { }

    KernelProgram function()
    {
        expect("kernel");
        expect("vec4");
        m_emit.program.name = identifier();
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
        const Value made = expression();
        expect(";");
        expect("}");
        if (m_at != m_tokens.size() || made.registers.size() != 4 || made.condition)
            throw NotUnderstood();
        std::copy(made.registers.begin(), made.registers.end(), m_emit.program.result.begin());
        return m_emit.program;
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
        const Value value = m_emit.newValue(sample ? 4 : 1);
        m_emit.program.parameters.push_back({ sample, value.registers.front() });
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
                made.registers.push_back(m_emit.result(
                    Operation::Select, value.registers.front(), whenTrue.registers[i], whenFalse.registers[i]));
            value = made;
        }
        --m_depth;
        return value;
    }

    Value comparison()
    {
        Value value = sum();
        if (accept(">"))
            return m_emit.compared(Operation::Greater, value, sum());
        if (accept(">="))
            return m_emit.compared(Operation::GreaterEqual, value, sum());
        if (accept("<"))
            return m_emit.compared(Operation::Greater, sum(), value);
        if (accept("<="))
            return m_emit.compared(Operation::GreaterEqual, sum(), value);
        if (accept("=="))
            return m_emit.compared(Operation::Equal, value, sum());
        return value;
    }

    Value sum()
    {
        Value value = product();
        for (;;) {
            if (accept("+"))
                value = m_emit.combined(Operation::Add, value, product());
            else if (accept("-"))
                value = m_emit.combined(Operation::Subtract, value, product());
            else
                return value;
        }
    }

    Value product()
    {
        Value value = operand();
        for (;;) {
            if (accept("*"))
                value = m_emit.combined(Operation::Multiply, value, operand());
            else if (accept("/"))
                value = m_emit.combined(Operation::Divide, value, operand());
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
            value = KernelEmitter::swizzled(value, identifier());
        return negative ? m_emit.combined(Operation::Subtract, m_emit.constant(0), value) : value;
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
                return m_emit.constant(number);
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
        if (function.startsWith(u"vec"))
            return KernelEmitter::vector(componentsOf(function), arguments);
        return m_emit.called(function, arguments);
    }

    const std::vector<QString> m_tokens;
    std::size_t m_at = 0;
    int m_depth = 0;
    std::map<QString, Value> m_variables;
    KernelEmitter m_emit;
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
