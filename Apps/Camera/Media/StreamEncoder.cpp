#include "StreamEncoder.h"

#include "CameraLog.h"
#include "PipelineText.h"
#include "SampleBytes.h"

#include <gst/video/video.h>

namespace
{

/// The time that the picture had when it was put in. The encoder gives its time stamps an offset of its own, which its
/// segment takes back.
std::uint64_t TimeUs(GstSample* sample)
{
    const GstClockTime time = gst_segment_to_running_time(gst_sample_get_segment(sample), GST_FORMAT_TIME,
                                                          GST_BUFFER_PTS(gst_sample_get_buffer(sample)));
    return GST_CLOCK_TIME_IS_VALID(time) ? time / GST_USECOND : 0;
}

const char* Refusal(AnnexBResult result)
{
    return result == AnnexBResult::SeveralSlices ? "a frame of several slices" : "a key frame without parameter sets";
}

} // namespace

bool CStreamEncoder::Start(const NETNS::DEV_VIDEO_PROFILE& profile, GstCaps* picture, std::string& problem)
{
    if (!m_pipeline.Start(
            EncoderPipelineText(profile), picture, [this](GstSample* sample) { Deliver(sample); }, problem))
    {
        return false;
    }
    m_encoder = m_pipeline.Child("encoder");
    return true;
}

void CStreamEncoder::Put(GstBuffer* picture)
{
    if (m_wanted)
    {
        m_pipeline.Put(picture);
    }
}

void CStreamEncoder::SetWanted(bool wanted)
{
    if (!m_wanted.exchange(wanted) && wanted)
    {
        RequestKeyFrame();
    }
}

void CStreamEncoder::RequestKeyFrame()
{
    if (m_keyFrames.Ask())
    {
        gst_element_send_event(m_encoder.get(),
                               gst_video_event_new_upstream_force_key_unit(GST_CLOCK_TIME_NONE, TRUE, 0));
    }
}

void CStreamEncoder::Deliver(GstSample* sample)
{
    m_keyFrames.FrameEncoded();
    const CSampleBytes bytes(sample);
    const AnnexBResult result = m_normaliser.Normalise(bytes.Data(), bytes.Length());
    if (result == AnnexBResult::Frame)
    {
        m_sink.PutVideo(m_stream, m_normaliser.Frame(), m_normaliser.IsKeyFrame(), TimeUs(sample));
    }
    else if (result != AnnexBResult::NoPicture && !m_refusalReported)
    {
        m_refusalReported = true;
        Say("stream " + std::to_string(m_stream) + ": left out " + Refusal(result));
    }
}
