#include "Platform/Mrz/OcrJudgement.h"

#include <algorithm>
#include <cmath>

namespace kelvara::ocr {

namespace {

// Heights in OCR-B, in capitals' heights.
constexpr double kRound = 734.0 / 723.0;
constexpr double kDigit = 787.0 / 723.0;

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

/// Where the opinions differ and neither is sure, the likelier is right in one of three.
constexpr float kUnsettled = 0.25F;

/// One glyph's two opinions. Figures as measured on bands of all conditions.
struct Opinions
{
    QChar first; ///< Tesseract's; null when it sees nothing.
    float firstCertainty = 0;
    QChar second;
    float secondCertainty = 0;

    [[nodiscard]] bool agree() const { return first == second || (isRound(first) && isRound(second)); }

    /// The character and how likely it is right.
    [[nodiscard]] std::pair<QChar, float> verdict() const
    {
        constexpr float sure = 0.97F;
        if (agree()) {
            // Which of O and 0 it is Tesseract cannot tell.
            const float remaining = isRound(first) ? 1 : firstCertainty < 0.5F ? 0.3F : 0.1F;
            return { second, 1 - remaining * (1 - secondCertainty) };
        }
        if (!first.isNull() && (firstCertainty >= sure ? secondCertainty < 0.9F : secondCertainty < 0.5F))
            return { first, std::min(firstCertainty, kUnsettled) };
        const float alone = std::pow(secondCertainty, 1.5F);
        return { second, firstCertainty >= sure ? std::min(alone, 0.965F) : alone };
    }

private:
    static bool isRound(QChar c) { return c == u'O' || c == u'0'; }
};

/// What else a glyph may be: the second opinion's likeliest first.
QString alternativesOf(
    QChar taken, const std::array<float, kGlyphs.size()>& probabilities, const Candidates& candidates)
{
    constexpr float least = 0.002F;
    constexpr qsizetype most = 4;
    std::vector<std::pair<float, QChar>> ranked;
    for (std::size_t i = 0; i < kGlyphs.size(); ++i) {
        if (probabilities[i] > least)
            ranked.emplace_back(probabilities[i], kGlyphs[i]);
    }
    std::sort(ranked.rbegin(), ranked.rend());
    for (const auto& [character, rating] : candidates.ranked)
        ranked.emplace_back(0.0F, character);
    QString others;
    for (const auto& [probability, character] : ranked) {
        if (character != taken && !others.contains(character) && others.size() < most)
            others += character;
    }
    return others;
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

double capitalOf(const Line& line, const QString& text)
{
    std::vector<double> heights;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const double own = line.cells[std::size_t(i)].height;
        const QChar c = text[i];
        if (own <= 0 || c == u'<' || c == u'O' || c == u'0' || c == u'Q')
            continue;
        heights.push_back(own / (c.isDigit() ? kDigit : QStringLiteral("CGSJU").contains(c) ? kRound : 1.0));
    }
    if (heights.empty())
        return line.height;
    const auto middle = heights.begin() + std::ptrdiff_t(heights.size() / 2);
    std::nth_element(heights.begin(), middle, heights.end());
    // The mean of what is near the median: finer than whole pixels.
    const double median = *middle;
    double sum = 0;
    int count = 0;
    for (const double height : heights) {
        if (std::abs(height - median) < 0.06 * median) {
            sum += height;
            ++count;
        }
    }
    return sum / count;
}

MrzLineReading judged(const Line& line, const std::vector<Candidates>& candidates, const GlyphPatches& patches)
{
    QString first;
    for (const Candidates& candidate : candidates)
        first += candidate.ranked.empty() ? QChar(u'<') : candidate.ranked.front().first;
    const double capital = capitalOf(line, first);
    MrzLineReading reading;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const GlyphPatch patch = patches.at(line, line.cells[i], capital);
        const auto& ranked = candidates[i].ranked;
        if (ranked.empty() && patch.isBlank()) {
            reading.text += u'<';
            reading.certainties.push_back(0);
            reading.alternatives.emplace_back();
            continue;
        }
        const auto probabilities = GlyphClassifier::shared().probabilities(patch);
        const auto best = std::max_element(probabilities.begin(), probabilities.end());
        Opinions opinions;
        opinions.second = QChar(kGlyphs[std::size_t(best - probabilities.begin())]);
        opinions.secondCertainty = *best;
        if (!ranked.empty()) {
            const float lead = ranked.front().second - (ranked.size() > 1 ? ranked[1].second : 0.0F);
            opinions.first = ranked.front().first;
            opinions.firstCertainty = certaintyOf(ranked.front().second, lead);
        }
        const auto [character, certainty] = opinions.verdict();
        reading.text += character;
        reading.certainties.push_back(certainty);
        reading.alternatives.push_back(alternativesOf(character, probabilities, candidates[i]));
    }
    dropSuperfluous(reading);
    return reading;
}

} // namespace kelvara::ocr
