#include "Platform/Chip/messaging/Apdu.h"

#include <gtest/gtest.h>

namespace kelvara::chip {
namespace {

struct CommandRow
{
    std::size_t data;
    std::optional<std::uint32_t> le;
    const char* head; ///< Up to the data.
    const char* tail;
};

TEST(Apdu, EveryCaseOfIso7816)
{
    const CommandRow rows[] = {
        { 0, std::nullopt, "00B08102", "" },
        { 0, 1, "00B08102", "01" },
        { 0, 256, "00B08102", "00" },
        { 0, 257, "00B08102", "000101" },
        { 0, 65536, "00B08102", "000000" },
        { 3, std::nullopt, "00B0810203", "" },
        { 255, 256, "00B08102FF", "00" },
        { 256, std::nullopt, "00B08102000100", "" },
        { 2, 4096, "00B08102000002", "1000" },
        { 300, 65536, "00B0810200012C", "0000" },
    };
    for (const CommandRow& row : rows) {
        const CommandApdu command { 0x00, 0xB0, 0x81, 0x02, Bytes(row.data, 0xAB), row.le };
        const Bytes encoded = command.encoded();
        EXPECT_EQ(toHex(encoded), row.head + toHex(Bytes(row.data, 0xAB)) + row.tail);
        const auto decoded = CommandApdu::decoded(encoded);
        ASSERT_TRUE(decoded) << row.head;
        EXPECT_EQ(decoded->data, command.data);
        EXPECT_EQ(decoded->le, command.le);
        EXPECT_EQ(decoded->p1, 0x81);
    }
    for (const char* no : { "", "00B081", "00B0810205AB", "00B0810201ABCDEF", "00B08102000000AB", "00B08102000005AB" })
        EXPECT_FALSE(CommandApdu::decoded(*fromHex(no))) << no;
}

TEST(Apdu, ResponsesEndWithTheirStatus)
{
    const auto response = ResponseApdu::decoded(*fromHex("0102 9000"));
    ASSERT_TRUE(response);
    EXPECT_TRUE(response->isSuccess());
    EXPECT_EQ(toHex(response->data), "0102");
    EXPECT_EQ(toHex(response->encoded()), "01029000");
    EXPECT_EQ(ResponseApdu::decoded(*fromHex("6A82"))->sw, 0x6A82);
    EXPECT_FALSE(ResponseApdu::decoded(*fromHex("90")));
}

} // namespace
} // namespace kelvara::chip
