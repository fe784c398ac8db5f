#include "Platform/Imaging/ColorKernelNode.h"

#include <bit>
#include <span>

namespace kelvara::imaging {

namespace {

using Operation = KernelProgram::Operation;

using Float4 [[gnu::vector_size(16)]] = float;

constexpr int kRun = 64;
constexpr int kPart = 4 * kRun;
using Run = std::array<Float4, kRun / 4>;
static_assert(sizeof(Pixel) == sizeof(Float4));

constexpr Float4 kZero = { 0, 0, 0, 0 };
constexpr Float4 kOne = { 1, 1, 1, 1 };

template<typename Function> void each(Run& to, const Run& a, const Run& b, Function function)
{
    for (std::size_t i = 0; i < to.size(); ++i)
        to[i] = function(a[i], b[i]);
}

/// Rows become columns.
void transpose(Float4& a, Float4& b, Float4& c, Float4& d)
{
    const Float4 ab = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const Float4 cd = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const Float4 abHigh = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Float4 cdHigh = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(ab, cd, 0, 1, 4, 5);
    b = __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
    c = __builtin_shufflevector(abHigh, cdHigh, 0, 1, 4, 5);
    d = __builtin_shufflevector(abHigh, cdHigh, 2, 3, 6, 7);
}

/// Runs a program on 64 pixels at a time: long enough that reading the program costs little, short enough that all
/// registers stay in the fastest cache.
class KernelRows final : public RowRenderer
{
public:
    KernelRows(std::shared_ptr<const KernelProgram> program, const std::vector<std::shared_ptr<const Node>>& inputs,
        std::span<const float> numbers)
        : m_program(std::move(program)), m_registers(m_program->registers)
    {
        std::size_t number = 0;
        std::size_t input = 0;
        for (const auto& parameter : m_program->parameters) {
            if (!parameter.sample) {
                m_registers[parameter.first].fill(kOne * numbers[number++]);
                continue;
            }
            const Node& node = *inputs[input++];
            m_samples.push_back(
                { node.extent().isEmpty() ? nullptr : node.open(), node.extent(), parameter.first, {} });
        }
        for (const auto& constant : m_program->constants)
            m_registers[constant.in].fill(kOne * constant.value);
    }

    void row(int y, int x0, int x1, Pixel* out) override
    {
        // By parts, so that what the inputs write is still in the fastest cache when it is read.
        for (int x = x0; x < x1; x += kPart)
            part(y, x, std::min(x + kPart, x1), out + (x - x0));
    }

private:
    struct Sample
    {
        std::unique_ptr<RowRenderer> rows;
        QRect extent;
        KernelProgram::Register first;
        std::vector<Pixel> line;
    };

    void part(int y, int x0, int x1, Pixel* out)
    {
        for (Sample& sample : m_samples) {
            // Whole runs are computed, whatever lies behind the last pixel.
            sample.line.resize(kPart);
            if (!sample.rows)
                std::fill(sample.line.begin(), sample.line.end(), Pixel {});
            else
                renderRow(*sample.rows, sample.extent, y, x0, x1, sample.line.data());
        }
        for (int x = x0; x < x1; x += kRun) {
            const int count = std::min(kRun, x1 - x);
            load(x - x0);
            for (const auto& instruction : m_program->instructions)
                execute(instruction);
            store(out + (x - x0), count);
        }
    }

    void load(int from)
    {
        for (const Sample& sample : m_samples) {
            const Pixel* pixels = sample.line.data() + from;
            Run* registers = &m_registers[sample.first];
            for (std::size_t i = 0; i < registers->size(); ++i, pixels += 4) {
                for (std::size_t k = 0; k < 4; ++k)
                    registers[k][i] = std::bit_cast<Float4>(pixels[k]);
                transpose(registers[0][i], registers[1][i], registers[2][i], registers[3][i]);
            }
        }
    }

    void store(Pixel* out, int count) const
    {
        const auto& result = m_program->result;
        const Run& r = m_registers[result[0]];
        const Run& g = m_registers[result[1]];
        const Run& b = m_registers[result[2]];
        const Run& a = m_registers[result[3]];
        for (std::size_t i = 0; count > 0; ++i, count -= 4, out += 4) {
            Float4 first = r[i];
            Float4 second = g[i];
            Float4 third = b[i];
            Float4 fourth = a[i];
            transpose(first, second, third, fourth);
            out[0] = std::bit_cast<Pixel>(first);
            if (count > 1)
                out[1] = std::bit_cast<Pixel>(second);
            if (count > 2)
                out[2] = std::bit_cast<Pixel>(third);
            if (count > 3)
                out[3] = std::bit_cast<Pixel>(fourth);
        }
    }

    void execute(const KernelProgram::Instruction& instruction)
    {
        Run& to = m_registers[instruction.to];
        const Run& a = m_registers[instruction.a];
        const Run& b = m_registers[instruction.b];
        switch (instruction.operation) {
        case Operation::Add:
            return each(to, a, b, [](Float4 p, Float4 q) { return p + q; });
        case Operation::Subtract:
            return each(to, a, b, [](Float4 p, Float4 q) { return p - q; });
        case Operation::Multiply:
            return each(to, a, b, [](Float4 p, Float4 q) { return p * q; });
        case Operation::Divide:
            return each(to, a, b, [](Float4 p, Float4 q) { return p / q; });
        case Operation::Minimum:
            return each(to, a, b, [](Float4 p, Float4 q) { return q < p ? q : p; });
        case Operation::Maximum:
            return each(to, a, b, [](Float4 p, Float4 q) { return p < q ? q : p; });
        case Operation::Greater:
            return each(to, a, b, [](Float4 p, Float4 q) { return p > q ? kOne : kZero; });
        case Operation::GreaterEqual:
            return each(to, a, b, [](Float4 p, Float4 q) { return p >= q ? kOne : kZero; });
        case Operation::Equal:
            return each(to, a, b, [](Float4 p, Float4 q) { return p == q ? kOne : kZero; });
        case Operation::Select: {
            const Run& otherwise = m_registers[instruction.c];
            for (std::size_t i = 0; i < to.size(); ++i)
                to[i] = a[i] != kZero ? b[i] : otherwise[i];
        }
        }
    }

    const std::shared_ptr<const KernelProgram> m_program;
    std::vector<Run> m_registers;
    std::vector<Sample> m_samples;
};

} // namespace

std::unique_ptr<RowRenderer> ColorKernelNode::open() const
{
    return std::make_unique<KernelRows>(m_program, m_inputs, m_numbers);
}

} // namespace kelvara::imaging
