#include "KeyFrameRequests.h"

#include <gtest/gtest.h>

TEST(KeyFrameRequests, PassesOnOneRequestForEachFrame)
{
    CKeyFrameRequests requests;
    EXPECT_TRUE(requests.Ask());
    EXPECT_FALSE(requests.Ask());
    EXPECT_FALSE(requests.Ask());
    requests.FrameEncoded();
    EXPECT_TRUE(requests.Ask());
    EXPECT_FALSE(requests.Ask());
}

TEST(KeyFrameRequests, FramesWithoutRequestsOweNothing)
{
    CKeyFrameRequests requests;
    requests.FrameEncoded();
    requests.FrameEncoded();
    EXPECT_TRUE(requests.Ask());
    EXPECT_FALSE(requests.Ask());
}
