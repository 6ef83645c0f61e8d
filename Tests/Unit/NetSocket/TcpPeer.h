// TcpPeer.h: the other end of a connection, accepted or connected, down to its socket: buffers, resets, backlogs.
//
// Blocking, with a limit of ten seconds for each call.
#pragma once

#include <functional>
#include <string>

/// A TCP connection of the test's own. Local to one thread.
class TcpPeer
{
public:
    explicit TcpPeer(int fd = -1);
    ~TcpPeer() { Close(); }
    TcpPeer(TcpPeer&& other) noexcept : m_fd(other.m_fd) { other.m_fd = -1; }
    TcpPeer& operator=(TcpPeer&& other) noexcept;

    /// @return a peer that is not open when nobody listens on the port of 127.0.0.1
    static TcpPeer Connect(unsigned short port, int receiveBufferBytes = 0);

    bool IsOpen() const { return m_fd != -1; }
    int Descriptor() const { return m_fd; }
    unsigned short LocalPort() const;

    /// @return false when the connection broke before all was sent
    bool Send(const std::string& data);
    /// @return what came: fewer bytes when the connection ended or ten seconds passed
    std::string Read(std::size_t length);
    /// Everything up to the end. @param reset  set when the end was a reset or the time ran out
    std::string ReadAll(bool* reset = nullptr);
    /// Sends no more.
    void HalfClose();
    void Close();
    /// Ends with a reset.
    void Reset();

private:
    int m_fd;
};

/// A listener of the test's own on a free port of 127.0.0.1.
class TcpAcceptor
{
public:
    /// @param backlog  see listen(2)
    explicit TcpAcceptor(int backlog = 16);
    ~TcpAcceptor() { Close(); }
    TcpAcceptor(const TcpAcceptor&) = delete;
    TcpAcceptor& operator=(const TcpAcceptor&) = delete;

    unsigned short Port() const { return m_port; }
    TcpPeer Accept();
    void Close();

private:
    int m_fd;
    unsigned short m_port = 0;
};

/// A port on which every connect stays under way: the system drops what does not fit its backlog.
class StalledPort
{
public:
    StalledPort();
    ~StalledPort();
    unsigned short Port() const { return m_acceptor.Port(); }

private:
    static constexpr int FILLERS = 4;
    TcpAcceptor m_acceptor;
    int m_fillers[FILLERS];
};

/// Waits until the condition holds, ten seconds at most. @return whether it holds
bool Eventually(const std::function<bool()>& condition);
