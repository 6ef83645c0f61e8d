#include "SharedData.h"

#include "FrameMaker.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

TEST(SharedData, CopiesRecordAndPayload)
{
    NETNS::RTSP_FRAME info = FrameInfo(NETNS::RTSP_FRAME_AUDIO, true, 1234567890123ULL, 5);
    info.encodeType = NETNS::RTSP_ENCODE_PCMU;
    info.clockRate = 8000;
    info.hostReserved1[18] = 7;
    char payload[] = "abcde";
    auto* data = new CSharedData(info, payload);
    data->Add();
    memset(payload, 'x', sizeof(payload));
    info.presentationUs = 0;

    ASSERT_EQ(5, data->GetLength());
    EXPECT_EQ(0, memcmp("abcde", data->GetRtData(), 5));
    EXPECT_EQ(NETNS::RTSP_FRAME_AUDIO, data->GetFrameInfo()->frameType);
    EXPECT_EQ(NETNS::RTSP_ENCODE_PCMU, data->GetFrameInfo()->encodeType);
    EXPECT_EQ(1234567890123ULL, data->GetFrameInfo()->presentationUs);
    EXPECT_EQ(8000u, data->GetFrameInfo()->clockRate);
    EXPECT_EQ(7, data->GetFrameInfo()->hostReserved1[18]);
    EXPECT_TRUE(data->IsKeyFrame());
    EXPECT_EQ(1, data->Dec());
}

TEST(SharedData, AddReturnsTheNewCountAndDecTheOld)
{
    auto* data = new CSharedData(FrameInfo(NETNS::RTSP_FRAME_VIDEO, true, 0, 1), "a");
    EXPECT_EQ(1, data->Add());
    EXPECT_EQ(2, data->Add());
    EXPECT_EQ(2, data->Dec());
    EXPECT_EQ(1, data->Dec());
}

TEST(SharedData, DecOfACountOfZeroIsReportedAndDeletesNothing)
{
    auto* data = new CSharedData(FrameInfo(NETNS::RTSP_FRAME_VIDEO, true, 0, 1), "a");
    EXPECT_EQ(0, data->Dec());
    EXPECT_EQ(0, data->Add());
    EXPECT_EQ(1, data->Add());
    EXPECT_EQ(1, data->Dec());
}

TEST(SharedData, FrameWithoutPayloadHasLengthZero)
{
    const NETNS::RTSP_FRAME cases[] = {
        FrameInfo(NETNS::RTSP_FRAME_VIDEO, true, 0, 0),
        FrameInfo(NETNS::RTSP_FRAME_VIDEO, true, 0, 10),
        FrameInfo(NETNS::RTSP_FRAME_VIDEO, true, 0, static_cast<unsigned int>(INT_MAX) + 1),
    };
    const void* payloads[] = {"a", nullptr, "a"};
    for (int i = 0; i < 3; ++i)
    {
        testing::internal::CaptureStderr();
        auto* data = new CSharedData(cases[i], payloads[i]);
        EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find(" error SharedData.cpp:")) << i;
        data->Add();
        EXPECT_EQ(0, data->GetLength());
        EXPECT_EQ(nullptr, data->GetRtData());
        data->Dec();
    }
}

TEST(SharedData, CountIsRightWithManyThreads)
{
    const HeldFrame frame(NETNS::RTSP_FRAME_VIDEO, true, 0, "a");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&frame]
            {
                for (int n = 0; n < 5000; ++n)
                {
                    frame.Get()->Add();
                    frame.Get()->Dec();
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, frame.OtherHolders());
}
