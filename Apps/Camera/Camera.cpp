#include "Camera.h"

#include "CameraLog.h"
#include "CameraSettings.h"
#include "LocalPorts.h"
#include "NetServerSDK.h"
#include "RecordTime.h"
#include "SlowNotice.h"
#include "StreamChoices.h"
#include "TalkPlayer.h"
#include "WavFile.h"

#include <cstdio>
#include <ctime>

#include <unistd.h>

using namespace std::chrono_literals;

namespace
{

constexpr auto TICK = 200ms;
constexpr unsigned int FLAG_XML_API = 1;
constexpr std::uint64_t BYTES_IN_MB = 1000000;

// The library replaces the first text in web pages by the second one, of the same length: so the page knows where the
// streams are.
constexpr const char* RTSP_PORT_MARK = "@rtsp-port@";

std::string RtspPortText(unsigned short port)
{
    std::string text = std::to_string(port);
    text.resize(std::char_traits<char>::length(RTSP_PORT_MARK), ' ');
    return text;
}

bool CheckPort(const char* name, const char* option, unsigned short port)
{
    std::string why;
    if (IsPortFree(port, why))
    {
        return true;
    }
    Say(std::string(name) + " port " + std::to_string(port) + " cannot be used: " + why + "; " +
        (IsPrivileged(port) ? "ports below 1024 need a right of their own, choose another one with "
                            : "end the program that has it, or choose another one with ") +
        option);
    return false;
}

/// On a terminal, where to look next.
void PointToPage(unsigned short httpPort)
{
    if (isatty(STDERR_FILENO) != 0)
    {
        Say("the page is http://localhost:" + std::to_string(httpPort) + "/, Ctrl-C ends the camera");
    }
}

bool CheckService(const char* name, unsigned short port)
{
    if (DoesPortAnswer(port))
    {
        return true;
    }
    Say(std::string(name) + " port " + std::to_string(port) +
        " does not answer; another program may have taken it just now, start again");
    return false;
}

/// All channels show the same source, so they have its alarms.
void Report(const AlarmEdge& edge, unsigned int channels)
{
    if (edge.kind == AlarmKind::Sensor)
    {
        NET_SERVER_SetSensorStatus(edge.id, edge.active);
        return;
    }
    for (unsigned int channel = 0; channel < channels; ++channel)
    {
        if (edge.kind == AlarmKind::Motion)
        {
            NET_SERVER_SetMotionStatus(channel, edge.active);
        }
        else
        {
            NET_SERVER_SetVideoLossStatus(channel, edge.active);
        }
    }
}

/// Hands a recorded frame to the client that plays it.
void Play(unsigned int handle, const RecordedFrame& frame)
{
    const bool video = frame.kind == RecordedKind::Video;
    NETNS::RTSP_FRAME record = {};
    record.frameType = video ? NETNS::RTSP_FRAME_VIDEO : NETNS::RTSP_FRAME_AUDIO;
    record.encodeType = video ? NETNS::RTSP_ENCODE_H264 : NETNS::RTSP_ENCODE_PCMA;
    record.keyFrame = frame.keyFrame ? 1 : 0;
    record.presentationUs = static_cast<std::uint64_t>(frame.timeUs);
    record.clockRate = video ? 90000 : 8000;
    record.length = static_cast<std::uint32_t>(frame.payload.size());
    // The library copies the payload and does not write to it.
    NET_SERVER_PlayStreamIn(handle, record, const_cast<unsigned char*>(frame.payload.data()));
}

bool PrintReady(int fd, unsigned short httpPort, unsigned short rtspPort)
{
    return dprintf(fd, "ready http=%u rtsp=%u\n", unsigned{httpPort}, unsigned{rtspPort}) > 0;
}

} // namespace

CCamera::CCamera(const CameraOptions& options, const sigset_t& stopSignals)
    : m_options(options), m_stopSignals(stopSignals), m_dataDirectory(DataDirectory(options)),
      m_settingsFile(m_dataDirectory + "/netserver.xml"), m_webRoot(WebRoot(options)), m_users(options.users),
      m_reporter([this](const AlarmEdge& edge) { Report(edge, m_options.channels); }),
      m_alarms([this](const AlarmEdge& edge) { m_reporter.Put(edge); }), m_playbacks(m_records, Play),
      m_feed(options.channels), m_recorder(m_records, options.recordLimit * BYTES_IN_MB)
{
}

CCamera::~CCamera()
{
    StopMedia();
}

int CCamera::Run(int readyFd)
{
    if (!Prepare())
    {
        return 1;
    }
    NET_SERVER_SetPolicy((m_options.compat ? 0 : NET_POLICY_STANDARD_RTSP) |
                         (m_options.announce ? 0 : NET_POLICY_NO_ANNOUNCE));
    if (NET_SERVER_Initial(m_options.channels, ALARM_OUT_COUNT, SENSOR_COUNT, m_device.get(), m_streams.get(),
                           RTSP_PORT_MARK, m_rtspPortText.c_str(), FLAG_XML_API, NETNS::DEV_TYPE_DEFAULT) != 1)
    {
        Say("the network services could not be started; the limits of open files and threads may be too low");
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
    if (m_webRoot.empty())
    {
        problem = "the web pages are not beside the program nor installed; give --web-root";
    }
    if (!problem.empty() || !OpenStore(problem) || !OpenTalk(problem))
    {
        Say(problem);
        return false;
    }
    BuildDevice();
    return CheckPort("HTTP", "--http-port", m_ports.httpPort) && CheckPort("RTSP", "--rtsp-port", m_ports.rtspPort);
}

bool CCamera::OpenStore(std::string& problem)
{
    const CSlowNotice notice("checking the settings and recordings in " + m_dataDirectory, Say);
    const std::string recordings = m_dataDirectory + "/recordings";
    return MakeDirectory(m_dataDirectory, problem) && LockDirectory(m_dataDirectory, problem) &&
           m_store.Open(m_dataDirectory + "/camera.db", problem) && MakeDirectory(recordings, problem) &&
           m_records.Open(recordings, problem);
}

bool CCamera::OpenTalk(std::string& problem)
{
    if (m_options.talkOut.empty())
    {
        m_talk = std::make_unique<CTalkPlayer>();
        return true;
    }
    auto file = std::make_unique<CWavFile>();
    const bool opened = file->Open(m_options.talkOut, problem);
    m_talk = std::move(file);
    return opened;
}

void CCamera::BuildDevice()
{
    DeviceSettings settings = DefaultSettings(m_options);
    m_store.Load(m_options, settings);
    for (unsigned int stream = 0; stream < VIDEO_STREAMS; ++stream)
    {
        if (!IsPossible(m_options, stream, settings.profiles[stream]))
        {
            settings.profiles[stream] = DefaultProfile(m_options, stream);
        }
    }
    m_users.Replace(settings.users);
    m_alarms.Configure(settings);
    m_feed.SetUlaw(settings.audioType != 0);
    m_ports = settings.ports;
    m_rtspPortText = RtspPortText(m_ports.rtspPort);
    m_device = std::make_unique<CCameraDevice>(
        m_options, CCameraDevice::Parts{m_store, m_users, m_head, m_alarms, m_records, *this}, settings);
    m_streams =
        std::make_unique<CCameraStreams>(m_options.channels, CCameraStreams::Parts{m_users, m_playbacks, *m_talk},
                                         m_options.rtspAuth, [this](int stream) { OnOpen(stream); });
    m_clients =
        std::make_unique<CClientWatch>(*m_streams, m_playbacks, [this] { return CountConnections(m_ports.rtspPort); });
}

/// HTTP workers, one at a time, under the device's lock.
void CCamera::SettingsChanged(SettingsTopic topic, const DeviceSettings& settings)
{
    switch (topic)
    {
    case SettingsTopic::Motion:
    case SettingsTopic::Sensors:
    case SettingsTopic::AlarmOuts:
        m_alarms.Configure(settings);
        break;
    case SettingsTopic::Audio:
        m_rtspRestartWanted = m_feed.IsUlaw() != (settings.audioType != 0);
        break;
    default:
        break;
    }
    {
        const std::lock_guard<std::mutex> life(m_mediaLife);
        if (m_media != nullptr)
        {
            m_media->Apply(topic, settings);
        }
    }
    m_feed.ForgetSnapshot();
}

void CCamera::RequestKeyFrames()
{
    RequestKeyFrame(MAIN_STREAM);
    RequestKeyFrame(SUB_STREAM);
}

void CCamera::Reboot()
{
    m_rebootWanted = true;
}

CCamera::Outcome CCamera::RunOnce(int readyFd)
{
    m_rebootWanted = false;
    m_restartMediaAt.reset();
    m_feed.Restart();
    NET_SERVER_Start(m_ports.httpPort, m_webRoot.c_str(), m_settingsFile.c_str());
    StartRtsp();
    Outcome outcome = BringUp(readyFd);
    StopMedia();
    m_recorder.Finish();
    StopRtsp();
    NET_SERVER_Stop();
    return outcome;
}

void CCamera::StartRtsp()
{
    NET_SERVER_RTSPStart(m_ports.rtspPort, m_streams.get(), m_device.get());
    for (unsigned int channel = 1; channel <= m_options.channels; ++channel)
    {
        for (const int stream : {MAIN_STREAM, SUB_STREAM})
        {
            NET_SERVER_SetLiveRTSPUrl(channel, stream, LivePath(channel, stream).c_str());
        }
    }
}

void CCamera::StopRtsp()
{
    m_playbacks.CloseAll();
    NET_SERVER_RTSPStop();
    m_streams->ForgetAll();
}

CCamera::Outcome CCamera::BringUp(int readyFd)
{
    const std::optional<Outcome> end = AwaitMedia();
    if (end.has_value())
    {
        return *end;
    }
    if (!CheckService("HTTP", m_ports.httpPort) || !CheckService("RTSP", m_ports.rtspPort))
    {
        return Outcome::Failed;
    }
    if (!m_readyPrinted)
    {
        m_readyPrinted = PrintReady(readyFd, m_ports.httpPort, m_ports.rtspPort);
        PointToPage(m_ports.httpPort);
    }
    return Serve();
}

CCamera::Outcome CCamera::Serve()
{
    while (!WaitForSignal(TICK))
    {
        if (m_rebootWanted)
        {
            return Outcome::Reboot; // a tick or more after the answer to the client was made
        }
        ActOnServices();
        WatchMedia();
        WatchPictures();
        m_feed.RepeatSnapshot();
        m_playbacks.Sweep();
        WatchClients();
        RepeatKeyFrames();
    }
    return Outcome::Stopped;
}

/// Moves the services to other ports, and starts RTSP anew for another sound: the description of a stream that clients
/// have got holds its code. A tick or more after the answer to the client was made.
void CCamera::ActOnServices()
{
    // In this order: a change of the sound that comes in between is seen here, or in the next tick.
    const bool soundChanges = m_rtspRestartWanted.exchange(false);
    const DeviceSettings settings = m_device->Settings();
    const bool rtspChanges = soundChanges || settings.ports.rtspPort != m_ports.rtspPort;
    if (rtspChanges)
    {
        StopRtsp(); // in front of HTTP, which may get this port
    }
    if (settings.ports.httpPort != m_ports.httpPort)
    {
        m_ports.httpPort = settings.ports.httpPort;
        NET_SERVER_SetHttpPort(m_ports.httpPort);
    }
    if (rtspChanges)
    {
        m_ports.rtspPort = settings.ports.rtspPort;
        m_feed.SetUlaw(settings.audioType != 0);
        StartRtsp();
        RequestKeyFrames();
    }
}

bool CCamera::WaitForSignal(std::chrono::milliseconds limit) const
{
    const timespec wait = {static_cast<time_t>(limit.count() / 1000), (limit.count() % 1000) * 1000000};
    return sigtimedwait(&m_stopSignals, nullptr, &wait) > 0;
}
