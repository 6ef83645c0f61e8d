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

std::unique_ptr<CStreamEncoder> CStreamEncoder::Make(int stream, const NETNS::DEV_VIDEO_PROFILE& profile,
                                                     GstCaps* picture, CFrameSink& sink, std::string& problem)
{
    std::unique_ptr<CStreamEncoder> self(new CStreamEncoder(stream, sink));
    GError* raw = nullptr;
    self->m_pipeline.reset(gst_parse_launch(EncoderPipelineText(profile).c_str(), &raw));
    const GErrorPtr error(raw);
    if (error != nullptr)
    {
        problem = error->message;
        return nullptr;
    }
    self->m_input.reset(gst_bin_get_by_name(GST_BIN(self->m_pipeline.get()), "in"));
    self->m_encoder.reset(gst_bin_get_by_name(GST_BIN(self->m_pipeline.get()), "encoder"));
    gst_app_src_set_caps(GST_APP_SRC(self->m_input.get()), picture);
    const GstElementPtr output(gst_bin_get_by_name(GST_BIN(self->m_pipeline.get()), "out"));
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CStreamEncoder::OnFrame;
    gst_app_sink_set_callbacks(GST_APP_SINK(output.get()), &callbacks, self.get(), nullptr);
    if (gst_element_set_state(self->m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
    {
        problem = "an encoder does not start";
        return nullptr;
    }
    return self;
}

CStreamEncoder::~CStreamEncoder()
{
    if (m_pipeline != nullptr)
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    }
}

void CStreamEncoder::Put(GstBuffer* picture)
{
    if (m_wanted)
    {
        gst_app_src_push_buffer(GST_APP_SRC(m_input.get()), gst_buffer_ref(picture));
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

GstFlowReturn CStreamEncoder::OnFrame(GstAppSink* source, gpointer self)
{
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    if (sample == nullptr)
    {
        return GST_FLOW_EOS;
    }
    static_cast<CStreamEncoder*>(self)->Deliver(sample.get());
    return GST_FLOW_OK;
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
