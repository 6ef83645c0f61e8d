// StreamEncoder.h: encodes the camera's pictures into one H.264 stream with the settings of a profile.
//
// Other settings take another object. Built and destroyed by whoever changes them; pictures come on the media thread;
// SetWanted and RequestKeyFrame may be called on any thread.
#pragma once

#include "AnnexB.h"
#include "DevInterface.h"
#include "FrameSink.h"
#include "GstHandles.h"
#include "KeyFrameRequests.h"

#include <atomic>
#include <memory>
#include <string>

class CStreamEncoder
{
public:
    /// @param picture  caps of the pictures that will come, borrowed for the call
    /// @param sink     borrowed for the life of the encoder
    /// @return null when the encoder cannot be set up; `problem` says why
    static std::unique_ptr<CStreamEncoder> Make(int stream, const NETNS::DEV_VIDEO_PROFILE& profile, GstCaps* picture,
                                                CFrameSink& sink, std::string& problem);

    /// Stops; no frame is delivered any more once it returns.
    ~CStreamEncoder();

    /// @param picture  its time is nanoseconds of the monotonic clock; borrowed
    void Put(GstBuffer* picture);

    /// Encodes or lets the encoder rest. One that wakes up begins with a key frame.
    void SetWanted(bool wanted);
    bool IsWanted() const { return m_wanted; }

    /// The next frame shall be a key frame.
    void RequestKeyFrame();

private:
    CStreamEncoder(int stream, CFrameSink& sink) : m_stream(stream), m_sink(sink) {}

    static GstFlowReturn OnFrame(GstAppSink* source, gpointer self);
    void Deliver(GstSample* sample);

    const int m_stream;
    CFrameSink& m_sink;
    GstElementPtr m_pipeline;
    GstElementPtr m_input;
    GstElementPtr m_encoder;
    CKeyFrameRequests m_keyFrames;
    std::atomic<bool> m_wanted{true};
    CAnnexBNormaliser m_normaliser; // the encoder's own thread
    bool m_refusalReported = false; // the encoder's own thread
};
