// StreamEncoder.h: encodes the camera's pictures into one H.264 stream with the settings of a profile.
//
// Other settings take another object. Built and destroyed by whoever changes them; pictures come on the media thread;
// SetWanted and RequestKeyFrame may be called on any thread.
#pragma once

#include "AnnexB.h"
#include "AppPipeline.h"
#include "DevInterface.h"
#include "FrameSink.h"
#include "KeyFrameRequests.h"

#include <atomic>
#include <string>

class CStreamEncoder
{
public:
    /// @param sink  borrowed for the life of the encoder
    CStreamEncoder(int stream, CFrameSink& sink) : m_stream(stream), m_sink(sink) {}

    /// @param picture  caps of the pictures that will come, borrowed for the call
    /// @param problem  receives why it does not start
    bool Start(const NETNS::DEV_VIDEO_PROFILE& profile, GstCaps* picture, std::string& problem);

    /// @param picture  its time is nanoseconds of the monotonic clock; borrowed
    void Put(GstBuffer* picture);

    /// Encodes or lets the encoder rest. One that wakes up begins with a key frame.
    void SetWanted(bool wanted);
    bool IsWanted() const { return m_wanted; }

    /// The next frame shall be a key frame.
    void RequestKeyFrame();

private:
    void Deliver(GstSample* sample);

    const int m_stream;
    CFrameSink& m_sink;
    GstElementPtr m_encoder;
    CKeyFrameRequests m_keyFrames;
    std::atomic<bool> m_wanted{true};
    CAnnexBNormaliser m_normaliser; // the encoder's own thread
    bool m_refusalReported = false; // the encoder's own thread
    CAppPipeline m_pipeline;        // last: its thread uses the above
};
