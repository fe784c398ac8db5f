#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace kelvara::imaging {

/// A PNG of the bitmap, 8 bits a channel, without an alpha channel when every pixel is opaque; otherwise with colours
/// not multiplied by alpha. Built for speed: a tap encodes two photographs while the person waits. Absent for a null
/// bitmap or when memory is short. Any thread.
[[nodiscard]] std::optional<QByteArray> encodePng(const QImage& bitmap);

} // namespace kelvara::imaging
