#include "Platform/Imaging/PngEncoder.h"

#include <QtEndian>

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <vector>

namespace kelvara::imaging
{

namespace
{

constexpr int kLevel = 1;
constexpr std::uint8_t kAverage = 3;
// PNG allows 2³¹ − 1; no picture of a camera needs a second chunk.
constexpr std::size_t kLargestChunk = std::size_t { 1 } << 30;

struct CompressorDeleter {
    void operator()(libdeflate_compressor* compressor) const { libdeflate_free_compressor(compressor); }
};
using Compressor = std::unique_ptr<libdeflate_compressor, CompressorDeleter>;

void appendChunk(QByteArray& png, const char (&type)[5], std::span<const std::uint8_t> data)
{
    const auto number = [&](std::size_t value) {
        const quint32 big = qToBigEndian(static_cast<quint32>(value));
        png.append(reinterpret_cast<const char*>(&big), sizeof big);
    };
    number(data.size());
    const qsizetype checkedFrom = png.size();
    png.append(type, 4);
    png.append(reinterpret_cast<const char*>(data.data()), qsizetype(data.size()));
    number(libdeflate_crc32(0, png.constData() + checkedFrom, std::size_t(png.size() - checkedFrom)));
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

/// The rows, each less what its left and upper neighbours let expect (their mean).
std::vector<std::uint8_t> filteredRows(const QImage& bitmap, int channels)
{
    const std::size_t rowBytes = std::size_t(bitmap.width()) * std::size_t(channels);
    const auto bpp = std::size_t(channels);
    std::vector<std::uint8_t> filtered((rowBytes + 1) * std::size_t(bitmap.height()));
    std::vector<std::uint8_t> above(rowBytes);
    std::vector<std::uint8_t> line(rowBytes);
    std::uint8_t* out = filtered.data();
    for (int y = 0; y < bitmap.height(); ++y) {
        packRow(bitmap, y, channels, line.data());
        *out++ = kAverage;
        for (std::size_t i = 0; i < bpp; ++i)
            out[i] = std::uint8_t(line[i] - above[i] / 2);
        for (std::size_t i = bpp; i < rowBytes; ++i)
            out[i] = std::uint8_t(line[i] - (line[i - bpp] + above[i]) / 2);
        out += rowBytes;
        above.swap(line);
    }
    return filtered;
}

std::vector<std::uint8_t> deflated(std::span<const std::uint8_t> data)
{
    const Compressor compressor(libdeflate_alloc_compressor(kLevel));
    if (!compressor)
        return {};
    std::vector<std::uint8_t> out(libdeflate_zlib_compress_bound(compressor.get(), data.size()));
    out.resize(libdeflate_zlib_compress(compressor.get(), data.data(), data.size(), out.data(), out.size()));
    return out;
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
    const bool alpha = image.format() == QImage::Format_RGBA8888;
    const std::vector<std::uint8_t> packed = deflated(filteredRows(image, alpha ? 4 : 3));
    if (packed.empty())
        return std::nullopt;

    std::array<std::uint8_t, 13> header {};
    qToBigEndian(quint32(image.width()), header.data());
    qToBigEndian(quint32(image.height()), header.data() + 4);
    header[8] = 8;
    header[9] = alpha ? 6 : 2;

    QByteArray png("\x89PNG\r\n\x1a\n", 8);
    png.reserve(qsizetype(packed.size()) + 100);
    appendChunk(png, "IHDR", header);
    for (std::size_t from = 0; from < packed.size(); from += kLargestChunk)
        appendChunk(png, "IDAT", std::span(packed).subspan(from, std::min(kLargestChunk, packed.size() - from)));
    appendChunk(png, "IEND", {});
    return png;
} catch (const std::bad_alloc&) {
    return std::nullopt;
}

} // namespace kelvara::imaging
