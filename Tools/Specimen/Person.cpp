#include "Tools/Specimen/Person.h"

#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Garment.h"
#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/SharedCache.h"

#include <QPainter>

#include <opencv2/imgproc.hpp>

#include <array>
#include <vector>

// Outside the namespace, as the macro demands: a static library's resources are linked only when something asks.
static void initSpecimenResources()
{
    Q_INIT_RESOURCE(Specimen);
}

namespace kelvara::specimen {

namespace {

/// Enlargement of the source, so that prints and selfies are warped from smooth pixels.
constexpr double enlargement = 3;

// Where things are in the source picture, in its pixels.
cv::Rect2d sourceFace()
{
    return { 174, 64, 103, 115 };
}

cv::Rect2d sourceHead()
{
    return { 153, 15, 149, 164 };
}

constexpr double faceMiddle = 225; ///< From the left.

/// A patch of the face that is pushed smoothly aside, or drawn together (`squeeze` < 0) or apart.
struct Push
{
    cv::Point2d centre;
    double radius;
    cv::Point2d shift;
    double squeezeX;
    double squeezeY;
};

struct Traits
{
    bool mirrored;
    double width;
    double height;
    double tilt;
    std::vector<Push> pushes;
    double skinGamma;
    cv::Vec3f skinTint;
    double hairGain;
    cv::Vec3f hairTint;
    double gamma;
    cv::Vec3f whiteBalance;
};

Traits traitsOf(std::uint32_t seed)
{
    Dice dice(seed, 0xface);
    Traits t {};
    t.mirrored = dice.chance(0.5);
    t.width = dice.real(0.92, 1.09);
    t.height = dice.real(0.96, 1.05);
    t.tilt = dice.real(-5, 5);
    const double eyes = dice.real(-0.10, 0.10);
    const double jaw = dice.real(-0.12, 0.12);
    const double mouth = dice.real(-0.16, 0.10);
    const double corners = dice.real(0, 3.2);
    t.pushes = {
        { { 203, 102 }, 15, { dice.real(-2, 2), 0 }, eyes, eyes },
        { { 247, 103.5 }, 15, { dice.real(-2, 2), 0 }, eyes, eyes },
        { { 224, 124 }, 17, { 0, dice.real(-2, 2) }, dice.real(-0.14, 0.16), 0 },
        { { 224, 146 }, 22, { 0, dice.real(-1.5, 1.5) }, mouth, 0 },
        { { 204, 143 }, 11, { 0, corners }, 0, 0 }, // corners of the mouth drop: less of a smile
        { { 244, 143 }, 11, { 0, corners }, 0, 0 },
        { { 225, 168 }, 38, { 0, dice.real(-3, 3) }, jaw, 0 },
        { { 225, 40 }, 60, { dice.real(-3, 3), dice.real(-5, 4) }, dice.real(-0.08, 0.08), 0 },
    };
    t.skinGamma = dice.real(0.92, 1.35);
    t.skinTint = cv::Vec3f(0, static_cast<float>(dice.real(-1, 4)), static_cast<float>(dice.real(-4, 4)));
    t.hairGain = dice.real(0.35, 1.1);
    t.hairTint = cv::Vec3f(0, static_cast<float>(dice.real(-3, 4)), static_cast<float>(dice.real(-18, 2)));
    t.gamma = dice.real(0.85, 1.18);
    for (int i = 0; i < 3; ++i)
        t.whiteBalance[i] = static_cast<float>(dice.real(0.95, 1.05));
    return t;
}

struct Source
{
    cv::Mat lab; // CV_32FC3
    cv::Mat alpha; // CV_32F 0…1
    cv::Mat skin; // the same: how much a pixel is skin, hair, clothes
    cv::Mat hair;
    cv::Mat clothes;
};

cv::Mat softened(const cv::Mat& mask, double sigma)
{
    cv::Mat result;
    mask.convertTo(result, CV_32F, 1.0 / 255);
    cv::GaussianBlur(result, result, {}, sigma);
    return result;
}

Source loadSource()
{
    initSpecimenResources();
    const QImage picture
        = QImage(QStringLiteral(":/kelvara/specimen/portrait.jpg")).convertToFormat(QImage::Format_RGB32);
    const QImage matte
        = QImage(QStringLiteral(":/kelvara/specimen/portrait-matte.png")).convertToFormat(QImage::Format_RGB32);
    Source source;
    if (picture.isNull() || matte.size() != picture.size())
        return source;
    cv::Mat bgr;
    cv::cvtColor(pixelsOf(picture), bgr, cv::COLOR_BGRA2BGR);
    cv::Mat unit;
    bgr.convertTo(unit, CV_32F, 1.0 / 255);
    cv::cvtColor(unit, source.lab, cv::COLOR_BGR2Lab);
    cv::Mat alpha;
    cv::extractChannel(pixelsOf(matte), alpha, 0);
    alpha.convertTo(source.alpha, CV_32F, 1.0 / 255);

    std::array<cv::Mat, 3> lab;
    cv::split(source.lab, lab);
    cv::Mat face(bgr.size(), CV_8U, cv::Scalar(0));
    const std::vector<cv::Point> outline { { 172, 118 }, { 186, 78 }, { 215, 74 }, { 258, 84 }, { 270, 92 },
        { 279, 125 }, { 270, 138 }, { 259, 160 }, { 256, 186 }, { 236, 192 }, { 200, 184 }, { 186, 174 },
        { 183, 140 } };
    cv::fillPoly(face, std::vector<std::vector<cv::Point>> { outline }, cv::Scalar(255));
    const cv::Mat flesh = (lab[0] > 42) & (lab[1] > 4) & (lab[2] > 4);
    source.skin = softened(face & flesh, 1.6);

    cv::Mat crown(bgr.size(), CV_8U, cv::Scalar(0));
    cv::ellipse(crown, { 227, 75 }, { 80, 66 }, 0, 0, 360, cv::Scalar(255), cv::FILLED);
    cv::Mat fleshOnly;
    cv::threshold(source.skin, fleshOnly, 0.4, 255, cv::THRESH_BINARY);
    fleshOnly.convertTo(fleshOnly, CV_8U);
    cv::Mat features(bgr.size(), CV_8U, cv::Scalar(0));
    const std::vector<cv::Point> inner { { 186, 84 }, { 208, 82 }, { 240, 86 }, { 268, 94 }, { 268, 150 },
        { 184, 150 } };
    cv::fillPoly(features, std::vector<std::vector<cv::Point>> { inner }, cv::Scalar(255));
    source.hair = softened(crown & ~fleshOnly & ~features, 1.4);
    return source;
}

const Source& source()
{
    static const Source loaded = loadSource();
    return loaded;
}

/// Colours of the person: skin, hair, then the whole print.
cv::Mat coloured(const Source& from, const Traits& t)
{
    cv::Mat lab = from.lab.clone();
    for (int y = 0; y < lab.rows; ++y) {
        auto* row = lab.ptr<cv::Vec3f>(y);
        const auto* skin = from.skin.ptr<float>(y);
        const auto* hair = from.hair.ptr<float>(y);
        for (int x = 0; x < lab.cols; ++x) {
            cv::Vec3f& p = row[x];
            if (skin[x] > 0) {
                const float dark = 100 * static_cast<float>(std::pow(p[0] / 100, t.skinGamma));
                p += skin[x] * (cv::Vec3f(dark - p[0], 0, 0) + t.skinTint);
            }
            if (hair[x] > 0)
                p += hair[x] * (cv::Vec3f(p[0] * static_cast<float>(t.hairGain - 1), 0, 0) + t.hairTint);
        }
    }
    cv::Mat bgr;
    cv::cvtColor(lab, bgr, cv::COLOR_Lab2BGR);
    cv::max(bgr, 0, bgr);
    cv::pow(bgr, t.gamma, bgr);
    cv::multiply(bgr, cv::Scalar(t.whiteBalance[0], t.whiteBalance[1], t.whiteBalance[2]), bgr, 255);
    cv::Mat bytes;
    bgr.convertTo(bytes, CV_8U);
    return bytes;
}

/// The picture's point that a point of the changed face shows. Both in the source's pixels.
cv::Point2d shownAt(cv::Point2d p, const Traits& t, int sourceWidth)
{
    if (t.mirrored)
        p.x = sourceWidth - 1 - p.x;
    const double angle = t.tilt * CV_PI / 180;
    const cv::Point2d neck(225, 230);
    const cv::Point2d d = p - neck;
    // Only the head tilts and changes width; the shoulders stay, with a smooth passage at the neck.
    const double head = 1 / (1 + std::exp((p.y - 195) / 14));
    const double c = std::cos(angle * head);
    const double s = std::sin(angle * head);
    const cv::Point2d turned = neck + cv::Point2d(c * d.x + s * d.y, -s * d.x + c * d.y);
    cv::Point2d q((turned.x - faceMiddle) / (1 + (t.width - 1) * head) + faceMiddle,
        (turned.y - 195) / (1 + (t.height - 1) * head) + 195);
    for (const Push& push : t.pushes) {
        const cv::Point2d r = q - push.centre;
        const double weight = std::exp(-(r.x * r.x + r.y * r.y) / (2 * push.radius * push.radius));
        q -= weight * (push.shift + cv::Point2d(push.squeezeX * r.x, push.squeezeY * r.y));
    }
    return q;
}

/// The bounds of what `rect` of the source has become, found by walking the map that the pixels take.
QRectF moved(const cv::Rect2d& rect, const cv::Mat& map)
{
    double left = map.cols;
    double top = map.rows;
    double right = 0;
    double bottom = 0;
    const cv::Point2d centre(rect.x + rect.width / 2, rect.y + rect.height / 2);
    for (int y = 0; y < map.rows; y += 2) {
        const auto* row = map.ptr<cv::Vec2f>(y);
        for (int x = 0; x < map.cols; x += 2) {
            const double u = (row[x][0] - centre.x) / (rect.width / 2);
            const double v = (row[x][1] - centre.y) / (rect.height / 2);
            if (u * u + v * v > 1) // the oval, not its box, so that a tilt does not swell it
                continue;
            left = std::min<double>(left, x);
            right = std::max<double>(right, x + 1);
            top = std::min<double>(top, y);
            bottom = std::max<double>(bottom, y + 1);
        }
    }
    return { left, top, right - left, bottom - top };
}

Person makePerson(std::uint32_t seed)
{
    const Source& from = source();
    if (from.lab.empty())
        return {};
    const Traits t = traitsOf(seed);
    const int width = cvRound(from.lab.cols * enlargement);
    const int height = cvRound(from.lab.rows * enlargement);

    // The displacement is smooth: a coarse grid of it is enough.
    constexpr int step = 12;
    cv::Mat coarse(height / step + 2, width / step + 2, CV_32FC2);
    for (int y = 0; y < coarse.rows; ++y) {
        for (int x = 0; x < coarse.cols; ++x) {
            const cv::Point2d p((x * step + 0.5) / enlargement - 0.5, (y * step + 0.5) / enlargement - 0.5);
            const cv::Point2d q = shownAt(p, t, from.lab.cols);
            coarse.at<cv::Vec2f>(y, x) = { static_cast<float>(q.x), static_cast<float>(q.y) };
        }
    }
    const cv::Matx23d toCoarse(1.0 / step, 0, 0, 0, 1.0 / step, 0);
    cv::Mat map;
    cv::warpAffine(coarse, map, toCoarse, { width, height }, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP);

    cv::Mat bgr;
    cv::remap(coloured(from, t), bgr, map, cv::noArray(), cv::INTER_CUBIC, cv::BORDER_REPLICATE);
    cv::Mat alpha;
    cv::remap(from.alpha, alpha, map, cv::noArray(), cv::INTER_LINEAR, cv::BORDER_REPLICATE);

    Person person;
    person.image = QImage(width, height, QImage::Format_ARGB32_Premultiplied);
    cv::Mat pixels = pixelsOf(person.image);
    // Never negative, and rounding by a function would be a call for each pixel.
    const auto level
        = [](float value) { return static_cast<uchar>(value + 0.5F); }; // NOLINT(bugprone-incorrect-roundings)
    for (int y = 0; y < height; ++y) {
        auto* out = pixels.ptr<cv::Vec4b>(y);
        const auto* in = bgr.ptr<cv::Vec3b>(y);
        const auto* opacity = alpha.ptr<float>(y);
        for (int x = 0; x < width; ++x) {
            const float o = std::clamp(opacity[x], 0.0F, 1.0F);
            for (int c = 0; c < 3; ++c)
                out[x][c] = level(static_cast<float>(in[x][c]) * o);
            out[x][3] = level(255 * o);
        }
    }
    // Cloth has no fine detail: half the size will do.
    const Garment garment = drawGarment(seed, person.image.size() / 2, enlargement / 2);
    QPainter painter(&person.image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(person.image.rect(), garment.front.mirrored(t.mirrored, false));
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.drawImage(person.image.rect(), garment.behind.mirrored(t.mirrored, false));
    painter.end();
    person.face = moved(sourceFace(), map);
    person.head = moved(sourceHead(), map);
    return person;
}

} // namespace

std::shared_ptr<const Person> personOf(std::uint32_t seed)
{
    static SharedCache<std::uint32_t, Person> cache(8);
    return cache.get(seed, [seed] { return makePerson(seed); });
}

} // namespace kelvara::specimen
