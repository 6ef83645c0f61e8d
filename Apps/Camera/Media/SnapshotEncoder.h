// SnapshotEncoder.h: makes JPEG pictures of some of the camera's pictures.
//
// The library takes a picture when a client asks for one and tells the host nothing of it. So a picture is made several
// times a second, whether anybody wants it or not: that is what a snapshot waits for.
#pragma once

#include "FrameSink.h"
#include "GstHandles.h"

#include <cstdint>
#include <memory>
#include <string>

class CSnapshotEncoder
{
public:
    /// @param picture  caps of the pictures that will come, borrowed for the call
    /// @param sink     borrowed for the life of the encoder
    /// @return null when it cannot be set up; `problem` says why
    static std::unique_ptr<CSnapshotEncoder> Make(GstCaps* picture, CFrameSink& sink, std::string& problem);
    ~CSnapshotEncoder();

    /// @param picture  its time is nanoseconds of the monotonic clock; borrowed
    void Put(GstBuffer* picture);

private:
    explicit CSnapshotEncoder(CFrameSink& sink) : m_sink(sink) {}

    static GstFlowReturn OnPicture(GstAppSink* source, gpointer self);

    CFrameSink& m_sink;
    GstElementPtr m_pipeline;
    GstElementPtr m_input;
    GstClockTime m_next = 0; // the media thread
};
