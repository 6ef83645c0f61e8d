#include "Policy.h"

#include <gtest/gtest.h>

namespace
{

class Policy : public testing::Test
{
protected:
    void TearDown() override { CPolicy::SetCurrent(CPolicy()); }
};

} // namespace

TEST_F(Policy, AsksForNothingAtFirst)
{
    EXPECT_EQ(0u, CPolicy::Current().Bits());
    EXPECT_FALSE(CPolicy::Current().StandardRtsp());
}

TEST_F(Policy, StandardRtspIsTheFirstBit)
{
    EXPECT_TRUE(CPolicy(1).StandardRtsp());
    EXPECT_TRUE(CPolicy(3).StandardRtsp());
    EXPECT_FALSE(CPolicy(2).StandardRtsp());
    EXPECT_EQ(0x80000002u, CPolicy(0x80000002).Bits());
}

TEST_F(Policy, NoAnnounceIsTheSecondBit)
{
    EXPECT_TRUE(CPolicy(2).NoAnnounce());
    EXPECT_TRUE(CPolicy(3).NoAnnounce());
    EXPECT_FALSE(CPolicy(1).NoAnnounce());
}

TEST_F(Policy, ChangeLeavesACopyAsItWas)
{
    const CPolicy before = CPolicy::Current();
    CPolicy::SetCurrent(CPolicy(1));
    EXPECT_TRUE(CPolicy::Current().StandardRtsp());
    EXPECT_FALSE(before.StandardRtsp());
}
