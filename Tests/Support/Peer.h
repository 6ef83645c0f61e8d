// Peer.h: a plain TCP client or a UDP receiver on loopback, for tests. One thread.
//
// Every wait ends after five seconds at the latest, so that a broken server fails a test instead of hanging it.
#pragma once

#include <functional>
#include <string>

class Peer
{
public:
    /// Called again and again while a wait goes on, in place of sleeping: it runs a server that has no thread.
    using Pump = std::function<void()>;

    Peer() = default;
    explicit Peer(unsigned short port, Pump pump = nullptr);
    Peer(Peer&& other) noexcept;
    Peer& operator=(Peer&& other) noexcept;
    ~Peer();

    bool IsOpen() const { return m_sock != -1; }
    int Socket() const { return m_sock; }
    unsigned short LocalPort() const;

    bool Send(const std::string& bytes); ///< all of it
    void ShutdownSend();
    void Close();
    void Reset(); ///< closes with a RST

    /// Reads exactly so many bytes; fewer when the peer closes or the time is up.
    std::string Read(std::size_t count);
    /// Reads up to and with a text; what came when it does not come.
    std::string ReadUntil(const std::string& end);
    /// Reads a header and the body that its Content-Length announces.
    std::string ReadAnswer();
    /// Reads to the end of the connection.
    std::string ReadAll();
    /// What is there now, without waiting.
    std::string Drain();
    /// Waits for the other side to close. @return false when it stays open
    bool WaitClosed();
    /// Whether the other side has closed, without waiting.
    bool IsClosedNow();

private:
    bool Fill();
    bool WaitFor(const std::function<bool()>& done);

    int m_sock = -1;
    Pump m_pump;
    std::string m_buffer;
    bool m_ended = false;
};

/// A bound UDP socket on loopback.
class UdpPeer
{
public:
    explicit UdpPeer(Peer::Pump pump = nullptr);
    UdpPeer(const UdpPeer&) = delete;
    UdpPeer& operator=(const UdpPeer&) = delete;
    ~UdpPeer();

    unsigned short Port() const;
    /// The next datagram; empty when none comes in time.
    std::string Read();
    bool SendTo(unsigned short port, const std::string& bytes);

private:
    int m_sock = -1;
    Peer::Pump m_pump;
};

/// Fifty connections that send 2000 bytes of noise each, the same in every run, and read to their end.
void SendNoise(unsigned short port);

/// A TCP port that was free a moment ago.
unsigned short FreePort();
