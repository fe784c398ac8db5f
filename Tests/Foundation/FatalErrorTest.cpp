#include "Platform/Foundation/FatalError.h"

#include <gtest/gtest.h>

namespace kelvara {
namespace {

TEST(FatalErrorDeathTest, SaysOneSentenceAndAborts)
{
    EXPECT_EXIT(fatalError("It cannot be."), testing::KilledBySignal(SIGABRT), "Fatal error: It cannot be.\n");
    EXPECT_EXIT(assertionFailure(""), testing::KilledBySignal(SIGABRT), "Assertion failed\n");
    EXPECT_EXIT(precondition(false, "no"), testing::KilledBySignal(SIGABRT), "Assertion failed: no\n");
    precondition(true, "not reached");
}

} // namespace
} // namespace kelvara
