#include "Tools/Cli/PictureFile.h"

#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

#include <new>

namespace kelvara::cli {

namespace {

constexpr int kMostMegabytes = 1024; ///< That a decoded picture may take.
constexpr qint64 kMostPixels = 120'000'000;
constexpr int kLongestSide = 30000;

QImage opaque(const QImage& image)
{
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_RGB32);
    QImage onPaper(image.size(), QImage::Format_RGB32);
    onPaper.fill(Qt::white);
    QPainter painter(&onPaper);
    painter.drawImage(0, 0, image.convertToFormat(QImage::Format_ARGB32_Premultiplied));
    return onPaper;
}

Unreadable tooLarge(const QSize& size)
{
    return { QStringLiteral("The picture is too large: %1 by %2 pixels.").arg(size.width()).arg(size.height()) };
}

bool isTooLarge(const QSize& size)
{
    return qint64 { size.width() } * size.height() > kMostPixels || size.width() > kLongestSide
        || size.height() > kLongestSide;
}

Unreadable undecodable(QString why)
{
    while (why.endsWith(u'.'))
        why.chop(1);
    return { QStringLiteral("The picture cannot be decoded: %1.").arg(why) };
}

} // namespace

std::variant<QImage, Unreadable> readPicture(const QString& path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return Unreadable { QStringLiteral("There is no such file.") };
    if (file.isDir())
        return Unreadable { QStringLiteral("This is a folder.") };
    if (!file.isFile()) // a pipe, say, which has no size and may never end
        return Unreadable { QStringLiteral("This is no ordinary file.") };
    if (!file.isReadable())
        return Unreadable { QStringLiteral("The file may not be read.") };
    if (file.size() == 0)
        return Unreadable { QStringLiteral("The file is empty.") };
    QImageReader::setAllocationLimit(kMostMegabytes);
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    if (reader.format().startsWith("svg")) // which draws in whatever other files it names
        return undecodable(QStringLiteral("a drawing in SVG is no photograph"));
    if (isTooLarge(reader.size()))
        return tooLarge(reader.size());
    try {
        const QImage picture = reader.read();
        if (picture.isNull())
            return undecodable(reader.errorString());
        if (isTooLarge(picture.size()))
            return tooLarge(picture.size());
        const QImage upright = opaque(picture);
        if (upright.isNull())
            return Unreadable { QStringLiteral("There is not enough memory for the picture.") };
        return upright;
    } catch (const std::bad_alloc&) {
        return Unreadable { QStringLiteral("There is not enough memory for the picture.") };
    }
}

} // namespace kelvara::cli
