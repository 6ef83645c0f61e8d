#include "RTSP_DataManager.h"

#include "FakeDevice.h"
#include "FakeStreamCtrl.h"
#include "FrameMaker.h"
#include "NetServerSDK.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace
{
constexpr bool KEY = true;
constexpr bool NOT_KEY = false;
constexpr NETNS::RTSP_FRAME_TYPE VIDEO = NETNS::RTSP_FRAME_VIDEO;
constexpr NETNS::RTSP_FRAME_TYPE AUDIO = NETNS::RTSP_FRAME_AUDIO;
constexpr NETNS::RTSP_FRAME_TYPE JPEG = NETNS::RTSP_FRAME_JPEG;

std::string Bytes(const char* text, std::size_t length)
{
    return std::string(text, length);
}

// SPS 67 42 00 1F, PPS 68 CE 3C 80, IDR slice.
const std::string KEY_FRAME = Bytes("\0\0\0\1\x67\x42\0\x1F"
                                    "\0\0\0\1\x68\xCE\x3C\x80"
                                    "\0\0\0\1\x65slice",
                                    26);
const std::string P_FRAME = Bytes("\0\0\0\1\x41slice", 10);

// A host that says how many users it has, whether the list took them or not.
class Device : public CFakeDevice
{
public:
    NETNS::DEV_RET GetUserList(NETNS::DEV_USER_INFO* list, int max, int& count) override
    {
        askedFor = max;
        CFakeDevice::GetUserList(list, max, count);
        if (reportedCount != 0)
            count = reportedCount;
        return NETNS::DEV_RET_OK;
    }

    void MakeUsers(unsigned int count)
    {
        users.assign(count, NETNS::DEV_USER_INFO());
        for (unsigned int i = 0; i < count; ++i)
            snprintf(users[i].userName, sizeof(users[i].userName), "user%u", i);
    }

    int reportedCount = 0;
    int askedFor = 0;
};

class RTSP_DataManager : public testing::Test
{
protected:
    int Add(unsigned int id, int stream, NETNS::RTSP_FRAME_TYPE type, bool key, const std::string& payload,
            unsigned long long timeMs = 0)
    {
        NETNS::RTSP_FRAME info = FrameInfo(type, key, timeMs * 1000, static_cast<unsigned int>(payload.size()));
        info.encodeType = type == VIDEO ? NETNS::RTSP_ENCODE_H264 : NETNS::RTSP_ENCODE_PCMA;
        info.clockRate = type == VIDEO ? 90000 : 8000;
        return m_manager.AddData(id, stream, info, payload.data());
    }

    CSharedDataList* List(unsigned int id, int stream, NETNS::RTSP_FRAME_TYPE type,
                          RefusalRule rule = REFUSAL_ENDS_WALK)
    {
        return m_manager.CreateSharedDataList(id, stream, type, -1, 2000, rule);
    }

    CRTSP_DataManager m_manager{20};
};
} // namespace

TEST_F(RTSP_DataManager, IsOneInAProcess)
{
    EXPECT_EQ(&CRTSP_DataManager::Instance(), &CRTSP_DataManager::Instance());
}

TEST_F(RTSP_DataManager, VideoBeforeAKeyFrameIsRefused)
{
    EXPECT_EQ(-1, Add(1, 0, VIDEO, NOT_KEY, P_FRAME));
    EXPECT_EQ(0, Add(1, 0, VIDEO, KEY, KEY_FRAME));
    EXPECT_EQ(0, Add(1, 0, VIDEO, NOT_KEY, P_FRAME));
}

TEST_F(RTSP_DataManager, FrameGoesToEveryListOfItsStream)
{
    CSharedDataList* first = List(1, 0, VIDEO);
    CSharedDataList* second = List(1, 0, VIDEO);
    CSharedDataList* otherStream = List(1, 1, VIDEO);
    CSharedDataList* otherId = List(2, 0, VIDEO);
    CSharedDataList* otherType = List(1, 0, AUDIO);
    EXPECT_EQ(0, Add(1, 0, VIDEO, KEY, KEY_FRAME));
    EXPECT_EQ(1, first->Size());
    EXPECT_EQ(1, second->Size());
    EXPECT_EQ(0, otherStream->Size());
    EXPECT_EQ(0, otherId->Size());
    EXPECT_EQ(0, otherType->Size());

    CSharedData* one = first->GetFirstData();
    CSharedData* two = second->GetFirstData();
    EXPECT_EQ(one, two); // one copy for both
    EXPECT_EQ(0, memcmp(KEY_FRAME.data(), one->GetRtData(), KEY_FRAME.size()));
    EXPECT_EQ(2, one->Dec());
    EXPECT_EQ(1, two->Dec());
}

// The frame that makes the record goes to no list.
TEST_F(RTSP_DataManager, FirstFrameOnlySaysWhatTheStreamIs)
{
    EXPECT_EQ(0, Add(1, 0, VIDEO, KEY, KEY_FRAME));
    CSharedDataList* list = List(1, 0, VIDEO);
    EXPECT_EQ(0, list->Size());
    EXPECT_EQ(0, Add(1, 0, VIDEO, KEY, KEY_FRAME));
    EXPECT_EQ(1, list->Size());
}

// A client that waits for a key frame keeps the frame from those that came after it.
TEST_F(RTSP_DataManager, RefusingListEndsTheWalk)
{
    Add(1, 0, VIDEO, KEY, KEY_FRAME);
    CSharedDataList* playing = List(1, 0, VIDEO);
    Add(1, 0, VIDEO, KEY, KEY_FRAME);
    CSharedDataList* waiting = List(1, 0, VIDEO);
    CSharedDataList* behind = List(1, 0, VIDEO);
    EXPECT_EQ(-1, Add(1, 0, VIDEO, NOT_KEY, P_FRAME));
    EXPECT_EQ(2, playing->Size());
    EXPECT_EQ(0, waiting->Size());
    EXPECT_EQ(0, behind->Size());
    EXPECT_EQ(0, Add(1, 0, VIDEO, KEY, KEY_FRAME));
    EXPECT_EQ(1, behind->Size());
}

TEST_F(RTSP_DataManager, RefusingListHidesNothingFromThoseBehindIt)
{
    CSharedDataList* first = List(1, 0, VIDEO, REFUSAL_PASSES);
    CSharedDataList* behind = List(1, 0, VIDEO, REFUSAL_PASSES);
    Add(1, 0, VIDEO, KEY, KEY_FRAME);
    // The first list alone is set back to waiting.
    first->GetFirstData()->Dec();
    first->DeleteUntilKeyFrame();
    EXPECT_EQ(0, Add(1, 0, VIDEO, NOT_KEY, P_FRAME));
    EXPECT_EQ(0, first->Size());
    EXPECT_EQ(2, behind->Size());
}

TEST_F(RTSP_DataManager, RefusingListWithTheDefaultRuleHidesTheFrameFromThoseBehindIt)
{
    CSharedDataList* first = List(1, 0, VIDEO);
    CSharedDataList* behind = List(1, 0, VIDEO, REFUSAL_PASSES);
    Add(1, 0, VIDEO, KEY, KEY_FRAME);
    first->GetFirstData()->Dec();
    first->DeleteUntilKeyFrame();
    EXPECT_EQ(-1, Add(1, 0, VIDEO, NOT_KEY, P_FRAME));
    EXPECT_EQ(1, behind->Size());
}

TEST_F(RTSP_DataManager, DeletedListGetsNothingMore)
{
    CSharedDataList* list = List(1, 0, VIDEO);
    EXPECT_EQ(0, m_manager.DelSharedDataList(list));
    EXPECT_EQ(-1, m_manager.DelSharedDataList(list));
    EXPECT_EQ(-1, m_manager.DelSharedDataList(nullptr));
    EXPECT_EQ(0, Add(1, 0, VIDEO, KEY, KEY_FRAME));
}

TEST_F(RTSP_DataManager, ListsAreLogged)
{
    testing::internal::CaptureStderr();
    CSharedDataList* list = List(7, 1, VIDEO);
    EXPECT_NE(std::string::npos,
              testing::internal::GetCapturedStderr().find(
                  "  ----CRTSP_DataManager::CreateSharedDataList  begin chnidx:7, streamidx:1   \n"));
    m_manager.DelSharedDataList(list);
    testing::internal::CaptureStderr();
    m_manager.DelSharedDataList(list);
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find(" error RTSP_DataManager.cpp:"));
}

TEST_F(RTSP_DataManager, AMissingHostIsLogged)
{
    FakeStreamCtrl streams;
    Device device;
    testing::internal::CaptureStderr();
    m_manager.Init(&streams, &device);
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    for (const bool withStreams : {false, true})
    {
        testing::internal::CaptureStderr();
        m_manager.Init(withStreams ? &streams : nullptr, withStreams ? nullptr : &device);
        EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find(" ASSERT\n"));
    }
}

TEST_F(RTSP_DataManager, ClearForgetsStreamsAndKeepsUrls)
{
    m_manager.SetLiveRtspUrl(1, 0, "/live/ch1");
    List(1, 0, VIDEO);
    Add(1, 0, VIDEO, KEY, KEY_FRAME);
    m_manager.Clear();
    EXPECT_EQ(-1, Add(1, 0, VIDEO, NOT_KEY, P_FRAME));
    unsigned int chn = 0;
    int stream = 0;
    EXPECT_TRUE(m_manager.FindRtspUrl("rtsp://a/live/ch1", chn, stream));
}

TEST_F(RTSP_DataManager, FrameWithoutPayloadDoesNoHarm)
{
    CSharedDataList* list = List(1, 0, VIDEO);
    const NETNS::RTSP_FRAME info = FrameInfo(VIDEO, KEY, 0, 100);
    EXPECT_EQ(0, m_manager.AddData(1, 0, info, nullptr));
    EXPECT_EQ(0, m_manager.AddData(1, 1, info, nullptr));
    ASSERT_EQ(1, list->Size());
    CSharedData* frame = list->GetFirstData();
    EXPECT_EQ(0, frame->GetLength());
    frame->Dec();
}

// Under the thread and address sanitizers: the scheduler gives a frame back while the walk goes on.
TEST_F(RTSP_DataManager, FrameIsKeptForTheWalkWhileTheFirstListGivesItBack)
{
    std::vector<CSharedDataList*> lists;
    for (int i = 0; i < 8; ++i)
        lists.push_back(List(1, 0, VIDEO));
    std::thread host(
        [this]
        {
            for (unsigned int i = 0; i < 2000; ++i)
                Add(1, 0, VIDEO, KEY, KEY_FRAME, i);
        });
    int taken = 0;
    while (taken < 2000 * 8)
    {
        for (CSharedDataList* list : lists)
        {
            if (CSharedData* frame = list->GetFirstData())
            {
                EXPECT_EQ(static_cast<int>(KEY_FRAME.size()), frame->GetLength());
                frame->Dec();
                ++taken;
            }
        }
    }
    host.join();
}

TEST_F(RTSP_DataManager, FirstRegistrationOfAUrlWins)
{
    m_manager.SetLiveRtspUrl(1, 0, "/live/ch1");
    m_manager.SetLiveRtspUrl(2, 1, "/live/ch1");
    unsigned int chn = 9;
    int stream = 9;
    EXPECT_TRUE(m_manager.FindRtspUrl("rtsp://a/live/ch1", chn, stream));
    EXPECT_EQ(1u, chn);
    EXPECT_EQ(0, stream);
}

TEST_F(RTSP_DataManager, LastUrlInTextOrderThatOccursWins)
{
    m_manager.SetLiveRtspUrl(10, 1, "ch10");
    m_manager.SetLiveRtspUrl(1, 0, "ch1");
    unsigned int chn = 9;
    int stream = 9;
    EXPECT_TRUE(m_manager.FindRtspUrl("rtsp://a/ch10", chn, stream));
    EXPECT_EQ(10u, chn);
    EXPECT_EQ(1, stream);
    EXPECT_TRUE(m_manager.FindRtspUrl("rtsp://a/ch1", chn, stream));
    EXPECT_EQ(1u, chn);
    EXPECT_EQ(0, stream);
}

TEST_F(RTSP_DataManager, TalkbackIsFoundWithoutTouchingTheStream)
{
    unsigned int chn = 9;
    int stream = 8;
    EXPECT_TRUE(m_manager.FindRtspUrl("rtsp://a/talkback", chn, stream));
    EXPECT_EQ(9u, chn);
    EXPECT_EQ(8, stream);
    EXPECT_FALSE(m_manager.FindRtspUrl("rtsp://a/talk", chn, stream));
    EXPECT_FALSE(m_manager.FindRtspUrl("", chn, stream));
}

TEST_F(RTSP_DataManager, UrlsOfAChannelAreListed)
{
    m_manager.SetLiveRtspUrl(1, 1, "/ch1/sub");
    m_manager.SetLiveRtspUrl(1, 0, "/ch1/main");
    m_manager.SetLiveRtspUrl(2, 0, "/ch2/main");
    std::vector<RTSP_URL_CHN_EX> urls;
    m_manager.GetRtspUrl(1, urls);
    ASSERT_EQ(2u, urls.size());
    EXPECT_EQ("/ch1/main", urls[0].url);
    EXPECT_EQ(0, urls[0].stream);
    EXPECT_EQ(1u, urls[0].chn);
    EXPECT_EQ("/ch1/sub", urls[1].url);
    EXPECT_EQ(1, urls[1].stream);
}

TEST_F(RTSP_DataManager, SevenUsersWorkAndWithEightNobodyCanLogIn)
{
    FakeStreamCtrl streams;
    Device device;
    m_manager.Init(&streams, &device);
    std::vector<NETNS::DEV_USER_INFO> users(3);
    device.MakeUsers(7);
    m_manager.GetRtspUserInfo(users);
    EXPECT_EQ(8, device.askedFor);
    ASSERT_EQ(7u, users.size());
    EXPECT_STREQ("user6", users[6].userName);

    device.MakeUsers(8);
    m_manager.GetRtspUserInfo(users);
    EXPECT_TRUE(users.empty());
}

TEST_F(RTSP_DataManager, CountThatMakesNoSenseIsNoUser)
{
    FakeStreamCtrl streams;
    Device device;
    m_manager.Init(&streams, &device);
    std::vector<NETNS::DEV_USER_INFO> users(3);
    for (int count : {-1, 9, 1000000})
    {
        device.reportedCount = count;
        m_manager.GetRtspUserInfo(users);
        EXPECT_TRUE(users.empty()) << count;
    }
}

TEST_F(RTSP_DataManager, AuthorizationIsTheHostsChoice)
{
    FakeStreamCtrl streams;
    Device device;
    m_manager.Init(&streams, &device);
    device.needAuthorization = false;
    EXPECT_FALSE(m_manager.NeedAuthorization());
    device.needAuthorization = true;
    EXPECT_TRUE(m_manager.NeedAuthorization());
}

TEST_F(RTSP_DataManager, StreamOperationsReachTheHostOneForOne)
{
    FakeStreamCtrl streams;
    Device device;
    m_manager.Init(&streams, &device);
    unsigned int out = 0;
    unsigned char speech[] = "abc";
    EXPECT_EQ(700u, m_manager.OpenLiveStream("user", 3, 1, out));
    EXPECT_EQ("user", streams.LastUserText());
    m_manager.CloseLiveStream(11);
    EXPECT_EQ(55u, m_manager.OpenRecStream("u", 4, {2016, 1, 2}, {8, 30, 0}, 600, out));
    m_manager.ClosePlayStream(12);
    EXPECT_EQ(77u, m_manager.OpenTalkBackStream("u"));
    m_manager.CloseTalkBackStream(13);
    EXPECT_EQ(0, m_manager.TalkBackStremInput(speech, 3, 11));
    EXPECT_EQ("abc", streams.Speech());
    EXPECT_EQ((std::vector<std::string>{"OpenLiveStream 3 1 0", "CloseLiveStream 11",
                                        "OpenRecStream 4 2016-1-2 8:30:0 600 0", "ClosePlayStream 12",
                                        "OpenTalkBackStream", "CloseTalkBackStream 13", "TalkBackStreamInput 3 11"}),
              streams.Calls());
}

TEST_F(RTSP_DataManager, WithoutAHostNothingOpensAndEverybodyMustLogIn)
{
    m_manager.Init(nullptr, nullptr);
    unsigned int out = 0;
    EXPECT_EQ(0u, m_manager.OpenLiveStream("u", 1, 0, out));
    EXPECT_EQ(0u, m_manager.OpenTalkBackStream("u"));
    m_manager.CloseLiveStream(1);
    m_manager.ClosePlayStream(1);
    m_manager.CloseTalkBackStream(1);
    EXPECT_TRUE(m_manager.NeedAuthorization());
    std::vector<NETNS::DEV_USER_INFO> users;
    m_manager.GetRtspUserInfo(users);
    EXPECT_TRUE(users.empty());
}

namespace
{
class SnapShot : public RTSP_DataManager
{
protected:
    // Feeds pictures until the snapshot is done, so that no test depends on who comes first.
    template <typename Feed>
    bool Take(CRTSP_DataManager& manager, char*& data, unsigned int& len, Feed feed)
    {
        std::future<bool> taken =
            std::async(std::launch::async, [&manager, &data, &len] { return manager.GetSnapShot(3, data, len); });
        while (taken.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            feed();
        return taken.get();
    }

    static void Feed(CRTSP_DataManager& manager, unsigned int id, NETNS::RTSP_FRAME_TYPE type,
                     const std::string& payload)
    {
        const NETNS::RTSP_FRAME info = FrameInfo(type, KEY, 0, static_cast<unsigned int>(payload.size()));
        manager.AddData(id, 0, info, payload.data());
    }
};
} // namespace

TEST_F(SnapShot, WaitsThreeSecondsInService)
{
    EXPECT_EQ(3000u, CRTSP_DataManager::SNAPSHOT_WAIT_MS);
}

TEST_F(SnapShot, TakesTheNextPictureOfItsChannel)
{
    CRTSP_DataManager manager;
    char* data = nullptr;
    unsigned int len = 0;
    ASSERT_TRUE(Take(manager, data, len, [&manager] { Feed(manager, 3, JPEG, "picture"); }));
    EXPECT_EQ("picture", std::string(data, len));
    delete[] data;
}

TEST_F(SnapShot, WithoutAPictureItFails)
{
    char* data = nullptr;
    unsigned int len = 0;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(m_manager.GetSnapShot(3, data, len));
    EXPECT_EQ(" CRTSP_DataManager::GetSnapShot timeout \n ", testing::internal::GetCapturedStderr());
    EXPECT_EQ(nullptr, data);
}

// A stop does not wait for clients of pictures: no frame is taken any more.
TEST_F(SnapShot, IsNotWaitedForOnceTheStreamsHaveEnded)
{
    CRTSP_DataManager manager(60000);
    char* data = nullptr;
    unsigned int len = 0;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(Take(manager, data, len, [&manager] { manager.Clear(); }));
    EXPECT_FALSE(manager.GetSnapShot(3, data, len));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
    FakeStreamCtrl stream;
    CFakeDevice device;
    manager.Init(&stream, &device);
    ASSERT_TRUE(Take(manager, data, len, [&manager] { Feed(manager, 3, JPEG, "picture"); }));
    delete[] data;
}

TEST_F(SnapShot, OtherChannelsAndOtherTypesDoNotCount)
{
    char* data = nullptr;
    unsigned int len = 0;
    EXPECT_FALSE(Take(m_manager, data, len,
                      [this]
                      {
                          Feed(m_manager, 4, JPEG, "picture");
                          Feed(m_manager, 3, VIDEO, "picture");
                          Feed(m_manager, 3, AUDIO, "picture");
                      }));
}

TEST_F(SnapShot, EmptyAndHugePicturesDoNotCount)
{
    char* data = nullptr;
    unsigned int len = 0;
    EXPECT_FALSE(Take(m_manager, data, len,
                      [this]
                      {
                          Feed(m_manager, 3, JPEG, "");
                          m_manager.AddData(3, 0, FrameInfo(JPEG, KEY, 0, 67108865), "x");
                      }));
}

// A picture that nobody waits for is not kept for the next caller.
TEST_F(SnapShot, PictureFromBeforeTheCallDoesNotCount)
{
    char* data = nullptr;
    unsigned int len = 0;
    ASSERT_TRUE(Take(m_manager, data, len, [this] { Feed(m_manager, 3, JPEG, "one"); }) || data == nullptr);
    delete[] data;
    Feed(m_manager, 3, JPEG, "late");
    EXPECT_FALSE(m_manager.GetSnapShot(3, data, len));
}

TEST_F(SnapShot, CallersAtTheSameTimeAreServedOneAfterTheOther)
{
    CRTSP_DataManager manager;
    std::vector<std::future<std::string>> callers;
    for (unsigned int channel = 1; channel <= 3; ++channel)
    {
        callers.push_back(std::async(std::launch::async,
                                     [&manager, channel]
                                     {
                                         char* data = nullptr;
                                         unsigned int len = 0;
                                         if (!manager.GetSnapShot(channel, data, len))
                                             return std::string("none");
                                         const std::string picture(data, len);
                                         delete[] data;
                                         return picture;
                                     }));
    }
    for (unsigned int channel = 1; channel <= 3; ++channel)
    {
        while (callers[channel - 1].wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
        {
            Feed(manager, 1, JPEG, "one");
            Feed(manager, 2, JPEG, "two");
            Feed(manager, 3, JPEG, "three");
        }
    }
    EXPECT_EQ("one", callers[0].get());
    EXPECT_EQ("two", callers[1].get());
    EXPECT_EQ("three", callers[2].get());
}

TEST(RTSP_ManagerKey, OrdersByIdThenSignedStreamThenType)
{
    EXPECT_TRUE((RTSP_MANAGER_KEY{1, 5, JPEG} < RTSP_MANAGER_KEY{2, 0, VIDEO}));
    EXPECT_TRUE((RTSP_MANAGER_KEY{1, 0, VIDEO} < RTSP_MANAGER_KEY{0xFFFFFFFFu, 0, VIDEO}));
    EXPECT_TRUE((RTSP_MANAGER_KEY{1, -1, JPEG} < RTSP_MANAGER_KEY{1, 0, VIDEO}));
    EXPECT_TRUE((RTSP_MANAGER_KEY{1, 0, VIDEO} < RTSP_MANAGER_KEY{1, 0, AUDIO}));
    // A host's word of all ones is below every type.
    EXPECT_TRUE(
        (RTSP_MANAGER_KEY{1, 0, static_cast<NETNS::RTSP_FRAME_TYPE>(0xFFFFFFFFu)} < RTSP_MANAGER_KEY{1, 0, VIDEO}));
    EXPECT_FALSE((RTSP_MANAGER_KEY{1, 0, VIDEO} < RTSP_MANAGER_KEY{1, 0, VIDEO}));
    EXPECT_EQ(29, RTSP_STREAM_PLAYBACK);
    EXPECT_EQ(39, RTSP_STREAM_TALKBACK);
}
