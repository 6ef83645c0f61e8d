// The camera's media: start, restart and rest, and what their threads and the RTSP scheduler ask of them.
#include "Camera.h"

#include "CameraLog.h"
#include "RecordTime.h"
#include "SlowNotice.h"

using namespace std::chrono_literals;

namespace
{

constexpr auto START_POLL = 20ms;
constexpr auto FIRST_FRAMES_LIMIT = 20s;
constexpr auto MEDIA_RETRY = 2s;
constexpr auto CLIENT_WATCH = 2s;
// A client that opened a stream plays it after two or three more round trips only.
constexpr auto SECOND_KEY_FRAME = 500ms;
constexpr std::uint64_t VIDEO_LOSS_US = 3000000;

/// What a person can do about a source that does not come up.
const char* SourceHint(SourceKind kind)
{
    switch (kind)
    {
    case SourceKind::File:
        return "give a file that holds pictures, or install the GStreamer plug-in that reads it";
    case SourceKind::V4l2:
        return "'ls /dev/video*' lists the devices, and members of the group 'video' may use them";
    case SourceKind::Rtsp:
        return "check that it is on, and the address, name and password in its URL";
    case SourceKind::Test:
        break;
    }
    return "the machine may be too busy, or a GStreamer plug-in is missing";
}

} // namespace

/// Starts the media and waits for the first frames. @return what ends the run; nothing when it goes on
std::optional<CCamera::Outcome> CCamera::AwaitMedia()
{
    std::string problem;
    const CSlowNotice notice("waiting for the first pictures of the source, up to 20 seconds", Say);
    const Clock::time_point limit = Clock::now() + FIRST_FRAMES_LIMIT;
    bool running = StartMedia(problem);
    while (running && !m_feed.HasAll())
    {
        if (WaitForSignal(START_POLL))
        {
            return Outcome::Stopped;
        }
        running = IsMediaRunning(problem);
        if (running && Clock::now() > limit)
        {
            problem = "the source gives no pictures";
            running = false;
        }
    }
    if (running)
    {
        return std::nullopt;
    }
    Say("--source: " + problem + "; " + SourceHint(m_options.source));
    if (!m_readyPrinted)
    {
        return Outcome::Failed;
    }
    m_restartMediaAt = Clock::now() + MEDIA_RETRY; // a reboot: the source may come back
    return std::nullopt;
}

/// A source may go silent without an end.
void CCamera::WatchPictures()
{
    m_alarms.SetVideoLoss(SteadyClockUs() - m_lastPictureUs > VIDEO_LOSS_US);
    m_alarms.Tick(SteadyClockUs() / 1000);
}

/// Media thread.
void CCamera::OnPicture(bool moving)
{
    m_lastPictureUs = SteadyClockUs();
    m_alarms.SetMoving(moving, m_lastPictureUs / 1000);
}

/// Starts the media again when they have stopped: a remote camera that went away, a device that was unplugged.
void CCamera::WatchMedia()
{
    std::string problem;
    if (m_restartMediaAt.has_value())
    {
        if (Clock::now() < *m_restartMediaAt)
        {
            return;
        }
        m_restartMediaAt.reset();
        StopMedia();
        if (StartMedia(problem))
        {
            return;
        }
    }
    else if (IsMediaRunning(problem))
    {
        return;
    }
    Say(problem + "; trying again");
    m_restartMediaAt = Clock::now() + MEDIA_RETRY;
}

/// Lets the encoders rest that nobody needs.
void CCamera::WatchClients()
{
    if (Clock::now() >= m_nextClientWatch)
    {
        m_nextClientWatch = Clock::now() + CLIENT_WATCH;
        m_clients->Look();
    }
    // A client may play without asking for the description on the same connection; it is not known which stream.
    const bool unknownUse =
        m_clients->IsConnected() && !m_streams->IsOpen(MAIN_STREAM) && !m_streams->IsOpen(SUB_STREAM);
    const std::lock_guard<std::mutex> guard(m_mediaLock);
    for (const int stream : {MAIN_STREAM, SUB_STREAM})
    {
        if (m_media != nullptr)
        {
            const bool recorded = stream == MAIN_STREAM && m_options.recordLimit > 0;
            m_media->SetWanted(stream, m_streams->IsOpen(stream) || unknownUse || recorded);
        }
    }
}

void CCamera::RepeatKeyFrames()
{
    const Clock::time_point due = Clock::now() - SECOND_KEY_FRAME;
    for (const int stream : {MAIN_STREAM, SUB_STREAM})
    {
        Clock::rep opened = m_lastOpen[stream];
        if (opened != 0 && opened < due.time_since_epoch().count() &&
            m_lastOpen[stream].compare_exchange_strong(opened, 0))
        {
            RequestKeyFrame(stream);
        }
    }
}

bool CCamera::StartMedia(std::string& problem)
{
    CFrameSink* sink = &m_feed;
    if (m_options.recordLimit > 0)
    {
        sink = &m_feedAndRecorder;
    }
    m_lastPictureUs = SteadyClockUs();
    CMediaPipeline::Parts parts{*sink, m_work, nullptr};
    parts.onPicture = [this](bool moving)
    {
        OnPicture(moving);
    };
    auto media = std::make_unique<CMediaPipeline>(m_options, std::move(parts));
    if (!media->Start(m_device->Settings(), problem))
    {
        return false;
    }
    {
        const std::scoped_lock guard(m_mediaLife, m_mediaLock);
        m_media = std::move(media);
    }
    m_device->RepeatPictureEffects();
    return true;
}

bool CCamera::IsMediaRunning(std::string& problem)
{
    const std::lock_guard<std::mutex> guard(m_mediaLock);
    return m_media->IsRunning(problem);
}

void CCamera::StopMedia()
{
    std::unique_ptr<CMediaPipeline> ending;
    {
        const std::scoped_lock guard(m_mediaLife, m_mediaLock);
        ending = std::move(m_media);
    }
}

/// Scheduler thread.
void CCamera::OnOpen(int stream)
{
    m_lastOpen[stream] = Clock::now().time_since_epoch().count();
    const std::lock_guard<std::mutex> guard(m_mediaLock);
    if (m_media != nullptr)
    {
        m_media->SetWanted(stream, true);
        m_media->RequestKeyFrame(stream);
    }
}

void CCamera::RequestKeyFrame(int stream)
{
    const std::lock_guard<std::mutex> guard(m_mediaLock);
    if (m_media != nullptr)
    {
        m_media->RequestKeyFrame(stream);
    }
}
