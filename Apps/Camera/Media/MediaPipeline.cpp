#include "MediaPipeline.h"

#include "CameraLog.h"
#include "PictureElement.h"
#include "PipelineText.h"
#include "SampleBytes.h"

#include <cstring>
#include <utility>

namespace
{

constexpr double MIDDLE = 50; // of the image levels, from 0 to 100

/// The time at which the sample was taken, in nanoseconds of the monotonic clock.
GstClockTime CaptureTime(GstElement* pipeline, GstSample* sample)
{
    const GstClockTime pts = GST_BUFFER_PTS(gst_sample_get_buffer(sample));
    const GstClockTime running = gst_segment_to_running_time(gst_sample_get_segment(sample), GST_FORMAT_TIME, pts);
    return GST_CLOCK_TIME_IS_VALID(running) ? gst_element_get_base_time(pipeline) + running : 0;
}

/// videoflip's methods: identity, rotate-180, horizontal-flip, vertical-flip.
int TurnMethod(const NETNS::DEV_IMAGE_PARAM& image)
{
    constexpr int IDENTITY = 0;
    constexpr int ROTATE_180 = 2;
    constexpr int HORIZONTAL = 4;
    constexpr int VERTICAL = 5;
    if (image.mirrorSwitch != 0)
    {
        return image.flipSwitch != 0 ? ROTATE_180 : HORIZONTAL;
    }
    return image.flipSwitch != 0 ? VERTICAL : IDENTITY;
}

const char* TimeFormat(std::uint32_t dateFormat)
{
    switch (dateFormat)
    {
    case 2:
        return "%m-%d-%Y %H:%M:%S";
    case 3:
        return "%d-%m-%Y %H:%M:%S";
    default:
        return "%Y-%m-%d %H:%M:%S";
    }
}

} // namespace

CMediaPipeline::CMediaPipeline(const CameraOptions& options, Parts parts)
    : m_options(options), m_parts(std::move(parts)),
      m_pictureCaps(gst_caps_from_string(PictureCapsText(options).c_str())), m_snapshots(m_parts.sink),
      m_chunker([this](std::uint64_t presentationUs, const std::vector<unsigned char>& chunk)
                { m_parts.sink.PutAudio(chunk, presentationUs); })
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

bool CMediaPipeline::Start(const DeviceSettings& settings, std::string& problem)
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
    if (!Build(file.hasSound, problem) || !BuildEncoders(settings, problem))
    {
        return false;
    }
    for (const SettingsTopic topic :
         {SettingsTopic::Image, SettingsTopic::Osd, SettingsTopic::Masks, SettingsTopic::Motion})
    {
        Apply(topic, settings);
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
    ConnectWork();
    ConnectSource();
    return true;
}

bool CMediaPipeline::BuildEncoders(const DeviceSettings& settings, std::string& problem)
{
    for (const int stream : {MAIN_STREAM, SUB_STREAM})
    {
        m_profiles[stream] = settings.profiles[stream];
        m_encoders[stream] = std::make_unique<CStreamEncoder>(stream, m_parts.sink);
        if (!m_encoders[stream]->Start(settings.profiles[stream], m_pictureCaps.get(), problem))
        {
            return false;
        }
    }
    return m_snapshots.Start(m_pictureCaps.get(), problem);
}

GstElementPtr CMediaPipeline::Child(const std::string& name) const
{
    return GstElementPtr(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), name.c_str()));
}

void CMediaPipeline::ConnectWork()
{
    SetPictureHandler(Child("prepare").get(), [this](const Picture& picture) { m_parts.work.Prepare(picture); });
    SetPictureHandler(Child("motion").get(),
                      [this](const Picture& picture) { m_parts.onPicture(m_parts.work.LookForMotion(picture)); });
    GstAppSinkCallbacks callbacks = {};
    callbacks.new_sample = &CMediaPipeline::OnPicture;
    gst_app_sink_set_callbacks(GST_APP_SINK(Child("pictures").get()), &callbacks, this, nullptr);
    callbacks.new_sample = &CMediaPipeline::OnSound;
    gst_app_sink_set_callbacks(GST_APP_SINK(Child("sound").get()), &callbacks, this, nullptr);
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

void CMediaPipeline::Apply(SettingsTopic topic, const DeviceSettings& settings)
{
    switch (topic)
    {
    case SettingsTopic::Image:
        ApplyImage(settings.image);
        break;
    case SettingsTopic::Osd:
        ApplyOsd(settings);
        break;
    case SettingsTopic::Masks:
        m_parts.work.SetMasks(settings.masks);
        break;
    case SettingsTopic::Motion:
        m_parts.work.SetMotion(settings.motion);
        break;
    case SettingsTopic::Streams:
        ApplyProfile(MAIN_STREAM, settings.profiles[MAIN_STREAM]);
        ApplyProfile(SUB_STREAM, settings.profiles[SUB_STREAM]);
        break;
    default:
        break; // nothing that is seen in the pictures
    }
}

void CMediaPipeline::ApplyImage(const NETNS::DEV_IMAGE_PARAM& image)
{
    m_parts.work.SetImage(image);
    const GstElementPtr turn = Child("turn");
    g_object_set(turn.get(), "method", TurnMethod(image), nullptr);
    // Half of the way that the element could go in brightness: the rest is all white or all black.
    const GstElementPtr balance = Child("balance");
    g_object_set(balance.get(), "brightness", (image.bright - MIDDLE) / MIDDLE / 2, "contrast", image.contrast / MIDDLE,
                 "hue", (image.hue - MIDDLE) / MIDDLE, "saturation", image.saturation / MIDDLE, nullptr);
}

void CMediaPipeline::ApplyOsd(const DeviceSettings& settings)
{
    const GstElementPtr time = Child("osd_time");
    g_object_set(time.get(), "silent", settings.timeOsd.osdSwitch == 0, "deltax", static_cast<int>(settings.timeOsd.x),
                 "deltay", static_cast<int>(settings.timeOsd.y), "time-format", TimeFormat(settings.timeOsd.dateFormat),
                 nullptr);
    const NETNS::DEV_CHANNEL_NAME_OSD& name = settings.nameOsd;
    const GCharsPtr valid(g_utf8_make_valid(name.name, static_cast<gssize>(strnlen(name.name, sizeof(name.name)))));
    const GCharsPtr text(g_markup_escape_text(valid.get(), -1));
    const GstElementPtr nameElement = Child("osd_name");
    g_object_set(nameElement.get(), "silent", name.osdSwitch == 0 || name.name[0] == '\0', "deltax",
                 static_cast<int>(name.x), "deltay", static_cast<int>(name.y), "text", text.get(), nullptr);
}

/// The old encoder has ended before the new one begins: the stream's frames stay in order.
void CMediaPipeline::ApplyProfile(int stream, const NETNS::DEV_VIDEO_PROFILE& profile)
{
    std::unique_ptr<CStreamEncoder> encoder;
    {
        const std::lock_guard<std::mutex> guard(m_encoderLock);
        if (std::memcmp(&m_profiles[stream], &profile, sizeof(profile)) == 0)
        {
            return;
        }
        m_profiles[stream] = profile;
        encoder = std::move(m_encoders[stream]);
    }
    const bool wanted = encoder == nullptr || encoder->IsWanted();
    encoder = nullptr;
    encoder = std::make_unique<CStreamEncoder>(stream, m_parts.sink);
    std::string problem;
    if (!encoder->Start(profile, m_pictureCaps.get(), problem))
    {
        Say("stream " + std::to_string(stream) + ": " + problem);
        return;
    }
    encoder->SetWanted(wanted);
    const std::lock_guard<std::mutex> guard(m_encoderLock);
    m_encoders[stream] = std::move(encoder);
}

void CMediaPipeline::SetWanted(int stream, bool wanted)
{
    const std::lock_guard<std::mutex> guard(m_encoderLock);
    if (m_encoders[stream] != nullptr)
    {
        m_encoders[stream]->SetWanted(wanted);
    }
}

void CMediaPipeline::RequestKeyFrame(int stream)
{
    const std::lock_guard<std::mutex> guard(m_encoderLock);
    if (m_encoders[stream] != nullptr)
    {
        m_encoders[stream]->RequestKeyFrame();
    }
}

GstFlowReturn CMediaPipeline::OnPicture(GstAppSink* source, gpointer self)
{
    const GstSamplePtr sample(gst_app_sink_pull_sample(source));
    if (sample == nullptr)
    {
        return GST_FLOW_EOS;
    }
    static_cast<CMediaPipeline*>(self)->Distribute(sample.get());
    return GST_FLOW_OK;
}

/// All encoders share the picture's memory; only its time is written anew.
void CMediaPipeline::Distribute(GstSample* sample)
{
    GstBuffer* const picture = gst_buffer_copy(gst_sample_get_buffer(sample));
    GST_BUFFER_PTS(picture) = CaptureTime(m_pipeline.get(), sample);
    GST_BUFFER_DTS(picture) = GST_CLOCK_TIME_NONE;
    {
        const std::lock_guard<std::mutex> guard(m_encoderLock);
        for (const std::unique_ptr<CStreamEncoder>& encoder : m_encoders)
        {
            if (encoder != nullptr)
            {
                encoder->Put(picture);
            }
        }
    }
    m_snapshots.Put(picture);
    gst_buffer_unref(picture);
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
    pipeline->m_chunker.Push(CaptureTime(pipeline->m_pipeline.get(), sample.get()) / GST_USECOND, bytes.Data(),
                             bytes.Length());
    return GST_FLOW_OK;
}
