#include "PFAssert.h"
#include "PFSocket.h"

#include <gtest/gtest.h>

TEST(PFAssert, TrueExpressionGoesOn)
{
    int count = 0;
    PF_ASSERT(++count == 1);
    EXPECT_EQ(1, count);
}

TEST(PFAssertDeathTest, FalseExpressionEndsTheProcessWithItsPlace)
{
    const int one = 1;
    EXPECT_EXIT(PF_ASSERT(one == 2), testing::KilledBySignal(SIGABRT),
                "PFAssertTest.cpp:[0-9]+: .*Assertion .one == 2. failed");
}

TEST(PFAssertDeathTest, TextStandsForTheExpression)
{
    const int one = 1;
    PF_ASSERT_TEXT(one == 1, "established");
    EXPECT_EXIT(PF_ASSERT_TEXT(one == 2, "established"), testing::KilledBySignal(SIGABRT),
                "PFAssertTest.cpp:[0-9]+: .*Assertion .established. failed");
}

TEST(PFSocket, NeedsNothingOnThisPlatform)
{
    EXPECT_EQ(0, CPFSocket::Startup());
    EXPECT_EQ(0, CPFSocket::Cleanup());
}
