// SnapshotEncoder.h: makes JPEG pictures of some of the camera's pictures.
//
// The library takes a picture when a client asks for one and tells the host nothing of it. So a picture is made several
// times a second, whether anybody wants it or not: that is what a snapshot waits for. Pictures come on the media
// thread.
#pragma once

#include "AppPipeline.h"
#include "FrameSink.h"

#include <string>

class CSnapshotEncoder
{
public:
    /// @param sink  borrowed for the life of the encoder
    explicit CSnapshotEncoder(CFrameSink& sink) : m_sink(sink) {}

    /// @param picture  caps of the pictures that will come, borrowed for the call
    /// @param problem  receives why it does not start
    bool Start(GstCaps* picture, std::string& problem);

    /// @param picture  its time is nanoseconds of the monotonic clock; borrowed
    void Put(GstBuffer* picture);

private:
    void Deliver(GstSample* sample);

    CFrameSink& m_sink;
    GstClockTime m_next = 0;
    CAppPipeline m_pipeline; // last: its thread uses the above
};
