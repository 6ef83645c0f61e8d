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

TEST(PipelineText, EncodesTheMainStreamAsAskedAndTheSubStreamAtHalfItsSize)
{
    CameraOptions options;
    options.width = 640;
    options.height = 480;
    options.fps = 25;
    options.bitrate = 2000;
    options.gop = 50;
    const std::string text = LivePipelineText(options, false);
    EXPECT_TRUE(Contains(text, "width=640,height=480,framerate=25/1"));
    EXPECT_TRUE(Contains(text, "width=320,height=240"));
    EXPECT_TRUE(Contains(text, "name=encoder0 tune=zerolatency speed-preset=veryfast bitrate=2000 key-int-max=50"));
    EXPECT_TRUE(Contains(text, "name=encoder1 tune=zerolatency speed-preset=veryfast bitrate=500 key-int-max=50"));
}

TEST(PipelineText, TheSubStreamHasAtLeast16Kilobit)
{
    CameraOptions options;
    options.bitrate = 20;
    EXPECT_TRUE(Contains(LivePipelineText(options, false), "name=encoder1 tune=zerolatency speed-preset=veryfast "
                                                           "bitrate=16 "));
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
