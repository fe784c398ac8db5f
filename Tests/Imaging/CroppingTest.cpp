#include "Platform/Imaging/CGImage.h"
#include "Tests/Imaging/Pictures.h"

#include <QColorSpace>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

namespace kelvara {
namespace {

TEST(Cropping, TakesTheIntegralRectangleWithinTheBitmap)
{
    struct Row
    {
        QRectF rect;
        QRect part; // empty: nothing
    };
    constexpr double huge = std::numeric_limits<double>::max();
    const double infinite = HUGE_VAL;
    const Row rows[] = {
        { { 2, 3, 4, 5 }, { 2, 3, 4, 5 } },
        { { 2.9, 3.1, 4.2, 5.8 }, { 2, 3, 6, 6 } },
        { { 0, 0, 20, 10 }, { 0, 0, 20, 10 } },
        { { -5, -5, 8, 8 }, { 0, 0, 3, 3 } },
        { { 18.5, 8.5, 100, 100 }, { 18, 8, 2, 2 } },
        { { -1e6, -1e6, 2e6, 2e6 }, { 0, 0, 20, 10 } },
        { { 8, 9, -4, -5 }, { 4, 4, 4, 5 } }, // a negative size reaches backwards
        { { 19.999, 9.999, 0.0001, 0.0001 }, { 19, 9, 1, 1 } },
        { { 20, 0, 5, 5 }, {} },
        { { -5, 0, 5, 5 }, {} },
        { { 3, 3, 0, 4 }, {} },
        { {}, {} },
        { { std::nan(""), 0, 4, 4 }, {} },
        { { 0, 0, 4, std::nan("") }, {} },
        { { 0, 0, infinite, 4 }, {} },
        { { -infinite, 0, infinite, 4 }, {} },
        { { 0, 0, huge, huge }, {} },
        { { -huge, 0, 4, 4 }, {} },
    };
    const QImage bitmap = pictures::photo(20, 10);
    for (const Row& row : rows) {
        const auto cut = cropping(bitmap, row.rect);
        ASSERT_EQ(cut.has_value(), !row.part.isEmpty()) << row.rect.x() << ' ' << row.rect.width();
        if (cut) {
            EXPECT_EQ(*cut, bitmap.copy(row.part));
        }
    }
    EXPECT_FALSE(cropping(QImage(), QRectF(0, 0, 1, 1)));
}

TEST(Cropping, IsAViewThatOutlivesItsParentInEveryFormat)
{
    for (int format = QImage::Format_Mono; format < QImage::NImageFormats; ++format) {
        QImage bitmap = pictures::photo(21, 13, QImage::Format(format));
        bitmap.setColorSpace(QColorSpace::SRgb);
        const QImage expected = bitmap.copy(3, 2, 11, 7);
        const uchar* bytes = bitmap.constBits();
        const qsizetype stride = bitmap.bytesPerLine();
        const int depth = bitmap.depth();
        std::optional<QImage> cut = cropping(cropping(bitmap, QRectF(2, 1, 15, 11)).value(), QRectF(1, 1, 11, 7));
        bitmap = QImage();
        ASSERT_TRUE(cut);
        EXPECT_EQ(*cut, expected) << format;
        EXPECT_EQ(cut->format(), expected.format());
        EXPECT_EQ(cut->colorSpace(), expected.colorSpace());
        if (depth >= 8) {
            EXPECT_EQ(cut->constBits(), bytes + 2 * stride + 3 * depth / 8) << format << ": pixels were copied";
        }
    }
}

TEST(Cropping, WritingToAViewLeavesTheParentAlone)
{
    const QImage bitmap = pictures::photo(20, 10);
    const QImage before = bitmap.copy();
    QImage cut = cropping(bitmap, QRectF(5, 5, 4, 4)).value();
    cut.fill(Qt::red);
    EXPECT_EQ(bitmap, before);
}

TEST(Cropping, ViewsMayGoOnAnyThread)
{
    std::optional<QImage> bitmap = pictures::photo(64, 64);
    const QImage expected = bitmap->copy(8, 8, 16, 16);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([cut = cropping(*bitmap, QRectF(8, 8, 16, 16)).value(), &expected]() mutable {
            EXPECT_EQ(cropping(cut, QRectF(0, 0, 5, 16))->copy(), expected.copy(0, 0, 5, 16));
            cut = QImage();
        });
    }
    bitmap.reset();
    for (std::thread& thread : threads)
        thread.join();
}

TEST(Scaled, MultipliesBySize)
{
    EXPECT_EQ(scaled(QPointF(0.25, 0.5), QSizeF(200, 100)), QPointF(50, 50));
    EXPECT_EQ(scaled(QRectF(0.1, 0.2, 0.5, 0.25), QSizeF(200, 100)), QRectF(20, 20, 100, 25));
}

} // namespace
} // namespace kelvara
