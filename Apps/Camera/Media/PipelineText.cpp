#include "PipelineText.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr const char* SOUND_CAPS = "audio/x-raw,format=S16LE,rate=8000,channels=1";
constexpr const char* APPSINK = "appsink sync=false async=false name=";
// A queue that drops old pictures: a busy machine may catch up, but work that is too slow does not fall behind more and
// more.
constexpr const char* QUEUE = " ! queue leaky=downstream max-size-buffers=16 max-size-bytes=0 max-size-time=0";
constexpr const char* ENCODER_INPUT = "appsrc name=in format=time is-live=true leaky-type=downstream max-bytes=0";

// Below a quality the encoder does not go beyond a quantiser, however many bits are left.
constexpr int LEAST_QUANTISER[] = {10, 38, 32, 27, 22, 10}; // by quality; the highest is bounded by the bit rate only

const char* Level(std::uint32_t encodeLevel)
{
    switch (encodeLevel)
    {
    case 1:
        return "constrained-baseline";
    case 4:
        return "high";
    default:
        return "main";
    }
}

std::string Size(unsigned int width, unsigned int height)
{
    return "width=" + std::to_string(width) + ",height=" + std::to_string(height);
}

// What is done to each picture before it is encoded. Motion is looked for in front of the burnt-in text, which changes
// every second.
std::string Work(const CameraOptions& options)
{
    const std::string text = " shaded-background=true halignment=left valignment=top xpad=0 ypad=0 line-alignment=left"
                             " font-desc=\"Sans 12\" auto-resize=false";
    return " ! " + PictureCapsText(options) + QUEUE + " ! videobalance name=balance ! videoflip name=turn" +
           " ! camerapicture name=prepare ! camerapicture name=motion ! clockoverlay name=osd_time" + text +
           " ! textoverlay name=osd_name" + text + " ! " + APPSINK + "pictures";
}

const char* const FIT = " ! videorate skip-to-first=true ! videoconvert ! videoscale add-borders=true";

std::string Sound(const std::string& source)
{
    return " " + source + " ! " + SOUND_CAPS + " ! alawenc ! " + APPSINK + "sound";
}

std::string SoundThatMayHaveGaps(const std::string& source)
{
    return Sound(source + " ! audioconvert ! audioresample ! audiorate skip-to-first=true");
}

std::string TestPipeline(const CameraOptions& options)
{
    return "videotestsrc is-live=true pattern=smpte horizontal-speed=4" + Work(options) +
           Sound("audiotestsrc is-live=true wave=sine freq=440 volume=0.05 samplesperbuffer=320");
}

// Pictures wait in small numbers in front of the clock, sound for up to a second.
std::string FilePipeline(const CameraOptions& options, bool hasSound)
{
    return std::string("appsrc name=pictures_in format=time is-live=true block=true max-bytes=0 max-buffers=8"
                       " ! clocksync") +
           FIT + Work(options) +
           (hasSound ? SoundThatMayHaveGaps("appsrc name=sound_in format=time is-live=true block=true max-bytes=0"
                                            " max-time=1000000000 ! clocksync")
                     : Sound(SILENCE_TEXT));
}

std::string DevicePipeline(const CameraOptions& options)
{
    return std::string("v4l2src name=device ! decodebin") + FIT + Work(options) + Sound(SILENCE_TEXT);
}

std::string RemotePipeline(const CameraOptions& options)
{
    return std::string("uridecodebin name=remote queue name=pictures_in") + FIT + Work(options) +
           SoundThatMayHaveGaps("queue name=sound_in");
}

} // namespace

const char* const SNAPSHOT_PIPELINE_TEXT =
    "appsrc name=in format=time is-live=true leaky-type=downstream max-bytes=0 max-buffers=1"
    " ! jpegenc quality=85 ! appsink name=out sync=false async=false";
const char* const SILENCE_TEXT = "audiotestsrc is-live=true wave=silence samplesperbuffer=320";

std::string PictureCapsText(const CameraOptions& options)
{
    return "video/x-raw,format=I420," + Size(options.width, options.height) +
           ",framerate=" + std::to_string(options.fps) + "/1,pixel-aspect-ratio=1/1";
}

std::string LivePipelineText(const CameraOptions& options, bool fileHasSound)
{
    switch (options.source)
    {
    case SourceKind::File:
        return FilePipeline(options, fileHasSound);
    case SourceKind::V4l2:
        return DevicePipeline(options);
    case SourceKind::Rtsp:
        return RemotePipeline(options);
    case SourceKind::Test:
        break;
    }
    return TestPipeline(options);
}

// One thread and no sliced threads: one slice a frame and no delay. Parameter sets come with each key frame.
std::string EncoderPipelineText(const NETNS::DEV_VIDEO_PROFILE& profile)
{
    const int leastQuantiser = LEAST_QUANTISER[std::min<std::size_t>(profile.quality, std::size(LEAST_QUANTISER) - 1)];
    return std::string(ENCODER_INPUT) + " max-buffers=16 ! videorate drop-only=true ! videoscale add-borders=false" +
           " ! video/x-raw," + Size(profile.width, profile.height) + ",framerate=" + std::to_string(profile.frameRate) +
           "/1,pixel-aspect-ratio=1/1" + " ! x264enc name=encoder tune=zerolatency speed-preset=veryfast bitrate=" +
           std::to_string(profile.maxBitRate) + " key-int-max=" + std::to_string(profile.gop) +
           " qp-min=" + std::to_string(leastQuantiser) +
           " bframes=0 threads=1 sliced-threads=false byte-stream=true aud=false option-string=scenecut=0"
           " ! video/x-h264,profile=" +
           Level(profile.encodeLevel) + ",stream-format=byte-stream,alignment=au ! " + APPSINK + "out";
}

std::string FilePipelineText(bool fileHasSound)
{
    const std::string pictures = "filesrc name=file ! decodebin name=decoder"
                                 " decoder. ! videoconvert ! video/x-raw,format=I420"
                                 " ! appsink name=pictures sync=false async=false max-buffers=4";
    const std::string sound = std::string(" decoder. ! audioconvert ! audioresample ! ") + SOUND_CAPS +
                              " ! appsink name=sound sync=false async=false max-buffers=16";
    return fileHasSound ? pictures + sound : pictures;
}
