#include "Platform/Mrz/OcrJudgement.h"

#include <algorithm>
#include <cmath>

namespace kelvara::ocr {

namespace {

// Heights in OCR-B, in capitals' heights, and widths over heights, as they come out of binarised bands.
constexpr double kLetterO = 734.0 / 723.0;
constexpr double kZero = 787.0 / 723.0;
constexpr double kAspectO = 0.683;
constexpr double kAspectZero = 0.645;
// How far heights and aspects stray from what they should be: of the same measure, and a pixel's share of the height.
constexpr double kHeightStray = 0.014;
constexpr double kAspectStray = 0.019;
constexpr double kPixelStray = 0.5;
constexpr double kTallO
    = 0.8; ///< Flat glyphs lose of their height what round ones keep, so that O looks tall beside them.
constexpr double kUsualStray = 0.015; ///< Glyphs of a line that is well preserved, from one another.
/// There the odds are that much better than independent normal strays would make them (measured).
constexpr double kSharpness = 1.5;

/// How likely Tesseract's best candidate is right, by its rating (0 to 100) and its lead over the next: measured on
/// bands of all conditions.
float certaintyOf(float rating, float lead)
{
    struct Row
    {
        float rating;
        float byLead[5]; ///< Leads below 1, 2, 4, 8, and more.
    };
    static constexpr Row rows[] = {
        { 88, { 0.998F, 0.999F, 0.9995F, 0.9998F, 0.9999F } },
        { 84, { 0.90F, 0.98F, 0.99F, 0.998F, 0.9995F } },
        { 76, { 0.75F, 0.88F, 0.96F, 0.99F, 0.998F } },
        { 60, { 0.70F, 0.80F, 0.80F, 0.91F, 0.985F } },
        { -1, { 0.10F, 0.40F, 0.40F, 0.40F, 0.92F } },
    };
    const int column = lead < 1 ? 0 : lead < 2 ? 1 : lead < 4 ? 2 : lead < 8 ? 3 : 4;
    for (const Row& row : rows) {
        if (rating >= row.rating)
            return row.byLead[column];
    }
    return 0;
}

/// The height of a capital in a line and how far single glyphs stray from it.
struct Capital
{
    double height;
    double stray;
};

/// From letters and digits alike by what each of them measures in OCR-B.
Capital capitalOf(const Line& line, const QString& text)
{
    std::vector<double> heights;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const double own = line.cells[std::size_t(i)].height;
        const QChar c = text[i];
        if (own <= 0 || c == u'<' || c == u'O' || c == u'0' || c == u'Q')
            continue;
        const bool digit = c.isDigit();
        const bool round = QStringLiteral("CGSJU").contains(c);
        heights.push_back(own / (digit ? kZero : round ? kLetterO : 1.0));
    }
    if (heights.empty())
        return { line.height, 0.1 * line.height };
    const auto middle = heights.begin() + std::ptrdiff_t(heights.size() / 2);
    std::nth_element(heights.begin(), middle, heights.end());
    // The mean of what is near the median: finer than whole pixels.
    const double median = *middle;
    double sum = 0;
    double away = 0;
    int count = 0;
    for (const double height : heights) {
        away += std::min(std::abs(height - median), 0.2 * median) / double(heights.size());
        if (std::abs(height - median) < 0.06 * median) {
            sum += height;
            ++count;
        }
    }
    return { sum / count, away };
}

/// The odds, as a logarithm, that a cell holds a zero rather than an O.
double zeroOdds(const Cell& cell, const Capital& line)
{
    const double capital = line.height;
    const double height = cell.height / capital;
    const double heightStray
        = std::hypot(kHeightStray, kPixelStray / capital, std::max(0.0, line.stray / capital - kUsualStray));
    const double aspect = cell.ink.width / std::max(1.0, cell.height);
    const double aspectStray = std::hypot(kAspectStray, kPixelStray / capital);
    const auto distance = [](double value, double mean, double stray) {
        const double away = std::min(std::abs(value - mean) / stray, 4.0);
        return away * away / 2;
    };
    const bool preserved = line.stray < 2 * kUsualStray * capital;
    return (preserved ? kSharpness : 1.0)
        * (distance(height, kLetterO, heightStray) - distance(height, kZero, heightStray)
            + distance(aspect, kAspectO, aspectStray) - distance(aspect, kAspectZero, aspectStray) - kTallO);
}

/// A line one longer than a document's, with just one place where nothing was seen: an uneven gap, not a filler.
void dropSuperfluous(MrzLineReading& reading)
{
    const qsizetype length = reading.text.size() - 1;
    if (length != 30 && length != 36 && length != 44)
        return;
    auto& certainties = reading.certainties;
    if (std::count(certainties.begin(), certainties.end(), 0.0F) != 1)
        return;
    const auto at = std::find(certainties.begin(), certainties.end(), 0.0F) - certainties.begin();
    reading.text.remove(at, 1);
    reading.alternatives.erase(reading.alternatives.begin() + at);
    certainties.erase(certainties.begin() + at);
}

} // namespace

MrzLineReading judged(const Line& line, const std::vector<Candidates>& candidates)
{
    MrzLineReading reading;
    for (const Candidates& candidate : candidates) {
        const bool any = !candidate.ranked.empty();
        reading.text += any ? candidate.ranked.front().first : QChar(u'<');
        const float best = any ? candidate.ranked.front().second : 0.0F;
        const float second = candidate.ranked.size() > 1 ? candidate.ranked[1].second : 0.0F;
        reading.certainties.push_back(any ? certaintyOf(best, best - second) : 0.0F);
        QString others;
        for (std::size_t i = 1; i < std::min<std::size_t>(candidate.ranked.size(), 4); ++i)
            others += candidate.ranked[i].first;
        reading.alternatives.push_back(others);
    }
    const Capital capital = capitalOf(line, reading.text);
    for (qsizetype i = 0; i < reading.text.size(); ++i) {
        if (reading.text[i] != u'O' && reading.text[i] != u'0')
            continue;
        const double odds = zeroOdds(line.cells[std::size_t(i)], capital);
        const bool zero = odds > 0;
        reading.text[i] = zero ? u'0' : u'O';
        auto& others = reading.alternatives[std::size_t(i)];
        others.remove(u'0').remove(u'O');
        others.prepend(zero ? u'O' : u'0');
        auto& certainty = reading.certainties[std::size_t(i)];
        certainty = std::min(certainty, float(std::clamp(1 / (1 + std::exp(-std::abs(odds))), 0.5, 0.999)));
    }
    dropSuperfluous(reading);
    return reading;
}

} // namespace kelvara::ocr
