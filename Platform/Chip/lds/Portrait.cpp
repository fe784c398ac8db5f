#include "Platform/Chip/lds/Portrait.h"

#include "Platform/Chip/lds/DecodingEffort.h"

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <algorithm>
#include <array>
#include <exception>

namespace kelvara::chip {

namespace {

/// Overwrites what is left in a decoder's buffer, as everything else of a chip is.
void forget(cv::Mat& pixels)
{
    if (pixels.isContinuous())
        wipe(pixels.data, pixels.total() * pixels.elemSize());
}

/// OpenCV asks its readers in turn whether a picture is theirs, and that of medical pictures looks at byte 128 only.
/// With its mark there, what begins as JPEG 2000 would go to a temporary file and to a library that no chip's bytes
/// should reach.
bool isMeantForAnotherReader(ByteView encoded)
{
    constexpr std::array<std::uint8_t, 4> kMark { 'D', 'I', 'C', 'M' };
    constexpr std::size_t kPlace = 128;
    return encoded.size() >= kPlace + kMark.size()
        && std::equal(kMark.begin(), kMark.end(), encoded.begin() + static_cast<std::ptrdiff_t>(kPlace));
}

} // namespace

std::variant<QImage, PortraitProblem> decodePortrait(ByteView encoded)
try {
    if (imageKindOf(encoded) == ImageKind::Unknown)
        return PortraitProblem::UnknownKind;
    const auto size = imageSizeOf(encoded);
    if (!size || isMeantForAnotherReader(encoded))
        return PortraitProblem::Damaged;
    if (std::max(size->width(), size->height()) > kLongestPortraitSide
        || qint64 { size->width() } * size->height() > kMostPortraitPixels)
        return PortraitProblem::TooLarge;
    if (!isDecodingModest(encoded))
        return PortraitProblem::TooCostly;
    // The decoder reads only, though its interface does not say so.
    const cv::Mat input(1, static_cast<int>(encoded.size()), CV_8U, const_cast<std::uint8_t*>(encoded.data()));
    cv::Mat pixels = cv::imdecode(input, cv::IMREAD_COLOR | cv::IMREAD_IGNORE_ORIENTATION);
    if (pixels.empty() || pixels.type() != CV_8UC3)
        return PortraitProblem::Damaged;
    const QImage view(
        pixels.data, pixels.cols, pixels.rows, static_cast<qsizetype>(pixels.step), QImage::Format_BGR888);
    QImage picture = view.convertToFormat(QImage::Format_RGB32);
    forget(pixels);
    if (picture.isNull())
        return PortraitProblem::Damaged;
    return picture;
} catch (const std::exception&) { // OpenCV's way to refuse a stream, or no memory for it
    return PortraitProblem::Damaged;
}

std::optional<Bytes> encodePortrait(const QImage& picture, ImageKind kind, int quality)
try {
    const bool isGrey = picture.format() == QImage::Format_Grayscale8;
    QImage plain = picture.convertToFormat(isGrey ? QImage::Format_Grayscale8 : QImage::Format_BGR888);
    if (plain.isNull() || kind == ImageKind::Unknown)
        return std::nullopt;
    const cv::Mat pixels(plain.height(), plain.width(), isGrey ? CV_8UC1 : CV_8UC3, plain.bits(),
        static_cast<std::size_t>(plain.bytesPerLine()));
    const bool isJpeg = kind == ImageKind::Jpeg;
    std::vector<uchar> encoded;
    const std::vector<int> parameters { isJpeg ? cv::IMWRITE_JPEG_QUALITY : cv::IMWRITE_JPEG2000_COMPRESSION_X1000,
        quality };
    if (!cv::imencode(isJpeg ? ".jpg" : ".jp2", pixels, encoded, parameters))
        return std::nullopt;
    return bytes(ByteView(encoded));
} catch (const std::exception&) {
    return std::nullopt;
}

} // namespace kelvara::chip
