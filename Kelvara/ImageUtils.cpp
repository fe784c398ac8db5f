#include "Kelvara/ImageUtils.h"

#include "Platform/Foundation/FatalError.h"
#include "Platform/Imaging/CGImage.h"
#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIFilter.h"

#include <QPainter>

#include <array>
#include <cmath>
#include <limits>

namespace kelvara {

namespace {

constexpr double kLongestSide = 32767; ///< Of what Qt draws on, in pixels.

QImage bitmapOf(const UIImage& image)
{
    std::optional<QImage> bitmap = image.cgImage();
    if (!bitmap)
        fatalError("An image has no bitmap content.");
    return std::move(*bitmap);
}

/// A transparent bitmap to draw on, of a size in points. A size of no pixels is a fatal error.
QImage imageContext(const QSizeF& size, double scale)
{
    const double width = std::ceil(size.width() * scale);
    const double height = std::ceil(size.height() * scale);
    if (!(width >= 1 && height >= 1 && width <= kLongestSide && height <= kLongestSide))
        fatalError("An image context needs a size of at least one pixel and at most 32767.");
    QImage bitmap(int(width), int(height), QImage::Format_ARGB32_Premultiplied);
    if (bitmap.isNull())
        fatalError("An image context could not be made.");
    bitmap.fill(Qt::transparent);
    return bitmap;
}

/// Draws the upright image into a rectangle in points. A change of size is made by area averaging.
void draw(const UIImage& image, QImage& context, const QRectF& rect, double scale)
{
    const QRectF target(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale);
    const QSize pixels = target.size().toSize();
    QImage upright = image.toQImage();
    if (upright.isNull() || pixels.isEmpty())
        return;
    if (upright.size() != pixels)
        upright = upright.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    upright.setDevicePixelRatio(1.0);
    QPainter painter(&context);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, upright);
}

int wholeNumber(double points)
{
    constexpr double most = std::numeric_limits<int>::max();
    if (!(points > -most && points < most))
        fatalError("An image's size is not a number of points.");
    return int(points);
}

} // namespace

UIImage ImageUtils::preProcess(const UIImage& image)
{
    const double width = image.size().width();
    const double height = image.size().height();
    // The frame is as wide and high as the image twice.
    const double side = 2 * height * image.scale();
    constexpr double mostPixels = 1 << 28;
    if (width * image.scale() > kLongestSide || side > kLongestSide || side * side > mostPixels)
        return {};
    const UIImage framed = insertInsets(image, (height * 6 / 3 - width) / 2, height / 2);
    return convertToGrayscale(resize(framed, { 28, 28 }));
}

UIImage ImageUtils::resize(const UIImage& image, const QSizeF& targetSize)
{
    QImage context = imageContext(targetSize, 1.0);
    draw(image, context, { QPointF(), targetSize }, 1.0);
    return UIImage(context);
}

UIImage ImageUtils::convertToGrayscale(const UIImage& image)
{
    const QSize size(wholeNumber(image.size().width()), wholeNumber(image.size().height()));
    QImage bitmap = bitmapOf(image);
    if (size.isEmpty())
        fatalError("An image of less than one point cannot be made grey.");
    if (bitmap.size() != size)
        bitmap = bitmap.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    // The grey context has no alpha: what is drawn lies on black, which premultiplied colours without alpha show.
    bitmap = bitmap.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (!bitmap.reinterpretAsFormat(QImage::Format_RGB32))
        fatalError("A grey image could not be made.");
    const QImage grey = bitmap.convertToFormat(QImage::Format_Grayscale8);
    if (grey.isNull())
        fatalError("A grey image could not be made.");
    return UIImage(grey);
}

UIImage ImageUtils::insertInsets(const UIImage& image, double insetWidthDimension, double insetHeightDimension)
{
    const UIImage adjusted = adjustColors(image);
    const QSizeF size = adjusted.size();
    const int right = wholeNumber(size.width()) - 1;
    const int bottom = wholeNumber(size.height()) - 1;
    const std::array corners { getPixelColor(adjusted, { 0, 0 }), getPixelColor(adjusted, { 0, bottom }),
        getPixelColor(adjusted, { right, 0 }), getPixelColor(adjusted, { right, bottom }) };
    QImage context = imageContext(
        { size.width() + 2 * insetWidthDimension, size.height() + 2 * insetHeightDimension }, adjusted.scale());
    draw(adjusted, context, { { insetWidthDimension, insetHeightDimension }, size }, adjusted.scale());
    return convertTransparent(UIImage(context, adjusted.scale()), averageColor(corners));
}

UIImage ImageUtils::adjustColors(const UIImage& image)
{
    const std::optional<CIImage> input = CIImage::make(image);
    const std::optional<CIImage> output = input ? input->applyingFilter(QStringLiteral("CIColorControls"),
                                              { { kCIInputSaturationKey, 0.0 }, { kCIInputContrastKey, 1.45 } })
                                                : std::nullopt;
    if (!output)
        return image;
    const CIContext context;
    std::optional<QImage> bitmap = context.createCGImage(*output, output->extent());
    return bitmap ? UIImage(std::move(*bitmap)) : image;
}

QColor ImageUtils::getPixelColor(const UIImage& fromImage, const QPoint& pixel)
{
    const QImage data = bitmapOf(fromImage).convertToFormat(QImage::Format_RGBA8888);
    const qint64 index = qint64 { wholeNumber(fromImage.size().width()) } * pixel.y() + pixel.x();
    if (index < 0 || index >= qint64 { data.width() } * data.height())
        fatalError("A pixel outside the image was asked for.");
    // Rows of four-byte pixels have no padding, so the data are the rows end to end.
    const uchar* bytes = data.constBits() + index * 4;
    return QColor(bytes[0], bytes[1], bytes[2], bytes[3]);
}

QColor ImageUtils::averageColor(std::span<const QColor> fromColors)
{
    precondition(!fromColors.empty(), "The average of no colours does not exist.");
    std::array<double, 4> sum {};
    for (const QColor& color : fromColors) {
        sum[0] += double(color.redF());
        sum[1] += double(color.greenF());
        sum[2] += double(color.blueF());
        sum[3] += double(color.alphaF());
    }
    const auto mean = [&](double component) { return float(component / double(fromColors.size())); };
    return QColor::fromRgbF(mean(sum[0]), mean(sum[1]), mean(sum[2]), mean(sum[3]));
}

UIImage ImageUtils::convertTransparent(const UIImage& image, const QColor& color)
{
    QImage context = imageContext(image.size(), image.scale());
    context.fill(color);
    draw(image, context, { QPointF(), image.size() }, image.scale());
    return UIImage(context, image.scale());
}

UIImage ImageUtils::fixOrientation(const UIImage& image)
{
    if (image.imageOrientation() == UIImageOrientation::Up || image.isNull())
        return image;
    const QImage upright = image.toQImage();
    return upright.isNull() ? image : UIImage(upright, image.scale());
}

std::optional<UIImage> ImageUtils::crop(const UIImage& image, const VNRectangleObservation& rectangle)
{
    const QImage bitmap = bitmapOf(image);
    const QRectF& box = rectangle.boundingBox;
    const QRectF fromTop(box.x(), 1.0 - box.y() - box.height(), box.width(), box.height());
    const std::optional<QImage> part = cropping(bitmap, scaled(fromTop, image.size()));
    return part ? std::optional<UIImage>(*part) : std::nullopt;
}

} // namespace kelvara
