// SimpleClient.h: one request and its answer. Runs wholly on the caller's thread.
#pragma once

#include "SocketWait.h"

#include <string>

#include <netinet/in.h>

/// One exchange; see NET_SOCKET_SimpleClientComm.
class CSimpleClient
{
public:
    /// @param quit        ends the exchange when it is given
    /// @param deadlineMs  limit of the whole exchange, as of MonotonicMs
    CSimpleClient(const CQuitSignal& quit, std::uint64_t deadlineMs) : m_quit(quit), m_deadlineMs(deadlineMs) {}

    /// @return false when no connection came about
    bool Connect(in_addr address, unsigned short port);
    /// Sends and receives at the same time, until `endMark` has come, `room` is full, the peer closes or the time is
    /// up.
    /// @param endMark  empty: until the peer closes
    /// @return bytes received
    std::size_t Exchange(const char* send, std::size_t sendLength, char* recv, std::size_t room,
                         const std::string& endMark);

private:
    bool Wait(short events, short& ready);

    const CQuitSignal& m_quit;
    const std::uint64_t m_deadlineMs;
    CFileDescriptor m_socket;
};
