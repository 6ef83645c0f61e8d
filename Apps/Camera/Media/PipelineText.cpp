#include "PipelineText.h"

#include <algorithm>

namespace
{

constexpr const char* SOUND_CAPS = "audio/x-raw,format=S16LE,rate=8000,channels=1";
constexpr const char* APPSINK = "appsink sync=false async=false name=";
constexpr unsigned int MIN_BITRATE = 16; // kbit/s

std::string Size(unsigned int width, unsigned int height)
{
    return "width=" + std::to_string(width) + ",height=" + std::to_string(height);
}

std::string PictureCaps(const CameraOptions& options)
{
    return "video/x-raw,format=I420," + Size(options.width, options.height) +
           ",framerate=" + std::to_string(options.fps) + "/1,pixel-aspect-ratio=1/1";
}

// One thread and no sliced threads: one slice a frame and no delay. Parameter sets come with each key frame.
std::string Encoder(const CameraOptions& options, const std::string& index, unsigned int bitrate)
{
    return "x264enc name=encoder" + index +
           " tune=zerolatency speed-preset=veryfast bitrate=" + std::to_string(bitrate) +
           " key-int-max=" + std::to_string(options.gop) +
           " bframes=0 threads=1 sliced-threads=false byte-stream=true aud=false option-string=scenecut=0"
           " ! video/x-h264,profile=main,stream-format=byte-stream,alignment=au ! " +
           APPSINK + "video" + index;
}

// A queue that drops old pictures: a busy machine may catch up, but an encoder that is too slow does not fall behind
// more and more.
std::string Branch(const std::string& index)
{
    return " pictures. ! queue leaky=downstream max-size-buffers=8 max-size-bytes=0 max-size-time=0"
           " ! valve name=gate" +
           index + " ! ";
}

std::string Streams(const CameraOptions& options)
{
    const unsigned int subBitrate = std::max(options.bitrate / 4, MIN_BITRATE);
    return " ! " + PictureCaps(options) + " ! tee name=pictures" + Branch("0") +
           Encoder(options, "0", options.bitrate) + Branch("1") + "videoscale ! video/x-raw," +
           Size(options.width / 2, options.height / 2) + " ! " + Encoder(options, "1", subBitrate);
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
    return "videotestsrc is-live=true pattern=smpte horizontal-speed=4 ! " + PictureCaps(options) +
           " ! clockoverlay time-format=\"%Y-%m-%d %H:%M:%S\" shaded-background=true"
           " ! timeoverlay halignment=right valignment=bottom shaded-background=true" +
           Streams(options) + Sound("audiotestsrc is-live=true wave=sine freq=440 volume=0.05 samplesperbuffer=320");
}

// Pictures wait in small numbers in front of the clock, sound for up to a second.
std::string FilePipeline(const CameraOptions& options, bool hasSound)
{
    return std::string("appsrc name=pictures_in format=time is-live=true block=true max-bytes=0 max-buffers=8"
                       " ! clocksync") +
           FIT + Streams(options) +
           (hasSound ? SoundThatMayHaveGaps("appsrc name=sound_in format=time is-live=true block=true max-bytes=0"
                                            " max-time=1000000000 ! clocksync")
                     : Sound(SILENCE_TEXT));
}

std::string DevicePipeline(const CameraOptions& options)
{
    return std::string("v4l2src name=device ! decodebin") + FIT + Streams(options) + Sound(SILENCE_TEXT);
}

std::string RemotePipeline(const CameraOptions& options)
{
    return std::string("uridecodebin name=remote queue name=pictures_in") + FIT + Streams(options) +
           SoundThatMayHaveGaps("queue name=sound_in");
}

} // namespace

const char* const SILENCE_TEXT = "audiotestsrc is-live=true wave=silence samplesperbuffer=320";

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

std::string FilePipelineText(bool fileHasSound)
{
    const std::string pictures = "filesrc name=file ! decodebin name=decoder"
                                 " decoder. ! videoconvert ! video/x-raw,format=I420"
                                 " ! appsink name=pictures sync=false async=false max-buffers=4";
    const std::string sound = std::string(" decoder. ! audioconvert ! audioresample ! ") + SOUND_CAPS +
                              " ! appsink name=sound sync=false async=false max-buffers=16";
    return fileHasSound ? pictures + sound : pictures;
}
