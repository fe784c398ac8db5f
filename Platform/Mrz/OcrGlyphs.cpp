#include "Platform/Mrz/OcrGlyphs.h"

#include <QFile>
#include <QtEndian>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

// Outside of any namespace, as Qt's macro wants it.
static void loadGlyphsResource()
{
    Q_INIT_RESOURCE(glyphs);
}

namespace kelvara::ocr {

namespace {

constexpr char kMagic[] = "KGLYPHS1";
constexpr qsizetype kMagicSize = sizeof kMagic - 1;

void append(QByteArray& to, const std::vector<float>& weights)
{
    float most = 1e-9F;
    for (const float weight : weights)
        most = std::max(most, std::abs(weight));
    quint32 scale = 0;
    std::memcpy(&scale, &most, sizeof scale);
    const auto add = [&to](auto value) {
        value = qToLittleEndian(value);
        to.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    add(scale);
    for (const float weight : weights)
        add(qint16(std::lround(double(weight) / double(most) * 32767)));
}

const char* take(const char* from, std::vector<float>& weights)
{
    const auto scale = qFromLittleEndian<quint32>(from);
    float most = 0;
    std::memcpy(&most, &scale, sizeof most);
    from += sizeof scale;
    for (float& weight : weights) {
        weight = float(qFromLittleEndian<qint16>(from)) * most / 32767;
        from += sizeof(qint16);
    }
    return from;
}

/// sums[u] = the last row + the sum of inputs[i] · row i.
template<std::size_t Units>
void layer(const std::vector<float>& weights, const float* inputs, std::size_t count, std::array<float, Units>& sums)
{
    std::copy_n(&weights[count * Units], Units, sums.begin());
    for (std::size_t i = 0; i < count; ++i) {
        if (inputs[i] == 0)
            continue;
        const float* row = &weights[i * Units];
        for (std::size_t u = 0; u < Units; ++u)
            sums[u] += inputs[i] * row[u];
    }
}

} // namespace

bool GlyphPatch::isBlank() const
{
    constexpr float kLeastInk = 0.005F; // of the window
    return std::accumulate(ink.begin(), ink.end(), 0.0F) < kLeastInk * float(ink.size());
}

GlyphPatches::GlyphPatches(const cv::Mat& ink)
{
    cv::integral(ink / 255, m_sums, CV_32S);
}

double GlyphPatches::sumUpTo(double x, double y) const
{
    const double left = std::clamp(x, 0.0, double(m_sums.cols - 1));
    const double top = std::clamp(y, 0.0, double(m_sums.rows - 1));
    const int column = std::min(int(left), m_sums.cols - 2);
    const int row = std::min(int(top), m_sums.rows - 2);
    const double right = left - column;
    const double below = top - row;
    const int* upper = m_sums.ptr<int>(row) + column;
    const int* lower = m_sums.ptr<int>(row + 1) + column;
    return (1 - below) * ((1 - right) * upper[0] + right * upper[1])
        + below * ((1 - right) * lower[0] + right * lower[1]);
}

GlyphPatch GlyphPatches::at(const Line& line, const Cell& cell, double capital) const
{
    GlyphPatch patch;
    const double width = GlyphPatch::kWidth * line.pitch / GlyphPatch::kColumns;
    const double height = GlyphPatch::kHeight * capital / GlyphPatch::kRows;
    const double left = cell.center.x - width * GlyphPatch::kColumns / 2;
    const double top = cell.center.y - height * GlyphPatch::kRows / 2;
    std::array<double, GlyphPatch::kColumns + 1> above {};
    for (int row = 0; row <= GlyphPatch::kRows; ++row) {
        std::array<double, GlyphPatch::kColumns + 1> sums {};
        for (int column = 0; column <= GlyphPatch::kColumns; ++column)
            sums[std::size_t(column)] = sumUpTo(left + column * width, top + row * height);
        for (int column = 0; row > 0 && column < GlyphPatch::kColumns; ++column) {
            const auto c = std::size_t(column);
            patch.ink[std::size_t(row - 1) * GlyphPatch::kColumns + c]
                = float((sums[c + 1] - sums[c] - above[c + 1] + above[c]) / (width * height));
        }
        above = sums;
    }
    return patch;
}

std::optional<GlyphClassifier> GlyphClassifier::fromBytes(const QByteArray& bytes)
{
    GlyphClassifier made;
    const auto weights = qsizetype(made.first.size() + made.second.size());
    if (bytes.size() != kMagicSize + 8 + 2 * weights || !bytes.startsWith(kMagic))
        return std::nullopt;
    take(take(bytes.constData() + kMagicSize, made.first), made.second);
    return made;
}

const GlyphClassifier& GlyphClassifier::shared()
{
    static const GlyphClassifier classifier = [] {
        loadGlyphsResource();
        QFile file(QStringLiteral(":/kelvara-mrz/glyphs.bin"));
        const auto loaded = file.open(QIODevice::ReadOnly) ? fromBytes(file.readAll()) : std::nullopt;
        return loaded.value_or(GlyphClassifier()); // all weights 0: of no opinion
    }();
    return classifier;
}

std::array<float, kGlyphs.size()> GlyphClassifier::probabilities(const GlyphPatch& patch) const
{
    std::array<float, kHidden> hidden {};
    layer(first, patch.ink.data(), kInputs, hidden);
    for (float& unit : hidden)
        unit = std::max(unit, 0.0F);
    std::array<float, kOutputs> outputs {};
    layer(second, hidden.data(), kHidden, outputs);
    const float most = *std::max_element(outputs.begin(), outputs.end());
    float sum = 0;
    for (float& output : outputs)
        sum += output = std::exp(output - most);
    for (float& output : outputs)
        output /= sum;
    return outputs;
}

QByteArray GlyphClassifier::bytes() const
{
    QByteArray made(kMagic, kMagicSize);
    append(made, first);
    append(made, second);
    return made;
}

} // namespace kelvara::ocr
