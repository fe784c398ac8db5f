#pragma once

#include <QImage>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace kelvara::ocrb {

/// How a band of lines is printed and seen. Lengths are shares of a capital's height unless they are in pixels.
struct BandOptions
{
    std::uint32_t seed = 1;
    double capital = 22; ///< Height of a capital in pixels.
    double blur = 0; ///< Sigma.
    double noise = 0; ///< Sigma in grey levels.
    double degrees = 0; ///< Turned clockwise.
    double stretch = 1; ///< Of the width.
    double pitch = 1; ///< Between neighbours: documents differ in the size of the glyphs on the same pitch.
    double weight = 0; ///< Added to every stroke's width.
    double jitter = 0; ///< Sigma of every glyph's place.
    double paper = 215; ///< Grey levels.
    double ink = 45;
    double shade = 0; ///< By how much light falls from one side to the other, 0 to 1.
};

enum class BandCondition { Clean, Noise, SlightBlur, StrongBlur, Mixed };

/// Options of a condition, otherwise ordinary: papers of 185 to 240, inks of 20 to 60, turns within 1.2°, some shade.
/// Clean bands have the noise of a good camera; mixed ones some of everything.
[[nodiscard]] BandOptions bandOptions(BandCondition condition, double capital, std::uint32_t seed);

/// Prints the lines in OCR-B as a document does (2.54 mm apart, lines 6.35 mm) and photographs them: the band that a
/// text detector would cut out, with a little paper around. Absent when the font is missing. Needs a QGuiApplication.
[[nodiscard]] std::optional<QImage> paintBand(const QStringList& lines, const BandOptions& options);

} // namespace kelvara::ocrb
