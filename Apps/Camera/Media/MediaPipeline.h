// MediaPipeline.h: one run of the camera's media: a source, the work on its pictures, an encoder for each stream, and
// sound.
//
// Built, started and destroyed on the main thread. GStreamer's threads carry pictures and sound. The rest may be called
// on any thread while the object lives.
#pragma once

#include "AudioChunker.h"
#include "CameraStreams.h"
#include "FileLoop.h"
#include "FrameSink.h"
#include "GstHandles.h"
#include "PictureWork.h"
#include "SettingsStore.h"
#include "SnapshotEncoder.h"
#include "StreamEncoder.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

class CMediaPipeline
{
public:
    /// What the pipeline works with; borrowed for its life.
    struct Parts
    {
        CFrameSink& sink;
        CPictureWork& work;
        /// Called with each picture, on the media thread.
        std::function<void(bool moving)> onPicture;
    };

    CMediaPipeline(const CameraOptions& options, Parts parts);

    /// Stops; no frame is delivered any more once it returns.
    ~CMediaPipeline();

    /// @param problem  receives why not
    bool Start(const DeviceSettings& settings, std::string& problem);

    /// Whether it still runs. @param problem  receives why not
    bool IsRunning(std::string& problem);

    /// Takes over what concerns pictures. A stream with other settings goes on with a key frame.
    void Apply(SettingsTopic topic, const DeviceSettings& settings);

    /// Encodes a stream or lets it rest. A stream that wakes up begins with a key frame.
    void SetWanted(int stream, bool wanted);

    /// The next frame of the stream shall be a key frame.
    void RequestKeyFrame(int stream);

private:
    static GstFlowReturn OnPicture(GstAppSink* source, gpointer self);
    static GstFlowReturn OnSound(GstAppSink* source, gpointer self);
    static void OnRemotePad(GstElement* remote, GstPad* pad, gpointer self);
    static void OnRemoteComplete(GstElement* remote, gpointer self);

    bool Build(bool fileHasSound, std::string& problem);
    bool BuildEncoders(const DeviceSettings& settings, std::string& problem);
    void ConnectWork();
    void ConnectSource();
    void LinkSilence();
    void ApplyImage(const NETNS::DEV_IMAGE_PARAM& image);
    void ApplyOsd(const DeviceSettings& settings);
    void ApplyProfile(int stream, const NETNS::DEV_VIDEO_PROFILE& profile);
    void Distribute(GstSample* sample);
    GstElementPtr Child(const std::string& name) const;

    const CameraOptions m_options;
    const Parts m_parts;
    const GstCapsPtr m_pictureCaps;
    CSnapshotEncoder m_snapshots; // the media thread
    CAudioChunker m_chunker;      // the sound thread
    GstElementPtr m_pipeline;
    GstBusPtr m_bus;
    GstElementPtr m_picturesIn;
    GstElementPtr m_soundIn;
    std::atomic<bool> m_remoteHasSound{false};

    std::mutex m_encoderLock; // held while a picture is handed out, which waits for nothing
    std::unique_ptr<CStreamEncoder> m_encoders[STREAM_COUNT];
    NETNS::DEV_VIDEO_PROFILE m_profiles[STREAM_COUNT] = {};

    std::unique_ptr<CFileLoop> m_file;
};
