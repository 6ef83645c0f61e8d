#include "NetworkNamespace.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>

#include <arpa/inet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <netpacket/packet.h>
#include <poll.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

bool WriteFile(const char* path, const std::string& text)
{
    std::ofstream file(path);
    file << text;
    file.flush();
    return file.good();
}

/// Rights over a network come with a user namespace where the process has none over the machine's.
bool EnterAsUser()
{
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && WriteFile("/proc/self/setgroups", "deny") &&
           WriteFile("/proc/self/uid_map", "0 " + user + " 1") && WriteFile("/proc/self/gid_map", "0 " + group + " 1");
}

bool IsRunning(const std::string& name)
{
    const int probe = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strncpy(request.ifr_name, name.c_str(), sizeof(request.ifr_name) - 1);
    const bool isRunning = ioctl(probe, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_RUNNING) != 0;
    close(probe);
    return isRunning;
}

/// The kernel tells the carrier a moment after the link is up.
bool AwaitRunning(const std::string& name)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!IsRunning(name))
    {
        if (std::chrono::steady_clock::now() > deadline)
        {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

constexpr ssize_t IP_HEADER_BYTES = 20;
constexpr ssize_t UDP_HEADER_BYTES = 8;

} // namespace

bool CNetworkNamespace::Enter()
{
    return (unshare(CLONE_NEWNET) == 0 || EnterAsUser()) && Ip("link set lo up");
}

bool CNetworkNamespace::Ip(const std::string& arguments)
{
    return std::system(("ip " + arguments + " 2> /dev/null").c_str()) == 0;
}

bool CNetworkNamespace::AddInterface(const std::string& name, const std::string& address)
{
    const std::string peer = "peer-" + name;
    return Ip("link add " + name + " type veth peer name " + peer) && Ip("link set " + peer + " up") &&
           Ip("link set " + name + " up") && (address.empty() || Ip("address add " + address + " dev " + name)) &&
           AwaitRunning(name);
}

CDatagramSniffer::CDatagramSniffer(const std::string& interface)
    : m_socket(socket(AF_PACKET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, htons(ETHERTYPE_IP)))
{
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETHERTYPE_IP);
    address.sll_ifindex = static_cast<int>(if_nametoindex(("peer-" + interface).c_str()));
    bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
}

CDatagramSniffer::~CDatagramSniffer()
{
    close(m_socket);
}

std::vector<CDatagramSniffer::Datagram> CDatagramSniffer::Await(std::size_t count)
{
    std::vector<Datagram> datagrams;
    pollfd readable = {m_socket, POLLIN, 0};
    while (datagrams.size() < count && poll(&readable, 1, 5000) == 1)
    {
        Datagram datagram;
        if (TakeOne(datagram))
        {
            datagrams.push_back(datagram);
        }
    }
    return datagrams;
}

std::vector<CDatagramSniffer::Datagram> CDatagramSniffer::Take()
{
    std::vector<Datagram> datagrams;
    pollfd readable = {m_socket, POLLIN, 0};
    while (poll(&readable, 1, 0) == 1)
    {
        Datagram datagram;
        if (TakeOne(datagram))
        {
            datagrams.push_back(datagram);
        }
    }
    return datagrams;
}

/// @return false for a packet of another kind: memberships of groups are told as well
bool CDatagramSniffer::TakeOne(Datagram& datagram)
{
    unsigned char packet[2048];
    const ssize_t length = recv(m_socket, packet, sizeof(packet), 0);
    const ssize_t headers = IP_HEADER_BYTES + UDP_HEADER_BYTES;
    if (length < headers || packet[9] != IPPROTO_UDP)
    {
        return false;
    }
    in_addr destination{};
    std::memcpy(&destination, packet + 16, sizeof(destination));
    const unsigned int port = packet[IP_HEADER_BYTES + 2] * 256u + packet[IP_HEADER_BYTES + 3];
    datagram.destination = inet_ntoa(destination) + (":" + std::to_string(port));
    datagram.payload.assign(reinterpret_cast<const char*>(packet) + headers,
                            static_cast<std::size_t>(length - headers));
    return true;
}
