#include "Platform/Imaging/CGImage.h"
#include "Platform/Imaging/UIImage.h"
#include "Tests/Imaging/Pictures.h"

#include <QBuffer>
#include <QImageWriter>
#include <QtEndian>

#include <gtest/gtest.h>
#include <map>
#include <opencv2/imgcodecs.hpp>

namespace kelvara {
namespace {

quint32 crc(const QByteArray& bytes)
{
    quint32 state = ~0U;
    for (const char byte : bytes) {
        state ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit)
            state = state >> 1 ^ (state & 1 ? 0xEDB88320U : 0U);
    }
    return ~state;
}

/// Checks the file's structure and gives back the header chunk.
QByteArray checkedHeader(const QByteArray& png)
{
    EXPECT_EQ(png.left(8), QByteArray("\x89PNG\r\n\x1a\n", 8));
    QList<QByteArray> types;
    QByteArray header;
    qsizetype at = 8;
    while (at + 12 <= png.size()) {
        const auto length = qFromBigEndian<quint32>(png.constData() + at);
        EXPECT_LE(at + 12 + length, png.size());
        const QByteArray checked = png.mid(at + 4, 4 + length);
        EXPECT_EQ(qFromBigEndian<quint32>(png.constData() + at + 8 + length), crc(checked)) << checked.left(4).data();
        types.append(checked.left(4));
        if (types.size() == 1)
            header = checked.mid(4);
        at += 12 + length;
    }
    EXPECT_EQ(at, png.size()) << "bytes after the last chunk";
    EXPECT_EQ(types, (QList<QByteArray> { "IHDR", "IDAT", "IEND" }));
    return header;
}

void expectFaithful(const QImage& bitmap, bool opaque, const std::string& what)
{
    SCOPED_TRACE(what);
    const auto png = UIImagePNGRepresentation(UIImage(bitmap));
    ASSERT_TRUE(png);
    const QByteArray header = checkedHeader(*png);
    ASSERT_EQ(header.size(), 13);
    EXPECT_EQ(qFromBigEndian<quint32>(header.constData()), quint32(bitmap.width()));
    EXPECT_EQ(qFromBigEndian<quint32>(header.constData() + 4), quint32(bitmap.height()));
    EXPECT_EQ(header.mid(8), QByteArray(opaque ? "\x08\x02\0\0\0" : "\x08\x06\0\0\0", 5));

    const QImage expected = bitmap.convertToFormat(QImage::Format_RGBA8888);
    const QImage decoded = QImage::fromData(*png, "png");
    EXPECT_EQ(decoded.hasAlphaChannel(), !opaque);
    EXPECT_EQ(decoded.convertToFormat(QImage::Format_RGBA8888), expected);

    const cv::Mat bytes(1, int(png->size()), CV_8U, const_cast<char*>(png->constData()));
    const cv::Mat other = cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
    ASSERT_EQ(other.type(), opaque ? CV_8UC3 : CV_8UC4);
    const QImage blueFirst(other.data, other.cols, other.rows, qsizetype(other.step),
        opaque ? QImage::Format_BGR888 : QImage::Format_ARGB32);
    EXPECT_EQ(blueFirst.convertToFormat(QImage::Format_RGBA8888), expected);
}

TEST(Png, KeepsEveryPixelOfEveryFormat)
{
    for (int raw = QImage::Format_Mono; raw < QImage::NImageFormats; ++raw) {
        const auto format = QImage::Format(raw);
        const bool alphaOnly = format == QImage::Format_Alpha8;
        if (!alphaOnly)
            expectFaithful(pictures::photo(31, 22, format), true, "opaque, format " + std::to_string(raw));
        if (QImage(1, 1, format).hasAlphaChannel())
            expectFaithful(pictures::translucent(31, 22, format), false, "format " + std::to_string(raw));
    }
    QImage palette = pictures::photo(31, 22, QImage::Format_Indexed8);
    palette.setColor(int(palette.constScanLine(3)[3]), qRgba(1, 2, 3, 4));
    expectFaithful(palette, false, "a palette with alpha");
}

TEST(Png, OneTranslucentPixelIsEnoughForAlpha)
{
    QImage bitmap = pictures::photo(50, 40, QImage::Format_ARGB32_Premultiplied);
    bitmap.setPixel(49, 39, qRgba(100, 100, 100, 254));
    expectFaithful(bitmap, false, "the last pixel");
}

TEST(Png, WorksForEverySizeAndForViews)
{
    for (const QSize& size : { QSize(1, 1), QSize(1, 7), QSize(7, 1), QSize(3, 3), QSize(257, 31), QSize(4099, 3) }) {
        const std::string what = std::to_string(size.width()) + " x " + std::to_string(size.height());
        expectFaithful(pictures::photo(size.width(), size.height()), true, what);
        expectFaithful(pictures::translucent(size.width(), size.height(), QImage::Format_ARGB32_Premultiplied), false,
            what + " with alpha");
    }
    for (const auto format : { QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB888,
             QImage::Format_Grayscale8, QImage::Format_Indexed8 })
        expectFaithful(*cropping(pictures::photo(1000, 40, format), QRectF(501, 3, 17, 30)), true, "view");
}

TEST(Png, ShowsTheImageUpright)
{
    const QImage bitmap = pictures::photo(20, 10);
    const UIImage turned(bitmap, 3.0, UIImageOrientation::Right);
    EXPECT_EQ(
        QImage::fromData(*UIImagePNGRepresentation(turned)).convertToFormat(QImage::Format_RGB32), turned.toQImage());
}

TEST(Png, FilesArePhotographSized)
{
    for (const int noise : { 3, 12, 40 }) {
        const QImage bitmap = pictures::photo(540, 380, QImage::Format_RGB32, noise);
        QBuffer usual;
        usual.open(QIODevice::WriteOnly);
        ASSERT_TRUE(QImageWriter(&usual, "png").write(bitmap));
        EXPECT_LE(double(UIImagePNGRepresentation(UIImage(bitmap))->size()), 1.15 * double(usual.size())) << noise;
    }
}

} // namespace
} // namespace kelvara
