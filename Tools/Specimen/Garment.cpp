#include "Tools/Specimen/Garment.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/Texture.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace kelvara::specimen {

namespace {

// All in pixels of the source portrait: the collar hides where the neck ends, about y 186.
constexpr double bottom = 380;

QPainterPath shoulders()
{
    QPainterPath path(QPointF(185, 174));
    path.cubicTo(176, 191, 142, 206, 104, 220);
    path.cubicTo(58, 239, 34, 284, 14, bottom);
    path.lineTo(424, bottom);
    path.cubicTo(408, 288, 388, 246, 344, 226);
    path.cubicTo(304, 210, 267, 194, 262, 167);
    path.cubicTo(255, 184, 240, 190, 224, 189);
    path.cubicTo(206, 188, 192, 184, 185, 174);
    return path;
}

/// One half of a jacket's front, with its lapel's inner edge; `side` −1 is the left of the picture.
QPainterPath jacketHalf(double side, double opening)
{
    const auto x = [&](double away) { return 221.5 + side * away; };
    QPainterPath path(QPointF(x(37.5), 174));
    path.cubicTo(x(46), 190, x(82), 208, x(118), 223);
    path.cubicTo(x(166), 242, x(188), 284, x(206), bottom);
    path.lineTo(x(-6), bottom);
    path.lineTo(x(-2), opening);
    path.cubicTo(x(14), opening - 50, x(30), 220, x(37.5), 174);
    return path;
}

QPainterPath lapel(double side, double opening)
{
    const auto x = [&](double away) { return 221.5 + side * away; };
    QPainterPath path(QPointF(x(37.5), 174));
    path.cubicTo(x(30), 220, x(14), opening - 50, x(-2), opening);
    path.lineTo(x(34), 268);
    path.lineTo(x(62), 246);
    path.lineTo(x(52), 238);
    path.lineTo(x(64), 230);
    path.cubicTo(x(54), 206, x(46), 190, x(37.5), 174);
    return path;
}

/// What the open jacket shows; above the neckline the body's outline cuts it.
QPainterPath shirtFront(double opening)
{
    QPainterPath path(QPointF(184, 150));
    path.lineTo(184, 174);
    path.cubicTo(191.5, 220, 207.5, opening - 50, 221.5, opening);
    path.cubicTo(235.5, opening - 50, 251.5, 220, 259, 174);
    path.lineTo(259, 150);
    path.closeSubpath();
    return path;
}

void drawCollarBand(QPainter& painter, const QColor& cloth)
{
    QPainterPath band(QPointF(185, 174));
    band.cubicTo(192, 184, 206, 188, 224, 189);
    band.cubicTo(240, 190, 254, 184, 260, 173);
    painter.strokePath(band, QPen(cloth.darker(135), 7));
    painter.strokePath(band.translated(0, 3), QPen(cloth.lighter(110), 4));
}

void drawFolds(QPainter& painter, const QPainterPath& within, Dice& dice)
{
    painter.save();
    painter.setClipPath(within);
    for (int i = 0; i < 9; ++i) {
        const double side = i % 2 == 0 ? -1 : 1;
        const QPointF from(221 + side * dice.real(60, 170), dice.real(225, 300));
        QPainterPath fold(from);
        fold.quadTo(from + QPointF(-side * dice.real(5, 30), dice.real(20, 60)),
            from + QPointF(side * dice.real(-40, 10), dice.real(70, 130)));
        const QColor shade = dice.chance(0.6) ? QColor(0, 0, 0, 20) : QColor(255, 255, 255, 12);
        for (const double width : { 14.0, 9.0, 4.0 })
            painter.strokePath(fold, QPen(shade, width, Qt::SolidLine, Qt::RoundCap));
    }
    painter.restore();
}

/// The inside of the collar at the nape, seen past the neck.
QPainterPath nape()
{
    QPainterPath path(QPointF(186, 173));
    path.cubicTo(200, 168, 246, 168, 259, 172);
    path.lineTo(250, 196);
    path.lineTo(196, 196);
    path.closeSubpath();
    return path;
}

/// Roundness of the shoulders and the weave, on what has been painted.
void shadeCloth(QImage& cloth, double scale, Dice& dice)
{
    cv::Mat pixels = pixelsOf(cloth);
    cv::GaussianBlur(pixels, pixels, {}, 0.45 * scale);
    cv::Mat alpha;
    cv::extractChannel(pixels, alpha, 3);
    cv::Mat small;
    cv::resize(alpha, small, {}, 0.25, 0.25, cv::INTER_AREA);
    cv::copyMakeBorder(small, small, 0, 64, 64, 64, cv::BORDER_REPLICATE);
    cv::Mat depth;
    cv::distanceTransform(small > 127, depth, cv::DIST_L2, 3);
    cv::GaussianBlur(depth, depth, {}, 2 * scale);
    depth = depth(cv::Rect(64, 0, small.cols - 128, small.rows - 64)).clone();
    cv::resize(depth, depth, pixels.size(), 0, 0, cv::INTER_LINEAR);
    const cv::Mat weave = cloudNoise(pixels.size(), 30 * scale, 30 * scale, 2, dice) * 0.7
        + cloudNoise(pixels.size(), 1.0 * scale, 1.0 * scale, 1, dice);
    const auto reach = static_cast<float>(12 * scale);
    for (int y = 0; y < pixels.rows; ++y) {
        auto* out = pixels.ptr<cv::Vec4b>(y);
        const auto* d = depth.ptr<float>(y);
        const auto* w = weave.ptr<float>(y);
        for (int x = 0; x < pixels.cols; ++x) {
            const float t = std::min(1.0F, d[x] / reach);
            const float lit = (0.72F + 0.3F * t * (2 - t)) * (1 + 0.09F * w[x]);
            for (int c = 0; c < 3; ++c)
                out[x][c] = static_cast<uchar>(std::min<float>(out[x][3], out[x][c] * lit));
        }
    }
}

} // namespace

Garment drawGarment(std::uint32_t seed, QSize size, double scale)
{
    Dice dice(seed, 0xc107);
    const bool jacket = dice.chance(0.6);
    const QColor cloth = QColor::fromHsv(dice.integer(0, 359), dice.integer(10, 150), dice.integer(40, 190));
    const QColor shirt = dice.chance(0.5)
        ? QColor::fromHsv(dice.integer(0, 359), dice.integer(0, 40), dice.integer(190, 236))
        : QColor::fromHsv(dice.integer(0, 359), dice.integer(20, 160), dice.integer(30, 120));
    const double opening = dice.real(300, 350);

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    const QPainterPath body = shoulders();
    painter.fillPath(body, cloth);
    painter.save();
    painter.setClipPath(body);
    if (jacket)
        painter.fillPath(shirtFront(opening), shirt);
    drawCollarBand(painter, jacket ? shirt : cloth);
    if (jacket) {
        for (const double side : { -1.0, 1.0 }) {
            painter.strokePath(jacketHalf(side, opening), QPen(QColor(0, 0, 0, 40), 6));
            painter.fillPath(jacketHalf(side, opening), cloth);
            painter.strokePath(lapel(side, opening), QPen(cloth.darker(170), 1.8));
            painter.fillPath(lapel(side, opening), cloth.lighter(112));
        }
    }
    painter.restore();
    drawFolds(painter, body, dice);
    painter.end();
    shadeCloth(image, scale, dice);

    QImage behind(size, QImage::Format_ARGB32_Premultiplied);
    behind.fill(Qt::transparent);
    QPainter inside(&behind);
    inside.setRenderHint(QPainter::Antialiasing);
    inside.scale(scale, scale);
    inside.fillPath(nape(), (jacket ? shirt : cloth).darker(230));
    inside.end();
    return { image, behind };
}

} // namespace kelvara::specimen
