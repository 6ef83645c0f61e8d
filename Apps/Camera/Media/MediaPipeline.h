// MediaPipeline.h: one run of the camera's media: a source, an encoder for each stream, and sound.
//
// Built, started and destroyed on the main thread. GStreamer's threads carry the frames. SetWanted and RequestKeyFrame
// may be called on any thread while the object lives.
#pragma once

#include "AnnexB.h"
#include "AudioChunker.h"
#include "CameraStreams.h"
#include "FileLoop.h"
#include "FrameSink.h"
#include "GstHandles.h"
#include "KeyFrameRequests.h"

#include <atomic>
#include <memory>
#include <string>

class CMediaPipeline
{
public:
    /// @param sink  borrowed for the life of the pipeline
    CMediaPipeline(const CameraOptions& options, CFrameSink& sink);

    /// Stops; no frame is delivered any more once it returns.
    ~CMediaPipeline();

    /// @param problem  receives why not
    bool Start(std::string& problem);

    /// Whether it still runs. @param problem  receives why not
    bool IsRunning(std::string& problem);

    /// Encodes a stream or lets it rest. A stream that wakes up begins with a key frame.
    void SetWanted(int stream, bool wanted);

    /// The next frame of the stream shall be a key frame.
    void RequestKeyFrame(int stream);

private:
    struct Stream
    {
        CMediaPipeline* pipeline = nullptr;
        int index = 0;
        GstElementPtr gate;
        GstElementPtr encoder;
        CAnnexBNormaliser normaliser; // the stream's own thread
        bool refusalReported = false; // the stream's own thread
        CKeyFrameRequests keyFrames;
        std::atomic<bool> wanted{true};
    };

    static GstFlowReturn OnVideo(GstAppSink* source, gpointer stream);
    static GstFlowReturn OnSound(GstAppSink* source, gpointer self);
    static void OnRemotePad(GstElement* remote, GstPad* pad, gpointer self);
    static void OnRemoteComplete(GstElement* remote, gpointer self);

    void DeliverVideo(Stream& stream, GstSample* sample);
    bool Build(bool fileHasSound, std::string& problem);
    void ConnectStream(int index);
    void ConnectSound();
    void ConnectSource();
    void LinkSilence();
    GstElementPtr Child(const std::string& name) const;

    const CameraOptions m_options;
    CFrameSink& m_sink;
    CAudioChunker m_chunker; // the sound thread
    GstElementPtr m_pipeline;
    GstBusPtr m_bus;
    Stream m_streams[STREAM_COUNT];
    GstElementPtr m_picturesIn;
    GstElementPtr m_soundIn;
    std::atomic<bool> m_remoteHasSound{false};
    std::unique_ptr<CFileLoop> m_file;
};
