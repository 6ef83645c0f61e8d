#include "PipelineText.h"

#include <gtest/gtest.h>

namespace
{

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

CameraOptions From(SourceKind source, const char* location)
{
    CameraOptions options;
    options.source = source;
    options.location = location;
    return options;
}

} // namespace

TEST(PipelineText, PicturesHaveTheSizeAndTheRateOfTheCommandLine)
{
    CameraOptions options;
    options.width = 640;
    options.height = 480;
    options.fps = 25;
    EXPECT_EQ("video/x-raw,format=I420,width=640,height=480,framerate=25/1,pixel-aspect-ratio=1/1",
              PictureCapsText(options));
    EXPECT_TRUE(Contains(LivePipelineText(options, false), PictureCapsText(options)));
}

// The burnt-in time changes every second: it must not count as motion, and masks must not hide it.
TEST(PipelineText, TextIsBurntInBehindMasksAndMotion)
{
    const std::string text = LivePipelineText(CameraOptions(), false);
    const std::size_t prepare = text.find("name=prepare");
    const std::size_t motion = text.find("name=motion");
    const std::size_t time = text.find("name=osd_time");
    ASSERT_NE(std::string::npos, time);
    EXPECT_LT(text.find("name=balance"), prepare);
    EXPECT_LT(text.find("name=turn"), prepare);
    EXPECT_LT(prepare, motion);
    EXPECT_LT(motion, time);
}

TEST(PipelineText, EncodesAStreamAsItsProfileHasIt)
{
    const NETNS::DEV_VIDEO_PROFILE profile = {320, 240, 10, 500, 5, 2, 2, 50};
    const std::string text = EncoderPipelineText(profile);
    EXPECT_TRUE(Contains(text, "width=320,height=240,framerate=10/1"));
    EXPECT_TRUE(Contains(text, " bitrate=500 key-int-max=50 qp-min=10 "));
    EXPECT_TRUE(Contains(text, "video/x-h264,profile=main,"));
}

TEST(PipelineText, LevelsAndQualitiesReachTheEncoder)
{
    NETNS::DEV_VIDEO_PROFILE profile = {320, 240, 10, 500, 1, 2, 1, 50};
    EXPECT_TRUE(Contains(EncoderPipelineText(profile), "profile=constrained-baseline,"));
    EXPECT_TRUE(Contains(EncoderPipelineText(profile), " qp-min=38 "));
    profile.encodeLevel = 4;
    profile.quality = 3;
    EXPECT_TRUE(Contains(EncoderPipelineText(profile), "profile=high,"));
    EXPECT_TRUE(Contains(EncoderPipelineText(profile), " qp-min=27 "));
}

// What a user types is set as a property and is never part of a text that is parsed.
TEST(PipelineText, HoldsNoLocation)
{
    const char* const location = "/x ! filesink location=/etc/passwd";
    for (const SourceKind source : {SourceKind::File, SourceKind::V4l2, SourceKind::Rtsp})
    {
        EXPECT_FALSE(Contains(LivePipelineText(From(source, location), true), "passwd"));
    }
}

TEST(PipelineText, AFileWithoutSoundGetsSilence)
{
    const CameraOptions options = From(SourceKind::File, "/x");
    EXPECT_TRUE(Contains(LivePipelineText(options, true), "name=sound_in"));
    EXPECT_FALSE(Contains(LivePipelineText(options, true), "wave=silence"));
    EXPECT_FALSE(Contains(LivePipelineText(options, false), "name=sound_in"));
    EXPECT_TRUE(Contains(LivePipelineText(options, false), "wave=silence"));
    EXPECT_TRUE(Contains(FilePipelineText(true), "name=sound"));
    EXPECT_FALSE(Contains(FilePipelineText(false), "name=sound"));
}

TEST(PipelineText, ACaptureDeviceGetsSilence)
{
    EXPECT_TRUE(Contains(LivePipelineText(From(SourceKind::V4l2, "/dev/video0"), false), "wave=silence"));
}
