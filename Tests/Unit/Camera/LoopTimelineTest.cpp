#include "LoopTimeline.h"

#include <gtest/gtest.h>

TEST(LoopTimeline, BeginsAtZeroAndKeepsTheFilesTimes)
{
    CLoopTimeline timeline(40);
    EXPECT_EQ(0U, timeline.Place(0, 40));
    EXPECT_EQ(40U, timeline.Place(40, 40));
}

TEST(LoopTimeline, GoesOnBehindTheLastPicture)
{
    CLoopTimeline timeline(40);
    timeline.Place(0, 40);
    timeline.Place(40, 40);
    timeline.NextLoop();
    EXPECT_EQ(80U, timeline.Place(0, 40));
    EXPECT_EQ(120U, timeline.Place(40, 40));
    timeline.NextLoop();
    EXPECT_EQ(160U, timeline.Place(0, 40));
}

TEST(LoopTimeline, GoesOnBehindTheLongerOfPicturesAndSound)
{
    CLoopTimeline timeline(40);
    timeline.Place(0, 100); // pictures end at 100
    timeline.Place(90, 35); // sound ends at 125
    timeline.Place(20, 10); // pictures in the order of decoding do not set the end back
    timeline.NextLoop();
    EXPECT_EQ(125U, timeline.Place(0, 100));
}

TEST(LoopTimeline, CountsTheDefaultForAnUnknownDuration)
{
    CLoopTimeline timeline(66);
    timeline.Place(100, CLoopTimeline::UNKNOWN);
    timeline.NextLoop();
    EXPECT_EQ(166U, timeline.Place(0, CLoopTimeline::UNKNOWN));
}

TEST(LoopTimeline, ARepetitionWithoutBuffersTakesNoTime)
{
    CLoopTimeline timeline(40);
    timeline.Place(0, 40);
    timeline.NextLoop();
    timeline.NextLoop();
    EXPECT_EQ(40U, timeline.Place(0, 40));
}
