// Trains the library's second opinion on glyphs: prints bands of every condition, takes them through the product's own
// preprocessing and layout, and fits the network to the patches. The same inputs and compiler give the same bytes.
//   kelvara-train-glyphs RESULT [bands] [rounds]

#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPreprocessing.h"
#include "Platform/Mrz/OcrBitmap.h"
#include "Platform/Mrz/OcrGlyphs.h"
#include "Platform/Mrz/OcrJudgement.h"
#include "Tools/Ocrb/BandPainter.h"
#include "Tools/Ocrb/BandText.h"
#include "Tools/Specimen/Dice.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>

#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>

using namespace kelvara;
using namespace kelvara::ocrb;
using ocr::GlyphClassifier;
using ocr::GlyphPatch;
using specimen::Dice;

namespace {

// Below a million, away from what Tesseract's model is trained on.
constexpr std::uint32_t kFirstSeed = 300'000;

struct Sample
{
    std::array<std::uint8_t, GlyphClassifier::kInputs> ink {};
    std::uint8_t glyph = 0;
};

/// The five conditions of the evaluation, and beyond them whatever a scanner or a camera may do.
BandOptions optionsOf(std::uint32_t seed)
{
    Dice dice(seed, 0x676c); // "gl"
    static constexpr std::array conditions { BandCondition::Clean, BandCondition::Noise, BandCondition::SlightBlur,
        BandCondition::Mixed, BandCondition::StrongBlur, BandCondition::StrongBlur };
    BandOptions options = bandOptions(dice.pick(std::span<const BandCondition>(conditions)), dice.real(14, 34), seed);
    if (dice.chance(0.5)) {
        options.blur = dice.real(0, 0.12);
        options.noise = dice.chance(0.5) ? dice.real(0, 25) : 2;
        options.degrees = dice.real(-2.5, 2.5);
        options.stretch = dice.real(0.93, 1.07);
        options.weight = dice.real(-0.04, 0.06);
        options.jitter = dice.real(0.005, 0.02);
        options.shade = dice.real(0, 0.25);
        options.pitch = dice.real(0.93, 1.12);
    }
    return options;
}

/// Specks and scratches, dark and bright, smaller than any stroke is long.
void soil(QImage& band, double capital, Dice& dice)
{
    QPainter painter(&band);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = dice.integer(0, 40); i > 0; --i) {
        const int grey = dice.chance(0.6) ? dice.integer(20, 120) : dice.integer(190, 240);
        const QPointF at(dice.real(0, band.width()), dice.real(0, band.height()));
        const QPointF along(dice.real(-0.4, 0.4) * capital, dice.real(-0.4, 0.4) * capital);
        painter.setPen(QPen(QColor(grey, grey, grey), dice.real(0.02, 0.1) * capital, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(at, dice.chance(0.5) ? at : at + along);
    }
}

/// Some bands are soiled, and some were photographed from afar and enlarged.
std::optional<QImage> bandOf(const QStringList& lines, std::uint32_t seed)
{
    Dice dice(seed, 0x6661); // "fa"
    BandOptions options = optionsOf(seed);
    if (!dice.chance(0.2)) {
        auto band = paintBand(lines, options);
        if (band && dice.chance(0.2))
            soil(*band, options.capital, dice);
        return band;
    }
    const double capital = options.capital;
    options.capital = dice.real(7, 13);
    options.noise = dice.real(0, 8);
    options.blur = std::min(options.blur, 0.05);
    const auto band = paintBand(lines, options);
    return band
        ? std::optional(band->scaledToWidth(int(band->width() * capital / options.capital), Qt::SmoothTransformation))
        : std::nullopt;
}

void addSamples(std::vector<Sample>& samples, std::uint32_t seed)
{
    const QStringList lines = seed % 3 ? evenText(seed) : bandText(seed % 2 ? BandFormat::TD1 : BandFormat::TD3, seed);
    const auto band = bandOf(lines, seed);
    const auto prepared = band ? preprocessImage(*band) : std::nullopt;
    if (!prepared)
        return;
    const cv::Mat ink = ocr::inkOf(*prepared);
    const ocr::Layout layout = ocr::findLayout(ink);
    if (layout.lines.size() != std::size_t(lines.size()))
        return;
    const ocr::GlyphPatches patches(ink);
    for (std::size_t l = 0; l < layout.lines.size(); ++l) {
        const ocr::Line& line = layout.lines[l];
        const QString& text = lines[qsizetype(l)];
        if (line.cells.size() != std::size_t(text.size()))
            continue;
        const double capital = ocr::capitalOf(line, text);
        for (std::size_t c = 0; c < line.cells.size(); ++c) {
            const std::size_t glyph = ocr::kGlyphs.find(text[qsizetype(c)].unicode());
            // Most of a document's characters are fillers.
            if (text[qsizetype(c)] == u'<' && seed % 3 == 0 && (c + seed) % 5)
                continue;
            const GlyphPatch patch = patches.at(line, line.cells[c], capital);
            Sample sample;
            sample.glyph = std::uint8_t(glyph);
            for (std::size_t i = 0; i < sample.ink.size(); ++i)
                sample.ink[i] = std::uint8_t(std::lround(255 * std::min(patch.ink[i], 1.0F)));
            samples.push_back(sample);
        }
    }
}

/// The C library's own may differ from processor to processor in the last digit.
float exponential(float x)
{
    if (x < -30)
        return 0;
    double power = 1 + double(x) / 4096;
    for (int i = 0; i < 12; ++i)
        power *= power;
    return float(power);
}

/// Gradient descent with momentum.
class Trainer
{
public:
    explicit Trainer(Dice& dice)
    {
        const auto draw = [&](std::vector<float>& weights, std::size_t inputs, std::size_t units) {
            for (std::size_t i = 0; i < inputs * units; ++i)
                weights[i] = float(dice.normal(std::sqrt(2.0 / double(inputs))));
        };
        draw(net.first, GlyphClassifier::kInputs, GlyphClassifier::kHidden);
        draw(net.second, GlyphClassifier::kHidden, GlyphClassifier::kOutputs);
    }

    /// Learns from a sample; true if it was right already. The step is taken with every `kBatch`th.
    bool learn(const Sample& sample, float rate)
    {
        constexpr std::size_t inputs = GlyphClassifier::kInputs;
        m_active.clear();
        for (std::size_t i = 0; i < inputs; ++i) {
            if (sample.ink[i])
                m_active.emplace_back(i, float(sample.ink[i]) / 255);
        }
        m_active.emplace_back(inputs, 1.0F);
        std::array<float, GlyphClassifier::kHidden> hidden {};
        for (const auto& [i, ink] : m_active)
            add(hidden, &net.first[i * hidden.size()], ink);
        std::array<float, GlyphClassifier::kOutputs> outputs {};
        add(outputs, &net.second[hidden.size() * outputs.size()], 1);
        for (std::size_t h = 0; h < hidden.size(); ++h) {
            hidden[h] = std::max(hidden[h], 0.0F);
            if (hidden[h] > 0)
                add(outputs, &net.second[h * outputs.size()], hidden[h]);
        }
        const auto best = std::max_element(outputs.begin(), outputs.end());
        const bool right = std::size_t(best - outputs.begin()) == sample.glyph;
        const float most = *best;
        float sum = 0;
        for (float& output : outputs)
            sum += output = exponential(output - most);
        for (float& output : outputs)
            output /= sum;
        outputs[sample.glyph] -= 1;
        back(hidden, outputs);
        if (++m_count == kBatch)
            step(rate);
        return right;
    }

    GlyphClassifier net;

private:
    static constexpr int kBatch = 32;
    static constexpr float kMomentum = 0.9F;

    template<std::size_t Units> static void add(std::array<float, Units>& to, const float* row, float weight)
    {
        for (std::size_t u = 0; u < Units; ++u)
            to[u] += weight * row[u];
    }

    template<std::size_t Units> static void addTo(float* row, const std::array<float, Units>& gradient, float weight)
    {
        for (std::size_t u = 0; u < Units; ++u)
            row[u] += weight * gradient[u];
    }

    void back(const std::array<float, GlyphClassifier::kHidden>& hidden,
        const std::array<float, GlyphClassifier::kOutputs>& gradient)
    {
        std::array<float, GlyphClassifier::kHidden> inner {};
        for (std::size_t h = 0; h < hidden.size(); ++h) {
            if (hidden[h] <= 0)
                continue;
            const float* row = &net.second[h * gradient.size()];
            for (std::size_t u = 0; u < gradient.size(); ++u)
                inner[h] += row[u] * gradient[u];
            addTo(&m_second[h * gradient.size()], gradient, hidden[h]);
        }
        addTo(&m_second[hidden.size() * gradient.size()], gradient, 1);
        for (const auto& [i, ink] : m_active)
            addTo(&m_first[i * inner.size()], inner, ink);
    }

    void step(float rate)
    {
        m_count = 0;
        const auto move = [rate](std::vector<float>& weights, std::vector<float>& gradient, std::vector<float>& speed) {
            for (std::size_t i = 0; i < weights.size(); ++i) {
                speed[i] = kMomentum * speed[i] - rate * (gradient[i] / kBatch + 2e-5F * weights[i]);
                weights[i] += speed[i];
                gradient[i] = 0;
            }
        };
        move(net.first, m_first, m_firstSpeed);
        move(net.second, m_second, m_secondSpeed);
    }

    int m_count = 0;
    std::vector<std::pair<std::size_t, float>> m_active;
    std::vector<float> m_first = std::vector<float>(net.first.size());
    std::vector<float> m_second = std::vector<float>(net.second.size());
    std::vector<float> m_firstSpeed = std::vector<float>(net.first.size());
    std::vector<float> m_secondSpeed = std::vector<float>(net.second.size());
};

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: kelvara-train-glyphs RESULT [bands] [rounds]\n");
        return 2;
    }
    FilterVendor::registerFilters();
    const auto bands = std::uint32_t(argc > 2 ? std::atoi(argv[2]) : 5000);
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 14;
    std::vector<Sample> samples;
    for (std::uint32_t i = 0; i < bands; ++i)
        addSamples(samples, kFirstSeed + i);
    std::printf("%zu glyphs of %u bands\n", samples.size(), bands);
    if (samples.empty())
        return 1;
    Dice dice(1, 0x7467); // "tg"
    Trainer trainer(dice);
    std::vector<std::uint32_t> order(samples.size());
    std::iota(order.begin(), order.end(), 0U);
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t i = order.size() - 1; i > 0; --i)
            std::swap(order[i], order[std::size_t(dice.integer(0, int(i)))]);
        const float rate = 0.1F * float(0.5 * (1 + std::cos(3.14159 * round / rounds)));
        long wrong = 0;
        for (const std::uint32_t at : order)
            wrong += trainer.learn(samples[at], rate) ? 0 : 1;
        std::printf("round %d: %.3f %% wrong\n", round + 1, 100.0 * double(wrong) / double(samples.size()));
        std::fflush(stdout);
    }
    QFile file(QString::fromLocal8Bit(argv[1]));
    const QByteArray bytes = trainer.net.bytes();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? 0 : 1;
}
