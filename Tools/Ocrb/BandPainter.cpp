#include "Tools/Ocrb/BandPainter.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/SpecimenFonts.h"

#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <cmath>
#include <opencv2/imgproc.hpp>

namespace kelvara::ocrb {

namespace {

using specimen::Dice;
using specimen::SpecimenFonts;

// In capitals' heights.
constexpr double kLinePitch = 2.5;
constexpr double kMargin = 0.9;

} // namespace

BandOptions bandOptions(BandCondition condition, double capital, std::uint32_t seed)
{
    Dice dice(seed, 0x6f70); // "op"
    BandOptions options { .seed = seed, .capital = capital };
    options.degrees = dice.real(-1.2, 1.2);
    options.stretch = dice.real(0.97, 1.03);
    options.paper = dice.real(185, 240);
    options.ink = dice.real(20, 60);
    options.shade = dice.real(0, 0.12);
    options.noise = 2;
    options.weight = dice.real(-0.01, 0.03);
    options.jitter = 0.008;
    switch (condition) {
    case BandCondition::Clean:
        break;
    case BandCondition::Noise:
        options.noise = 22;
        break;
    case BandCondition::SlightBlur:
        options.blur = 0.05;
        break;
    case BandCondition::StrongBlur:
        options.blur = 0.09;
        break;
    case BandCondition::Mixed:
        options.blur = dice.real(0, 0.07);
        options.noise = dice.real(0, 18);
        options.degrees = dice.real(-2.0, 2.0);
        options.stretch = dice.real(0.95, 1.05);
        options.weight = dice.real(-0.03, 0.05);
        options.jitter = 0.012;
        break;
    }
    return options;
}

std::optional<QImage> paintBand(const QStringList& lines, const BandOptions& options)
{
    const SpecimenFonts* fonts = SpecimenFonts::instance();
    if (!fonts || lines.isEmpty())
        return std::nullopt;
    Dice dice(options.seed, 0x7061); // "pa"
    const double capital = options.capital;
    qsizetype longest = 0;
    for (const QString& line : lines)
        longest = std::max(longest, line.size());

    QTransform turn;
    turn.rotate(options.degrees);
    turn.scale(capital * options.stretch, capital);
    const QRectF text(0, 0, options.pitch * double(longest), kLinePitch * double(lines.size() - 1) + 1);
    const QRectF outer
        = turn.mapRect(text).adjusted(-kMargin * capital, -kMargin * capital, kMargin * capital, kMargin * capital);
    const QPointF corner = outer.topLeft() - QPointF(dice.unit(), dice.unit());

    // Painted twice as large and reduced, so that strokes keep their exact weight.
    QImage large(QSize(int(outer.width()) + 1, int(outer.height()) + 1) * 2, QImage::Format_Grayscale8);
    large.fill(255);
    QPainter painter(&large);
    painter.setRenderHint(QPainter::Antialiasing);
    for (qsizetype l = 0; l < lines.size(); ++l) {
        for (qsizetype c = 0; c < lines[l].size(); ++c) {
            const double x = options.pitch * double(c) + dice.normal(options.jitter);
            const double y = kLinePitch * double(l) + 1 + dice.normal(options.jitter);
            QTransform glyph;
            glyph.scale(2, 2);
            glyph.translate(-corner.x(), -corner.y());
            painter.setTransform(QTransform::fromTranslate(x, y) * turn * glyph);
            const QPainterPath outline = fonts->outline(SpecimenFonts::Face::Ocr, lines[l].mid(c, 1), 1.0);
            painter.setPen(options.weight == 0
                    ? QPen(Qt::NoPen)
                    : QPen(options.weight > 0 ? Qt::black : Qt::white, std::abs(options.weight), Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
            painter.setBrush(Qt::NoBrush);
            painter.fillPath(outline, Qt::black);
            if (options.weight != 0)
                painter.strokePath(outline, painter.pen());
        }
    }
    painter.end();

    const cv::Mat drawn(large.height(), large.width(), CV_8U, large.bits(), std::size_t(large.bytesPerLine()));
    cv::Mat cover;
    cv::resize(drawn, cover, cv::Size(), 0.5, 0.5, cv::INTER_AREA);
    cover.convertTo(cover, CV_32F, 1.0 / 255);
    if (options.blur > 0)
        cv::GaussianBlur(cover, cover, cv::Size(), options.blur * capital);
    const double slant = dice.real(0, 6.28);
    QImage band(cover.cols, cover.rows, QImage::Format_RGB32);
    for (int y = 0; y < cover.rows; ++y) {
        auto* out = reinterpret_cast<QRgb*>(band.scanLine(y));
        for (int x = 0; x < cover.cols; ++x) {
            const double across
                = std::cos(slant) * (double(x) / cover.cols - 0.5) + std::sin(slant) * (double(y) / cover.rows - 0.5);
            const double level = (options.ink + (options.paper - options.ink) * double(cover.at<float>(y, x)))
                * (1 + options.shade * across);
            const auto noisy = [&](double value) {
                return int(std::lround(std::clamp(value + dice.normal(options.noise), 0.0, 255.0)));
            };
            const int grey = noisy(level);
            out[x] = qRgb(grey, grey, grey);
        }
    }
    return band;
}

} // namespace kelvara::ocrb
