// StreamingMode.h: how the RTP packets of a track travel.
#pragma once

enum StreamingMode
{
    STREAMING_NONE = 0, ///< not chosen
    STREAMING_UDP = 1,  ///< RTP over UDP
    STREAMING_TCP = 2,  ///< interleaved on the RTSP connection (RFC 2326, 10.12)
};
