// NetSocketFixture.h: what the tests of the socket service share.
#pragma once

#include "NetSocket.h"
#include "Peer.h"
#include "TcpPeer.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// A flag that threads wait for.
class Gate
{
public:
    void Open()
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_open = true;
        m_opened.notify_all();
    }
    void Await()
    {
        std::unique_lock<std::mutex> lock(m_lock);
        m_opened.wait(lock, [this] { return m_open; });
    }
    bool IsOpen()
    {
        std::lock_guard<std::mutex> lock(m_lock);
        return m_open;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_opened;
    bool m_open = false;
};

struct Accepted
{
    int handle;
    unsigned short port;
    unsigned int address;
};

/// Keeps the accepted connections in order.
class AcceptQueue : public CListenSocketObserver
{
public:
    void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_accepted.push_back({handle, port, address});
        m_came.notify_all();
    }
    /// The next accepted connection; handle 0 when none comes within ten seconds.
    Accepted Take()
    {
        std::unique_lock<std::mutex> lock(m_lock);
        if (!m_came.wait_for(lock, std::chrono::seconds(10), [this] { return !m_accepted.empty(); }))
        {
            return {};
        }
        const Accepted first = m_accepted.front();
        m_accepted.pop_front();
        return first;
    }

private:
    std::mutex m_lock;
    std::condition_variable m_came;
    std::deque<Accepted> m_accepted;
};

class Stopwatch
{
public:
    long ElapsedMs() const
    {
        return static_cast<long>(
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_began).count());
    }

    void Restart() { m_began = std::chrono::steady_clock::now(); }

private:
    std::chrono::steady_clock::time_point m_began = std::chrono::steady_clock::now();
};

/// Ends the service, and with it every callback, before the observers declared in front of it go.
class QuitAtEnd
{
public:
    QuitAtEnd() = default;
    ~QuitAtEnd() { NET_SOCKET_Quit(); }
    QuitAtEnd(const QuitAtEnd&) = delete;
    QuitAtEnd& operator=(const QuitAtEnd&) = delete;
};

/// The service is up for each test.
class NetSocketFixture : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(NET_SOCKET_Initial(nullptr)); }
    void TearDown() override { NET_SOCKET_Quit(); }

    static unsigned short Listen(CListenSocketObserver& observer)
    {
        return NET_SOCKET_StartListen(0, &observer, 0, true) ? NET_SOCKET_GetListenPort(&observer) : 0;
    }
    /// Sends everything, also when the peer reads slowly. @return false when the connection broke
    static bool SendAll(int handle, const std::string& data)
    {
        bool broken = false;
        std::size_t sent = 0;
        while (sent < data.size() && !broken)
        {
            const int count =
                NET_SOCKET_Send_Immediate(handle, data.data() + sent, static_cast<int>(data.size() - sent), broken);
            sent += static_cast<std::size_t>(count > 0 ? count : 0);
        }
        return !broken;
    }
    /// Waits for and reads what comes, up to `length` bytes.
    static std::string RecvAll(int handle, std::size_t length)
    {
        std::string data;
        char buffer[512];
        bool broken = false;
        while (data.size() < length && !broken && NET_SOCKET_WaitRecv(handle, 10000))
        {
            const int count = NET_SOCKET_Recv_Immediate(handle, buffer, sizeof(buffer), &broken);
            data.append(buffer, static_cast<std::size_t>(count > 0 ? count : 0));
        }
        return data;
    }
};

/// A fixture with one accepted connection: `m_handle` here, `m_peer` there.
class NetSocketPair : public NetSocketFixture
{
protected:
    void SetUp() override
    {
        NetSocketFixture::SetUp();
        m_port = Listen(m_queue);
        ASSERT_NE(0, m_port);
        m_peer = TcpPeer::Connect(m_port);
        m_handle = m_queue.Take().handle;
        ASSERT_GT(m_handle, 0);
    }
    void TearDown() override { NET_SOCKET_Quit(); }

    AcceptQueue m_queue;
    unsigned short m_port = 0;
    TcpPeer m_peer;
    int m_handle = 0;
};
