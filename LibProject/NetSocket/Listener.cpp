// Listener.cpp: one port and the threads that accept on it.
#include "Listener.h"

#include "Connection.h"
#include "ConnectionTable.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

constexpr int BACKLOG = 512;
constexpr std::chrono::milliseconds FAILURE_PAUSE(50);

/// A callback that runs for two looks is slow.
constexpr std::chrono::milliseconds WATCH_INTERVAL(2);

/// What a peer does, or the network, before its connection is accepted (accept(2)): the next one is as good as ever.
bool IsPeersFailure(int error)
{
    switch (error)
    {
    case EINTR:
    case ECONNABORTED:
    case EPERM:
    case EPROTO:
    case ENETDOWN:
    case ENOPROTOOPT:
    case EHOSTDOWN:
    case ENONET:
    case EHOSTUNREACH:
    case ENETUNREACH:
        return true;
    default:
        return false;
    }
}

thread_local bool isListenersThread = false;

CFileDescriptor AcceptNow(int fd, sockaddr_in& peer)
{
    socklen_t size = sizeof(peer);
    return CFileDescriptor(accept4(fd, reinterpret_cast<sockaddr*>(&peer), &size, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

} // namespace

std::shared_ptr<CListener> CListener::Open(unsigned short port, CListenSocketObserver* observer,
                                           unsigned int localAddress, bool reuseAddress, CConnectionTable& table,
                                           const std::shared_ptr<CQuitSignal>& quit,
                                           std::chrono::milliseconds spareLife)
{
    std::shared_ptr<CListener> listener(new CListener(observer, table, quit, spareLife));
    if (!listener->OpenSocket(port, localAddress, reuseAddress))
    {
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(listener->m_lock);
    return listener->StartThread() ? listener : nullptr;
}

CListener::CListener(CListenSocketObserver* observer, CConnectionTable& table, std::shared_ptr<CQuitSignal> quit,
                     std::chrono::milliseconds spareLife)
    : m_observer(observer), m_table(table), m_quit(std::move(quit)), m_spareLife(spareLife)
{
    OpenReserve();
}

bool CListener::OpenSocket(unsigned short port, unsigned int localAddress, bool reuseAddress)
{
    m_socket = CFileDescriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int on = 1;
    if (reuseAddress)
    {
        setsockopt(m_socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    }
    setsockopt(m_socket.Get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on)); // accepted sockets inherit it
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_port = htons(port);
    local.sin_addr.s_addr = localAddress;
    socklen_t size = sizeof(local);
    auto* address = reinterpret_cast<sockaddr*>(&local);
    if (bind(m_socket.Get(), address, size) != 0 || listen(m_socket.Get(), BACKLOG) != 0 ||
        getsockname(m_socket.Get(), address, &size) != 0)
    {
        return false;
    }
    m_port = ntohs(local.sin_port);
    return true;
}

bool CListener::StartThread()
{
    char name[16];
    std::snprintf(name, sizeof(name), "accept %u", static_cast<unsigned int>(m_port));
    auto reference = std::make_unique<std::shared_ptr<CListener>>(shared_from_this());
    const unsigned int thread = SHARESDK_CreateRunOneThread(Run, reference.get(), false, __FILE__, __LINE__, name);
    if (thread == 0)
    {
        return false;
    }
    static_cast<void>(reference.release()); // the new thread's
    m_threads.push_back(thread);
    ++m_serving;
    ++m_spares;
    return true;
}

void CListener::Run(void* listener)
{
    std::unique_ptr<std::shared_ptr<CListener>> reference(static_cast<std::shared_ptr<CListener>*>(listener));
    const std::shared_ptr<CListener> self = std::move(*reference);
    reference.reset();
    SHARESDK_LetOthersFinish(); // a callback that has begun ends before the next connection is taken
    isListenersThread = true;
    self->Serve();
}

void CListener::Stop()
{
    std::vector<unsigned int> threads;
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_stopping = true;
        threads.swap(m_threads);
        m_room.notify_all();
        m_forSpare.notify_all();
    }
    shutdown(m_socket.Get(), SHUT_RDWR); // ends every accept and poll on it
    for (const unsigned int thread : threads)
    {
        SHARESDK_DestroyThread(thread, __FILE__, __LINE__);
    }
    m_socket.Close();
}

void CListener::AwaitThreads()
{
    std::unique_lock<std::mutex> lock(m_lock);
    m_idle.wait(lock, [this] { return m_serving == 0; });
}

bool CListener::IsOwnThread()
{
    return isListenersThread;
}

void CListener::Serve()
{
    while (AwaitLead())
    {
        Lead();
    }
    std::lock_guard<std::mutex> lock(m_lock);
    if (--m_serving == 0)
    {
        m_idle.notify_all();
    }
}

std::size_t CListener::Threads()
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_threads.size();
}

/// The thread is a spare one. @return true with the lead; false when it ends
bool CListener::AwaitLead()
{
    std::unique_lock<std::mutex> lock(m_lock);
    bool isWatching = false;
    bool leads = false;
    while (!m_stopping && !leads)
    {
        const unsigned int connectionsSeen = m_accepted;
        if (!m_hasLeader)
        {
            m_hasLeader = true;
            leads = true;
        }
        else if (isWatching)
        {
            m_forSpare.wait_for(lock, WATCH_INTERVAL);
            leads = TakeLeadFromSlowCallback(connectionsSeen);
            isWatching = connectionsSeen != m_accepted; // nothing to watch while nothing comes
            m_isWatched = isWatching;
        }
        else if (m_leadersCallback != nullptr && !m_isWatched)
        {
            isWatching = true;
            m_isWatched = true;
        }
        else if (m_forSpare.wait_for(lock, m_spareLife) == std::cv_status::timeout && !m_stopping && m_hasLeader &&
                 m_spares > 1)
        {
            Leave(lock);
            return false;
        }
    }
    if (isWatching)
    {
        m_isWatched = false;
    }
    --m_spares;
    return leads;
}

/// The calling thread, a spare one, is about to end: nobody waits for it.
void CListener::Leave(std::unique_lock<std::mutex>& lock)
{
    const auto self = static_cast<unsigned int>(syscall(SYS_gettid));
    const auto found = std::find_if(m_threads.begin(), m_threads.end(),
                                    [self](unsigned int thread) { return SHARESDK_GetThreadID(thread) == self; });
    const unsigned int handle = *found;
    m_threads.erase(found);
    --m_spares;
    lock.unlock();
    SHARESDK_DestroyThread(handle, __FILE__, __LINE__);
}

bool CListener::TakeLeadFromSlowCallback(unsigned int connectionsSeen)
{
    if (!m_hasLeader || m_leadersCallback == nullptr || connectionsSeen != m_accepted)
    {
        return false;
    }
    m_leadersCallback->leads = false;
    m_leadersCallback->overtaken = true;
    m_leadersCallback = nullptr;
    ++m_overtaken;
    return true;
}

/// Accepts and runs callbacks until the lead is another thread's, or the listener stops.
void CListener::Lead()
{
    bool leads = true;
    while (leads && ReservePlace())
    {
        sockaddr_in peer{};
        CFileDescriptor socket = Accept(peer);
        if (socket.IsOpen())
        {
            Callback callback;
            BeginCallback(callback);
            HandOver(std::move(socket), peer);
            leads = EndCallback(callback);
        }
        else
        {
            ConnectionEnded(); // the place is free again
        }
    }
    std::lock_guard<std::mutex> lock(m_lock);
    ++m_spares;
}

bool CListener::ReservePlace()
{
    std::unique_lock<std::mutex> lock(m_lock);
    m_room.wait(lock, [this] { return m_stopping || m_places < CONNECTIONS_MAX; });
    if (m_stopping)
    {
        return false;
    }
    ++m_places;
    return true;
}

void CListener::ConnectionEnded()
{
    std::lock_guard<std::mutex> lock(m_lock);
    if (m_places-- == CONNECTIONS_MAX)
    {
        m_room.notify_one();
    }
}

void CListener::BeginCallback(Callback& callback)
{
    std::lock_guard<std::mutex> lock(m_lock);
    ++m_accepted;
    if (m_overtaken > 0)
    {
        callback.leads = false;
        m_hasLeader = false;
    }
    else
    {
        m_leadersCallback = &callback;
    }
    if (m_spares == 0 && !m_stopping && m_threads.size() < THREADS_MAX)
    {
        StartThread();
    }
    else if (!m_hasLeader || !m_isWatched)
    {
        m_forSpare.notify_one();
    }
}

/// @return whether the thread leads still
bool CListener::EndCallback(const Callback& callback)
{
    std::lock_guard<std::mutex> lock(m_lock);
    if (callback.overtaken)
    {
        --m_overtaken;
    }
    if (callback.leads)
    {
        m_leadersCallback = nullptr;
    }
    return callback.leads;
}

CFileDescriptor CListener::Accept(sockaddr_in& peer)
{
    CFileDescriptor socket = AcceptNow(m_socket.Get(), peer);
    const int error = errno;
    if (socket.IsOpen())
    {
        m_refusing = false;
        if (!m_reserve.IsOpen())
        {
            OpenReserve(); // lost while there was none
        }
    }
    else if (error == EMFILE || error == ENFILE)
    {
        return AcceptWithReserve(peer);
    }
    else if (!IsPeersFailure(error))
    {
        PauseAfterFailure();
    }
    return socket;
}

CFileDescriptor CListener::AcceptWithReserve(sockaddr_in& peer)
{
    // Without a free descriptor accept fails at once, also when nobody is there: wait for a peer first.
    pollfd waiting = {m_socket.Get(), POLLIN, 0};
    PollUntil(&waiting, 1, NO_DEADLINE);

    if (!m_refusing)
    {
        m_refusing = true;
        Report("no descriptor is left, connections are refused");
    }
    if (!m_reserve.IsOpen() && !OpenReserve())
    {
        PauseAfterFailure();
        return CFileDescriptor();
    }
    m_reserve.Close();
    CFileDescriptor socket = AcceptNow(m_socket.Get(), peer);
    if (OpenReserve())
    {
        return socket; // a descriptor has come free meanwhile
    }
    socket.Close();
    OpenReserve();
    return socket;
}

bool CListener::OpenReserve()
{
    m_reserve = CFileDescriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
    return m_reserve.IsOpen();
}

void CListener::PauseAfterFailure()
{
    std::unique_lock<std::mutex> lock(m_lock);
    m_room.wait_for(lock, FAILURE_PAUSE, [this] { return m_stopping; });
}

void CListener::Report(const char* what) const
{
    char text[256];
    std::snprintf(text, sizeof(text), "port %u: %s", static_cast<unsigned int>(m_port), what);
    SHARESDK_AbnormalOutput(text, __FILE__, __LINE__);
}

void CListener::HandOver(CFileDescriptor socket, const sockaddr_in& peer)
{
    const auto connection = std::make_shared<CConnection>(std::move(socket), peer, m_quit, shared_from_this());
    const int handle = m_table.Insert(connection);
    if (handle == 0)
    {
        Report("too many connections, one is refused");
        connection->Cut();
        return;
    }
    if (m_quit->IsGiven())
    {
        connection->Cut(); // the service has ended its connections already
    }
    m_observer->OnAcceptCreateSocket(handle, m_port, peer.sin_addr.s_addr);
}
