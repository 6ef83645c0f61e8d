// NetworkNamespace.h: a network of a test's own, for what multicasts or needs fixed ports and interface names.
//
// The process that calls Enter is cut off from the machine's interfaces; there is no way back, and none is needed,
// since ctest runs each test in a process of its own. Call it before any thread is started. One thread.
#pragma once

#include <string>
#include <vector>

class CNetworkNamespace
{
public:
    /// Enters a new network that holds "lo" alone, and brings that up.
    /// @return false when the kernel does not allow it; the test is then to be skipped
    static bool Enter();

    /// Runs "ip" with arguments, as ip-link(8) and ip-address(8) have them. @return whether it succeeded
    static bool Ip(const std::string& arguments);

    /// Makes a running Ethernet interface. What it sends comes out at its other end, which is named "peer-" and its
    /// name.
    /// @param address  with prefix length, "10.1.0.5/24"; empty for none
    /// @return false when it cannot be had
    static bool AddInterface(const std::string& name, const std::string& address);

    CNetworkNamespace() = delete;
};

/// Sees the UDP datagrams that come out of the other end of an interface.
class CDatagramSniffer
{
public:
    explicit CDatagramSniffer(const std::string& interface);
    ~CDatagramSniffer();
    CDatagramSniffer(const CDatagramSniffer&) = delete;
    CDatagramSniffer& operator=(const CDatagramSniffer&) = delete;

    struct Datagram
    {
        std::string destination; ///< "239.255.255.250:1900"
        std::string payload;
    };
    /// The next datagrams, in order; fewer when five seconds do not bring them all.
    std::vector<Datagram> Await(std::size_t count);
    /// All that have come by now, in order.
    std::vector<Datagram> Take();

private:
    bool TakeOne(Datagram& datagram);

    int m_socket = -1;
};
