// The records of the boundary lie at the same places on every machine, so that a host may have been built elsewhere.
#include "DevInterface.h"

#include <gtest/gtest.h>

namespace
{

using namespace NETNS;

TEST(NetTypes, ResultsHaveTheirNumbers)
{
    EXPECT_EQ(0u, DEV_RET_OK);
    EXPECT_EQ(1u, DEV_RET_FAILED);
    EXPECT_EQ(2u, DEV_RET_NO_RIGHT);
    EXPECT_EQ(3u, DEV_RET_BAD_PARAM);
    EXPECT_EQ(4u, DEV_RET_NOT_SUPPORTED);
    EXPECT_EQ(0u, DEV_TYPE_DEFAULT);
}

TEST(NetTypes, TimesAreSixteenBitNumbers)
{
    EXPECT_EQ(0u, offsetof(DEV_DATE, year));
    EXPECT_EQ(2u, offsetof(DEV_DATE, month));
    EXPECT_EQ(4u, offsetof(DEV_DATE, day));
    EXPECT_EQ(0u, offsetof(DEV_TIME, hour));
    EXPECT_EQ(2u, offsetof(DEV_TIME, minute));
    EXPECT_EQ(4u, offsetof(DEV_TIME, second));
    EXPECT_EQ(0u, offsetof(DEV_DATETIME, date));
    EXPECT_EQ(6u, offsetof(DEV_DATETIME, time));
    EXPECT_EQ(12u, sizeof(DEV_DATETIME));
}

TEST(NetTypes, UserIsAWordAndTwoTextsOfTwentyBytes)
{
    EXPECT_EQ(0u, offsetof(DEV_USER_INFO, reserved));
    EXPECT_EQ(4u, offsetof(DEV_USER_INFO, userName));
    EXPECT_EQ(24u, offsetof(DEV_USER_INFO, password));
    EXPECT_EQ(44u, sizeof(DEV_USER_INFO));
}

TEST(NetTypes, VideoProfileIsEightWords)
{
    EXPECT_EQ(0u, offsetof(DEV_VIDEO_PROFILE, width));
    EXPECT_EQ(4u, offsetof(DEV_VIDEO_PROFILE, height));
    EXPECT_EQ(8u, offsetof(DEV_VIDEO_PROFILE, frameRate));
    EXPECT_EQ(12u, offsetof(DEV_VIDEO_PROFILE, maxBitRate));
    EXPECT_EQ(16u, offsetof(DEV_VIDEO_PROFILE, quality));
    EXPECT_EQ(20u, offsetof(DEV_VIDEO_PROFILE, encodeType));
    EXPECT_EQ(24u, offsetof(DEV_VIDEO_PROFILE, encodeLevel));
    EXPECT_EQ(28u, offsetof(DEV_VIDEO_PROFILE, gop));
    EXPECT_EQ(32u, sizeof(DEV_VIDEO_PROFILE));
}

TEST(NetTypes, DeviceInformationIsTextsOf32BytesAndCounts)
{
    EXPECT_EQ(0u, offsetof(DEV_DEVICE_INFO, model));
    EXPECT_EQ(32u, offsetof(DEV_DEVICE_INFO, brand));
    EXPECT_EQ(64u, offsetof(DEV_DEVICE_INFO, description));
    EXPECT_EQ(96u, offsetof(DEV_DEVICE_INFO, softwareVersion));
    EXPECT_EQ(128u, offsetof(DEV_DEVICE_INFO, softwareBuildDate));
    EXPECT_EQ(134u, offsetof(DEV_DEVICE_INFO, kernelVersion));
    EXPECT_EQ(166u, offsetof(DEV_DEVICE_INFO, hardwareVersion));
    EXPECT_EQ(198u, offsetof(DEV_DEVICE_INFO, mac));
    EXPECT_EQ(204u, offsetof(DEV_DEVICE_INFO, audioInCount));
    EXPECT_EQ(206u, offsetof(DEV_DEVICE_INFO, audioOutCount));
    EXPECT_EQ(208u, offsetof(DEV_DEVICE_INFO, alarmInCount));
    EXPECT_EQ(210u, offsetof(DEV_DEVICE_INFO, alarmOutCount));
    EXPECT_EQ(212u, sizeof(DEV_DEVICE_INFO));
}

TEST(NetTypes, TimeSettingsHaveTextsOf128Bytes)
{
    EXPECT_EQ(0u, offsetof(DEV_TIME_CONFIG, synchronizeType));
    EXPECT_EQ(4u, offsetof(DEV_TIME_CONFIG, ntpServer));
    EXPECT_EQ(132u, offsetof(DEV_TIME_CONFIG, timeZone));
    EXPECT_EQ(260u, offsetof(DEV_TIME_CONFIG, daylightSwitch));
    EXPECT_EQ(264u, sizeof(DEV_TIME_CONFIG));
}

} // namespace
