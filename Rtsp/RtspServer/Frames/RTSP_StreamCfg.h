// RTSP_StreamCfg.h: what a session must know of a stream to send it.
#pragma once

#include "NetTypes.h"

#include <string>

/// One track. All zero until a DESCRIBE filled it.
struct RTSP_STREAM_CFG
{
    NETNS::RTSP_FRAME_TYPE frameType = NETNS::RTSP_FRAME_VIDEO;
    NETNS::RTSP_ENCODE_TYPE encodeType = NETNS::RTSP_ENCODE_H264;
    unsigned char payloadType = 0;
    unsigned int clockRate = 0; ///< RTP clock, Hz
    // Nothing writes these three: there is no multicast group to announce.
    int linkTimeOutMs = 0;
    unsigned int multicastAddress = 0; ///< network order
    int ttl = 0;
};

/// The two tracks of a session.
struct RTSP_PROFILE_CFG
{
    RTSP_STREAM_CFG video;
    RTSP_STREAM_CFG audio;
};

/// A registered URL.
struct RTSP_URL_CHN_EX
{
    unsigned int chn;
    int stream;
    std::string url;
};
