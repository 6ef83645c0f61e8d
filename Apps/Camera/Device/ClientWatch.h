// ClientWatch.h: finds out that all RTSP clients are gone, and closes what they left open.
//
// Main thread, while the RTSP scheduler opens and closes streams.
#pragma once

#include "CameraStreams.h"
#include "Playback.h"

#include <cstdint>
#include <functional>

/// The library closes a stream for a TEARDOWN only, so clients that merely disconnect leave theirs open. Every client
/// holds a connection for as long as it plays: what was opened before two looks that found none is nobody's any more.
class CClientWatch
{
public:
    /// @param streams    borrowed for the watch's life, as the playbacks
    /// @param playbacks  played for clients of the same port
    /// @param count      how many connections the RTSP port has at the moment of the call
    CClientWatch(CCameraStreams& streams, CPlaybacks& playbacks, std::function<unsigned int()> count);

    /// Called every few seconds.
    void Look();

    /// Whether the last look found a client.
    bool IsConnected() const { return m_connected; }

private:
    /// What had been opened at the time of a look.
    struct Opened
    {
        std::uint64_t live;
        unsigned int nextPlayback;
    };

    CCameraStreams& m_streams;
    CPlaybacks& m_playbacks;
    const std::function<unsigned int()> m_count;

    bool m_connected = true; // nothing is closed by the first look
    Opened m_before = {};
};
