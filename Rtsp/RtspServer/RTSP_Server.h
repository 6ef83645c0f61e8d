// RTSP_Server.h: the RTSP port, the sessions on it, and the UDP ports for RTP and RTCP.
//
// Scheduler thread only, except before it starts and after it has ended.
#pragma once

#include "RTSP_SockHandler.h"
#include "RTSP_StreamCfg.h"

#include <list>

class CRTSP_ClientSession;
class CRTSP_RTCPLink;
class CRTSP_RTPLink;

class CRTSP_Server : public CRTSP_SockHandler
{
public:
    static constexpr unsigned short FIRST_UDP_PORT = 20000;
    static constexpr unsigned short LAST_UDP_PORT = 49999;
    static constexpr int SOCKET_BUFFER_BYTES = 0x20000; ///< SO_SNDBUF and SO_RCVBUF of clients, SO_SNDBUF of links

    static CRTSP_Server* Create_RTSP_Server(CRTSP_SockScheduler& scheduler, const char* unused);

    /// @return 0; -1 when the port cannot be had
    int Start_RTSP_Server(unsigned short port);
    int Stop_RTSP_Server();         ///< ends every session and closes the port. @return 0
    unsigned short GetPort() const; ///< 0 while not started

    std::size_t SessionCount() const { return m_sessionList.size(); }

    int HandleAccept() override;
    int HandleRecv() override;
    bool HasDataToSend() override;
    int HandleSend() override;
    int HandleConnected() override;
    int HandleTimeOut(int iTypeMask) override;
    void Fail() override; ///< the port stays open: the next connection may find memory
    void CloseSocket() override;
    int HandleWait(unsigned int now) override; ///< a failed accept is a while ago

    /// @return the first session whose GET carried this tunnel cookie, null when there is none or the cookie is empty
    /// @param asking  never the result
    CRTSP_ClientSession* GetClientSession(const char* cookie, const CRTSP_ClientSession* asking);

    /// Detaches the first session whose POST carried this tunnel cookie. @return 0; -1 when there is none
    int GetPostSession(const char* cookie);

    /// Detaches every session whose requests run on this one, which is about to go.
    void DetachFrom(const CRTSP_ClientSession* session);

    /// A session is about to go.
    void CRTSP_Erase(CRTSP_ClientSession* session);

    int GetPasswordByUser(); ///< not used. @return 0

    /// A pair of UDP sockets with their links, for one track of one client.
    /// @param unicast   1; 0 joins the multicast group `address` instead
    /// @param address   where the packets go, dotted text
    /// @param rtpPort, rtcpPort  the client's ports
    /// @return 0; -1 with both outputs null
    int Create_RTP_RTCP_Link_UDP(CRTSP_ClientSession* session, int unicast, CRTSP_RTCPLink** ppRTCPLnk,
                                 CRTSP_RTPLink** ppRTPLnk, const char* address, unsigned short rtpPort,
                                 unsigned short rtcpPort, const RTSP_STREAM_CFG* config);

    /// @return a bound UDP socket; -1
    int Create_A_Valid_Sock(int unicast, const char* address, unsigned short port);

    unsigned short NextPort() const { return m_nextPort; }
    void IncreasePort(); ///< from LAST_UDP_PORT on to FIRST_UDP_PORT

private:
    explicit CRTSP_Server(CRTSP_SockScheduler& scheduler);
    ~CRTSP_Server() override = default;

    bool AcceptOne();
    void Rest();
    int BindUnicast(int sock);
    int JoinMulticast(int sock, const char* group, unsigned short port);

    bool m_started = false;
    bool m_stopping = false;
    unsigned int m_restEnd = 0;    ///< tick, while it is one of the scheduler's waiters
    char m_localAddress[128] = {}; ///< handed to every session; stays empty
    std::list<CRTSP_ClientSession*> m_sessionList;
    unsigned short m_nextPort = FIRST_UDP_PORT;
};
