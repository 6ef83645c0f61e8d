#include "RTSP_ClientSession.h"

#include "NC_Socket.h"
#include "PFAssert.h"
#include "RTSP_Console.h"
#include "RTSP_DataManager.h"
#include "RTSP_RTCPLink.h"
#include "RTSP_RTPLink.h"
#include "RTSP_Server.h"
#include "RTSP_SockScheduler.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

CRTSP_ClientSession* CRTSP_ClientSession::Create_RTSP_ClientSession(CRTSP_SockScheduler& scheduler,
                                                                    CRTSP_Server& server, int sock,
                                                                    const char* localAddress)
{
    return new CRTSP_ClientSession(scheduler, server, sock, localAddress);
}

CRTSP_ClientSession::CRTSP_ClientSession(CRTSP_SockScheduler& scheduler, CRTSP_Server& server, int sock,
                                         const char* /*localAddress*/)
    : CRTSP_SockHandler(scheduler, sock), m_server(server), m_policy(CPolicy::Current())
{
    // A frame's last packet must not wait for the acknowledgement of those in front of it.
    const int on = 1;
    setsockopt(m_sock, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    m_scheduler.AddSockHandler(SOCK_HANDLER_RECV, m_sock, this, RECV_TIMEOUT_MS);
    m_scheduler.AddSockHandler(SOCK_HANDLER_SEND, m_sock, this, SEND_TIMEOUT_MS);
    GetPeerName(m_peerAddress, nullptr);
}

CRTSP_ClientSession::~CRTSP_ClientSession()
{
    m_scheduler.DelWaiter(this);
    for (auto& [type, track] : m_subSessionStreamMap)
    {
        if (track->rtpLink != nullptr)
            track->rtpLink->CRTSP_Erase(this);
        if (track->rtcpLink != nullptr)
            track->rtcpLink->CRTSP_Erase(this);
    }
    m_subSessionStreamMap.clear();
    delete[] m_pending.data;
    for (SENDING_COMMON_DATA& command : m_commands)
        delete[] command.data;
    if (m_cookie[0] != '\0')
        m_server.GetPostSession(m_cookie);
    m_server.DetachFrom(this);
    m_server.CRTSP_Erase(this);
}

void CRTSP_ClientSession::Destroy()
{
    if (m_state == STATE_PLAYING)
        StopTracks();
    if (m_sock != -1)
    {
        m_scheduler.DelSockHandler(m_sock);
        CloseSocket();
    }
    if (m_talkback)
    {
        m_talkback = false;
        CRTSP_DataManager::Instance().CloseTalkBackStream(m_talkbackHandle);
    }
    delete this;
}

void CRTSP_ClientSession::CloseSocket()
{
    NC_Shutdown(m_sock, SHUT_RDWR);
    NC_CloseSocket(m_sock);
}

int CRTSP_ClientSession::HandleAccept()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_ClientSession::HandleConnected()
{
    PF_ASSERT(false);
    return HANDLER_NOTHING;
}

int CRTSP_ClientSession::HandleTimeOut(int iTypeMask)
{
    PF_ASSERT((iTypeMask == SOCK_HANDLER_RECV) || (iTypeMask == SOCK_HANDLER_SEND) ||
              (iTypeMask == (SOCK_HANDLER_RECV | SOCK_HANDLER_SEND)));
    RTSP_ConsoleLine("rtsp session time out, sock = %d\n", m_sock);
    Destroy();
    return HANDLER_GONE;
}

void CRTSP_ClientSession::StopTracks()
{
    for (auto& [type, track] : m_subSessionStreamMap)
        RTP_RTCP_Stop(*track);
}

void CRTSP_ClientSession::RTP_RTCP_Start(SUB_SESSION_STREAM_INFO& track)
{
    constexpr int MAX_AGE_MS = 2000;
    // PLAY after a further SETUP comes here again for the tracks that play already: those go on.
    const bool playing = track.mode == STREAMING_TCP && track.tcp.list != nullptr;
    if (playing)
        return;
    const RefusalRule rule = m_policy.StandardRtsp() ? REFUSAL_PASSES : REFUSAL_ENDS_WALK;
    CSharedDataList* list = CRTSP_DataManager::Instance().CreateSharedDataList(
        m_id, m_streamIndex, track.config.frameType, -1, MAX_AGE_MS, rule);
    if (track.mode == STREAMING_TCP)
    {
        track.tcp.list = list;
        return;
    }
    track.rtpLink->RTSP_RTPLink_Start(list, track.rtcpLink);
    track.rtcpLink->RTSP_RTCPLink_Start(track.rtpLink);
}

void CRTSP_ClientSession::RTP_RTCP_Stop(SUB_SESSION_STREAM_INFO& track)
{
    if (track.mode == STREAMING_UDP)
    {
        track.rtpLink->RTSP_RTPLink_Stop();
        track.rtcpLink->RTSP_RTCPLink_Stop();
        return;
    }
    if (track.tcp.list != nullptr)
        CRTSP_DataManager::Instance().DelSharedDataList(track.tcp.list);
    track.tcp.list = nullptr;
}
