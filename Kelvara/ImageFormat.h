#pragma once

#include "Platform/Imaging/UIImage.h"

#include <QString>

#include <optional>
#include <utility>

namespace kelvara {

/// How an image is encoded: JPEG at a quality of 0 to 1, or PNG. A value.
class ImageFormat
{
public:
    enum class Case { jpeg, png };

    [[nodiscard]] static constexpr ImageFormat jpeg(double quality) { return { Case::jpeg, quality }; }
    [[nodiscard]] static constexpr ImageFormat png() { return { Case::png, 1.0 }; }

    [[nodiscard]] constexpr Case kind() const { return m_kind; }
    /// The payload of `jpeg`.
    [[nodiscard]] constexpr double quality() const { return m_quality; }

private:
    constexpr ImageFormat(Case kind, double quality) : m_kind(kind), m_quality(quality) { }

    Case m_kind;
    double m_quality;
};

/// The encoded image as base64 (RFC 4648, padded, one line). Absent when the image has no bitmap content or cannot be
/// encoded. Any thread.
[[nodiscard]] std::optional<QString> toBase64(const UIImage& image, ImageFormat format);

/// The PNG texts of two images, each as `toBase64` gives it, encoded side by side on the calling thread and one of its
/// own, because a person waits for them: returns when both are ready. An absent image gives an absent text. The images
/// are not copied: neither they nor the camera's buffers behind them are written once they exist. Any thread.
[[nodiscard]] std::pair<std::optional<QString>, std::optional<QString>> pngBase64Pair(
    const std::optional<UIImage>& first, const std::optional<UIImage>& second);

} // namespace kelvara
