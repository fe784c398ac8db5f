#pragma once

#include "Platform/Imaging/CIImage.h"

#include <QRectF>
#include <QString>

#include <memory>
#include <optional>
#include <span>
#include <variant>

namespace kelvara {

namespace imaging {
struct KernelProgram;
}

/// A function from pixels to pixels, compiled from a text in the kernel language: one function
/// `kernel vec4 name(parameters)` whose parameters are `__sample` (a pixel of an image, in linear light, colours
/// multiplied by alpha) and `float`, with declarations of `float`, `vec2`, `vec3` and `vec4`, one closing `return`,
/// + - * /, comparisons, `?:`, swizzles, `vec2` … `vec4`, and `abs`, `clamp`, `dot`, `max`, `min`, `mix`. What the
/// language has beyond that does not compile. Immutable, cheap to copy; any thread.
class CIColorKernel
{
public:
    /// Absent when the text does not compile or is longer than 65536 characters.
    [[nodiscard]] static std::optional<CIColorKernel> compile(const QString& source);

    [[nodiscard]] QString name() const;

    /// An image for each `__sample`, a number for each `float`.
    using Argument = std::variant<CIImage, double>;

    /// The function of the arguments, in the order of its parameters, over the extent (origin bottom-left). Evaluated
    /// when it is rendered; images are transparent outside their own extent. Absent when the arguments are not what
    /// the parameters ask for or the extent is empty or not finite.
    [[nodiscard]] std::optional<CIImage> apply(const QRectF& extent, std::span<const Argument> arguments) const;

private:
    explicit CIColorKernel(std::shared_ptr<const imaging::KernelProgram> program) : m_program(std::move(program)) { }

    std::shared_ptr<const imaging::KernelProgram> m_program;
};

} // namespace kelvara
