#include "Tools/Specimen/Backdrop.h"

#include "Tools/Specimen/CardArt.h"
#include "Tools/Specimen/Clutter.h"
#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/SharedCache.h"
#include "Tools/Specimen/Texture.h"

#include <QPainter>

#include <opencv2/imgproc.hpp>

#include <array>
#include <tuple>

namespace kelvara::specimen {

namespace {

/// The surface is drawn for a card that fills this much of the picture; nearer and farther ones enlarge and shrink it.
constexpr double drawnForFill = 0.72;
/// Room for a card that lies aside, and for the corners of a turned picture, which reach by its longer side.
constexpr double margin = 1.25;
constexpr double marginForTurn = 0.2;

/// The card's own mean colour (B, G, R), for surfaces that hide it.
cv::Scalar cardColour()
{
    return { 222, 226, 218, 255 };
}

cv::Vec3d tone(Dice& dice, const cv::Vec3d& low, const cv::Vec3d& high)
{
    const double t = dice.unit();
    return low + t * (high - low);
}

void paintDesk(cv::Mat& picture, double mm, Dice& dice)
{
    static const std::array<cv::Vec3d, 5> tones { cv::Vec3d(96, 104, 110), cv::Vec3d(60, 78, 98),
        cv::Vec3d(140, 150, 158), cv::Vec3d(92, 88, 74), cv::Vec3d(58, 60, 64) };
    const cv::Vec3d colour = dice.pick(std::span<const cv::Vec3d>(tones)) * dice.real(0.85, 1.2);
    const cv::Mat level = cloudNoise(picture.size(), 60 * mm, 60 * mm, 3, dice) * 0.6
        + cloudNoise(picture.size(), 1.2 * mm, 1.2 * mm, 2, dice) * 0.5;
    paintSurface(picture, colour, level, { 12, 12, 12 });
}

void paintWood(cv::Mat& picture, double mm, Dice& dice)
{
    const cv::Vec3d colour = tone(dice, { 38, 66, 104 }, { 112, 158, 196 });
    const cv::Size size = picture.size();
    const cv::Mat bend = cloudNoise(size, 120 * mm, 40 * mm, 3, dice);
    const cv::Mat fibre = cloudNoise(size, 40 * mm, 0.5 * mm, 2, dice);
    const cv::Mat pores = cloudNoise(size, 7 * mm, 0.25 * mm, 1, dice);
    const double ring = dice.real(4, 9) * mm;
    const double plank = dice.real(60, 120) * mm;
    const double firstJoint = dice.real(0, plank);
    cv::Mat level(size, CV_32F);
    for (int y = 0; y < size.height; ++y) {
        auto* out = level.ptr<float>(y);
        const auto* b = bend.ptr<float>(y);
        const auto* f = fibre.ptr<float>(y);
        const auto* p = pores.ptr<float>(y);
        const double along = std::fmod(y + firstJoint, plank);
        const auto joint = static_cast<float>(along < 0.5 * mm ? -2.2 : 0);
        const auto offset = static_cast<float>(std::floor((y + firstJoint) / plank) * 17.3);
        for (int x = 0; x < size.width; ++x) {
            const float phase = static_cast<float>(y / ring) + 3.4F * b[x] + offset;
            const float t = phase - std::floor(phase);
            const float rings = t * t * (1 - t) * 5 - 0.4F;
            out[x] = 0.7F * rings + 0.6F * f[x] + (p[x] < -0.42F ? -0.5F : 0.0F) + joint;
        }
    }
    paintSurface(picture, colour, level, { 18, 24, 28 });
}

void paintCloth(cv::Mat& picture, double mm, Dice& dice)
{
    const cv::Vec3d colour(dice.real(40, 170), dice.real(40, 160), dice.real(40, 180));
    const cv::Size size = picture.size();
    const cv::Mat folds = cloudNoise(size, 55 * mm, 90 * mm, 2, dice);
    const cv::Mat uneven = cloudNoise(size, 0.8 * mm, 0.8 * mm, 1, dice);
    const double thread = std::max(2.5, dice.real(0.5, 1.1) * mm);
    const bool striped = dice.chance(0.4);
    const double stripe = dice.real(9, 26) * mm;
    cv::Mat level(size, CV_32F);
    for (int y = 0; y < size.height; ++y) {
        auto* out = level.ptr<float>(y);
        const auto* f = folds.ptr<float>(y);
        const auto* u = uneven.ptr<float>(y);
        const auto row = static_cast<int>(y / thread);
        const auto v = static_cast<float>(std::sin(y / thread * CV_PI));
        for (int x = 0; x < size.width; ++x) {
            const auto column = static_cast<int>(x / thread);
            const bool over = ((row + column) & 1) != 0;
            const float weave = over ? std::abs(v) : 0.35F;
            const bool dark = striped && std::fmod(x, stripe) < stripe * 0.4;
            out[x] = 0.9F * f[x] + 0.35F * u[x] + 0.5F * weave - (dark ? 0.8F : 0);
        }
    }
    paintSurface(picture, colour, level, { 24, 24, 24 });
}

void paintPaper(cv::Mat& picture, double mm, Dice& dice)
{
    const cv::Vec3d colour = tone(dice, { 206, 218, 224 }, { 236, 238, 238 });
    const cv::Mat level = cloudNoise(picture.size(), 90 * mm, 90 * mm, 2, dice)
        + cloudNoise(picture.size(), 0.6 * mm, 0.6 * mm, 1, dice) * 0.4;
    paintSurface(picture, colour, level, { 8, 7, 6 });
}

void paintDark(cv::Mat& picture, double mm, Dice& dice)
{
    const cv::Vec3d colour(dice.real(18, 48), dice.real(18, 42), dice.real(18, 44));
    const cv::Mat level = cloudNoise(picture.size(), 70 * mm, 70 * mm, 3, dice)
        + cloudNoise(picture.size(), 0.7 * mm, 0.7 * mm, 1, dice) * 0.7;
    paintSurface(picture, colour, level, { 8, 8, 8 });
}

Backdrop makeBackdrop(const SceneOptions& options)
{
    Dice dice(options.seed, 0xbac0 + static_cast<std::uint32_t>(options.background));
    Backdrop backdrop { {}, drawnForFill * std::max(1, options.size.width()) / cardWidth };
    const double mm = backdrop.pixelsPerMm;
    // Detail below one pixel makes no difference; tiny pictures must not ask for it.
    const double turn = marginForTurn * std::max(options.size.width(), options.size.height());
    const QSize size(cvCeil(options.size.width() * margin + turn), cvCeil(options.size.height() * margin + turn));
    backdrop.image = QImage(size.expandedTo({ 8, 8 }), QImage::Format_ARGB32_Premultiplied);
    cv::Mat picture = pixelsOf(backdrop.image);
    switch (options.background) {
    case Background::Desk:
        paintDesk(picture, mm, dice);
        break;
    case Background::Wood:
        paintWood(picture, mm, dice);
        break;
    case Background::Cloth:
        paintCloth(picture, mm, dice);
        break;
    case Background::TextPage:
    case Background::NearWhite:
        paintPaper(picture, mm, dice);
        break;
    case Background::Keyboard:
    case Background::Dark:
        paintDark(picture, mm, dice);
        break;
    }
    QPainter painter(&backdrop.image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.translate(size.width() / 2.0, size.height() / 2.0);
    painter.scale(mm, mm);
    drawClutter(painter, QSizeF(size) / mm, QSizeF(options.size) / mm, options.background, dice);
    painter.end();
    if (options.lowContrast > 0) {
        const double share = std::min(1.0, options.lowContrast) * 0.9;
        const cv::Mat plain(picture.size(), CV_8UC4, cardColour());
        cv::addWeighted(picture, 1 - share, plain, share, 0, picture);
    }
    return backdrop;
}

} // namespace

std::shared_ptr<const Backdrop> backdropFor(const SceneOptions& options)
{
    using Key = std::tuple<std::uint32_t, int, int, int, double>;
    static SharedCache<Key, Backdrop> cache(6);
    const Key key(options.seed, static_cast<int>(options.background), options.size.width(), options.size.height(),
        options.lowContrast);
    return cache.get(key, [&] { return makeBackdrop(options); });
}

} // namespace kelvara::specimen
