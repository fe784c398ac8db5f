#include "Platform/Imaging/CIColorKernel.h"

#include "Platform/Imaging/ColorKernelCompiler.h"
#include "Platform/Imaging/ColorKernelNode.h"
#include "Platform/Imaging/PixelRect.h"

namespace kelvara {

std::optional<CIColorKernel> CIColorKernel::compile(const QString& source)
{
    auto program = imaging::compileColorKernel(source);
    if (!program)
        return std::nullopt;
    return CIColorKernel(std::make_shared<const imaging::KernelProgram>(*std::move(program)));
}

QString CIColorKernel::name() const
{
    return m_program->name;
}

std::optional<CIImage> CIColorKernel::apply(const QRectF& extent, std::span<const Argument> arguments) const
{
    const auto integral = imaging::integralRect(extent);
    if (!integral || arguments.size() != m_program->parameters.size())
        return std::nullopt;
    std::vector<std::shared_ptr<const imaging::Node>> inputs;
    std::vector<float> numbers;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto* image = std::get_if<CIImage>(&arguments[i]);
        if (m_program->parameters[i].sample != (image != nullptr))
            return std::nullopt;
        if (image)
            inputs.push_back(image->node());
        else
            numbers.push_back(float(std::get<double>(arguments[i])));
    }
    return CIImage(
        std::make_shared<imaging::ColorKernelNode>(m_program, std::move(inputs), std::move(numbers), *integral));
}

} // namespace kelvara
