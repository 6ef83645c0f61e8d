#include "CameraWorld.h"

#include <cstring>

using namespace NETNS;

namespace
{

class CameraDevice : public CCameraWorld
{
};

} // namespace

TEST_F(CameraDevice, TellsItsIdentity)
{
    DEV_DEVICE_INFO info = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetDevInfo(m_admin, &info));
    EXPECT_STREQ("netserver-camera", info.model);
    EXPECT_STREQ("netserver", info.brand);
    EXPECT_STREQ("Reference camera", info.description);
    EXPECT_STRNE("", info.softwareVersion);
    EXPECT_GE(info.softwareBuildDate.year, 1970);
    EXPECT_TRUE(info.softwareBuildDate.month >= 1 && info.softwareBuildDate.month <= 12);
    EXPECT_TRUE(info.softwareBuildDate.day >= 1 && info.softwareBuildDate.day <= 31);
    EXPECT_STRNE("", info.kernelVersion);
    EXPECT_STRNE("", info.hardwareVersion);
    EXPECT_EQ(3, info.audioInCount);
    EXPECT_EQ(1, info.audioOutCount);
    EXPECT_EQ(2, info.alarmInCount);
    EXPECT_EQ(2, info.alarmOutCount);
}

TEST_F(CameraDevice, TellsAStrangerNothing)
{
    const char* const stranger = m_stranger;
    DEV_DEVICE_INFO info = {};
    DEV_TIME_CONFIG time = {};
    const DEV_DATETIME now = {{2024, 5, 6}, {7, 8, 9}};
    unsigned int ids[128] = {};
    int count = 7;
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->GetDevInfo(stranger, &info));
    EXPECT_STREQ("", info.model);
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->GetTimeConfig(stranger, &time));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetTimeConfig(stranger, &time));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->SetDateTime(stranger, &now));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->RequestKeyFrame(stranger, 1));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->ModifyPassword(stranger, "new"));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->Reboot(stranger));
    EXPECT_EQ(DEV_RET_NO_RIGHT, m_device->GetChannelIdList(stranger, ids, 128, count));
    EXPECT_EQ(0, count);
    EXPECT_EQ(0, m_effects.m_keyFrames + m_effects.m_reboots);
    EXPECT_TRUE(m_users.IsKnown(m_admin));
}

TEST_F(CameraDevice, ListsItsUsersWithinTheRoom)
{
    DEV_USER_INFO list[8] = {};
    int count = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->GetUserList(list, 8, count));
    ASSERT_EQ(2, count);
    EXPECT_STREQ("admin", list[0].userName);
    EXPECT_STREQ("second", list[1].userName);
    EXPECT_STREQ("pass", list[1].password);
    ASSERT_EQ(DEV_RET_OK, m_device->GetUserList(list, 1, count));
    EXPECT_EQ(1, count);
}

TEST_F(CameraDevice, ANameAndAPasswordOf19CharactersFillTheirFields)
{
    const std::string longest(19, 'x');
    m_users.Replace({{longest, longest}});
    DEV_USER_INFO list[8] = {};
    int count = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->GetUserList(list, 8, count));
    EXPECT_EQ(longest, list[0].userName);
    EXPECT_EQ(longest, list[0].password);
}

TEST_F(CameraDevice, CountsChannelsFromOne)
{
    unsigned int ids[128] = {};
    int count = 0;
    ASSERT_EQ(DEV_RET_OK, m_device->GetChannelIdList(m_admin, ids, 128, count));
    ASSERT_EQ(3, count);
    EXPECT_EQ(1U, ids[0]);
    EXPECT_EQ(3U, ids[2]);
    ASSERT_EQ(DEV_RET_OK, m_device->GetChannelIdList(m_admin, ids, 2, count));
    EXPECT_EQ(2, count);
}

TEST_F(CameraDevice, KeepsTheTimeSettings)
{
    DEV_TIME_CONFIG config = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetTimeConfig(m_admin, &config));
    EXPECT_EQ(0U, config.synchronizeType);
    EXPECT_EQ(0, std::strncmp("GMT", config.timeZone, 3));
    config.synchronizeType = 1;
    std::strcpy(config.ntpServer, "pool.example");
    ASSERT_EQ(DEV_RET_OK, m_device->SetTimeConfig(m_admin, &config));
    DEV_TIME_CONFIG kept = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetTimeConfig(m_admin, &kept));
    EXPECT_EQ(1U, kept.synchronizeType);
    EXPECT_STREQ("pool.example", kept.ntpServer);
    EXPECT_EQ(127, m_device->GetMaxLen(0));
    EXPECT_EQ(0, m_device->GetMaxLen(1));
}

TEST_F(CameraDevice, LeavesTheMachinesClockAlone)
{
    const DEV_DATETIME now = {{2024, 5, 6}, {7, 8, 9}};
    EXPECT_EQ(DEV_RET_NOT_SUPPORTED, m_device->SetDateTime(m_admin, &now));
}

TEST_F(CameraDevice, ForcesKeyFramesOnItsOwnChannelsOnly)
{
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->RequestKeyFrame(m_admin, 0));
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->RequestKeyFrame(m_admin, 4));
    EXPECT_EQ(0, m_effects.m_keyFrames);
    EXPECT_EQ(DEV_RET_OK, m_device->RequestKeyFrame(m_admin, 3));
    EXPECT_EQ(1, m_effects.m_keyFrames);
}

TEST_F(CameraDevice, ChangesThePasswordOfTheUserWhoAsks)
{
    EXPECT_EQ(DEV_RET_OK, m_device->ModifyPassword(m_admin, "new"));
    EXPECT_FALSE(m_users.IsKnown(m_admin));
    EXPECT_TRUE(m_users.IsKnown(Verify("admin", "new").c_str()));
    EXPECT_TRUE(m_users.IsKnown(Verify("second", "pass").c_str()));
}

TEST_F(CameraDevice, RefusesPasswordsThatALoginCouldNotCarry)
{
    const std::string tooLong(20, 'x');
    for (const char* password : {"", "two words", tooLong.c_str(), "\xc3\xa4"})
    {
        EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->ModifyPassword(m_admin, password)) << password;
    }
    EXPECT_EQ(DEV_RET_BAD_PARAM, m_device->ModifyPassword(m_admin, nullptr));
    EXPECT_TRUE(m_users.IsKnown(m_admin));
}

TEST_F(CameraDevice, RebootsWhenAskedTo)
{
    EXPECT_EQ(DEV_RET_OK, m_device->Reboot(m_admin));
    EXPECT_EQ(1, m_effects.m_reboots);
}

TEST_F(CameraDevice, RtspLoginsAreNeededUnlessSwitchedOff)
{
    EXPECT_TRUE(m_device->NeedAuthorization());
    m_options.rtspAuth = false;
    Start();
    EXPECT_FALSE(m_device->NeedAuthorization());
}

TEST_F(CameraDevice, APasswordChangeHoldsAtOnceAndAfterARestart)
{
    ASSERT_EQ(DEV_RET_OK, m_device->ModifyPassword(m_admin, "new"));
    const std::string changed = Verify("admin", "new");
    EXPECT_TRUE(m_users.IsKnown(changed.c_str()));
    Start();
    EXPECT_TRUE(m_users.IsKnown(changed.c_str()));
    EXPECT_FALSE(m_users.IsKnown(m_admin));
    EXPECT_TRUE(m_users.IsKnown(Verify("second", "pass").c_str()));
}

// Whoever gives other users on the command line is not locked out by what was stored.
TEST_F(CameraDevice, OtherUsersOnTheCommandLineReplaceThoseThatAreStored)
{
    ASSERT_EQ(DEV_RET_OK, m_device->ModifyPassword(m_admin, "new"));
    m_options.users = {{"admin", "reset"}};
    Start();
    EXPECT_TRUE(m_users.IsKnown(Verify("admin", "reset").c_str()));
    EXPECT_EQ(1U, m_users.List().size());
}

TEST_F(CameraDevice, SettingsOutliveTheProgram)
{
    DEV_TIME_CONFIG config = {};
    config.synchronizeType = 1;
    std::strcpy(config.ntpServer, "pool.example");
    ASSERT_EQ(DEV_RET_OK, m_device->SetTimeConfig(m_admin, &config));
    Start();
    DEV_TIME_CONFIG kept = {};
    ASSERT_EQ(DEV_RET_OK, m_device->GetTimeConfig(m_admin, &kept));
    EXPECT_EQ(1U, kept.synchronizeType);
    EXPECT_STREQ("pool.example", kept.ntpServer);
}

// A status outside the library's table would end the process.
TEST_F(CameraDevice, AnswersOtherMarkedRequestsWith404)
{
    char* body = nullptr;
    int length = 0;
    int status = 0;
    m_device->ProcHttpData("GET /queryQRInfo HTTP/1.1\r\n\r\n", 29, body, length, status);
    EXPECT_EQ(404, status);
    EXPECT_EQ(nullptr, body);
    EXPECT_EQ(0, length);
}
