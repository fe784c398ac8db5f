#pragma once

#include "Platform/Mrz/OcrLayout.h"

#include <QByteArray>

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace kelvara::ocr {

/// What a glyph may be, in the order of `GlyphClassifier`'s results.
inline constexpr std::u16string_view kGlyphs = u"0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ<";

/// How dark the parts of a glyph's place are, 0 to 1: rows from top to bottom. The window is centred on the place and
/// a little larger than a glyph, so that neighbours which have grown into it show.
struct GlyphPatch
{
    static constexpr int kColumns = 16;
    static constexpr int kRows = 20;
    static constexpr double kWidth = 1.2; ///< In pitches.
    static constexpr double kHeight = 1.4; ///< In capitals' heights.

    std::array<float, std::size_t(kColumns) * kRows> ink {};

    /// Whether there is nothing to be read.
    [[nodiscard]] bool isBlank() const;
};

/// Internal. Takes patches out of ink as `inkOf` gives it: what is too small for the layout may be all that blur has
/// left of a stroke.
class GlyphPatches
{
public:
    explicit GlyphPatches(const cv::Mat& ink);

    /// `capital`: the height of a capital in this line, in pixels.
    [[nodiscard]] GlyphPatch at(const Line& line, const Cell& cell, double capital) const;

private:
    [[nodiscard]] double sumUpTo(double x, double y) const;

    cv::Mat m_sums; ///< CV_32S: of the ink's pixels above and to the left.
};

/// A small neural network of one hidden layer that tells glyphs of OCR-B from patches: a second opinion beside
/// Tesseract's, trained on glyphs that blur has made thin, thick or merged.
class GlyphClassifier
{
public:
    /// Absent when the bytes are not what `bytes()` makes.
    [[nodiscard]] static std::optional<GlyphClassifier> fromBytes(const QByteArray& bytes);

    /// The library's own. Any thread.
    [[nodiscard]] static const GlyphClassifier& shared();

    /// How likely the patch shows each of `kGlyphs`; they add up to 1.
    [[nodiscard]] std::array<float, kGlyphs.size()> probabilities(const GlyphPatch& patch) const;

    static constexpr std::size_t kInputs = std::size_t(GlyphPatch::kColumns) * GlyphPatch::kRows;
    static constexpr std::size_t kHidden = 128;
    static constexpr std::size_t kOutputs = kGlyphs.size();

    /// Rows of weights, one for each input and a last one that is always added: what each input adds to each unit.
    std::vector<float> first = std::vector<float>((kInputs + 1) * kHidden);
    std::vector<float> second = std::vector<float>((kHidden + 1) * kOutputs);

    /// Rounded to 16 bits, little-endian.
    [[nodiscard]] QByteArray bytes() const;
};

} // namespace kelvara::ocr
