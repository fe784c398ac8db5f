#include "Platform/Imaging/CIContext.h"
#include "Tests/Imaging/Pictures.h"

#include <cmath>
#include <gtest/gtest.h>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace kelvara {
namespace {

/// Corners with their origin at the bottom left.
struct Corners
{
    QPointF topLeft;
    QPointF topRight;
    QPointF bottomLeft;
    QPointF bottomRight;
};

std::optional<CIImage> corrected(const CIImage& image, const Corners& corners)
{
    return image.applyingFilter(QStringLiteral("CIPerspectiveCorrection"),
        { { QStringLiteral("inputTopLeft"), corners.topLeft }, { QStringLiteral("inputTopRight"), corners.topRight },
            { QStringLiteral("inputBottomLeft"), corners.bottomLeft },
            { QStringLiteral("inputBottomRight"), corners.bottomRight } });
}

cv::Point2f fromTop(const QPointF& point, int height)
{
    return { float(point.x()), float(height - point.y()) };
}

double linear(int byte)
{
    const double value = byte / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double encoded(double value)
{
    return 255.0 * (value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055);
}

/// The same correction the slow way: an independent homography, bilinear in linear light, in doubles.
QImage reference(const QImage& bitmap, const Corners& corners, const QSize& size)
{
    const float w = float(size.width());
    const float h = float(size.height());
    const cv::Point2f upright[] = { { 0, 0 }, { w, 0 }, { 0, h }, { w, h } };
    const int height = bitmap.height();
    const cv::Point2f quad[] = { fromTop(corners.topLeft, height), fromTop(corners.topRight, height),
        fromTop(corners.bottomLeft, height), fromTop(corners.bottomRight, height) };
    const cv::Mat map = cv::getPerspectiveTransform(upright, quad);
    QImage result(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const cv::Mat at = map * (cv::Mat_<double>(3, 1) << x + 0.5, y + 0.5, 1);
            const double u = at.at<double>(0) / at.at<double>(2);
            const double v = at.at<double>(1) / at.at<double>(2);
            if (u < 0 || v < 0 || u > bitmap.width() || v > height) {
                result.setPixel(x, y, 0);
                continue;
            }
            const auto pixel = [&](double px, double py) {
                return bitmap.pixel(int(qBound(0.0, px, bitmap.width() - 1.0)), int(qBound(0.0, py, height - 1.0)));
            };
            const double left = std::floor(u - 0.5);
            const double top = std::floor(v - 0.5);
            const double fx = u - 0.5 - left;
            const double fy = v - 0.5 - top;
            const auto channel = [&](int (*of)(QRgb)) {
                const double above = linear(of(pixel(left, top))) * (1 - fx) + linear(of(pixel(left + 1, top))) * fx;
                const double below
                    = linear(of(pixel(left, top + 1))) * (1 - fx) + linear(of(pixel(left + 1, top + 1))) * fx;
                return int(std::lround(encoded(above * (1 - fy) + below * fy)));
            };
            result.setPixel(x, y, qRgb(channel(qRed), channel(qGreen), channel(qBlue)));
        }
    }
    return result;
}

struct CornersRow
{
    const char* name;
    Corners corners;
    QSize size;
};

const CornersRow kCorners[] = {
    { "the whole image", { { 0, 90 }, { 130, 90 }, { 0, 0 }, { 130, 0 } }, { 130, 90 } },
    { "seen from the left", { { 20, 85 }, { 110, 70 }, { 20, 5 }, { 110, 20 } }, { 91, 80 } },
    { "tilted", { { 25, 70 }, { 95, 85 }, { 35, 15 }, { 105, 30 } }, { 72, 56 } },
    { "upside down", { { 110, 10 }, { 20, 10 }, { 110, 80 }, { 20, 80 } }, { 90, 70 } },
    { "a quarter turn", { { 20, 10 }, { 20, 80 }, { 120, 10 }, { 120, 80 } }, { 70, 100 } },
    { "mirrored", { { 110, 80 }, { 20, 80 }, { 110, 10 }, { 20, 10 } }, { 90, 70 } },
    { "reaching outside", { { -15, 100 }, { 140, 80 }, { 10, -12 }, { 120, 5 } }, { 156, 115 } },
    { "one pixel", { { 50, 51 }, { 51, 51 }, { 50, 50 }, { 51, 50 } }, { 1, 1 } },
};

TEST(PerspectiveCorrection, MatchesAnIndependentCalculation)
{
    const QImage bitmap = pictures::photo(130, 90, QImage::Format_ARGB32_Premultiplied);
    for (const CornersRow& row : kCorners) {
        const QImage expected = reference(bitmap, row.corners, row.size);
        const CIImage images[] = { CIImage(bitmap), CIImage(bitmap.convertToFormat(QImage::Format_RGB32)),
            CIImage(bitmap).applyingFilter(QStringLiteral("CIColorControls")).value() };
        for (const CIImage& image : images) {
            const auto output = corrected(image, row.corners);
            ASSERT_TRUE(output) << row.name;
            EXPECT_EQ(output->extent(), QRectF(QPointF(), row.size)) << row.name;
            EXPECT_LE(pictures::largestDifference(pictures::render(*output), expected), 1) << row.name;
        }
    }
}

TEST(PerspectiveCorrection, CornersSpeakTheCroppedImagesCoordinates)
{
    const QImage bitmap = pictures::photo(130, 90);
    const Corners corners { { 40, 70 }, { 90, 72 }, { 41, 30 }, { 92, 31 } };
    const CIImage whole(bitmap);
    const CIImage part = whole.cropped({ 30, 20, 70, 60 });
    EXPECT_EQ(pictures::render(corrected(part, corners).value()), pictures::render(corrected(whole, corners).value()));
}

TEST(PerspectiveCorrection, TranslucencyIsInterpolatedWithoutFringes)
{
    QImage bitmap(20, 20, QImage::Format_ARGB32_Premultiplied);
    bitmap.fill(Qt::transparent);
    for (int y = 0; y < 20; ++y) {
        for (int x = 10; x < 20; ++x)
            bitmap.setPixel(x, y, qRgb(255, 255, 255));
    }
    const QImage turned
        = pictures::render(corrected(CIImage(bitmap), { { 3, 17 }, { 15, 18 }, { 2, 5 }, { 14, 6 } }).value());
    for (int y = 0; y < turned.height(); ++y) {
        for (int x = 0; x < turned.width(); ++x) {
            const QRgb pixel = turned.pixel(x, y); // colours multiplied by alpha
            EXPECT_NEAR(qRed(pixel), qAlpha(pixel), 1) << x << ' ' << y;
        }
    }
}

TEST(PerspectiveCorrection, OfSingleRowsAndColumns)
{
    for (const QSize& size : { QSize(1, 9), QSize(9, 1), QSize(1, 1) }) {
        const QImage bitmap = pictures::photo(size.width(), size.height(), QImage::Format_ARGB32_Premultiplied);
        const double w = size.width();
        const double h = size.height();
        EXPECT_EQ(
            pictures::render(corrected(CIImage(bitmap), { { 0, h }, { w, h }, { 0, 0 }, { w, 0 } }).value()), bitmap);
    }
}

TEST(PerspectiveCorrection, HasNoOutputForWhatIsNoRectanglesPicture)
{
    const double nan = std::nan("");
    const Corners good { { 20, 70 }, { 100, 70 }, { 20, 20 }, { 100, 20 } };
    const std::pair<const char*, Corners> rows[] = {
        { "NaN", { { nan, 70 }, { 100, 70 }, { 20, 20 }, { 100, 20 } } },
        { "infinite", { { 20, 70 }, { HUGE_VAL, 70 }, { 20, 20 }, { 100, 20 } } },
        { "coincident", { { 20, 70 }, { 20, 70 }, { 20, 20 }, { 100, 20 } } },
        { "a point", { { 20, 70 }, { 20, 70 }, { 20, 70 }, { 20, 70 } } },
        { "three collinear", { { 20, 70 }, { 60, 45 }, { 20, 20 }, { 100, 20 } } },
        { "a line", { { 0, 0 }, { 30, 30 }, { 60, 60 }, { 90, 90 } } },
        { "crossed", { { 100, 70 }, { 20, 70 }, { 20, 20 }, { 100, 20 } } },
        { "not convex", { { 45, 35 }, { 100, 70 }, { 20, 20 }, { 70, 30 } } },
        { "gigantic", { { -1e8, 1e8 }, { 1e8, 1e8 }, { -1e8, -1e8 }, { 1e8, -1e8 } } },
        { "too wide", { { 0, 70 }, { 20000, 70 }, { 0, 20 }, { 20000, 20 } } },
        { "beyond numbers", { { 1e300, 70 }, { 1e300, 70 }, { -1e300, 20 }, { 1e300, -1e300 } } },
    };
    const CIImage image(pictures::photo(130, 90));
    EXPECT_TRUE(corrected(image, good));
    for (const auto& [name, corners] : rows)
        EXPECT_FALSE(corrected(image, corners)) << name;
    EXPECT_FALSE(corrected(CIImage(QImage()), good));
    EXPECT_FALSE(image.applyingFilter(QStringLiteral("CIPerspectiveCorrection")));
    EXPECT_FALSE(image.applyingFilter(
        QStringLiteral("CIPerspectiveCorrection"), { { QStringLiteral("inputTopLeft"), QStringLiteral("text") } }));
}

} // namespace
} // namespace kelvara
