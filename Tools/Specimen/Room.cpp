#include "Tools/Specimen/Backdrop.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/SharedCache.h"

#include <QLinearGradient>
#include <QPainter>

#include <opencv2/imgproc.hpp>

#include <tuple>

namespace kelvara::specimen {

namespace {

QColor wallColour(Dice& dice)
{
    return QColor::fromHsv(dice.integer(0, 359), dice.integer(4, 50), dice.integer(120, 225));
}

void drawWindow(QPainter& painter, const QRectF& at)
{
    painter.fillRect(at.adjusted(-0.03, -0.03, 0.03, 0.03), QColor(236, 234, 228));
    QLinearGradient sky(at.topLeft(), at.bottomLeft());
    sky.setColorAt(0, QColor(214, 230, 246));
    sky.setColorAt(0.7, QColor(240, 244, 246));
    sky.setColorAt(1, QColor(150, 170, 130));
    painter.fillRect(at, sky);
    painter.fillRect(QRectF(at.center().x() - 0.012, at.top(), 0.024, at.height()), QColor(232, 230, 224));
}

void drawShelf(QPainter& painter, const QRectF& at, Dice& dice)
{
    painter.fillRect(at, QColor(96, 70, 48));
    constexpr int boards = 4;
    const double step = at.height() / boards;
    for (int board = 0; board < boards; ++board) {
        const QRectF bay(at.left() + 0.02, at.top() + board * step + 0.02, at.width() - 0.04, step - 0.04);
        painter.fillRect(bay, QColor(58, 44, 34));
        for (double x = bay.left(); x < bay.right() - 0.02;) {
            const double width = dice.real(0.018, 0.05);
            const double height = bay.height() * dice.real(0.55, 0.95);
            painter.fillRect(QRectF(x, bay.bottom() - height, std::min(width, bay.right() - x), height),
                QColor::fromHsv(dice.integer(0, 359), dice.integer(30, 190), dice.integer(50, 220)));
            x += width + (dice.chance(0.1) ? 0.06 : 0.003);
        }
    }
}

void drawPicture(QPainter& painter, const QRectF& at, Dice& dice)
{
    painter.fillRect(at, QColor(40, 34, 30));
    const double rim = 0.02;
    QLinearGradient art(at.topLeft(), at.bottomRight());
    for (const double stop : { 0.0, 0.4, 0.75, 1.0 })
        art.setColorAt(stop, QColor::fromHsv(dice.integer(0, 359), dice.integer(20, 140), dice.integer(90, 230)));
    painter.fillRect(at.adjusted(rim, rim, -rim, -rim), art);
}

QImage makeRoom(std::uint32_t seed, QSize size)
{
    // Out of focus: a quarter of the size holds all there is.
    Dice dice(seed, 0x4003);
    const QSize small = (size / 4).expandedTo({ 4, 4 });
    QImage room(small, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&room);
    painter.setRenderHint(QPainter::Antialiasing);
    const double unit = std::max(small.width(), small.height());
    painter.scale(unit, unit);
    const double width = small.width() / unit;
    const double height = small.height() / unit;
    const QColor wall = wallColour(dice);
    QLinearGradient light(0, 0, width, height * 0.4);
    light.setColorAt(dice.chance(0.5) ? 0 : 1, wall.lighter(116));
    light.setColorAt(0.5, wall);
    painter.fillRect(QRectF(0, 0, width, height), light);
    const double floor = height * dice.real(0.72, 0.9);
    painter.fillRect(QRectF(0, floor, width, height), QColor(110, 90, 70));
    painter.fillRect(QRectF(0, floor - 0.02, width, 0.02), wall.lighter(125));
    const int things = dice.integer(1, 3);
    for (int i = 0; i < things; ++i) {
        const double x = dice.chance(0.5) ? dice.real(-0.1, 0.1) * width : dice.real(0.62, 0.85) * width;
        switch (dice.integer(0, 2)) {
        case 0:
            drawWindow(painter, { x, height * 0.08, 0.28, 0.36 });
            break;
        case 1:
            drawShelf(painter, { x, height * 0.15, 0.26, floor - height * 0.15 }, dice);
            break;
        default:
            drawPicture(painter, { x, height * 0.12, 0.2, 0.24 }, dice);
        }
    }
    painter.end();
    cv::Mat pixels = pixelsOf(room);
    cv::GaussianBlur(pixels, pixels, {}, std::max(0.8, unit * dice.real(0.006, 0.018)));
    QImage result(size, QImage::Format_ARGB32_Premultiplied);
    cv::Mat large = pixelsOf(result);
    cv::resize(pixels, large, large.size(), 0, 0, cv::INTER_LINEAR);
    return result;
}

} // namespace

std::shared_ptr<const QImage> roomFor(const SceneOptions& options)
{
    using Key = std::tuple<std::uint32_t, int, int>;
    static SharedCache<Key, QImage> cache(3);
    return cache.get(Key(options.seed, options.size.width(), options.size.height()),
        [&] { return makeRoom(options.seed, options.size); });
}

} // namespace kelvara::specimen
