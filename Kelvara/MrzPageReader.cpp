#include "Kelvara/MrzPageReader.h"

#include "Kelvara/MrzConsensus.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/MrzPrint.h"
#include "Kelvara/MrzToneCurve.h"
#include "Platform/Mrz/MrzAgreement.h"
#include "Platform/Mrz/MrzLines.h"
#include "Platform/Vision/MrzBandImage.h"

#include <QElapsedTimer>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace kelvara {

namespace {

constexpr std::size_t kMostBands = 3;
constexpr float kCertainName = 0.6F;

/// One way to draw a band and to make it black and white.
struct Manner
{
    MrzBandLook look;
    double cut = 0.5;
};

constexpr std::array kManners { Manner { { .capital = 22, .brightestChannel = false, .sharpness = 1 }, 0.5 },
    Manner { { .capital = 22, .brightestChannel = false, .sharpness = 0 }, 0.5 },
    Manner { { .capital = 22, .brightestChannel = true, .sharpness = 1 }, 0.4 } };

using Lines = std::vector<MrzLineReading>;

struct Attempt
{
    Lines text;
    std::optional<QKMRZResult> result;

    [[nodiscard]] bool isValid() const { return result && result->allCheckDigitsValid; }

    /// Greater is better.
    [[nodiscard]] std::tuple<bool, bool, int, double> merit() const
    {
        int checks = 0;
        if (result)
            checks = int(result->isDocumentNumberValid) + int(result->isBirthDateValid) + int(result->isExpiryDateValid)
                + int(result->isPersonalNumberValid.value_or(false))
                + int(result->isFinalCheckDigitValid.value_or(false));
        double certainty = 0;
        std::size_t count = 1;
        for (const MrzLineReading& line : text) {
            for (const float one : line.certainties) {
                certainty += double(one);
                ++count;
            }
        }
        return { isValid(), result.has_value(), checks, certainty / double(count) };
    }
};

class Stopwatch
{
public:
    Stopwatch() { m_timer.start(); }
    /// Since it was made or last asked.
    double milliseconds()
    {
        const double passed = double(m_timer.nsecsElapsed()) / 1e6;
        m_timer.restart();
        return passed;
    }

private:
    QElapsedTimer m_timer;
};

bool areAlike(const Lines& a, const Lines& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](const MrzLineReading& x, const MrzLineReading& y) { return x.text == y.text; });
}

/// Whether all letters of the names, which no check digit protects, were read with some certainty.
bool areNamesCertain(const Attempt& attempt)
{
    const QStringList& own = attempt.result->lines;
    const QString& names = own.size() == 3 ? own.back() : own.front();
    for (const MrzLineReading& line : attempt.text) {
        if (line.text.left(8) != names.left(8) && line.text.right(12) != names.right(12))
            continue;
        for (std::size_t i = 0; i < line.certainties.size(); ++i) {
            if (line.text[qsizetype(i)] != u'<' && line.certainties[i] < kCertainName)
                return false;
        }
    }
    return true;
}

/// All that is tried on one picture.
class Attempts
{
public:
    void consider(Attempt attempt, const MrzBand& band)
    {
        if (attempt.isValid()) {
            m_isContested |= m_best && m_best->isValid() && !sameProtectedFields(*m_best->result, *attempt.result);
            // What several agree upon comes last.
            if (m_best && m_best->isValid()) {
                m_best = std::move(attempt);
                return;
            }
        }
        if (m_best && m_best->merit() >= attempt.merit())
            return;
        m_best = std::move(attempt);
        m_band = band;
    }

    [[nodiscard]] bool hasResult() const { return m_best && m_best->result; }
    [[nodiscard]] bool isValid() const { return m_best && m_best->isValid(); }
    [[nodiscard]] bool isCertain() const { return isValid() && areNamesCertain(*m_best); }
    [[nodiscard]] const std::optional<Attempt>& best() const { return m_best; }
    [[nodiscard]] const std::optional<MrzBand>& band() const { return m_band; }
    [[nodiscard]] bool isContested() const { return m_isContested; }

private:
    std::optional<Attempt> m_best;
    std::optional<MrzBand> m_band;
    bool m_isContested = false;
};

} // namespace

MrzPageReading MrzPageReader::read(const QImage& picture)
{
    MrzPageReading reading;
    Stopwatch watch;
    const std::vector<MrzBand> bands = findMrzBands(picture);
    reading.stages.search = watch.milliseconds();
    Attempts attempts;
    const auto parsed = [&](const Lines& text) {
        const auto lines = mrzLines(text);
        return lines ? m_parser.parse(*lines) : std::nullopt;
    };
    for (std::size_t b = 0; b < std::min(bands.size(), kMostBands); ++b) {
        if (attempts.hasResult())
            break; // A band was right, if not legible.
        std::vector<Lines> texts;
        for (const Manner& manner : kManners) {
            watch.milliseconds();
            const QImage drawn = drawMrzBand(picture, bands[b], manner.look);
            const auto prepared = preprocessImage(tonedForThreshold(drawn, manner.cut));
            reading.stages.preprocess += watch.milliseconds();
            if (!prepared)
                continue;
            ++reading.attempts;
            TesseractResult result = m_engine.performOCR(*prepared);
            reading.stages.ocr += watch.milliseconds();
            if (auto* error = std::get_if<TesseractError>(&result)) {
                reading.error = std::move(*error);
                return reading;
            }
            Attempt attempt;
            attempt.text = std::get<TesseractText>(std::move(result)).lines;
            texts.push_back(attempt.text);
            // One drawing of small print cannot be trusted with O and 0; several that agree can.
            doubtZeros(attempt.text, bands[b].pitch);
            attempt.result = parsed(attempt.text);
            attempts.consider(std::move(attempt), bands[b]);
            if (texts.size() > 1) {
                Attempt together;
                together.text = consensusOf(texts);
                together.result = parsed(together.text);
                attempts.consider(std::move(together), bands[b]);
            }
            reading.stages.parse += watch.milliseconds();
            if (attempts.isCertain())
                break;
            // A third drawing can only decide between two readings.
            if (texts.size() == 2 && (attempts.isValid() || !attempts.hasResult() || areAlike(texts[0], texts[1])))
                break;
        }
    }
    reading.band = attempts.band() ? attempts.band() : bands.empty() ? std::nullopt : std::optional(bands.front());
    if (!attempts.best())
        return reading;
    Attempt best = *attempts.best();
    reading.text = best.text;
    if (!best.isValid()) {
        watch.milliseconds();
        Attempt guess;
        guess.text = withZerosPreferred(best.text);
        guess.result = parsed(guess.text);
        if (guess.merit() >= best.merit())
            best = std::move(guess);
        reading.stages.parse += watch.milliseconds();
    }
    if (best.result) {
        best.result->allCheckDigitsValid &= !attempts.isContested();
        reading.lines = printedLines(*best.result, best.text);
    }
    reading.result = std::move(best.result);
    return reading;
}

} // namespace kelvara
