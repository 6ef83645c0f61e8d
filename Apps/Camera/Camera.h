// Camera.h: the camera as a whole: its media, the library that serves them, and their start and stop.
//
// Main thread only, apart from what the library's threads ask of the device and the streams.
#pragma once

#include "CameraDevice.h"
#include "CameraStreams.h"
#include "CameraUsers.h"
#include "LiveFeed.h"
#include "MediaPipeline.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include <signal.h>

class CCamera
{
public:
    /// @param stopSignals  the signals that end Run; blocked in every thread
    CCamera(const CameraOptions& options, const sigset_t& stopSignals);

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

    bool Prepare();
    Outcome RunOnce(int readyFd);
    Outcome BringUp(int readyFd);
    std::optional<Outcome> AwaitMedia();
    Outcome Serve();
    void WatchMedia();
    void WatchClients();
    void RepeatKeyFrames();
    bool StartMedia(std::string& problem);
    bool IsMediaRunning(std::string& problem);
    void StopMedia();
    void OnOpen(int stream);
    void RequestKeyFrame(int stream);
    bool WaitForSignal(std::chrono::milliseconds limit) const;

    const CameraOptions m_options;
    const sigset_t m_stopSignals;
    const std::string m_dataDirectory;
    const std::string m_settingsFile;
    const std::string m_webRoot;
    const std::string m_rtspPortText; // as the web page has it

    CCameraUsers m_users;
    CCameraStreams m_streams;
    CCameraDevice m_device;
    CLiveFeed m_feed;

    // The library's threads ask for key frames while the main thread replaces the pipeline.
    std::mutex m_mediaLock;
    std::unique_ptr<CMediaPipeline> m_media;

    std::atomic<bool> m_rebootWanted{false};
    std::atomic<Clock::rep> m_lastOpen[STREAM_COUNT] = {}; // 0: no key frame is owed
    std::optional<Clock::time_point> m_restartMediaAt;
    Clock::time_point m_nextClientWatch{};
    bool m_readyPrinted = false;
    bool m_connected = true; // whether the last look found a client
};
