// RTSP_SockScheduler.h: the one thread that drives every socket of the RTSP server.
//
// A round: time-outs, the sets of interest, one wait of at most 60 ms, the callbacks. The wait ends early when a frame
// is queued (WakeUp). Only the scheduler thread touches the table while it runs, so there is no lock; WakeUp() alone
// may be called from any thread.
#pragma once

#include "RTSP_SockHandler.h"

#include <atomic>
#include <map>
#include <memory>
#include <poll.h>
#include <vector>

/// One registered socket.
struct HANDLER_INFO
{
    CRTSP_SockHandler* handler = nullptr;
    int iRecvTimeOut = -1;         ///< ms, -1 none; also of SOCK_HANDLER_ACCEPT
    int iSendTimeOut = -1;         ///< ms, -1 none; also of SOCK_HANDLER_CONNECTED
    unsigned int lastRecvTick = 0; ///< last receive activity
    unsigned int lastSendTick = 0; ///< last send activity
    int iHandlerMask = 0;          ///< SOCK_HANDLER_* bits: 1, 2, 4, 6 or 8
};

class CRTSP_SockScheduler
{
public:
    static constexpr int MAX_WAIT_MS = 60;

    static CRTSP_SockScheduler& Instance();

    CRTSP_SockScheduler();
    ~CRTSP_SockScheduler();
    CRTSP_SockScheduler(const CRTSP_SockScheduler&) = delete;
    CRTSP_SockScheduler& operator=(const CRTSP_SockScheduler&) = delete;

    /// Registers an interest; a further one for the same socket is added to its entry and keeps the entry's handler.
    /// @param iType     one SOCK_HANDLER_* bit
    /// @param iTimeOut  ms without activity after which HandleTimeOut is called; -1 none, 0 in the next round
    /// @return 0
    int AddSockHandler(int iType, int iSock, CRTSP_SockHandler* handler, int iTimeOut);

    /// Removes one interest, which must be registered. @return 0; -1 when the socket has no entry
    int DelSockHandler(int iType, int iSock);

    /// Removes a socket. @return 0; -1 when it has no entry
    int DelSockHandler(int iSock);

    /// Calls HandleWait of a handler in every round until DelWaiter, with a round at `dueTick` at the latest; called
    /// again it moves the time.
    void AddWaiter(CRTSP_SockHandler* handler, unsigned int dueTick);
    void DelWaiter(CRTSP_SockHandler* handler);

    /// Starts the thread; a failure is logged. @return 0
    int Start_RTSP_SockScheduler();

    /// Ends the thread and waits for it; the table is empty afterwards, the handlers live on. @return 0
    int Stop_RTSP_SockScheduler();

    /// Ends the present wait, or the next one. Any thread; cheap when a wake-up is already on its way.
    void WakeUp();

    /// One round of the loop, which the thread repeats. Called directly only while no thread runs.
    void RunRound();

private:
    enum READY : unsigned char
    {
        READY_READ = 1,
        READY_WRITE = 2,
    };

    /// What HandleTimeOut is called with, 0 for nothing. A handler is told 2 for a silent peer or a send that does not
    /// move, 1 for ACCEPT and CONNECTED.
    static int CheckTimeOut(unsigned int now, const HANDLER_INFO& info);

    static void ThreadProc(void* scheduler);
    void Loop();
    void PassTimeOuts(unsigned int now);
    void PassWaiters(unsigned int now);
    void BuildSets(unsigned int now);
    int WaitMs(unsigned int now) const;
    bool Wait(unsigned int now);
    void Dispatch(unsigned int now);
    bool DispatchSend(int sock, HANDLER_INFO& info, unsigned int now);
    bool DispatchRecv(int sock, HANDLER_INFO& info, unsigned int now);
    bool TakeReady(int sock, READY which);
    void Clear();

    std::map<int, std::unique_ptr<HANDLER_INFO>> m_handlers; ///< by socket
    std::vector<pollfd> m_pollSet;                           ///< what the next wait watches; the wake-up comes first
    std::vector<unsigned char> m_ready;                      ///< READY bits by socket
    std::map<CRTSP_SockHandler*, unsigned int> m_waiters;    ///< with the tick of each
    unsigned int m_thread = 0;                               ///< handle of the thread service
    std::atomic<bool> m_running{false};
    int m_wakeUp = -1; ///< eventfd
    std::atomic<bool> m_wakeUpPending{false};
};
