#include "Platform/Chip/crypto/Digest.h"

#include <gtest/gtest.h>

namespace kelvara::chip {
namespace {

TEST(Digest, OfABasicAccessKey)
{
    EXPECT_EQ(toHex(digest(DigestAlgorithm::SHA1, bytes("L898902C<369080619406236"))),
        "239AB9CB282DAF66231DC5A4DF6BFBAEDF477565");
    EXPECT_EQ(toHex(first(digest(DigestAlgorithm::SHA256, {}), 4)), "E3B0C442");
    EXPECT_EQ(digest(DigestAlgorithm::SHA384, bytes("a")).size(), 48U);
}

} // namespace
} // namespace kelvara::chip
