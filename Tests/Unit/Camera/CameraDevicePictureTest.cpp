#include "CameraWorld.h"

#include <cstring>

using namespace NETNS;

namespace
{

class CameraDevicePicture : public CCameraWorld
{
protected:
    DEV_IMAGE_PARAM Image()
    {
        DEV_IMAGE_PARAM image = {};
        EXPECT_EQ(DEV_RET_OK, m_device->GetImageParam(m_admin, 1, &image));
        return image;
    }
    DEV_VIDEO_PROFILE Profile(int stream)
    {
        DEV_VIDEO_PROFILE profile = {};
        EXPECT_EQ(DEV_RET_OK, m_device->GetVideoProfile(m_admin, 1, stream, &profile));
        return profile;
    }
};

} // namespace

TEST_F(CameraDevicePicture, KeepsTheImageOverARestart)
{
    DEV_IMAGE_PARAM image = Image();
    image.bright = 80;
    image.mirrorSwitch = 1;
    image.whiteBalanceMode = 3;
    image.blue = 7;
    image.irCutMode = 2;
    ASSERT_EQ(DEV_RET_OK, m_device->SetImageParam(m_admin, 1, &image));
    EXPECT_EQ((std::vector<SettingsTopic>{SettingsTopic::Image}), m_effects.m_topics);
    Start();
    const DEV_IMAGE_PARAM kept = Image();
    EXPECT_EQ(80, kept.bright);
    EXPECT_EQ(50, kept.contrast);
    EXPECT_EQ(1, kept.mirrorSwitch);
    EXPECT_EQ(3U, kept.whiteBalanceMode);
    EXPECT_EQ(7U, kept.blue);
    EXPECT_EQ(2U, kept.irCutMode);
}

TEST_F(CameraDevicePicture, ImageValuesOutsideOfTheLimitsChangeNothing)
{
    const struct
    {
        const char* name;
        void (*spoil)(DEV_IMAGE_PARAM&);
    } CASES[] = {
        {"bright",
         [](DEV_IMAGE_PARAM& image)
         {
             image.bright = 101;
         }},
        {"hue",
         [](DEV_IMAGE_PARAM& image)
         {
             image.hue = 255;
         }},
        {"sharpness",
         [](DEV_IMAGE_PARAM& image)
         {
             image.sharpenValue = 101;
         }},
        {"red",
         [](DEV_IMAGE_PARAM& image)
         {
             image.red = 101;
         }},
        {"frequency",
         [](DEV_IMAGE_PARAM& image)
         {
             image.frequency = 2;
         }},
        {"white balance",
         [](DEV_IMAGE_PARAM& image)
         {
             image.whiteBalanceMode = 6;
         }},
        {"day and night",
         [](DEV_IMAGE_PARAM& image)
         {
             image.irCutMode = 4;
         }},
    };
    for (const auto& one : CASES)
    {
        DEV_IMAGE_PARAM image = Image();
        one.spoil(image);
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetImageParam(m_admin, 1, &image)) << one.name;
    }
    EXPECT_TRUE(m_effects.m_topics.empty());
    EXPECT_EQ(50, Image().bright);
}

// The answer's document has no place for it: the library stops the process over a host that says so.
TEST_F(CameraDevicePicture, TheWideDynamicRangeIsOffByDefault)
{
    DEV_IMAGE_CAPS caps = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetImageCaps(m_admin, 1, &caps));
    EXPECT_EQ(0, caps.wdrSwitchDefault);
    EXPECT_EQ(100U, caps.brightMax);
    EXPECT_EQ(50U, caps.brightDefault);
    EXPECT_EQ(100U, caps.redMax);
}

TEST_F(CameraDevicePicture, ChannelsThatAreNotThereAreRefused)
{
    DEV_IMAGE_PARAM image = Image();
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->GetImageParam(m_admin, 0, &image));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetImageParam(m_admin, 4, &image));
    EXPECT_EQ(0, m_device->GetProfileCount(4));
    EXPECT_EQ(2, m_device->GetProfileCount(3));
}

TEST_F(CameraDevicePicture, StreamsOfferTheWholePictureAndPartsOfItsSize)
{
    DEV_VIDEO_ENCODE_CAPS caps = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetVideoEncodeCaps(m_admin, 1, 0, &caps));
    ASSERT_EQ(4U, caps.resolutionCount);
    EXPECT_EQ(1280U, caps.resolutions[0].width);
    EXPECT_EQ(720U, caps.resolutions[0].height);
    EXPECT_EQ(960U, caps.resolutions[1].width);
    EXPECT_EQ(180U, caps.resolutions[3].height);
    EXPECT_EQ(15U, caps.frameRateMax);
    EXPECT_EQ(1U, caps.encodeTypeCount);
    EXPECT_EQ(2U, caps.encodeTypes[0]);
    ASSERT_EQ(DEV_RET_OK, m_device->GetVideoEncodeCaps(m_admin, 1, 1, &caps));
    EXPECT_EQ(3U, caps.resolutionCount);
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->GetVideoEncodeCaps(m_admin, 1, 2, &caps));
}

TEST_F(CameraDevicePicture, NamesItsStreams)
{
    char name[128] = {};
    int length = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->GetProfileName(m_admin, 1, 1, name, sizeof(name), length));
    EXPECT_STREQ("sub", name);
    EXPECT_EQ(3, length);
    ASSERT_EQ(DEV_RET_OK, m_device->GetProfileName(m_admin, 1, 0, name, 3, length));
    EXPECT_STREQ("ma", name);
    EXPECT_EQ(2, length);
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->GetProfileName(m_admin, 1, -1, name, sizeof(name), length));
}

TEST_F(CameraDevicePicture, StreamSettingsOutliveTheProgram)
{
    DEV_VIDEO_PROFILE profile = Profile(1);
    profile.width = 320;
    profile.height = 180;
    profile.frameRate = 5;
    ASSERT_EQ(DEV_RET_OK, m_device->SetVideoProfile(m_admin, 2, 1, &profile));
    EXPECT_EQ((std::vector<SettingsTopic>{SettingsTopic::Streams}), m_effects.m_topics);
    Start();
    EXPECT_EQ(320U, Profile(1).width);
    EXPECT_EQ(5U, Profile(1).frameRate);
    EXPECT_EQ(1280U, Profile(0).width);
}

TEST_F(CameraDevicePicture, AnotherSizeOnTheCommandLineReplacesTheStreamsThatAreStored)
{
    DEV_VIDEO_PROFILE profile = Profile(1);
    profile.gop = 77;
    ASSERT_EQ(DEV_RET_OK, m_device->SetVideoProfile(m_admin, 1, 1, &profile));
    m_options.width = 640;
    m_options.height = 480;
    Start();
    EXPECT_EQ(320U, Profile(1).width);
    EXPECT_EQ(30U, Profile(1).gop);
}

TEST_F(CameraDevicePicture, StreamSettingsThatAreImpossibleAreRefused)
{
    const struct
    {
        const char* name;
        void (*spoil)(DEV_VIDEO_PROFILE&);
    } CASES[] = {
        {"size",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.width = 641;
         }},
        {"no pictures",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.frameRate = 0;
         }},
        {"more pictures than there are",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.frameRate = 16;
         }},
        {"bit rate",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.maxBitRate = 15;
         }},
        {"quality",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.quality = 6;
         }},
        {"mjpeg",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.encodeType = 0;
         }},
        {"extended profile",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.encodeLevel = 3;
         }},
        {"no key frames",
         [](DEV_VIDEO_PROFILE& profile)
         {
             profile.gop = 0;
         }},
    };
    for (const auto& one : CASES)
    {
        DEV_VIDEO_PROFILE profile = Profile(0);
        one.spoil(profile);
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetVideoProfile(m_admin, 1, 0, &profile)) << one.name;
    }
    const DEV_VIDEO_PROFILE whole = Profile(0);
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetVideoProfile(m_admin, 1, 1, &whole)); // the sub stream is smaller
    EXPECT_TRUE(m_effects.m_topics.empty());
}

TEST_F(CameraDevicePicture, SoundIsInOneOfTwoCodes)
{
    EXPECT_TRUE(m_device->SupportAudioEncode(1, 0));
    EXPECT_FALSE(m_device->SupportAudioEncode(1, 1));
    ASSERT_EQ(DEV_RET_OK, m_device->SetAudioEncode(m_admin, 1, 1));
    EXPECT_FALSE(m_device->SupportAudioEncode(1, 0));
    EXPECT_TRUE(m_device->SupportAudioEncode(1, 1));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetAudioEncode(m_admin, 1, 2));
    Start();
    EXPECT_TRUE(m_device->SupportAudioEncode(1, 1));
}

TEST_F(CameraDevicePicture, KeepsTheBurntInText)
{
    DEV_CHANNEL_NAME_OSD name = {1, 10, 20, "Gate"};
    ASSERT_EQ(DEV_RET_OK, m_device->SetTimeOsd(m_admin, 1, {1, 100, 60, 3}));
    ASSERT_EQ(DEV_RET_OK, m_device->SetChannelNameOsd(m_admin, 1, name));
    Start();
    DEV_TIME_OSD time = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetTimeOsd(m_admin, 1, &time));
    EXPECT_EQ(100U, time.x);
    EXPECT_EQ(3U, time.dateFormat);
    ASSERT_EQ(DEV_RET_OK, m_device->GetChannelNameOsd(m_admin, 1, &name));
    EXPECT_STREQ("Gate", name.name);
    EXPECT_EQ(20U, name.y);
}

TEST_F(CameraDevicePicture, ADateFormatThatIsLeftOutStays)
{
    ASSERT_EQ(DEV_RET_OK, m_device->SetTimeOsd(m_admin, 1, {1, 0, 0, 2}));
    ASSERT_EQ(DEV_RET_OK, m_device->SetTimeOsd(m_admin, 1, {0, 0, 0, 0}));
    DEV_TIME_OSD time = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetTimeOsd(m_admin, 1, &time));
    EXPECT_EQ(0U, time.osdSwitch);
    EXPECT_EQ(2U, time.dateFormat);
}

TEST_F(CameraDevicePicture, TextOutsideOfThePictureIsRefused)
{
    EXPECT_EQ(DEV_RET_OK, m_device->SetTimeOsd(m_admin, 1, {1, 1279, 719, 1}));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetTimeOsd(m_admin, 1, {1, 1280, 0, 1}));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetTimeOsd(m_admin, 1, {1, 0, 720, 1}));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetTimeOsd(m_admin, 1, {1, 0, 0, 4}));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetTimeOsd(m_admin, 1, {2, 0, 0, 1}));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetChannelNameOsd(m_admin, 1, {1, 1280, 0, "x"}));
}

TEST_F(CameraDevicePicture, KeepsUpToEightMasks)
{
    const DEV_PRIVACY_MASK mask = {1, 10, 20, 30, 40, 2};
    std::vector<DEV_PRIVACY_MASK> masks(9, mask);
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetPrivacyMask(m_admin, 1, masks.data(), 9));
    ASSERT_EQ(DEV_RET_OK, m_device->SetPrivacyMask(m_admin, 1, masks.data(), 8));
    Start();
    DEV_PRIVACY_MASK list[8] = {};
    int count = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->GetPrivacyMask(m_admin, 1, list, 8, count));
    EXPECT_EQ(8, count);
    EXPECT_EQ(0, std::memcmp(&mask, &list[7], sizeof(mask)));
    ASSERT_EQ(DEV_RET_OK, m_device->SetPrivacyMask(m_admin, 1, nullptr, 0));
    ASSERT_EQ(DEV_RET_OK, m_device->GetPrivacyMask(m_admin, 1, list, 8, count));
    EXPECT_EQ(0, count);
}

TEST_F(CameraDevicePicture, MasksOutsideOfThePictureAreRefused)
{
    for (const DEV_PRIVACY_MASK mask : {DEV_PRIVACY_MASK{1, 1280, 0, 10, 10, 0}, DEV_PRIVACY_MASK{1, 0, 720, 10, 10, 0},
                                        DEV_PRIVACY_MASK{1, 0, 0, 1281, 10, 0}, DEV_PRIVACY_MASK{1, 0, 0, 10, 10, 3},
                                        DEV_PRIVACY_MASK{2, 0, 0, 10, 10, 0}})
    {
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->SetPrivacyMask(m_admin, 1, &mask, 1));
    }
}

TEST_F(CameraDevicePicture, AStrangerChangesNothing)
{
    DEV_IMAGE_PARAM image = Image();
    DEV_VIDEO_PROFILE profile = Profile(0);
    const DEV_PRIVACY_MASK mask = {1, 10, 20, 30, 40, 2};
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetImageParam(m_stranger, 1, &image));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetVideoProfile(m_stranger, 1, 0, &profile));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetAudioEncode(m_stranger, 1, 1));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetPrivacyMask(m_stranger, 1, &mask, 1));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetTimeOsd(m_stranger, 1, {1, 0, 0, 1}));
    EXPECT_TRUE(m_effects.m_topics.empty());
}
