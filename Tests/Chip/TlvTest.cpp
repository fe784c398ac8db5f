#include "Platform/Chip/Tlv.h"

#include <gtest/gtest.h>

namespace kelvara::chip {
namespace {

TEST(Tlv, ReadsWhatIsThereAndNothingMore)
{
    const Bytes file = *fromHex("60 16 5F 01 04 30 31 30 37 5F 36 06 30 34 30 30 30 30 5C 04 61 75 6E 6F");
    const auto com = findTlv(file, 0x60);
    ASSERT_TRUE(com);
    EXPECT_TRUE(com->isConstructed());
    EXPECT_EQ(com->whole.size(), file.size());
    EXPECT_EQ(toHex(findTlv(file, { 0x60, 0x5C })->value), "61756E6F");
    EXPECT_EQ(toHex(findTlv(file, { 0x60, 0x5F36 })->value), "303430303030");
    EXPECT_FALSE(findTlv(file, { 0x60, 0x5F35 }));
    EXPECT_EQ(allTlvs(com->value)->size(), 3U);
    EXPECT_EQ(tlvSize(first(file, 2)), file.size());
    EXPECT_FALSE(tlvSize(first(file, 1)));
}

TEST(Tlv, RefusesLengthsThatCannotBe)
{
    for (const char* damaged : { "60", "60 05 01", "60 80 00 00", "60 85 01 00 00 00 00", "60 84 FF FF FF FF 00", "5F",
             "5F FF FF 01", "7F 61 82 01", "04 01 00 60 02 00" }) {
        const Bytes bytes = *fromHex(damaged);
        EXPECT_FALSE(allTlvs(bytes)) << damaged;
        EXPECT_FALSE(findTlv(bytes, 0x60)) << damaged;
    }
    EXPECT_TRUE(allTlvs({})->empty());
    EXPECT_EQ(allTlvs(*fromHex("00 00 04 01 AA 00 00"))->size(), 1U) << "zeros pad";
}

TEST(Tlv, WritesTheShortestLength)
{
    for (const std::size_t size : { 0U, 1U, 127U, 128U, 255U, 256U, 65535U, 65536U }) {
        const Bytes value(size, 0x5A);
        const Bytes object = makeTlv(0x7F61, value);
        const std::size_t lengthBytes = size < 128 ? 1 : size < 256 ? 2 : size < 65536 ? 3 : 4;
        EXPECT_EQ(object.size(), 2 + lengthBytes + size);
        const auto read = findTlv(object, 0x7F61);
        ASSERT_TRUE(read);
        EXPECT_EQ(bytes(read->value), value);
    }
}

TEST(Hex, TakesPairsOfDigitsOnly)
{
    EXPECT_EQ(toHex(*fromHex("00ffA5 7e")), "00FFA57E");
    for (const char* no : { "0", "0g", "12 3", "1 2", "12\n34" })
        EXPECT_FALSE(fromHex(no)) << no;
}

} // namespace
} // namespace kelvara::chip
