// TalkSink.h: where the speech of clients goes.
#pragma once

#include <cstddef>
#include <cstdint>

/// Called on the RTSP scheduler thread: returns at once.
class CTalkSink
{
public:
    virtual ~CTalkSink() = default;

    /// @param samples  8000 a second, one channel; borrowed for the call
    virtual void Put(const std::int16_t* samples, std::size_t count) = 0;

    /// A client has ended: what it said is complete.
    virtual void Flush() = 0;
};
