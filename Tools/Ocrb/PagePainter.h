#pragma once

#include <QImage>
#include <QPolygonF>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace kelvara::ocrb {

/// How a whole document is printed and scanned. Everything else follows from the seed.
struct PageOptions
{
    std::uint32_t seed = 1;
    int width = 600; ///< Of the picture, in pixels.
    double degrees = 0; ///< Turned clockwise.
    double blur = 0; ///< Sigma, in pixels of the picture.
    double noise = 0; ///< Sigma, in grey levels.
    bool isPoor = false; ///< Faint or fat print of unusual proportions on strong patterns.
    bool isOnTable = false; ///< With something around the document rather than filling the picture.
};

/// Options as scans and photographs have them: widths of 260 (passports 520) to `widest`, turns within 3°, blur up to
/// 0.7 pixels; poor ones turns within 5° and blur up to 1 pixel.
[[nodiscard]] PageOptions pageOptions(
    const QStringList& lines, std::uint32_t seed, int widest = 1600, bool isPoor = false);

struct Page
{
    QImage picture;
    QPolygonF zone; ///< Around the lines: top left, top right, bottom right, bottom left. Pixels, origin top-left.
};

/// A card or passport page with coloured guilloche, a portrait, captions in other print and the lines in OCR-B below.
/// Absent when a font is missing. Needs a QGuiApplication.
[[nodiscard]] std::optional<Page> paintPage(const QStringList& lines, const PageOptions& options);

} // namespace kelvara::ocrb
