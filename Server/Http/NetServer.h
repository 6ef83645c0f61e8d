// NetServer.h: the HTTP port. One connection brings one request, gets one response and is closed (RFC 9112, 9.6).
//
// The socket service's threads bring connections, the pool's workers (two, at most four) serve them, host threads start
// and stop.
#pragma once

#include "Lock.h"
#include "NetSocket.h"
#include "ThreadAnnotations.h"
#include "ThreadPool.h"

#include <atomic>
#include <list>
#include <string>

class CDevInterface;
class CHttpDataPacket;
class CHttpProtocolAnalyse;

class CNetServer : public CListenSocketObserver
{
public:
    /// Silence that a whole message may hold, in all, before the connection is closed without an answer.
    static constexpr unsigned int READ_BUDGET_MS = 3900;

    static CNetServer& Instance();
    ~CNetServer() override = default;

    /// Does nothing. @return 1
    int Initial(unsigned int channels, CDevInterface* dev, unsigned int flags);

    /// Opens the port, after closing the one that is open, and takes the web root. @return 0
    int start(unsigned short port, const char* webRoot, const char* cfgFile);

    /// Closes the port and forgets the connections that no worker has taken yet.
    void Stop();

    int SetHttpPort(unsigned short port); ///< @return 1
    int Quit();                           ///< ends the workers too. @return 1

    /// Waits until no worker is inside a request, and so inside the host. Not for a worker, which is itself in one.
    /// @return false when the time has passed, and at once on a worker
    static bool AwaitRequests(unsigned int limitMs);

    void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override;

private:
    CNetServer();

    void Listen(unsigned short port);
    static void LinkProc(void* server);
    void LinkProc();
    static void Serve(int handle);
    static bool GetAcceptHttp(int handle, CHttpDataPacket& packet);
    static int ReplyExecute(int handle, const CHttpProtocolAnalyse& response);
    static void GetLinkIP(int handle, std::string& ip);

    CThreadPool m_pool;
    std::atomic<unsigned int> m_port{0}; ///< 0 while not listening

    CLock m_lock; ///< never held together with the pool's
    std::list<int> m_pending GUARDED_BY(m_lock);
};
