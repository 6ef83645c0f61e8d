// SubSessionStreamInfo.h: one track that a session has set up, and the way its packets travel. Scheduler thread only.
#pragma once

#include "RTSP_RTPPackUp.h"
#include "RTSP_StreamCfg.h"
#include "SendingCommonData.h"
#include "StreamingMode.h"

#include <list>
#include <memory>

class CRTSP_RTCPLink;
class CRTSP_RTPLink;
class CSharedDataList;

/// A track on the RTSP connection itself (RFC 2326, 10.12).
struct RTP_RTCP_LINK_TCP_OVER_RTSP_OBJ
{
    int rtpChannel = -1;
    int rtcpChannel = -1;
    CSharedDataList* list = nullptr; ///< while playing
    std::unique_ptr<CRTSP_RTPPackUp> packUp;
    std::list<SENDING_COMMON_DATA> packets; ///< ready to go, in order
};

struct SUB_SESSION_STREAM_INFO
{
    /// @param mode  STREAMING_UDP or STREAMING_TCP
    SUB_SESSION_STREAM_INFO(const RTSP_STREAM_CFG* cfg, StreamingMode streamingMode);
    ~SUB_SESSION_STREAM_INFO(); ///< ends both links, RTCP first, or removes the list
    SUB_SESSION_STREAM_INFO(const SUB_SESSION_STREAM_INFO&) = delete;
    SUB_SESSION_STREAM_INFO& operator=(const SUB_SESSION_STREAM_INFO&) = delete;

    const RTSP_STREAM_CFG config; ///< as it was at SETUP; a later DESCRIBE does not change it
    const StreamingMode mode;

    // Mode STREAMING_UDP.
    CRTSP_RTCPLink* rtcpLink = nullptr;
    CRTSP_RTPLink* rtpLink = nullptr;

    // Mode STREAMING_TCP.
    RTP_RTCP_LINK_TCP_OVER_RTSP_OBJ tcp;
};
