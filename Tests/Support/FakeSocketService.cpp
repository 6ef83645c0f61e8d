// FakeSocketService.cpp: the socket service as a test scripts it.
#include "FakeSocketService.h"

#include "NetSocket.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include <arpa/inet.h>

namespace
{

constexpr std::chrono::seconds LIMIT(10);

FakeSocketService* current = nullptr;

} // namespace

FakeSocketService::FakeSocketService()
{
    current = this;
}

FakeSocketService::~FakeSocketService()
{
    current = nullptr;
}

int FakeSocketService::Connect(std::vector<Arrival> arrivals)
{
    std::lock_guard<std::mutex> lock(m_lock);
    Connection& connection = m_connections[++m_lastHandle];
    connection.arrivals = std::move(arrivals);
    connection.beganMs = m_clock.Now();
    return m_lastHandle;
}

int FakeSocketService::ConnectHeld(std::vector<Arrival> arrivals)
{
    const int handle = Connect(std::move(arrivals));
    std::lock_guard<std::mutex> lock(m_lock);
    m_connections[handle].held = true;
    return handle;
}

void FakeSocketService::Release(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_connections[handle].held = false;
    m_changed.notify_all();
}

void FakeSocketService::Release()
{
    std::lock_guard<std::mutex> lock(m_lock);
    for (auto& connection : m_connections)
    {
        connection.second.held = false;
    }
    m_changed.notify_all();
}

void FakeSocketService::ScriptSends(int handle, std::deque<int> results, bool broken)
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_connections[handle].sendResults = std::move(results);
    m_connections[handle].sendBreaks = broken;
}

void FakeSocketService::ScriptConnects(std::deque<Outgoing> connects)
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_connects = std::move(connects);
}

bool FakeSocketService::AwaitDestroyed(int handle)
{
    std::unique_lock<std::mutex> lock(m_lock);
    return m_changed.wait_for(lock, LIMIT, [&] { return m_connections[handle].destroyed; });
}

bool FakeSocketService::AwaitHeld(int count)
{
    std::unique_lock<std::mutex> lock(m_lock);
    return m_changed.wait_for(lock, LIMIT, [&] { return m_held == count; });
}

bool FakeSocketService::IsDestroyed(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_connections[handle].destroyed;
}

std::string FakeSocketService::Sent(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_connections[handle].sent;
}

unsigned int FakeSocketService::LifetimeMs(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_connections[handle].endedMs - m_connections[handle].beganMs;
}

int FakeSocketService::Reads(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_connections[handle].reads;
}

int FakeSocketService::Polls(int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    return m_connections[handle].polls;
}

std::vector<std::string> FakeSocketService::TakeCalls()
{
    std::lock_guard<std::mutex> lock(m_lock);
    return std::exchange(m_calls, {});
}

bool FakeSocketService::Initial()
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_calls.push_back("initial");
    return initialSucceeds;
}

void FakeSocketService::Quit()
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_calls.push_back("quit");
}

bool FakeSocketService::AwaitCall(const std::string& call)
{
    std::unique_lock<std::mutex> lock(m_lock);
    return m_changed.wait_for(lock, LIMIT,
                              [&] { return std::find(m_calls.begin(), m_calls.end(), call) != m_calls.end(); });
}

bool FakeSocketService::StartListen(unsigned short port, unsigned int address, bool reuse)
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_calls.push_back("listen " + std::to_string(port) + " " + std::to_string(address) + " " + std::to_string(reuse));
    return listenSucceeds;
}

bool FakeSocketService::StopListen(unsigned short port)
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_calls.push_back("stop " + std::to_string(port));
    return true;
}

const Arrival* FakeSocketService::Due(const Connection& connection) const
{
    const bool isDue = connection.next < connection.arrivals.size() &&
                       m_clock.Now() - connection.beganMs >= connection.arrivals[connection.next].afterMs;
    return isDue ? &connection.arrivals[connection.next] : nullptr;
}

int FakeSocketService::Recv(int handle, char* buffer, int length, bool* broken)
{
    std::unique_lock<std::mutex> lock(m_lock);
    Connection& connection = m_connections[handle];
    ++connection.reads;
    if (connection.held)
    {
        ++m_held;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return !connection.held; });
        --m_held;
    }
    const Arrival* due = Due(connection);
    if (due == nullptr)
    {
        return 0;
    }
    ++connection.next;
    *broken = due->broken;
    const std::size_t count = std::min(due->data.size(), static_cast<std::size_t>(length));
    std::memcpy(buffer, due->data.data(), count);
    return static_cast<int>(count);
}

bool FakeSocketService::WaitRecv(int handle, unsigned int timeoutMs)
{
    std::lock_guard<std::mutex> lock(m_lock);
    const Connection& connection = m_connections[handle];
    unsigned int wait = timeoutMs;
    if (connection.next < connection.arrivals.size())
    {
        const unsigned int due = connection.beganMs + connection.arrivals[connection.next].afterMs;
        wait = std::min(wait, due - std::min(due, m_clock.Now()));
    }
    m_clock.Advance(wait);
    return Due(connection) != nullptr;
}

int FakeSocketService::Send(int handle, const char* data, int length, bool& broken)
{
    Note("send", handle);
    std::lock_guard<std::mutex> lock(m_lock);
    Connection& connection = m_connections[handle];
    int result = length;
    if (!connection.sendResults.empty())
    {
        result = connection.sendResults.front();
        connection.sendResults.pop_front();
        broken = connection.sendBreaks && connection.sendResults.empty();
    }
    connection.sent.append(data, static_cast<std::size_t>(std::max(result, 0)));
    return result;
}

void FakeSocketService::Destroy(int handle)
{
    Note("destroy", handle);
    std::lock_guard<std::mutex> lock(m_lock);
    m_connections[handle].destroyed = true;
    m_connections[handle].endedMs = m_clock.Now();
    m_changed.notify_all();
}

int FakeSocketService::AddConnect(const std::string& address, unsigned short port)
{
    std::lock_guard<std::mutex> lock(m_lock);
    m_calls.push_back("connect " + address + " " + std::to_string(port));
    if (m_connects.empty())
    {
        return 0;
    }
    Connection& connection = m_connections[++m_lastHandle];
    connection.isOutgoing = true;
    connection.arrivals = std::move(m_connects.front().arrivals);
    connection.outcome = m_connects.front().outcome;
    connection.beganMs = m_clock.Now();
    m_connects.pop_front();
    return m_lastHandle;
}

bool FakeSocketService::PopConnectResult(int handle, int& result, unsigned int timeoutMs)
{
    std::lock_guard<std::mutex> lock(m_lock);
    Connection& connection = m_connections[handle];
    ++connection.polls;
    result = connection.outcome;
    m_clock.Advance(result == 0 ? timeoutMs : 0);
    return connection.isOutgoing;
}

bool FakeSocketService::Note(const std::string& call, int handle)
{
    std::lock_guard<std::mutex> lock(m_lock);
    const bool isOutgoing = m_connections[handle].isOutgoing;
    if (isOutgoing)
    {
        m_calls.push_back(call + " " + std::to_string(handle));
        m_changed.notify_all();
    }
    return isOutgoing;
}

bool NET_SOCKET_Initial(const char*)
{
    return current->Initial();
}

void NET_SOCKET_Quit()
{
    current->Quit();
}

bool NET_SOCKET_StartListen(unsigned short port, CListenSocketObserver*, unsigned int localAddress, bool reuseAddress)
{
    return current->StartListen(port, localAddress, reuseAddress);
}

bool NET_SOCKET_StopListen(unsigned short port)
{
    return current->StopListen(port);
}

unsigned short NET_SOCKET_GetListenPort(const CListenSocketObserver*)
{
    return 40000; // the system's choice for port 0
}

int NET_SOCKET_Recv_Immediate(int handle, char* buffer, int length, bool* broken)
{
    return current->Recv(handle, buffer, length, broken);
}

bool NET_SOCKET_WaitRecv(int handle, unsigned int timeoutMs)
{
    return current->WaitRecv(handle, timeoutMs);
}

int NET_SOCKET_Send_Immediate(int handle, const char* data, int length, bool& broken)
{
    return current->Send(handle, data, length, broken);
}

int NET_SOCKET_Send_Last(int handle, const char* data, int length, bool& broken)
{
    return current->Send(handle, data, length, broken);
}

void NET_SOCKET_DestroyHNetCommunication(int handle)
{
    current->Destroy(handle);
}

bool NET_SOCKET_GetRemoteIP(int, sockaddr_in& address)
{
    address.sin_addr.s_addr = htonl(0x0A000007); // 10.0.0.7
    return true;
}

void NET_SOCKET_Inet_ntoa(unsigned int address, char* text)
{
    in_addr word{};
    word.s_addr = address;
    inet_ntop(AF_INET, &word, text, INET_ADDRSTRLEN);
}

int NET_SOCKET_AddConnect(unsigned int, const char* address, unsigned short port)
{
    return current->AddConnect(address, port);
}

bool NET_SOCKET_PopConnectResult(int handle, int& result, unsigned int timeoutMs)
{
    return current->PopConnectResult(handle, result, timeoutMs);
}

void NET_SOCKET_DelConnect(int handle)
{
    current->Note("give up", handle);
}

bool NET_SOCKET_RegisterNode(int handle, CSocketDataObserver*, void*, int option1, int option2)
{
    return current->Note("register " + std::to_string(option1) + " " + std::to_string(option2), handle);
}

bool NET_SOCKET_Start(int handle)
{
    return current->Note("start", handle);
}

bool NET_SOCKET_Stop(int handle)
{
    return current->Note("stop node", handle);
}

bool NET_SOCKET_UnRegisterNode(int handle)
{
    return current->Note("unregister", handle);
}

int NET_SOCKET_SimpleClientComm(const char*, unsigned short, const char* send, unsigned int sendLen, char* recv,
                                unsigned int recvSize, const char*, unsigned int)
{
    const std::string answer = current->exchange ? current->exchange(std::string(send, sendLen)) : "";
    if (answer.empty() || answer.size() >= recvSize)
    {
        return -1;
    }
    std::memcpy(recv, answer.c_str(), answer.size() + 1);
    return static_cast<int>(answer.size());
}
