#include "Platform/Imaging/PngEncoder.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace kelvara::imaging {

namespace {

// On photographs the Average filter and the fastest level give files a few percent larger than the slowest encoders'.
constexpr int kLevel = 1;
constexpr std::uint8_t kAverage = 3;

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kHeaderBytes = 13;
constexpr std::size_t kChunkFrame = 12; // length, type and checksum
// A chunk, of which one must hold all pixels, has at most 2³¹ − 1 bytes. Half of that is more than any picture.
constexpr std::size_t kMostBytes = std::size_t { 1 } << 30;

struct CompressorDeleter
{
    void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
};
using Compressor = std::unique_ptr<libdeflate_compressor, CompressorDeleter>;

/// Puts length, type and checksum around data that stand 8 bytes behind `chunk`. Returns the place of the next chunk.
char* frameChunk(char* chunk, const char (&type)[5], std::size_t dataBytes)
{
    qToBigEndian(quint32(dataBytes), chunk);
    std::memcpy(chunk + 4, type, 4);
    qToBigEndian(quint32(libdeflate_crc32(0, chunk + 4, 4 + dataBytes)), chunk + 8 + dataBytes);
    return chunk + kChunkFrame + dataBytes;
}

/// True when no pixel of the bitmap lets anything through.
bool isOpaque(const QImage& bitmap)
{
    if (!bitmap.hasAlphaChannel())
        return true;
    for (int y = 0; y < bitmap.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(bitmap.constScanLine(y));
        QRgb common = 0xFFFFFFFFU;
        for (int x = 0; x < bitmap.width(); ++x)
            common &= line[x];
        if (qAlpha(common) != 255)
            return false;
    }
    return true;
}

/// Row y as R, G, B (, A) bytes.
void packRow(const QImage& bitmap, int y, int channels, std::uint8_t* out)
{
    if (channels == 4) {
        std::memcpy(out, bitmap.constScanLine(y), std::size_t(bitmap.width()) * 4);
        return;
    }
    const auto* line = reinterpret_cast<const QRgb*>(bitmap.constScanLine(y));
    for (int x = 0; x < bitmap.width(); ++x, out += 3) {
        out[0] = std::uint8_t(line[x] >> 16);
        out[1] = std::uint8_t(line[x] >> 8);
        out[2] = std::uint8_t(line[x]);
    }
}

/// One row less what its left and upper neighbours let expect (their mean).
void filterRow(const std::uint8_t* line, const std::uint8_t* above, std::size_t rowBytes, std::size_t pixelBytes,
    std::uint8_t* out)
{
    for (std::size_t i = 0; i < pixelBytes; ++i)
        out[i] = std::uint8_t(line[i] - above[i] / 2);
    for (std::size_t i = pixelBytes; i < rowBytes; ++i)
        out[i] = std::uint8_t(line[i] - (line[i - pixelBytes] + above[i]) / 2);
}

void filterRows(const QImage& bitmap, int channels, std::uint8_t* out)
{
    const std::size_t rowBytes = std::size_t(bitmap.width()) * std::size_t(channels);
    std::vector<std::uint8_t> above(rowBytes);
    std::vector<std::uint8_t> line(rowBytes);
    for (int y = 0; y < bitmap.height(); ++y) {
        packRow(bitmap, y, channels, line.data());
        *out++ = kAverage;
        filterRow(line.data(), above.data(), rowBytes, std::size_t(channels), out);
        out += rowBytes;
        above.swap(line);
    }
}

/// The bitmap in the layout that `packRow` reads: RGB32-like when opaque, RGBA8888 otherwise.
QImage inKnownLayout(const QImage& bitmap)
{
    const bool blueFirst = bitmap.format() == QImage::Format_RGB32 || bitmap.format() == QImage::Format_ARGB32
        || bitmap.format() == QImage::Format_ARGB32_Premultiplied;
    QImage image = blueFirst
        ? bitmap
        : bitmap.convertToFormat(bitmap.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    return isOpaque(image) ? image : bitmap.convertToFormat(QImage::Format_RGBA8888);
}

} // namespace

std::optional<QByteArray> encodePng(const QImage& bitmap)
try {
    if (bitmap.isNull())
        return std::nullopt;
    const QImage image = inKnownLayout(bitmap);
    if (image.isNull())
        return std::nullopt;
    const int channels = image.format() == QImage::Format_RGBA8888 ? 4 : 3;
    const std::size_t bytes = (std::size_t(image.width()) * std::size_t(channels) + 1) * std::size_t(image.height());
    const Compressor compressor(libdeflate_alloc_compressor(kLevel));
    if (!compressor || bytes > kMostBytes)
        return std::nullopt;
    const auto filtered = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
    filterRows(image, channels, filtered.get());

    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), bytes);
    QByteArray png(qsizetype(kSignatureBytes + 3 * kChunkFrame + kHeaderBytes + bound), Qt::Uninitialized);
    std::memcpy(png.data(), "\x89PNG\r\n\x1a\n", kSignatureBytes);
    char* chunk = png.data() + kSignatureBytes;
    qToBigEndian(quint32(image.width()), chunk + 8);
    qToBigEndian(quint32(image.height()), chunk + 12);
    const std::array<char, 5> rest { 8, char(channels == 4 ? 6 : 2), 0, 0, 0 };
    std::copy(rest.begin(), rest.end(), chunk + 16);
    chunk = frameChunk(chunk, "IHDR", kHeaderBytes);
    const std::size_t packed = libdeflate_zlib_compress(compressor.get(), filtered.get(), bytes, chunk + 8, bound);
    if (packed == 0)
        return std::nullopt;
    chunk = frameChunk(chunk, "IDAT", packed);
    chunk = frameChunk(chunk, "IEND", 0);
    png.truncate(chunk - png.constData());
    return png;
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

} // namespace kelvara::imaging
