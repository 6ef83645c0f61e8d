#include "FileLoop.h"

#include "PipelineText.h"

#include <gst/pbutils/pbutils.h>

#include <chrono>
#include <utility>

namespace
{

constexpr GstClockTime INSPECTION_LIMIT = 10 * GST_SECOND;
constexpr GstClockTime POLL = 100 * GST_MSECOND;

/// Closes what a function builds, in every way out of it.
struct StopPipeline
{
    void operator()(GstElement* pipeline) const { gst_element_set_state(pipeline, GST_STATE_NULL); }
};

bool HasStreams(GList* streams)
{
    const bool any = streams != nullptr;
    gst_discoverer_stream_info_list_free(streams);
    return any;
}

} // namespace

MediaFileInfo InspectMediaFile(const std::string& path)
{
    MediaFileInfo result;
    GError* error = nullptr;
    const GCharsPtr uri(gst_filename_to_uri(path.c_str(), &error));
    GstDiscoverer* discoverer = error == nullptr ? gst_discoverer_new(INSPECTION_LIMIT, &error) : nullptr;
    GstDiscovererInfo* info =
        discoverer != nullptr ? gst_discoverer_discover_uri(discoverer, uri.get(), &error) : nullptr;
    if (info != nullptr)
    {
        result.hasPictures = HasStreams(gst_discoverer_info_get_video_streams(info));
        result.hasSound = HasStreams(gst_discoverer_info_get_audio_streams(info));
        g_object_unref(info);
    }
    if (error != nullptr)
    {
        result.problem = error->message;
        g_error_free(error);
    }
    else if (!result.hasPictures)
    {
        result.problem = "there are no pictures in it";
    }
    if (discoverer != nullptr)
    {
        g_object_unref(discoverer);
    }
    return result;
}

CFileLoop::CFileLoop(std::string path, GstElement* pictures, GstElement* sound, std::uint64_t frameNs)
    : m_path(std::move(path)), m_pictures{this, pictures}, m_sound{this, sound}, m_timeline(frameNs),
      m_thread([this] { Run(); })
{
}

CFileLoop::~CFileLoop()
{
    m_stopping = true;
    m_thread.join();
}

std::string CFileLoop::Problem() const
{
    const std::lock_guard<std::mutex> guard(m_problemLock);
    return m_problem;
}

void CFileLoop::SetProblem(const std::string& problem)
{
    const std::lock_guard<std::mutex> guard(m_problemLock);
    m_problem = problem;
}

void CFileLoop::Run()
{
    while (!m_stopping && PlayOnce())
    {
        m_timeline.NextLoop();
    }
}

/// @return whether it is worth playing again
bool CFileLoop::PlayOnce()
{
    const GstElementPtr pipeline = Open();
    if (pipeline == nullptr)
    {
        return false;
    }
    const std::unique_ptr<GstElement, StopPipeline> running(pipeline.get());
    const GstBusPtr bus(gst_element_get_bus(pipeline.get()));
    m_anyPicture = false;
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    while (!m_stopping)
    {
        const GstMessagePtr message(gst_bus_timed_pop_filtered(
            bus.get(), POLL, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR)));
        if (message == nullptr)
        {
            continue;
        }
        if (GST_MESSAGE_TYPE(message.get()) == GST_MESSAGE_ERROR)
        {
            GError* raw = nullptr;
            gst_message_parse_error(message.get(), &raw, nullptr);
            const GErrorPtr error(raw);
            SetProblem(error->message);
            return false;
        }
        if (!m_anyPicture)
        {
            SetProblem("no picture could be decoded");
        }
        return m_anyPicture;
    }
    return false;
}

GstElementPtr CFileLoop::Open()
{
    GError* raw = nullptr;
    GstElementPtr pipeline(gst_parse_launch(FilePipelineText(m_sound.target != nullptr).c_str(), &raw));
    const GErrorPtr error(raw);
    if (error != nullptr)
    {
        SetProblem(error->message);
        return nullptr;
    }
    const GstElementPtr file(gst_bin_get_by_name(GST_BIN(pipeline.get()), "file"));
    g_object_set(file.get(), "location", m_path.c_str(), nullptr);
    Connect(pipeline.get(), "pictures", m_pictures);
    if (m_sound.target != nullptr)
    {
        Connect(pipeline.get(), "sound", m_sound);
    }
    return pipeline;
}

void CFileLoop::Connect(GstElement* pipeline, const char* name, Track& track)
{
    const GstElementPtr source(gst_bin_get_by_name(GST_BIN(pipeline), name));
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CFileLoop::OnSample;
    gst_app_sink_set_callbacks(GST_APP_SINK(source.get()), &callbacks, &track, nullptr);
}

GstFlowReturn CFileLoop::OnSample(GstAppSink* source, gpointer track)
{
    const Track* const self = static_cast<const Track*>(track);
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    return sample == nullptr ? GST_FLOW_EOS : self->loop->Forward(sample.get(), self->target);
}

GstFlowReturn CFileLoop::Forward(GstSample* sample, GstElement* target)
{
    GstBuffer* const decoded = gst_sample_get_buffer(sample);
    const GstSegment* const segment = gst_sample_get_segment(sample);
    const GstClockTime time = gst_segment_to_running_time(segment, GST_FORMAT_TIME, GST_BUFFER_PTS(decoded));
    if (!GST_CLOCK_TIME_IS_VALID(time))
    {
        return GST_FLOW_OK; // decoded in front of the part that is to be seen
    }
    GstBuffer* const placed = gst_buffer_copy(decoded);
    GST_BUFFER_PTS(placed) = m_timeline.Place(time, GST_BUFFER_DURATION(decoded));
    GST_BUFFER_DTS(placed) = GST_CLOCK_TIME_NONE;
    const GstSamplePtr forwarded(gst_sample_new(placed, gst_sample_get_caps(sample), nullptr, nullptr));
    gst_buffer_unref(placed);
    if (target == m_pictures.target)
    {
        m_anyPicture = true;
    }
    return gst_app_src_push_sample(GST_APP_SRC(target), forwarded.get());
}
