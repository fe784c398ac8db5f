#include "LdsSamples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace kelvara::chip {
namespace {

int difference(QRgb one, QRgb other)
{
    return std::max({ std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
        std::abs(qBlue(one) - qBlue(other)) });
}

TEST(Portrait, BothKindsKeepColoursAndPlaces)
{
    const QImage grey = cornersPicture().convertToFormat(QImage::Format_Grayscale8);
    struct Row
    {
        QImage in;
        ImageKind kind;
        int quality;
    };
    for (const auto& [in, kind, quality] :
        { Row { cornersPicture(), ImageKind::Jpeg, 95 }, Row { cornersPicture(), ImageKind::Jpeg2000, 500 },
            Row { grey, ImageKind::Jpeg, 95 }, Row { grey, ImageKind::Jpeg2000, 500 } }) {
        const auto encoded = encodePortrait(in, kind, quality);
        ASSERT_TRUE(encoded);
        EXPECT_EQ(imageKindOf(*encoded), kind);
        EXPECT_EQ(imageSizeOf(*encoded), in.size());
        const auto decoded = decodePortrait(*encoded);
        const auto* out = std::get_if<QImage>(&decoded);
        ASSERT_TRUE(out);
        ASSERT_EQ(out->size(), in.size());
        for (const QPoint at : { QPoint(4, 4), QPoint(55, 4), QPoint(4, 75), QPoint(55, 75) })
            EXPECT_LT(difference(in.pixel(at), out->pixel(at)), 16) << at.x() << ',' << at.y();
    }
    EXPECT_FALSE(encodePortrait({}, ImageKind::Jpeg, 90));
    EXPECT_FALSE(encodePortrait(grey, ImageKind::Unknown, 90));
}

TEST(Portrait, ABareCodestreamIsRead)
{
    const Bytes file = *encodePortrait(cornersPicture(), ImageKind::Jpeg2000, 300);
    const Bytes start = *fromHex("FF4FFF51");
    const auto at = std::search(file.begin(), file.end(), start.begin(), start.end());
    ASSERT_NE(at, file.end());
    const Bytes codestream(at, file.end());
    EXPECT_EQ(imageKindOf(codestream), ImageKind::Jpeg2000);
    EXPECT_TRUE(std::holds_alternative<QImage>(decodePortrait(codestream)));
}

TEST(Portrait, AbsurdSizesAreRefusedBeforeTheDecoder)
{
    for (const ImageKind kind : { ImageKind::Jpeg, ImageKind::Jpeg2000 }) {
        Bytes encoded = *encodePortrait(cornersPicture(64, 64), kind, 80);
        const Bytes start = *fromHex(kind == ImageKind::Jpeg ? "FFC0" : "FF51");
        const auto segment = std::search(encoded.begin(), encoded.end(), start.begin(), start.end());
        ASSERT_NE(segment, encoded.end());
        // Height and width of a frame header have two bytes each, of a size segment four each, width first.
        const auto sizes = segment + (kind == ImageKind::Jpeg ? 5 : 6);
        std::fill(sizes, sizes + 4, 0x7F);
        EXPECT_EQ(std::get<PortraitProblem>(decodePortrait(encoded)),
            kind == ImageKind::Jpeg ? PortraitProblem::TooLarge : PortraitProblem::Damaged);
    }
    Bytes wide = *encodePortrait(cornersPicture(kLongestPortraitSide + 1, 1), ImageKind::Jpeg, 80);
    EXPECT_EQ(std::get<PortraitProblem>(decodePortrait(wide)), PortraitProblem::TooLarge);
}

/// A picture of one grey and thousands of empty passes over it.
Bytes jpegOfManyScans(std::size_t scans)
{
    const Bytes quantization(64, 1);
    Bytes picture = joined({ *fromHex("FFD8 FFDB 0043 00"), quantization,
        *fromHex("FFC2 000B 08 0FA0 0FA0 01 011100"
                 "FFC4 0014 00 01000000000000000000000000000000 00"
                 "FFC4 0014 10 01000000000000000000000000000000 E0"
                 "FFDA 0008 01 0100 00 00 00") });
    for (std::size_t i = 0; i < scans; ++i)
        picture = joined({ picture, *fromHex("FFDA 0008 01 0100 01 3F 00 0000") });
    return joined({ picture, *fromHex("FFD9") });
}

/// The coding style's first field from the picture's codestream on, changed.
Bytes withStyle(Bytes picture, std::size_t field, std::uint8_t value)
{
    const Bytes start = *fromHex("FF52");
    const auto segment = std::search(picture.begin(), picture.end(), start.begin(), start.end());
    EXPECT_NE(segment, picture.end());
    segment[static_cast<std::ptrdiff_t>(4 + field)] = value;
    return picture;
}

/// The same with precincts of this size at every level.
Bytes withPrecincts(Bytes picture, std::uint8_t size)
{
    const Bytes box = bytes("jp2c"), start = *fromHex("FF52");
    const auto head = std::search(picture.begin(), picture.end(), box.begin(), box.end());
    std::fill(head - 4, head, 0); // up to the end of the file
    picture = withStyle(picture, 0, 1);
    const auto segment = std::search(picture.begin(), picture.end(), start.begin(), start.end());
    const std::size_t levels = segment[9] + 1U;
    segment[3] = static_cast<std::uint8_t>(segment[3] + levels);
    picture.insert(segment + 14, levels, size);
    return picture;
}

TEST(Portrait, CostlyOnesAreNotBegun)
{
    const auto problemOf = [](const Bytes& picture) {
        const auto decoded = decodePortrait(picture);
        const auto* const problem = std::get_if<PortraitProblem>(&decoded);
        return problem ? std::optional(*problem) : std::nullopt;
    };
    // Thousands of passes over sixteen million pixels would take minutes.
    EXPECT_EQ(problemOf(jpegOfManyScans(3000)), PortraitProblem::TooCostly);
    EXPECT_EQ(problemOf(jpegOfManyScans(10)), std::nullopt) << "progressive pictures are none of them";
    const Bytes plain = *encodePortrait(cornersPicture(), ImageKind::Jpeg2000, 300);
    EXPECT_EQ(problemOf(withPrecincts(plain, 0xFF)), std::nullopt) << "one precinct, spelled out";
    EXPECT_EQ(problemOf(withPrecincts(plain, 0x77)), std::nullopt);
    // Half a kilobyte of memory for every four pixels.
    EXPECT_EQ(problemOf(withPrecincts(plain, 0x11)), PortraitProblem::TooCostly);
    EXPECT_EQ(problemOf(withStyle(withStyle(plain, 6, 0), 7, 0)), PortraitProblem::TooCostly) << "blocks of 4 by 4";
    EXPECT_EQ(problemOf(withStyle(plain, 2, 0xFF)), PortraitProblem::TooCostly) << "65,281 layers";
}

TEST(Portrait, NoSecondFrameHeaderLiesBehindABareMarker)
{
    // For a decoder the marker ends at once, and 8,192 by 8,192 pixels follow.
    Bytes picture = *fromHex("FFD8 FF01 FFC0 000B 08 2000 2000 01 011100");
    picture.resize(4 + 0xFFC0, 0);
    const Bytes small = *fromHex("FFC0 000B 08 0008 0008 01 011100 FFD9");
    picture.insert(picture.end(), small.begin(), small.end());
    EXPECT_FALSE(imageSizeOf(picture));
}

TEST(Portrait, NoOtherReaderIsReached)
{
    // The head of a JPEG 2000 picture of 8 by 8 pixels, behind it a medical picture of the same size.
    Bytes encoded = *fromHex("0000000C 6A502020 0D0A870A 00000000 6A703263"
                             "FF4F FF51 0029 0000 00000008 00000008 00000000 00000000"
                             "00000008 00000008 00000000 00000000 0001 07 01 01");
    encoded.resize(128);
    const Bytes medical = *fromHex("4449434d 0200 0000 554c 0400 1c000000 0200 1000 5549 1400"
                                   "312e322e3834302e31303030382e312e322e3100 2800 0200 5553 0200 0300"
                                   "2800 0400 4353 0400 52474220 2800 0600 5553 0200 0000 2800 1000 5553 0200 0800"
                                   "2800 1100 5553 0200 0800 2800 0001 5553 0200 0800 2800 0101 5553 0200 0800"
                                   "2800 0201 5553 0200 0700 2800 0301 5553 0200 0000 e07f 1000 4f57 0000 c0000000");
    encoded.insert(encoded.end(), medical.begin(), medical.end());
    encoded.resize(encoded.size() + 192, 77);
    ASSERT_EQ(imageSizeOf(encoded), QSize(8, 8));
    const auto decoded = decodePortrait(encoded);
    ASSERT_TRUE(std::holds_alternative<PortraitProblem>(decoded));
    EXPECT_EQ(std::get<PortraitProblem>(decoded), PortraitProblem::Damaged);
}

TEST(Portrait, DamageIsAValue)
{
    EXPECT_EQ(std::get<PortraitProblem>(decodePortrait({})), PortraitProblem::UnknownKind);
    EXPECT_EQ(std::get<PortraitProblem>(decodePortrait(bytes("GIF89a"))), PortraitProblem::UnknownKind);
    std::mt19937 dice(7);
    for (const ImageKind kind : { ImageKind::Jpeg, ImageKind::Jpeg2000 }) {
        const Bytes whole = *encodePortrait(cornersPicture(), kind, kind == ImageKind::Jpeg ? 90 : 300);
        for (std::size_t size = 0; size < 60; ++size)
            EXPECT_TRUE(std::holds_alternative<PortraitProblem>(decodePortrait(bytes(first(whole, size))))) << size;
        for (int i = 0; i < 60; ++i) {
            Bytes flipped = whole;
            for (int n = 0; n < 3; ++n)
                flipped[dice() % flipped.size()] = static_cast<std::uint8_t>(dice());
            const auto decoded = decodePortrait(flipped);
            if (const auto* picture = std::get_if<QImage>(&decoded)) {
                EXPECT_FALSE(picture->isNull());
            }
        }
    }
}

} // namespace
} // namespace kelvara::chip
