#include "Tools/Specimen/CardLayer.h"

#include "Tools/Specimen/CardArt.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/Pose.h"
#include "Tools/Specimen/Sensor.h"
#include "Tools/Specimen/SharedCache.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace kelvara::specimen {

namespace {

/// Around the printed card, so that interpolation at its rim meets transparent pixels.
constexpr int rim = 2;

/// The print with the light and dark lines that a plastic card's edges show.
QImage withEdges(const QImage& print)
{
    QImage card(print.size() + QSize(2 * rim, 2 * rim), QImage::Format_ARGB32_Premultiplied);
    card.fill(Qt::transparent);
    QPainter painter(&card);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawImage(rim, rim, print);
    painter.translate(rim, rim);
    painter.scale(print.width() / cardWidth, print.height() / cardHeight);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    QPainterPath edge;
    edge.addRoundedRect(QRectF(0.11, 0.11, cardWidth - 0.22, cardHeight - 0.22), cardRadius - 0.11, cardRadius - 0.11);
    QLinearGradient light(0, 0, cardWidth * 0.4, cardHeight);
    light.setColorAt(0, QColor(255, 255, 255, 165));
    light.setColorAt(0.5, QColor(180, 184, 190, 60));
    light.setColorAt(1, QColor(64, 68, 74, 120));
    painter.strokePath(edge, QPen(light, 0.3));
    return card;
}

std::shared_ptr<const QImage> printedCard(const SpecimenData& data, bool front, double pixels)
{
    constexpr int stride = 128;
    const int width = std::clamp(static_cast<int>(std::ceil(pixels / stride)) * stride, stride, 2560);
    using Key = std::tuple<std::uint32_t, QString, bool, int>;
    static SharedCache<Key, QImage> cache(12);
    // The seed alone would do for data made from it; the lines make sure for data that a test has altered.
    const Key key(data.seed, data.mrzLines().join(u'\n') + data.motherName + data.fatherName, front, width);
    return cache.get(key, [&]() -> QImage {
        const QImage print = front ? printFront(data, width) : printBack(data, width);
        return print.isNull() ? QImage() : withEdges(print);
    });
}

/// Soft shade that the card's thickness throws, away from the light.
void castShade(cv::Mat& picture, const SceneOptions& options, const QTransform& pose)
{
    Dice dice(options.seed, 0x5ade);
    const double angle = dice.real(0, 2 * CV_PI);
    const double lift = dice.real(0.5, 1.8);
    const QPointF offset(lift * std::cos(angle), lift * std::sin(angle));
    const double reach = lift + 4.5;
    QPainterPath path;
    path.addRoundedRect(
        QRectF(-cardWidth / 2, -cardHeight / 2, cardWidth, cardHeight).translated(offset), cardRadius, cardRadius);
    const QRect whole(0, 0, picture.cols, picture.rows);
    const QRectF grown(-cardWidth / 2 - reach, -cardHeight / 2 - reach, cardWidth + 2 * reach, cardHeight + 2 * reach);
    const QRect area = pose.mapRect(grown).toAlignedRect() & whole;
    if (area.isEmpty())
        return;
    constexpr int coarse = 4;
    QImage mask(area.width() / coarse + 1, area.height() / coarse + 1, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1.0 / coarse, 1.0 / coarse);
    painter.translate(-area.topLeft());
    painter.fillPath(pose.map(path), Qt::white);
    painter.end();
    cv::Mat shade;
    cv::extractChannel(pixelsOf(mask), shade, 3);
    const double pixelsPerMm = std::max(0.2, options.fill * frameOf(options).width() / cardWidth);
    cv::GaussianBlur(
        shade, shade, {}, std::max(0.5, (0.5 + lift * 0.6) * pixelsPerMm / coarse), 0, cv::BORDER_CONSTANT);
    shade *= 0.30 + 0.35 * std::clamp(options.shadow, 0.0, 1.0);
    cv::resize(shade, shade, {}, coarse, coarse, cv::INTER_LINEAR);
    cv::Mat target = picture(cv::Rect(area.x(), area.y(), area.width(), area.height()));
    darken(target, shade(cv::Rect(0, 0, area.width(), area.height())));
}

/// A lamp's or a window's reflection in the laminate: a spot or a stripe, burnt out in its middle when strong.
void reflectLight(cv::Mat& layer, QPoint origin, const SceneOptions& options, const QTransform& pose)
{
    const double glare = std::clamp(options.glare, 0.0, 1.0);
    Dice dice(options.seed, 0x61a4);
    const bool stripe = dice.chance(0.4);
    const QPointF at = pose.map(QPointF(dice.real(-0.38, 0.38) * cardWidth, dice.real(-0.36, 0.36) * cardHeight));
    const double unit = options.fill * frameOf(options).width();
    const double angle = dice.real(0, CV_PI);
    const double radiusX = unit * (stripe ? 2.0 : dice.real(0.08, 0.2)) * (0.7 + 0.5 * glare);
    const double radiusY = unit * (stripe ? dice.real(0.03, 0.07) : dice.real(0.06, 0.13)) * (0.7 + 0.5 * glare);
    constexpr int coarse = 8;
    cv::Mat light(layer.rows / coarse + 2, layer.cols / coarse + 2, CV_8U);
    const double peak = glare * 420;
    for (int y = 0; y < light.rows; ++y) {
        auto* row = light.ptr<uchar>(y);
        for (int x = 0; x < light.cols; ++x) {
            const double dx = x * coarse + origin.x() - at.x();
            const double dy = y * coarse + origin.y() - at.y();
            const double u = (std::cos(angle) * dx + std::sin(angle) * dy) / radiusX;
            const double v = (-std::sin(angle) * dx + std::cos(angle) * dy) / radiusY;
            const double r = u * u + v * v;
            row[x] = cv::saturate_cast<uchar>(peak * (0.75 * std::exp(-r) + 0.25 / (1 + r)));
        }
    }
    cv::resize(light, light, {}, coarse, coarse, cv::INTER_LINEAR);
    addLight(layer, light(cv::Rect(0, 0, layer.cols, layer.rows)));
}

} // namespace

bool layCard(QImage& picture, const SpecimenData& data, const SceneOptions& options)
{
    const auto card = printedCard(data, options.subject == Subject::Front, options.fill * frameOf(options).width());
    if (card->isNull())
        return false;
    const QTransform pose = poseOf(options);
    cv::Mat pixels = pixelsOf(picture);
    castShade(pixels, options, pose);
    const QRect area
        = cornersOf(options).boundingRect().toAlignedRect().adjusted(-2, -2, 2, 2) & QRect({ 0, 0 }, picture.size());
    if (area.isEmpty())
        return true;
    // From pixels of the print (pixel centres at integers, as OpenCV counts) to pixels of the layer.
    QTransform fromPrint;
    fromPrint.translate(-cardWidth / 2, -cardHeight / 2);
    fromPrint.scale(cardWidth / (card->width() - 2 * rim), cardHeight / (card->height() - 2 * rim));
    fromPrint.translate(0.5 - rim, 0.5 - rim);
    const QTransform toLayer = fromPrint * pose * QTransform::fromTranslate(-area.x() - 0.5, -area.y() - 0.5);
    cv::Mat layer(area.height(), area.width(), CV_8UC4);
    cv::warpPerspective(pixelsOf(*card), layer, matrixOf(toLayer), layer.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    if (options.glare > 0)
        reflectLight(layer, area.topLeft(), options, pose);
    QPainter painter(&picture);
    painter.drawImage(area.topLeft(), viewOf(layer));
    return true;
}

} // namespace kelvara::specimen
