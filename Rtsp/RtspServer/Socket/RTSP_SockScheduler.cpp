#include "RTSP_SockScheduler.h"

#include "PFAssert.h"
#include "PFHelper.h"
#include "RTSP_Console.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <sys/eventfd.h>
#include <unistd.h>

namespace
{

constexpr const char* THREAD_NAME = "rtsp \xe4\xbb\xbb\xe5\x8a\xa1\xe8\xb0\x83\xe5\xba\xa6\xe7\xba\xbf\xe7\xa8\x8b";

bool IsSingleType(int iType)
{
    return iType == SOCK_HANDLER_ACCEPT || iType == SOCK_HANDLER_RECV || iType == SOCK_HANDLER_SEND ||
           iType == SOCK_HANDLER_CONNECTED;
}

bool IsAllowedMask(int mask)
{
    return IsSingleType(mask) || mask == (SOCK_HANDLER_RECV | SOCK_HANDLER_SEND);
}

/// Runs a callback; one that runs out of memory ends its handler instead of the process.
template <class Callback>
int Guarded(CRTSP_SockHandler* handler, Callback callback)
{
    try
    {
        return callback();
    }
    catch (const std::exception& failure)
    {
        SHARESDK_AbnormalOutput(failure.what(), __FILE__, __LINE__);
        handler->Fail();
        return HANDLER_GONE;
    }
}

} // namespace

CRTSP_SockScheduler& CRTSP_SockScheduler::Instance()
{
    static CRTSP_SockScheduler scheduler;
    return scheduler;
}

CRTSP_SockScheduler::CRTSP_SockScheduler() : m_wakeUp(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

CRTSP_SockScheduler::~CRTSP_SockScheduler()
{
    Stop_RTSP_SockScheduler();
    if (m_wakeUp != -1)
        close(m_wakeUp);
}

int CRTSP_SockScheduler::AddSockHandler(int iType, int iSock, CRTSP_SockHandler* handler, int iTimeOut)
{
    PF_ASSERT(IsSingleType(iType));
    PF_ASSERT(iSock >= 0);
    auto entry = m_handlers.find(iSock);
    if (entry == m_handlers.end())
    {
        auto created = std::make_unique<HANDLER_INFO>();
        created->handler = handler;
        entry = m_handlers.emplace(iSock, std::move(created)).first;
    }
    HANDLER_INFO& info = *entry->second;
    info.iHandlerMask |= iType;
    PF_ASSERT(IsAllowedMask(info.iHandlerMask));

    const unsigned int now = CPFHelper::GetTickCount();
    if (iType == SOCK_HANDLER_ACCEPT || iType == SOCK_HANDLER_RECV)
    {
        info.iRecvTimeOut = iTimeOut;
        info.lastRecvTick = now;
    }
    else
    {
        info.iSendTimeOut = iTimeOut;
        info.lastSendTick = now;
    }
    return 0;
}

int CRTSP_SockScheduler::DelSockHandler(int iType, int iSock)
{
    const auto entry = m_handlers.find(iSock);
    if (entry == m_handlers.end())
        return -1;
    HANDLER_INFO& info = *entry->second;
    PF_ASSERT(0 != (info.iHandlerMask & iType));
    info.iHandlerMask &= ~iType;
    if (info.iHandlerMask == 0)
        m_handlers.erase(entry);
    else if (iType == SOCK_HANDLER_ACCEPT || iType == SOCK_HANDLER_RECV)
        info.iRecvTimeOut = -1;
    else
        info.iSendTimeOut = -1;
    return 0;
}

int CRTSP_SockScheduler::DelSockHandler(int iSock)
{
    if (m_handlers.erase(iSock) == 0)
        return -1;
    // Only one of the two is withdrawn, so a socket of the same number that is opened in this pass may be asked to read
    // once with nothing there.
    if (!TakeReady(iSock, READY_WRITE))
        TakeReady(iSock, READY_READ);
    return 0;
}

void CRTSP_SockScheduler::AddWaiter(CRTSP_SockHandler* handler, unsigned int dueTick)
{
    m_waiters[handler] = dueTick;
}

void CRTSP_SockScheduler::DelWaiter(CRTSP_SockHandler* handler)
{
    m_waiters.erase(handler);
}

int CRTSP_SockScheduler::Start_RTSP_SockScheduler()
{
    m_running = true;
    m_thread =
        SHARESDK_CreateRunOneThread(&CRTSP_SockScheduler::ThreadProc, this, false, __FILE__, __LINE__, THREAD_NAME);
    if (m_thread == 0)
        SHARESDK_AbnormalOutput("rtsp scheduler thread not started", __FILE__, __LINE__);
    return 0;
}

int CRTSP_SockScheduler::Stop_RTSP_SockScheduler()
{
    m_running = false;
    WakeUp();
    if (m_thread != 0)
        SHARESDK_DestroyThread(m_thread, __FILE__, __LINE__);
    m_thread = 0;
    Clear();
    return 0;
}

void CRTSP_SockScheduler::WakeUp()
{
    if (m_wakeUpPending.exchange(true))
        return;
    const std::uint64_t one = 1;
    // A full counter cannot be written, and then it wakes the loop as well.
    if (write(m_wakeUp, &one, sizeof(one)) != sizeof(one) && errno != EAGAIN)
        SHARESDK_AbnormalOutput("rtsp scheduler cannot be woken", __FILE__, __LINE__);
}

void CRTSP_SockScheduler::ThreadProc(void* scheduler)
{
    static_cast<CRTSP_SockScheduler*>(scheduler)->Loop();
}

void CRTSP_SockScheduler::Loop()
{
    while (m_running)
        RunRound();
    Clear();
}

void CRTSP_SockScheduler::RunRound()
{
    const unsigned int now = CPFHelper::GetTickCount();
    PassTimeOuts(now);
    PassWaiters(now);
    BuildSets(now);
    if (Wait(now))
        Dispatch(now);
}

int CRTSP_SockScheduler::CheckTimeOut(unsigned int now, const HANDLER_INFO& info)
{
    int result = 0;
    if (info.iRecvTimeOut != -1 && static_cast<unsigned int>(info.iRecvTimeOut) <= now - info.lastRecvTick)
    {
        if ((info.iHandlerMask & SOCK_HANDLER_RECV) != 0)
            result = 2;
        else if ((info.iHandlerMask & SOCK_HANDLER_ACCEPT) != 0)
            result = 1;
        RTSP_ConsoleLine("*************iRecvTimeOut****************%s %s  %d\n", __FILE__, __func__, __LINE__);
    }
    if (info.iSendTimeOut != -1 && now - info.lastSendTick >= static_cast<unsigned int>(info.iSendTimeOut))
    {
        // A send that does not move is told as 2, and a connect as 1: handlers never see 4 or 8 from here.
        if ((info.iHandlerMask & SOCK_HANDLER_SEND) != 0)
            result |= 2;
        else if ((info.iHandlerMask & SOCK_HANDLER_CONNECTED) != 0)
            result |= 1;
        RTSP_ConsoleLine("*************iSendTimeOut****************%s %s  %d\n", __FILE__, __func__, __LINE__);
    }
    return result;
}

void CRTSP_SockScheduler::PassTimeOuts(unsigned int now)
{
    auto entry = m_handlers.begin();
    while (entry != m_handlers.end())
    {
        const int result = CheckTimeOut(now, *entry->second);
        if (result == 0)
        {
            ++entry;
            continue;
        }
        RTSP_ConsoleLine("==============time out=============");
        // A handler that is still there afterwards (a shared link, say) has had its turn in this pass.
        HANDLER_INFO& info = *entry->second;
        info.lastRecvTick = now;
        info.lastSendTick = now;
        const int sock = entry->first;
        Guarded(info.handler, [&info, result] { return info.handler->HandleTimeOut(result); });
        // What was erased may be any entry. All in front of this one were found in time, or have had their turn.
        entry = m_handlers.upper_bound(sock);
    }
}

void CRTSP_SockScheduler::PassWaiters(unsigned int now)
{
    auto waiter = m_waiters.begin();
    while (waiter != m_waiters.end())
    {
        CRTSP_SockHandler* handler = waiter->first;
        Guarded(handler, [handler, now] { return handler->HandleWait(now); });
        waiter = m_waiters.upper_bound(handler); // the call may have changed any entry
    }
}

void CRTSP_SockScheduler::BuildSets(unsigned int now)
{
    // From here on a frame that is queued wakes the loop again; what was queued before is seen below.
    m_wakeUpPending = false;
    m_pollSet.clear();
    m_pollSet.push_back({m_wakeUp, POLLIN, 0});
    for (auto& [sock, info] : m_handlers)
    {
        short events = 0;
        if ((info->iHandlerMask & SOCK_HANDLER_SEND) != 0)
        {
            if (info->handler->HasDataToSend())
                events = POLLOUT;
            else
                info->lastSendTick = now; // an idle socket does not time out on send
        }
        else if ((info->iHandlerMask & SOCK_HANDLER_CONNECTED) != 0)
        {
            events = POLLOUT;
        }
        if ((info->iHandlerMask & (SOCK_HANDLER_ACCEPT | SOCK_HANDLER_RECV)) != 0)
            events = static_cast<short>(events | POLLIN);
        if (events != 0)
            m_pollSet.push_back({sock, events, 0});
    }
}

int CRTSP_SockScheduler::WaitMs(unsigned int now) const
{
    int waitMs = MAX_WAIT_MS;
    for (const auto& waiter : m_waiters)
        waitMs = std::min(waitMs, std::max(0, static_cast<int>(waiter.second - now)));
    return waitMs;
}

/// @return whether a socket is ready
bool CRTSP_SockScheduler::Wait(unsigned int now)
{
    int ready = poll(m_pollSet.data(), m_pollSet.size(), WaitMs(now));
    if (ready == -1)
    {
        const bool interrupted = errno == EINTR;
        SHARESDK_NormalOutput(" select err.", __FILE__, __LINE__);
        if (!interrupted)
            poll(nullptr, 0, MAX_WAIT_MS); // a wake-up that nobody takes away would not let it wait
        return false;
    }
    if (m_pollSet.front().revents != 0)
    {
        std::uint64_t count = 0;
        if (read(m_wakeUp, &count, sizeof(count)) == sizeof(count))
            --ready;
    }
    if (ready <= 0)
        return false;

    if (!m_handlers.empty())
        m_ready.assign(static_cast<std::size_t>(m_handlers.rbegin()->first) + 1, 0);
    for (std::size_t i = 1; i < m_pollSet.size(); ++i)
    {
        // As with select, a broken connection is both readable and writable, as far as it was asked for.
        const pollfd& entry = m_pollSet[i];
        unsigned char bits = 0;
        if ((entry.revents & (POLLIN | POLLHUP | POLLERR | POLLNVAL)) != 0 && (entry.events & POLLIN) != 0)
            bits |= READY_READ;
        if ((entry.revents & (POLLOUT | POLLERR | POLLNVAL)) != 0 && (entry.events & POLLOUT) != 0)
            bits |= READY_WRITE;
        m_ready[static_cast<std::size_t>(entry.fd)] = bits;
    }
    return true;
}

bool CRTSP_SockScheduler::TakeReady(int sock, READY which)
{
    const std::size_t index = static_cast<std::size_t>(sock);
    if (index >= m_ready.size() || (m_ready[index] & which) == 0)
        return false;
    m_ready[index] = static_cast<unsigned char>(m_ready[index] & ~which);
    return true;
}

void CRTSP_SockScheduler::Dispatch(unsigned int now)
{
    // A socket's readiness is used up before its handler is called, so after a change of the table the walk goes on
    // where it was: nothing in front of that place is ready any more.
    auto entry = m_handlers.begin();
    while (entry != m_handlers.end())
    {
        const int sock = entry->first;
        HANDLER_INFO& info = *entry->second;
        if (DispatchSend(sock, info, now) && DispatchRecv(sock, info, now))
            ++entry;
        else
            entry = m_handlers.lower_bound(sock);
    }
    m_ready.clear();
}

/// @return false when the table may have changed
bool CRTSP_SockScheduler::DispatchSend(int sock, HANDLER_INFO& info, unsigned int now)
{
    if ((info.iHandlerMask & SOCK_HANDLER_SEND) != 0)
    {
        if (!TakeReady(sock, READY_WRITE))
            return true;
        const int result = Guarded(info.handler, [&info] { return info.handler->HandleSend(); });
        if (result == HANDLER_GONE)
            return false;
        if (result == HANDLER_NOTHING || result > HANDLER_WOULD_BLOCK)
            info.lastSendTick = now;
        return true;
    }
    if ((info.iHandlerMask & SOCK_HANDLER_CONNECTED) != 0 && TakeReady(sock, READY_WRITE))
    {
        Guarded(info.handler, [&info] { return info.handler->HandleConnected(); });
        return false;
    }
    return true;
}

/// @return false when the table may have changed
bool CRTSP_SockScheduler::DispatchRecv(int sock, HANDLER_INFO& info, unsigned int now)
{
    if ((info.iHandlerMask & SOCK_HANDLER_ACCEPT) != 0)
    {
        if (!TakeReady(sock, READY_READ))
            return true;
        info.lastRecvTick = now;
        Guarded(info.handler, [&info] { return info.handler->HandleAccept(); });
        return false;
    }
    if ((info.iHandlerMask & SOCK_HANDLER_RECV) != 0 && TakeReady(sock, READY_READ))
    {
        if (Guarded(info.handler, [&info] { return info.handler->HandleRecv(); }) == HANDLER_GONE)
            return false;
        info.lastRecvTick = now;
    }
    return true;
}

void CRTSP_SockScheduler::Clear()
{
    m_handlers.clear();
    m_waiters.clear();
    m_ready.clear();
}
