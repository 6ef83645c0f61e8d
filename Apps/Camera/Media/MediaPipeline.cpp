#include "MediaPipeline.h"

#include "PipelineText.h"

#include <gst/video/video.h>

#include <cstdio>

namespace
{

/// The time at which the sample was taken, on the monotonic clock.
std::uint64_t CaptureUs(GstElement* pipeline, GstSample* sample)
{
    const GstClockTime pts = GST_BUFFER_PTS(gst_sample_get_buffer(sample));
    const GstClockTime running = gst_segment_to_running_time(gst_sample_get_segment(sample), GST_FORMAT_TIME, pts);
    if (!GST_CLOCK_TIME_IS_VALID(running))
    {
        return 0;
    }
    return (gst_element_get_base_time(pipeline) + running) / GST_USECOND;
}

/// The bytes of a sample for as long as it lives.
class CSampleBytes
{
public:
    explicit CSampleBytes(GstSample* sample)
        : m_buffer(gst_sample_get_buffer(sample)), m_mapped(gst_buffer_map(m_buffer, &m_map, GST_MAP_READ) != FALSE)
    {
    }
    ~CSampleBytes()
    {
        if (m_mapped)
        {
            gst_buffer_unmap(m_buffer, &m_map);
        }
    }
    CSampleBytes(const CSampleBytes&) = delete;
    CSampleBytes& operator=(const CSampleBytes&) = delete;

    const unsigned char* Data() const { return m_mapped ? m_map.data : nullptr; }
    std::size_t Length() const { return m_mapped ? m_map.size : 0; }

private:
    GstBuffer* m_buffer;
    GstMapInfo m_map = GST_MAP_INFO_INIT;
    const bool m_mapped;
};

const char* Refusal(AnnexBResult result)
{
    return result == AnnexBResult::SeveralSlices ? "a frame of several slices" : "a key frame without parameter sets";
}

} // namespace

CMediaPipeline::CMediaPipeline(const CameraOptions& options, CFrameSink& sink)
    : m_options(options), m_sink(sink),
      m_chunker([this](std::uint64_t presentationUs, const std::vector<unsigned char>& chunk)
                { m_sink.PutAudio(chunk, presentationUs); })
{
}

CMediaPipeline::~CMediaPipeline()
{
    if (m_pipeline != nullptr)
    {
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    }
    m_file.reset(); // behind the stop: its pushes return now
}

bool CMediaPipeline::Start(std::string& problem)
{
    MediaFileInfo file;
    if (m_options.source == SourceKind::File)
    {
        file = InspectMediaFile(m_options.location);
        if (!file.problem.empty())
        {
            problem = m_options.location + ": " + file.problem;
            return false;
        }
    }
    if (!Build(file.hasSound, problem))
    {
        return false;
    }
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE)
    {
        IsRunning(problem);
        return false;
    }
    if (m_options.source == SourceKind::File)
    {
        m_file = std::make_unique<CFileLoop>(m_options.location, m_picturesIn.get(),
                                             file.hasSound ? m_soundIn.get() : nullptr, GST_SECOND / m_options.fps);
    }
    return true;
}

bool CMediaPipeline::Build(bool fileHasSound, std::string& problem)
{
    GError* raw = nullptr;
    m_pipeline.reset(gst_parse_launch(LivePipelineText(m_options, fileHasSound).c_str(), &raw));
    const GErrorPtr error(raw);
    if (error != nullptr)
    {
        problem = error->message;
        return false;
    }
    const std::unique_ptr<GstClock, GstObjectRelease> clock(gst_system_clock_obtain());
    gst_pipeline_use_clock(GST_PIPELINE(m_pipeline.get()), clock.get());
    m_bus.reset(gst_element_get_bus(m_pipeline.get()));
    ConnectStream(MAIN_STREAM);
    ConnectStream(SUB_STREAM);
    ConnectSound();
    ConnectSource();
    return true;
}

GstElementPtr CMediaPipeline::Child(const std::string& name) const
{
    return GstElementPtr(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), name.c_str()));
}

void CMediaPipeline::ConnectStream(int index)
{
    Stream& stream = m_streams[index];
    stream.pipeline = this;
    stream.index = index;
    stream.gate = Child("gate" + std::to_string(index));
    stream.encoder = Child("encoder" + std::to_string(index));
    const GstElementPtr source = Child("video" + std::to_string(index));
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CMediaPipeline::OnVideo;
    gst_app_sink_set_callbacks(GST_APP_SINK(source.get()), &callbacks, &stream, nullptr);
}

void CMediaPipeline::ConnectSound()
{
    const GstElementPtr source = Child("sound");
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CMediaPipeline::OnSound;
    gst_app_sink_set_callbacks(GST_APP_SINK(source.get()), &callbacks, this, nullptr);
}

void CMediaPipeline::ConnectSource()
{
    m_picturesIn = Child("pictures_in");
    m_soundIn = Child("sound_in");
    const GstElementPtr device = Child("device");
    if (device != nullptr)
    {
        g_object_set(device.get(), "device", m_options.location.c_str(), nullptr);
    }
    const GstElementPtr remote = Child("remote");
    if (remote != nullptr)
    {
        g_object_set(remote.get(), "uri", m_options.location.c_str(), nullptr);
        g_signal_connect(remote.get(), "pad-added", G_CALLBACK(&CMediaPipeline::OnRemotePad), this);
        g_signal_connect(remote.get(), "no-more-pads", G_CALLBACK(&CMediaPipeline::OnRemoteComplete), this);
    }
}

/// The first picture pad and the first sound pad are used.
void CMediaPipeline::OnRemotePad(GstElement* /*remote*/, GstPad* pad, gpointer self)
{
    CMediaPipeline* const pipeline = static_cast<CMediaPipeline*>(self);
    GstCaps* const caps = gst_pad_get_current_caps(pad);
    const std::string type = caps == nullptr ? "" : gst_structure_get_name(gst_caps_get_structure(caps, 0));
    if (caps != nullptr)
    {
        gst_caps_unref(caps);
    }
    const bool sound = type == "audio/x-raw";
    if (!sound && type != "video/x-raw")
    {
        return;
    }
    GstElement* const target = sound ? pipeline->m_soundIn.get() : pipeline->m_picturesIn.get();
    const GstPadPtr input(gst_element_get_static_pad(target, "sink"));
    if (!gst_pad_is_linked(input.get()) && gst_pad_link(pad, input.get()) == GST_PAD_LINK_OK && sound)
    {
        pipeline->m_remoteHasSound = true;
    }
}

void CMediaPipeline::OnRemoteComplete(GstElement* /*remote*/, gpointer self)
{
    CMediaPipeline* const pipeline = static_cast<CMediaPipeline*>(self);
    if (!pipeline->m_remoteHasSound.exchange(true))
    {
        pipeline->LinkSilence();
    }
}

void CMediaPipeline::LinkSilence()
{
    GstElement* const silence = gst_parse_launch(SILENCE_TEXT, nullptr);
    gst_bin_add(GST_BIN(m_pipeline.get()), silence);
    gst_element_link(silence, m_soundIn.get());
    gst_element_sync_state_with_parent(silence);
}

bool CMediaPipeline::IsRunning(std::string& problem)
{
    if (m_file != nullptr)
    {
        problem = m_file->Problem();
        if (!problem.empty())
        {
            return false;
        }
    }
    const GstMessagePtr message(
        gst_bus_pop_filtered(m_bus.get(), static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
    if (message == nullptr)
    {
        return true;
    }
    problem = "the source has ended";
    if (GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_ERROR)
    {
        GError* raw = nullptr;
        gst_message_parse_error(message.get(), &raw, nullptr);
        const GErrorPtr error(raw);
        problem = error->message;
    }
    return false;
}

void CMediaPipeline::SetWanted(int stream, bool wanted)
{
    Stream& one = m_streams[stream];
    if (one.wanted.exchange(wanted) == wanted)
    {
        return;
    }
    g_object_set(one.gate.get(), "drop", wanted ? FALSE : TRUE, nullptr);
    if (wanted)
    {
        RequestKeyFrame(stream);
    }
}

void CMediaPipeline::RequestKeyFrame(int stream)
{
    Stream& one = m_streams[stream];
    if (one.keyFrames.Ask())
    {
        gst_element_send_event(one.encoder.get(),
                               gst_video_event_new_upstream_force_key_unit(GST_CLOCK_TIME_NONE, TRUE, 0));
    }
}

GstFlowReturn CMediaPipeline::OnVideo(GstAppSink* source, gpointer stream)
{
    Stream* const one = static_cast<Stream*>(stream);
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    if (sample == nullptr)
    {
        return GST_FLOW_EOS;
    }
    one->pipeline->DeliverVideo(*one, sample.get());
    return GST_FLOW_OK;
}

void CMediaPipeline::DeliverVideo(Stream& stream, GstSample* sample)
{
    stream.keyFrames.FrameEncoded();
    const CSampleBytes bytes(sample);
    const AnnexBResult result = stream.normaliser.Normalise(bytes.Data(), bytes.Length());
    if (result == AnnexBResult::Frame)
    {
        m_sink.PutVideo(stream.index, stream.normaliser.Frame(), stream.normaliser.IsKeyFrame(),
                        CaptureUs(m_pipeline.get(), sample));
    }
    else if (result != AnnexBResult::NoPicture && !stream.refusalReported)
    {
        stream.refusalReported = true;
        std::fprintf(stderr, "netserver-camera: stream %d: left out %s\n", stream.index, Refusal(result));
    }
}

GstFlowReturn CMediaPipeline::OnSound(GstAppSink* source, gpointer self)
{
    CMediaPipeline* const pipeline = static_cast<CMediaPipeline*>(self);
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    if (sample == nullptr)
    {
        return GST_FLOW_EOS;
    }
    const CSampleBytes bytes(sample.get());
    pipeline->m_chunker.Push(CaptureUs(pipeline->m_pipeline.get(), sample.get()), bytes.Data(), bytes.Length());
    return GST_FLOW_OK;
}
