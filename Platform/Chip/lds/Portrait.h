#pragma once

#include "Platform/Chip/lds/EncodedImage.h"

#include <QImage>

#include <variant>

namespace kelvara::chip {

enum class PortraitProblem {
    UnknownKind, ///< Neither JPEG nor JPEG 2000.
    TooLarge, ///< More pixels than a chip's picture can have; nothing was allocated for them.
    TooCostly, ///< Decoding would take more time or memory than such a picture can be worth; it was not begun.
    Damaged, ///< The decoder gave up.
};

/// Longest side and most pixels that are decoded. Portraits have about 413 × 531.
constexpr int kLongestPortraitSide = 6000;
constexpr qint64 kMostPortraitPixels = 16'000'000;

/// Decodes a picture of the chip into RGB, grey ones too. Takes milliseconds to tens of milliseconds: not for the main
/// thread. Any thread.
[[nodiscard]] std::variant<QImage, PortraitProblem> decodePortrait(ByteView encoded);

/// Encodes a picture for a chip: opaque, in grey where its format is Grayscale8. `quality` is JPEG's, 1 to 100, or for
/// JPEG 2000 the share of the uncompressed size in thousandths; OpenCV writes the latter through a temporary file,
/// while decoding never touches the disk. Absent for an empty picture, an unknown kind, or where the encoder fails
/// (JPEG 2000 below 32 pixels a side). Any thread.
[[nodiscard]] std::optional<Bytes> encodePortrait(const QImage& picture, ImageKind kind, int quality);

} // namespace kelvara::chip
