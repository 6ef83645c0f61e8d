#include "SharedDataList.h"

#include "FrameMaker.h"

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <vector>

namespace
{
constexpr bool KEY = true;
constexpr bool NOT_KEY = false;

// A list with the frames that the test pushed; all are still there to be looked at when the list dropped them.
class ListTest : public testing::Test
{
protected:
    void Make(NETNS::RTSP_FRAME_TYPE type, int maxBytes, int maxMs)
    {
        m_type = type;
        m_list = std::make_unique<CSharedDataList>(type, maxBytes, maxMs);
    }

    int Push(bool key, unsigned long long timeMs, const std::string& payload = "frame")
    {
        return PushUs(key, timeMs * 1000, payload);
    }

    int PushUs(bool key, unsigned long long timeUs, const std::string& payload = "frame")
    {
        m_frames.push_back(std::make_unique<HeldFrame>(m_type, key, timeUs, payload));
        return m_list->AddDataToList(m_frames.back()->Get());
    }

    // Presentation times in milliseconds of what the list holds.
    std::vector<unsigned long long> Take()
    {
        std::vector<unsigned long long> times;
        while (CSharedData* frame = m_list->GetFirstData())
        {
            times.push_back(frame->GetFrameInfo()->presentationUs / 1000);
            frame->Dec();
        }
        return times;
    }

    std::unique_ptr<CSharedDataList> m_list;
    std::vector<std::unique_ptr<HeldFrame>> m_frames;
    NETNS::RTSP_FRAME_TYPE m_type = NETNS::RTSP_FRAME_VIDEO;
};

using Times = std::vector<unsigned long long>;

class SharedDataListVideo : public ListTest
{
protected:
    void SetUp() override { Make(NETNS::RTSP_FRAME_VIDEO, -1, 2000); }
};

class SharedDataListAudio : public ListTest
{
protected:
    void SetUp() override { Make(NETNS::RTSP_FRAME_AUDIO, -1, 2000); }
};

class SharedDataListBytes : public ListTest
{
};
} // namespace

TEST_F(SharedDataListVideo, FirstFrameThatIsNoKeyFrameIsRefused)
{
    EXPECT_EQ(-1, Push(NOT_KEY, 0));
    EXPECT_EQ(0, m_list->Size());
    EXPECT_TRUE(m_list->IsEmpty());
    EXPECT_EQ(0, m_frames[0]->OtherHolders());
}

// Under the address sanitizer this test fails if the frame leaks.
TEST_F(SharedDataListVideo, RefusedFrameThatNobodyHoldsIsDeleted)
{
    auto* frame = new CSharedData(FrameInfo(NETNS::RTSP_FRAME_VIDEO, NOT_KEY, 0, 1), "a");
    EXPECT_EQ(-1, m_list->AddDataToList(frame));
}

TEST_F(SharedDataListVideo, RunsFromAKeyFrameOn)
{
    EXPECT_EQ(0, Push(KEY, 0));
    EXPECT_EQ(0, Push(NOT_KEY, 40));
    EXPECT_EQ(0, Push(NOT_KEY, 80));
    EXPECT_EQ(3, m_list->Size());
    EXPECT_FALSE(m_list->IsEmpty());
    EXPECT_EQ((Times{0, 40, 80}), Take());
}

TEST_F(SharedDataListVideo, GoesOnWithoutAKeyFrameWhenItWasTakenEmpty)
{
    Push(KEY, 0);
    EXPECT_EQ((Times{0}), Take());
    EXPECT_EQ(0, Push(NOT_KEY, 40));
}

TEST_F(SharedDataListVideo, TakenFrameComesWithItsReference)
{
    Push(KEY, 0);
    EXPECT_EQ(1, m_frames[0]->OtherHolders());
    CSharedData* frame = m_list->GetFirstData();
    EXPECT_EQ(m_frames[0]->Get(), frame);
    EXPECT_EQ(1, m_frames[0]->OtherHolders());
    frame->Dec();
    EXPECT_EQ(nullptr, m_list->GetFirstData());
}

TEST_F(SharedDataListVideo, FrameTooOldTakesItsGroupWithIt)
{
    EXPECT_EQ(0, Push(KEY, 0));
    EXPECT_EQ(0, Push(NOT_KEY, 1000));
    EXPECT_EQ(0, Push(KEY, 2500));
    EXPECT_EQ((Times{2500}), Take());
    EXPECT_EQ(0, m_frames[0]->OtherHolders());
    EXPECT_EQ(0, m_frames[1]->OtherHolders());
}

TEST_F(SharedDataListVideo, WithoutANewKeyFrameTheListEmptiesAndWaits)
{
    EXPECT_EQ(0, Push(KEY, 0));
    EXPECT_EQ(0, Push(NOT_KEY, 1000));
    EXPECT_EQ(-1, Push(NOT_KEY, 2500));
    EXPECT_EQ(0, m_list->Size());
    EXPECT_EQ(0, m_frames[2]->OtherHolders());
    EXPECT_EQ(-1, Push(NOT_KEY, 2540));
    EXPECT_EQ(0, Push(KEY, 2580));
    EXPECT_EQ((Times{2580}), Take());
}

TEST_F(SharedDataListVideo, GroupsAreDroppedUpToAYoungKeyFrame)
{
    Push(KEY, 0);
    Push(KEY, 100);
    Push(NOT_KEY, 140);
    Push(KEY, 1000);
    Push(NOT_KEY, 1040);
    EXPECT_EQ(0, Push(NOT_KEY, 2200));
    EXPECT_EQ((Times{1000, 1040, 2200}), Take());
}

TEST_F(SharedDataListVideo, AgeOfExactlyTwoSecondsIsKept)
{
    PushUs(KEY, 0);
    EXPECT_EQ(0, PushUs(NOT_KEY, 2000000));
    EXPECT_EQ(2, m_list->Size());
    EXPECT_EQ(-1, PushUs(NOT_KEY, 2000001));
    EXPECT_EQ(0, m_list->Size());
}

TEST_F(SharedDataListVideo, ClockThatJumpsBackDropsNothing)
{
    Push(KEY, 1000000);
    EXPECT_EQ(0, Push(NOT_KEY, 0));
    EXPECT_EQ(2, m_list->Size());
}

TEST_F(SharedDataListVideo, DeleteUntilKeyFrameKeepsWhatBeginsAtAKeyFrame)
{
    Push(KEY, 0);
    Push(NOT_KEY, 40);
    Push(KEY, 80);
    Push(NOT_KEY, 120);
    EXPECT_EQ(0, m_list->DeleteUntilKeyFrame());
    EXPECT_EQ(4, m_list->Size());

    m_list->GetFirstData()->Dec();
    EXPECT_EQ(0, m_list->DeleteUntilKeyFrame());
    EXPECT_EQ(0, Push(NOT_KEY, 160));
    EXPECT_EQ((Times{80, 120, 160}), Take());
}

TEST_F(SharedDataListVideo, DeleteUntilKeyFrameWithoutOneWaits)
{
    Push(KEY, 0);
    Push(NOT_KEY, 40);
    m_list->GetFirstData()->Dec();
    EXPECT_EQ(0, m_list->DeleteUntilKeyFrame());
    EXPECT_TRUE(m_list->IsEmpty());
    EXPECT_EQ(0, m_frames[1]->OtherHolders());
    EXPECT_EQ(-1, Push(NOT_KEY, 80));
}

TEST_F(SharedDataListVideo, DeleteUntilKeyFrameOfAnEmptyListIsDone)
{
    EXPECT_EQ(0, m_list->DeleteUntilKeyFrame());
}

TEST_F(SharedDataListVideo, DestructionGivesTheReferencesBack)
{
    Push(KEY, 0);
    Push(NOT_KEY, 40);
    m_list.reset();
    EXPECT_EQ(0, m_frames[0]->OtherHolders());
    EXPECT_EQ(0, m_frames[1]->OtherHolders());
}

TEST_F(SharedDataListVideo, RuleOfRefusalIsTheOneGiven)
{
    EXPECT_EQ(REFUSAL_ENDS_WALK, m_list->GetRefusalRule());
    const CSharedDataList passes(NETNS::RTSP_FRAME_VIDEO, -1, 2000, REFUSAL_PASSES);
    EXPECT_EQ(REFUSAL_PASSES, passes.GetRefusalRule());
}

TEST_F(SharedDataListAudio, IsAlwaysOpen)
{
    EXPECT_EQ(0, Push(NOT_KEY, 0));
    EXPECT_EQ(1, m_list->Size());
}

TEST_F(SharedDataListAudio, LosesOnlyTheFramesThatAreTooOld)
{
    Push(KEY, 0);
    Push(NOT_KEY, 1000);
    EXPECT_EQ(0, Push(NOT_KEY, 2500));
    EXPECT_EQ((Times{1000, 2500}), Take());
}

TEST_F(SharedDataListAudio, HasNoKeyFrameToWaitFor)
{
    Push(NOT_KEY, 0);
    EXPECT_EQ(-1, m_list->DeleteUntilKeyFrame());
    EXPECT_EQ(1, m_list->Size());
}

TEST_F(SharedDataListBytes, AudioDropsTheOldestUntilItFits)
{
    Make(NETNS::RTSP_FRAME_AUDIO, 10, -1);
    Push(NOT_KEY, 1, "12345");
    Push(NOT_KEY, 2, "12345");
    EXPECT_EQ(2, m_list->Size());
    EXPECT_EQ(0, Push(NOT_KEY, 3, "1"));
    EXPECT_EQ((Times{2, 3}), Take());
}

TEST_F(SharedDataListBytes, VideoDropsUpToTheNextKeyFrameThatFits)
{
    Make(NETNS::RTSP_FRAME_VIDEO, 10, -1);
    Push(KEY, 1, "12345");
    Push(NOT_KEY, 2, "1");
    Push(KEY, 3, "1234");
    EXPECT_EQ(3, m_list->Size());
    EXPECT_EQ(0, Push(NOT_KEY, 4, "1"));
    EXPECT_EQ((Times{3, 4}), Take());
}

TEST_F(SharedDataListBytes, VideoFrameThatAloneIsTooMuchEmptiesTheList)
{
    Make(NETNS::RTSP_FRAME_VIDEO, 4, -1);
    EXPECT_EQ(-1, Push(KEY, 1, "12345"));
    EXPECT_TRUE(m_list->IsEmpty());
    EXPECT_EQ(-1, Push(NOT_KEY, 2, "1"));
    EXPECT_EQ(0, Push(KEY, 3, "1234"));
}

TEST_F(SharedDataListBytes, TakenFramesNoLongerCount)
{
    Make(NETNS::RTSP_FRAME_AUDIO, 10, -1);
    Push(NOT_KEY, 1, "1234567890");
    m_list->GetFirstData()->Dec();
    EXPECT_EQ(0, Push(NOT_KEY, 2, "1234567890"));
    EXPECT_EQ(1, m_list->Size());
}

TEST_F(SharedDataListBytes, NoLimitsKeepEverything)
{
    Make(NETNS::RTSP_FRAME_AUDIO, -1, -1);
    for (unsigned int i = 0; i < 100; ++i)
        Push(NOT_KEY, i * 1000ULL, std::string(1000, 'a'));
    EXPECT_EQ(100, m_list->Size());
}
