// RTSP_SockHandler.h: the owner of one socket of the RTSP server, called back by the scheduler.
//
// Scheduler thread only, except before it starts and after it has ended.
#pragma once

class CRTSP_SockScheduler;

/// Interests of a handler.
enum SOCK_HANDLER_MASK : int
{
    SOCK_HANDLER_ACCEPT = 1,
    SOCK_HANDLER_RECV = 2,
    SOCK_HANDLER_SEND = 4,
    SOCK_HANDLER_CONNECTED = 8,
};

/// Results of HandleSend and HandleRecv.
enum HANDLER_RESULT : int
{
    HANDLER_GONE = -1,       ///< the handler may be gone, other handlers too
    HANDLER_NOTHING = 0,     ///< nothing to do
    HANDLER_WOULD_BLOCK = 1, ///< nothing could be moved
    HANDLER_PROGRESS = 2,
    HANDLER_PARTIAL = 3, ///< a part of a packet went out
};

class CRTSP_SockHandler
{
public:
    /// @param sock  owned from here on; closed by CloseSocket()
    CRTSP_SockHandler(CRTSP_SockScheduler& scheduler, int sock) : m_scheduler(scheduler), m_sock(sock) {}
    CRTSP_SockHandler(const CRTSP_SockHandler&) = delete;
    CRTSP_SockHandler& operator=(const CRTSP_SockHandler&) = delete;

    /// Ends the handler: leaves the scheduler, closes the socket, deletes the object. Every handler ends through this
    /// call; from a callback the caller then returns HANDLER_GONE and touches nothing more.
    virtual void Destroy();

    virtual int HandleAccept() = 0;
    virtual int HandleRecv() = 0;     ///< @return HANDLER_GONE, or anything else
    virtual bool HasDataToSend() = 0; ///< asked before each wait of a handler with SOCK_HANDLER_SEND
    virtual int HandleSend() = 0;     ///< @return a HANDLER_RESULT
    virtual int HandleConnected() = 0;
    virtual int HandleTimeOut(int iTypeMask) = 0;

protected:
    virtual ~CRTSP_SockHandler() = default;

public:
    virtual void CloseSocket() = 0;

    /// Called in every round while the handler is one of the scheduler's waiters.
    /// @return HANDLER_GONE when the handler or any other may be gone
    virtual int HandleWait(unsigned int now);

    /// A callback ran out of memory: ends the handler, or whoever owns it.
    virtual void Fail();

    int GetSockName(int* ip, unsigned short* port) const;
    int GetSockName(char* ipText, unsigned short* port) const;
    int GetPeerName(int* ip, unsigned short* port) const;
    int GetPeerName(char* ipText, unsigned short* port) const;

protected:
    CRTSP_SockScheduler& m_scheduler;
    int m_sock; ///< -1 when closed
};
