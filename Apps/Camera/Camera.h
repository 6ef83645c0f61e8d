// Camera.h: the camera as a whole: its media, the library that serves them, and their start and stop.
//
// Main thread, apart from what the library's threads ask of the device and the streams, and the effects of that here.
#pragma once

#include "AlarmBoard.h"
#include "AlarmReporter.h"
#include "CameraDevice.h"
#include "CameraStreams.h"
#include "CameraUsers.h"
#include "ClientWatch.h"
#include "FrameFork.h"
#include "LiveFeed.h"
#include "MediaPipeline.h"
#include "PictureWork.h"
#include "Playback.h"
#include "PtzHead.h"
#include "RecordIndex.h"
#include "Recorder.h"
#include "SettingsStore.h"
#include "TalkSink.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <signal.h>

class CCamera : private CDeviceEffects
{
public:
    /// @param stopSignals  the signals that end Run; blocked in every thread
    CCamera(const CameraOptions& options, const sigset_t& stopSignals);
    ~CCamera() override;

    /// Serves until one of the signals comes.
    /// @param readyFd  file descriptor that gets the line "ready http=PORT rtsp=PORT" once everything serves
    /// @return the exit status: 0 after a signal, 1 when the camera could not be brought up
    int Run(int readyFd);

private:
    using Clock = std::chrono::steady_clock;

    enum class Outcome
    {
        Stopped,
        Reboot,
        Failed,
    };

    void SettingsChanged(SettingsTopic topic, const DeviceSettings& settings) override;
    void RequestKeyFrames() override;
    void Reboot() override;

    bool Prepare();
    bool OpenStore(std::string& problem);
    bool OpenTalk(std::string& problem);
    void BuildDevice();
    Outcome RunOnce(int readyFd);
    Outcome BringUp(int readyFd);
    std::optional<Outcome> AwaitMedia();
    Outcome Serve();
    void StartRtsp();
    void StopRtsp();
    void ActOnServices();
    void WatchMedia();
    void WatchPictures();
    void WatchClients();
    void RepeatKeyFrames();
    bool StartMedia(std::string& problem);
    bool IsMediaRunning(std::string& problem);
    void StopMedia();
    void OnOpen(int stream);
    void OnPicture(bool moving);
    void RequestKeyFrame(int stream);
    bool WaitForSignal(std::chrono::milliseconds limit) const;

    const CameraOptions m_options;
    const sigset_t m_stopSignals;
    const std::string m_dataDirectory;
    const std::string m_settingsFile;
    const std::string m_webRoot;

    // In the order in which they need one another.
    CSettingsStore m_store;
    CRecordIndex m_records;
    CCameraUsers m_users;
    CPtzHead m_head;
    CPictureWork m_work{m_head};
    CAlarmReporter m_reporter;
    CAlarmBoard m_alarms;
    CPlaybacks m_playbacks;
    CLiveFeed m_feed;
    CRecorder m_recorder;
    CFrameFork m_feedAndRecorder{m_feed, m_recorder};
    std::unique_ptr<CTalkSink> m_talk;
    std::unique_ptr<CCameraStreams> m_streams;
    std::unique_ptr<CClientWatch> m_clients;

    // The library's threads ask for key frames and change settings while the main thread replaces the pipeline, which
    // takes both locks. A change of settings, which may set up an encoder anew, holds the first one alone: the RTSP
    // scheduler, which takes the second one, does not wait for it. Order: the device's lock, the first, the second.
    std::mutex m_mediaLife;
    std::mutex m_mediaLock;
    std::unique_ptr<CMediaPipeline> m_media; // null while there is none

    NETNS::DEV_PORT_INFO m_ports = {}; // that are served
    std::string m_rtspPortText;        // as web pages have it
    std::atomic<bool> m_rebootWanted{false};
    std::atomic<bool> m_rtspRestartWanted{false};
    std::atomic<std::uint64_t> m_lastPictureUs{0};
    std::atomic<Clock::rep> m_lastOpen[STREAM_COUNT] = {}; // 0: no key frame is owed
    std::optional<Clock::time_point> m_restartMediaAt;
    Clock::time_point m_nextClientWatch{};
    bool m_readyPrinted = false;

    std::unique_ptr<CCameraDevice> m_device; // last: it uses all of the above
};
