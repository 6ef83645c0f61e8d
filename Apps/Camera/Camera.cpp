#include "Camera.h"

#include "CameraSettings.h"
#include "LocalPorts.h"
#include "NetServerSDK.h"

#include <cstdio>
#include <ctime>

#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

constexpr auto TICK = 200ms;
constexpr auto START_POLL = 20ms;
constexpr auto FIRST_FRAMES_LIMIT = 20s;
constexpr auto MEDIA_RETRY = 2s;
constexpr auto CLIENT_WATCH = 2s;
// A client that opened a stream plays it after two or three more round trips only.
constexpr auto SECOND_KEY_FRAME = 500ms;
constexpr unsigned int FLAG_XML_API = 1;

// The library replaces the first text in web pages by the second one, of the same length: so the page knows where the
// streams are.
constexpr const char* RTSP_PORT_MARK = "@rtsp-port@";

std::string RtspPortText(unsigned short port)
{
    std::string text = std::to_string(port);
    text.resize(std::char_traits<char>::length(RTSP_PORT_MARK), ' ');
    return text;
}

void Say(const std::string& text)
{
    std::fprintf(stderr, "netserver-camera: %s\n", text.c_str());
}

bool CheckPort(const char* name, unsigned short port)
{
    std::string why;
    if (IsPortFree(port, why))
    {
        return true;
    }
    Say(std::string(name) + " port " + std::to_string(port) + " cannot be used: " + why);
    return false;
}

bool CheckService(const char* name, unsigned short port)
{
    if (DoesPortAnswer(port))
    {
        return true;
    }
    Say(std::string(name) + " port " + std::to_string(port) + " does not answer");
    return false;
}

bool PrintReady(int fd, unsigned short httpPort, unsigned short rtspPort)
{
    return dprintf(fd, "ready http=%u rtsp=%u\n", unsigned{httpPort}, unsigned{rtspPort}) > 0;
}

} // namespace

CCamera::CCamera(const CameraOptions& options, const sigset_t& stopSignals)
    : m_options(options), m_stopSignals(stopSignals), m_dataDirectory(DataDirectory(options)),
      m_settingsFile(m_dataDirectory + "/netserver.xml"), m_webRoot(WebRoot(options)),
      m_rtspPortText(RtspPortText(options.rtspPort)), m_users(options.users),
      m_streams(options.channels, m_users, options.rtspAuth, [this](int stream) { OnOpen(stream); }),
      m_device(
          options, m_users,
          [this]
          {
              RequestKeyFrame(MAIN_STREAM);
              RequestKeyFrame(SUB_STREAM);
          },
          [this] { m_rebootWanted = true; }),
      m_feed(options.channels)
{
}

int CCamera::Run(int readyFd)
{
    if (!Prepare())
    {
        return 1;
    }
    NET_SERVER_SetPolicy((m_options.compat ? 0 : NET_POLICY_STANDARD_RTSP) |
                         (m_options.announce ? 0 : NET_POLICY_NO_ANNOUNCE));
    if (NET_SERVER_Initial(m_options.channels, 0, 0, &m_device, &m_streams, RTSP_PORT_MARK, m_rtspPortText.c_str(),
                           FLAG_XML_API, NETNS::DEV_TYPE_DEFAULT) != 1)
    {
        Say("the network services could not be started");
        return 1;
    }
    Outcome outcome = Outcome::Reboot;
    while (outcome == Outcome::Reboot)
    {
        outcome = RunOnce(readyFd);
    }
    NET_SERVER_Quit();
    return outcome == Outcome::Stopped ? 0 : 1;
}

bool CCamera::Prepare()
{
    std::string problem;
    if (!MakeDirectory(m_dataDirectory, problem))
    {
        Say(problem);
        return false;
    }
    if (m_webRoot.empty())
    {
        Say("the web pages are not beside the program nor installed; give --web-root");
        return false;
    }
    return CheckPort("HTTP", m_options.httpPort) && CheckPort("RTSP", m_options.rtspPort);
}

CCamera::Outcome CCamera::RunOnce(int readyFd)
{
    m_rebootWanted = false;
    m_restartMediaAt.reset();
    m_feed.Restart();
    NET_SERVER_Start(m_options.httpPort, m_webRoot.c_str(), m_settingsFile.c_str());
    NET_SERVER_RTSPStart(m_options.rtspPort, &m_streams, &m_device);
    for (unsigned int channel = 1; channel <= m_options.channels; ++channel)
    {
        for (const int stream : {MAIN_STREAM, SUB_STREAM})
        {
            NET_SERVER_SetLiveRTSPUrl(channel, stream, LivePath(channel, stream).c_str());
        }
    }
    Outcome outcome = BringUp(readyFd);
    StopMedia();
    NET_SERVER_RTSPStop();
    NET_SERVER_Stop();
    m_streams.ForgetAll();
    return outcome;
}

CCamera::Outcome CCamera::BringUp(int readyFd)
{
    const std::optional<Outcome> end = AwaitMedia();
    if (end.has_value())
    {
        return *end;
    }
    if (!CheckService("HTTP", m_options.httpPort) || !CheckService("RTSP", m_options.rtspPort))
    {
        return Outcome::Failed;
    }
    if (!m_readyPrinted)
    {
        m_readyPrinted = PrintReady(readyFd, m_options.httpPort, m_options.rtspPort);
    }
    return Serve();
}

/// Starts the media and waits for the first frames. @return what ends the run; nothing when it goes on
std::optional<CCamera::Outcome> CCamera::AwaitMedia()
{
    std::string problem;
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
    Say(problem);
    if (!m_readyPrinted)
    {
        return Outcome::Failed;
    }
    m_restartMediaAt = Clock::now() + MEDIA_RETRY; // a reboot: the source may come back
    return std::nullopt;
}

CCamera::Outcome CCamera::Serve()
{
    while (!WaitForSignal(TICK))
    {
        if (m_rebootWanted)
        {
            return Outcome::Reboot; // a tick or more after the answer to the client was made
        }
        WatchMedia();
        WatchClients();
        RepeatKeyFrames();
    }
    return Outcome::Stopped;
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
        const bool connected = CountConnections(m_options.rtspPort) > 0;
        if (!connected && !m_connected)
        {
            m_streams.ForgetAll(); // clients that left without a word: every player holds a connection
        }
        m_connected = connected;
    }
    // A client may play without asking for the description on the same connection; it is not known which stream.
    const bool unknownUse = m_connected && !m_streams.IsOpen(MAIN_STREAM) && !m_streams.IsOpen(SUB_STREAM);
    const std::lock_guard<std::mutex> guard(m_mediaLock);
    for (const int stream : {MAIN_STREAM, SUB_STREAM})
    {
        if (m_media != nullptr)
        {
            m_media->SetWanted(stream, m_streams.IsOpen(stream) || unknownUse);
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
    auto media = std::make_unique<CMediaPipeline>(m_options, m_feed);
    const bool started = media->Start(problem);
    const std::lock_guard<std::mutex> guard(m_mediaLock);
    m_media = std::move(media);
    return started;
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
        const std::lock_guard<std::mutex> guard(m_mediaLock);
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

bool CCamera::WaitForSignal(std::chrono::milliseconds limit) const
{
    const timespec wait = {static_cast<time_t>(limit.count() / 1000), (limit.count() % 1000) * 1000000};
    return sigtimedwait(&m_stopSignals, nullptr, &wait) > 0;
}
