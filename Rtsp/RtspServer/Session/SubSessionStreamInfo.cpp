#include "SubSessionStreamInfo.h"

#include "PFAssert.h"
#include "RTSP_DataManager.h"
#include "RTSP_RTCPLink.h"
#include "RTSP_RTPLink.h"

SUB_SESSION_STREAM_INFO::SUB_SESSION_STREAM_INFO(const RTSP_STREAM_CFG* cfg, StreamingMode streamingMode)
    : config(*cfg), mode(streamingMode)
{
    PF_ASSERT(mode == STREAMING_UDP || mode == STREAMING_TCP);
}

SUB_SESSION_STREAM_INFO::~SUB_SESSION_STREAM_INFO()
{
    if (rtcpLink != nullptr)
        rtcpLink->Destroy();
    if (rtpLink != nullptr)
        rtpLink->Destroy();
    if (tcp.list != nullptr)
        CRTSP_DataManager::Instance().DelSharedDataList(tcp.list);
    for (SENDING_COMMON_DATA& packet : tcp.packets)
        delete[] packet.data;
}
