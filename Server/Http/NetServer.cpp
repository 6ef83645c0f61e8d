#include "NetServer.h"

#include "HttpDataPacket.h"
#include "HttpExchange.h"
#include "HttpProtocolAnalyse.h"
#include "MyEvent.h"
#include "NetServerConfig.h"
#include "NetServerDataProc.h"
#include "ShareSDK.h"

#include <exception>

namespace
{

constexpr int POOL_THREADS = 2;
constexpr int MAX_POOL_THREADS = 4;
constexpr HTTP_READ_LIMITS READ_LIMITS = {HTTP_READ_BYTES_MAX, CNetServer::READ_BUDGET_MS};

/// The tasks that workers are inside of. Any thread.
class CRunningTasks
{
public:
    static CRunningTasks& Instance()
    {
        // Never destroyed: workers may still be in it when the process ends.
        static CRunningTasks& tasks = *new CRunningTasks;
        return tasks;
    }

    void Begin()
    {
        const CMySingleLock lock(m_lock);
        if (m_count++ == 0)
        {
            m_none.ResetEvent();
        }
        s_isInside = true;
    }
    void End()
    {
        const CMySingleLock lock(m_lock);
        s_isInside = false;
        if (--m_count == 0)
        {
            m_none.SetEvent();
        }
    }
    bool AwaitNone(unsigned int limitMs) const
    {
        return !s_isInside && m_none.WaitEvent(limitMs) == CMyEvent::EVENT_SET;
    }

private:
    CRunningTasks() { m_none.SetEvent(); }

    static thread_local bool s_isInside; ///< the calling thread is a worker in a task

    CLock m_lock; ///< in front of the event's
    int m_count GUARDED_BY(m_lock) = 0;
    CMyEvent m_none{true};
};

thread_local bool CRunningTasks::s_isInside = false;

} // namespace

CNetServer& CNetServer::Instance()
{
    static CNetServer server;
    return server;
}

CNetServer::CNetServer() : m_pool(POOL_THREADS, MAX_POOL_THREADS, true) {}

int CNetServer::Initial(unsigned int /*channels*/, CDevInterface* /*dev*/, unsigned int /*flags*/)
{
    return 1;
}

int CNetServer::start(unsigned short port, const char* webRoot, const char* cfgFile)
{
    if (port == 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    Stop();
    CNetServerCfg::Instance().Initial(cfgFile);
    Listen(port);
    CNetServerDataProc::Instance().Start(webRoot);
    return 0;
}

void CNetServer::Listen(unsigned short port)
{
    m_port = 0;
    if (NET_SOCKET_StartListen(port, this, 0, true))
    {
        // Port 0 leaves the choice to the system; the number is needed to close it again.
        m_port = port != 0 ? port : NET_SOCKET_GetListenPort(this);
    }
}

void CNetServer::Stop()
{
    if (m_port != 0)
    {
        NET_SOCKET_StopListen(static_cast<unsigned short>(m_port.load()));
    }
    m_port = 0;
    const CMySingleLock lock(m_lock);
    m_pending.clear();
}

int CNetServer::SetHttpPort(unsigned short port)
{
    Stop();
    Listen(port);
    return 1;
}

int CNetServer::Quit()
{
    Stop();
    m_pool.Destroy();
    return 1;
}

void CNetServer::OnAcceptCreateSocket(int handle, unsigned short /*port*/, unsigned int /*address*/)
{
    {
        const CMySingleLock lock(m_lock);
        m_pending.push_back(handle);
    }
    m_pool.Run(&CNetServer::LinkProc, this, THREAD_PRIORITY_TAIL);
}

void CNetServer::LinkProc(void* server)
{
    CRunningTasks::Instance().Begin();
    static_cast<CNetServer*>(server)->LinkProc();
    CRunningTasks::Instance().End();
}

bool CNetServer::AwaitRequests(unsigned int limitMs)
{
    return CRunningTasks::Instance().AwaitNone(limitMs);
}

/// A task says only that some connection waits, not which.
void CNetServer::LinkProc()
{
    int handle = 0;
    {
        const CMySingleLock lock(m_lock);
        if (m_pending.empty())
        {
            SHARESDK_NormalOutput(" http request failed !", __FILE__, __LINE__);
            return;
        }
        handle = m_pending.front();
        m_pending.pop_front();
    }
    try
    {
        Serve(handle);
    }
    catch (const std::exception& failure)
    {
        SHARESDK_AbnormalOutput(failure.what(), __FILE__, __LINE__);
        NET_SOCKET_DestroyHNetCommunication(handle);
    }
}

void CNetServer::Serve(int handle)
{
    CHttpDataPacket packet;
    if (!GetAcceptHttp(handle, packet))
    {
        NET_SOCKET_DestroyHNetCommunication(handle);
        return;
    }
    const std::optional<CHttpProtocolAnalyse> request = TakeHttpRequest(packet);
    if (!request.has_value())
    {
        NET_SOCKET_DestroyHNetCommunication(handle);
        return;
    }

    CHttpProtocolAnalyse response;
    std::string ip;
    GetLinkIP(handle, ip);
    CNetServerDataProc::Instance().AnalysisRequest(ip, *request, response);
    ReplyExecute(handle, response);
}

/// @return false when the peer closes, falls silent or never ends its header
bool CNetServer::GetAcceptHttp(int handle, CHttpDataPacket& packet)
{
    return ReadHttpMessage(handle, READ_LIMITS, packet);
}

/// Sends the response and closes. @return 1
int CNetServer::ReplyExecute(int handle, const CHttpProtocolAnalyse& response)
{
    SendHttpMessageAndEnd(handle, response);
    return 1;
}

void CNetServer::GetLinkIP(int handle, std::string& ip)
{
    sockaddr_in address{};
    NET_SOCKET_GetRemoteIP(handle, address);
    char text[64] = {};
    NET_SOCKET_Inet_ntoa(address.sin_addr.s_addr, text);
    ip = text;
}
