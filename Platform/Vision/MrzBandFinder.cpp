#include "Platform/Vision/MrzBandFinder.h"

#include "Platform/Vision/TextPitch.h"
#include "Platform/Vision/TextRows.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace kelvara {

namespace {

constexpr int kLargest = 1000; ///< Longer side of what is searched, in pixels.
constexpr int kCoarse = 450; ///< The same for large print.
constexpr int kSmallest = 500; ///< Pictures below are enlarged to twice their size.
constexpr double kLeastWidth = 120; ///< No zone is legible in less.
constexpr double kLeastHeight = 24;
constexpr std::size_t kMostBands = 4;
constexpr std::size_t kMostRows = 30;
constexpr double kLeastOwnRhythm = 0.05; ///< Of a single row, whose ends may be wrong.
constexpr double kGlyphGap = 0.35; ///< Between neighbouring glyphs, over the pitch.
constexpr double kCountError = 0.7; ///< By how many characters a line's length may miss its document's.
constexpr double kCountDoubt = 0.4; ///< How much each further one speaks against it.
constexpr double kLeastRhythm = 0.07; ///< Of lines that are evenly pitched; other print stays below.

/// The brightest of each pixel's colours: black print stays black, coloured patterns come near paper.
cv::Mat brightnessOf(const QImage& picture)
{
    if (picture.format() == QImage::Format_Grayscale8) {
        const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
        return cv::Mat(
            grey.height(), grey.width(), CV_8U, const_cast<uchar*>(grey.constBits()), std::size_t(grey.bytesPerLine()))
            .clone();
    }
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    cv::Mat brightness(rgb.height(), rgb.width(), CV_8U);
    for (int y = 0; y < rgb.height(); ++y) {
        const uchar* in = rgb.constScanLine(y);
        uchar* out = brightness.ptr<uchar>(y);
        for (int x = 0; x < rgb.width(); ++x)
            out[x] = std::max(in[4 * x], std::max(in[4 * x + 1], in[4 * x + 2]));
    }
    return brightness;
}

/// A picture at one size, and by what its places are multiplied to be those of the whole one.
struct Scaled
{
    cv::Mat brightness;
    double factor = 1;
};

Scaled scaled(const cv::Mat& brightness, double size)
{
    Scaled small { brightness, 1 / size };
    if (std::abs(size - 1) > 1e-9)
        cv::resize(brightness, small.brightness, {}, size, size, size < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
    return small;
}

/// Rows that may be neighbours in a zone.
bool isBelow(const TextRow& upper, const TextRow& lower)
{
    const double left = std::max(upper.left, lower.left);
    const double right = std::min(upper.right, lower.right);
    const double longer = std::max(upper.length(), lower.length());
    if (right - left < 0.55 * longer)
        return false;
    const double middle = (left + right) / 2;
    const double thickness = (upper.thickness + lower.thickness) / 2;
    const double apart = lower.y(middle) - upper.y(middle);
    return apart > 1.15 * thickness && apart < 4.5 * thickness && std::abs(upper.slope - lower.slope) < 0.035
        && std::min(upper.thickness, lower.thickness) > 0.55 * std::max(upper.thickness, lower.thickness);
}

int documentLength(double characters, int lines)
{
    if (lines == 3)
        return std::abs(characters - 30) < 3.5 ? 30 : 0;
    if (std::abs(characters - 44) < 4)
        return 44;
    return std::abs(characters - 36) < 4 ? 36 : 0;
}

/// The rows as a band, if their rhythm is that of a zone.
std::optional<MrzBand> bandOf(const cv::Mat& strokes, const std::vector<TextRow>& rows)
{
    // All lines of a zone begin and end at the same place along their direction.
    double slope = 0;
    for (const TextRow& row : rows)
        slope += row.slope / double(rows.size());
    const double norm = std::hypot(1.0, slope);
    const auto along = [&](const TextRow& row, double x) { return (x + slope * row.y(x)) / norm; };
    double left = 1e9;
    double right = -1e9;
    for (const TextRow& row : rows) {
        left = std::min(left, along(row, row.left));
        right = std::max(right, along(row, row.right));
    }
    std::vector<TextRow> whole = rows;
    for (TextRow& row : whole) {
        // x + slope · y(x) = along · norm
        const double turn = 1 + slope * row.slope;
        row.left = (left * norm - slope * row.level) / turn;
        row.right = (right * norm - slope * row.level) / turn;
    }
    const TextPitch pitch = pitchOf(strokes, whole);
    if (pitch.rhythm < kLeastRhythm)
        return std::nullopt;
    MrzBand band;
    band.lines = int(rows.size());
    band.pitch = pitch.pitch;
    const double characters = (right - left) / pitch.pitch + kGlyphGap;
    band.characters = documentLength(characters, band.lines);
    if (band.characters == 0)
        return std::nullopt;
    const TextRow& top = whole.front();
    const TextRow& bottom = whole.back();
    band.capital = capitalOf(strokes, whole, pitch.pitch);
    const double half = 0.55 * pitch.pitch;
    const auto corner = [&](const TextRow& row, double x, double offset) {
        return QPointF(x - offset * slope / norm, row.y(x) + offset / norm);
    };
    band.corners = { corner(top, top.left, -half), corner(top, top.right, -half), corner(bottom, bottom.right, half),
        corner(bottom, bottom.left, half) };
    // Pieces of lines have a rhythm too, but not the number of characters, and do not begin and end together.
    double covered = 0;
    for (std::size_t i = 0; i < rows.size(); ++i)
        covered += std::min(1.0, rows[i].length() / whole[i].length()) / double(rows.size());
    const double excess = std::max(0.0, std::abs(characters - band.characters) - kCountError);
    band.evidence = pitch.rhythm * band.lines * covered / (1 + kCountDoubt * excess);
    return band;
}

/// The rows that may be lines of a zone by themselves. A page of print has many, and all pairs of them take long.
std::vector<TextRow> rhythmicRowsOf(const cv::Mat& strokes)
{
    std::vector<std::pair<double, TextRow>> ranked;
    for (const TextRow& row : findTextRows(strokes)) {
        const double rhythm = pitchOf(strokes, { row }).rhythm;
        if (rhythm > kLeastOwnRhythm)
            ranked.emplace_back(rhythm, row);
    }
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<TextRow> rows;
    for (std::size_t i = 0; i < std::min(ranked.size(), kMostRows); ++i)
        rows.push_back(ranked[i].second);
    return rows;
}

void search(const Scaled& picture, std::vector<MrzBand>& bands)
{
    const cv::Mat strokes = strokesOf(picture.brightness);
    const std::vector<TextRow> rows = rhythmicRowsOf(strokes);
    const auto add = [&](const std::vector<TextRow>& group) {
        if (auto band = bandOf(strokes, group)) {
            for (QPointF& corner : band->corners)
                corner = (corner + QPointF(0.5, 0.5)) * picture.factor - QPointF(0.5, 0.5);
            band->pitch *= picture.factor;
            band->capital *= picture.factor;
            bands.push_back(*band);
        }
    };
    for (const TextRow& first : rows) {
        for (const TextRow& second : rows) {
            if (!isBelow(first, second))
                continue;
            add({ first, second });
            for (const TextRow& third : rows) {
                if (!isBelow(second, third))
                    continue;
                const double x = (second.left + second.right) / 2;
                const double upper = second.y(x) - first.y(x);
                const double lower = third.y(x) - second.y(x);
                if (std::abs(upper - lower) < 0.25 * std::max(upper, lower))
                    add({ first, second, third });
            }
        }
    }
}

QPointF middle(const MrzBand& band)
{
    return (band.corners[0] + band.corners[1] + band.corners[2] + band.corners[3]) / 4;
}

/// The same lines, found at another size.
bool isSame(const MrzBand& a, const MrzBand& b)
{
    const QPointF away = middle(a) - middle(b);
    return a.lines == b.lines && a.characters == b.characters && std::abs(away.x()) < 3 * a.pitch
        && std::abs(away.y()) < 0.7 * a.pitch;
}

} // namespace

std::vector<MrzBand> findMrzBands(const QImage& picture)
{
    std::vector<MrzBand> bands;
    const int longer = std::max(picture.width(), picture.height());
    const double size = longer < kSmallest ? 2.0 : std::min(1.0, double(kLargest) / std::max(longer, 1));
    if (picture.width() * size < kLeastWidth || picture.height() * size < kLeastHeight)
        return bands;
    const Scaled fine = scaled(brightnessOf(picture), size);
    search(fine, bands);
    if (std::max(fine.brightness.cols, fine.brightness.rows) > kCoarse * 1.2) {
        Scaled coarse = scaled(fine.brightness, double(kCoarse) / std::max(fine.brightness.cols, fine.brightness.rows));
        coarse.factor *= fine.factor;
        search(coarse, bands);
    }
    std::sort(bands.begin(), bands.end(), [](const MrzBand& a, const MrzBand& b) { return a.evidence > b.evidence; });
    std::vector<MrzBand> distinct;
    for (const MrzBand& band : bands) {
        if (distinct.size() < kMostBands
            && std::none_of(distinct.begin(), distinct.end(), [&](const MrzBand& d) { return isSame(d, band); }))
            distinct.push_back(band);
    }
    return distinct;
}

} // namespace kelvara
