// netserver-bench-bareloop: the system calls of a fan-out and nothing else.
//
// Sends the packets of a frame to N receivers on the loopback at a frame rate, in four ways, and prints the CPU time
// for each packet. The receivers are a process of their own, so that only the sending side counts.
#include "BenchOptions.h"
#include "BenchTools.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <netinet/udp.h>
#include <poll.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#ifndef UDP_SEGMENT
#define UDP_SEGMENT 103
#endif

namespace
{
constexpr std::size_t PACKET_BYTES = 1472;
constexpr unsigned int MAX_PACKETS_PER_FRAME = 44; // one segmented send takes 65507 bytes
constexpr int SEND_BUFFER_BYTES = 131072;

const char USAGE[] = "usage: netserver-bench-bareloop --way tcp-send|tcp-sendmsg|udp-sendto|udp-gso\n"
                     "                                [--clients N] [--packets N] [--fps N] [--seconds N]\n"
                     "       netserver-bench-bareloop --way http [--bytes N]\n";

struct Options
{
    std::string way;
    unsigned int clients = 128;
    unsigned int packets = 14; // of a frame
    unsigned int fps = 25;
    unsigned int seconds = 5;
    unsigned int bytes = 10240; // of an HTTP answer
};

struct Frame
{
    std::vector<unsigned char> bytes; // packet behind packet
    unsigned int packets;
};

struct Receiver
{
    int fd;              // the sending end
    sockaddr_in address; // UDP: where to
};

void WaitWritable(int fd)
{
    pollfd ready = {fd, POLLOUT, 0};
    poll(&ready, 1, 1000);
}

// Writes all of it; a shut window is waited for.
void TcpSendEach(const Receiver& receiver, const Frame& frame)
{
    for (unsigned int i = 0; i < frame.packets; ++i)
    {
        const unsigned char* packet = frame.bytes.data() + i * PACKET_BYTES;
        for (std::size_t sent = 0; sent < PACKET_BYTES;)
        {
            const ssize_t n = send(receiver.fd, packet + sent, PACKET_BYTES - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
            if (n > 0)
                sent += static_cast<std::size_t>(n);
            else
                WaitWritable(receiver.fd);
        }
    }
}

void TcpSendFrame(const Receiver& receiver, const Frame& frame)
{
    auto* bytes = const_cast<unsigned char*>(frame.bytes.data());
    const std::size_t length = frame.bytes.size();
    for (std::size_t sent = 0; sent < length;)
    {
        iovec vectors[MAX_PACKETS_PER_FRAME];
        std::size_t count = 0;
        for (std::size_t at = sent; at < length; ++count)
        {
            const std::size_t end = std::min(length, (at / PACKET_BYTES + 1) * PACKET_BYTES);
            vectors[count] = {bytes + at, end - at};
            at = end;
        }
        msghdr message = {};
        message.msg_iov = vectors;
        message.msg_iovlen = count;
        const ssize_t n = sendmsg(receiver.fd, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (n > 0)
            sent += static_cast<std::size_t>(n);
        else
            WaitWritable(receiver.fd);
    }
}

void UdpSendEach(const Receiver& receiver, const Frame& frame)
{
    for (unsigned int i = 0; i < frame.packets; ++i)
    {
        sendto(receiver.fd, frame.bytes.data() + i * PACKET_BYTES, PACKET_BYTES, MSG_DONTWAIT | MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr*>(&receiver.address), sizeof(receiver.address));
    }
}

void UdpSendFrame(const Receiver& receiver, const Frame& frame)
{
    iovec vector = {const_cast<unsigned char*>(frame.bytes.data()), frame.bytes.size()};
    alignas(cmsghdr) unsigned char control[CMSG_SPACE(sizeof(std::uint16_t))] = {};
    msghdr message = {};
    message.msg_name = const_cast<sockaddr_in*>(&receiver.address);
    message.msg_namelen = sizeof(receiver.address);
    message.msg_iov = &vector;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof(control);
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = IPPROTO_UDP;
    header->cmsg_type = UDP_SEGMENT;
    header->cmsg_len = CMSG_LEN(sizeof(std::uint16_t));
    const std::uint16_t size = PACKET_BYTES;
    memcpy(CMSG_DATA(header), &size, sizeof(size));
    sendmsg(receiver.fd, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
}

struct WayRow
{
    const char* name;
    bool tcp;
    void (*send)(const Receiver& receiver, const Frame& frame);
};

const WayRow WAYS[] = {
    {"tcp-send", true, TcpSendEach},
    {"tcp-sendmsg", true, TcpSendFrame},
    {"udp-sendto", false, UdpSendEach},
    {"udp-gso", false, UdpSendFrame},
};

const WayRow* FindWay(const std::string& name)
{
    for (const WayRow& row : WAYS)
    {
        if (name == row.name)
            return &row;
    }
    return nullptr;
}

sockaddr_in BoundLocal(int fd)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    Require(bind(fd, reinterpret_cast<const sockaddr*>(&address), length) == 0, "bind");
    Require(getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0, "getsockname");
    return address;
}

int OpenSocket(int type)
{
    const int fd = socket(AF_INET, type | SOCK_CLOEXEC, 0);
    Require(fd != -1, "socket");
    return fd;
}

// Makes the two ends of each connection.
void Connect(const Options& options, bool tcp, std::vector<Receiver>& senders, std::vector<int>& receivers)
{
    const int listener = tcp ? OpenSocket(SOCK_STREAM) : -1;
    sockaddr_in address = {};
    if (tcp)
    {
        address = BoundLocal(listener);
        Require(listen(listener, 16) == 0, "listen");
    }
    for (unsigned int i = 0; i < options.clients; ++i)
    {
        const int receiver = OpenSocket(tcp ? SOCK_STREAM : SOCK_DGRAM);
        int sender = -1;
        if (tcp)
        {
            Require(connect(receiver, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0, "connect");
            sender = accept(listener, nullptr, nullptr);
            const int on = 1;
            setsockopt(sender, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
        }
        else
        {
            const int bytes = 1 << 20;
            setsockopt(receiver, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
            address = BoundLocal(receiver);
            sender = OpenSocket(SOCK_DGRAM);
        }
        setsockopt(sender, SOL_SOCKET, SO_SNDBUF, &SEND_BUFFER_BYTES, sizeof(SEND_BUFFER_BYTES));
        senders.push_back({sender, address});
        receivers.push_back(receiver);
    }
    if (tcp)
        close(listener);
}

// The process that reads everything away, until it is ended. It ends with its parent in any case.
[[noreturn]] void Drain(const std::vector<int>& receivers)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int epoll = epoll_create1(0);
    for (int fd : receivers)
    {
        epoll_event event = {};
        event.events = EPOLLIN;
        event.data.fd = fd;
        epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &event);
    }
    static unsigned char buffer[256 * 1024];
    for (;;)
    {
        epoll_event events[256];
        const int count = epoll_wait(epoll, events, 256, -1);
        for (int i = 0; i < count; ++i)
        {
            while (recv(events[i].data.fd, buffer, sizeof(buffer), MSG_DONTWAIT) > 0)
            {
            }
        }
    }
}

double Run(const Options& options, const WayRow& way, const std::vector<Receiver>& senders)
{
    const Frame frame = {std::vector<unsigned char>(options.packets * PACKET_BYTES, 0x55), options.packets};
    const unsigned int frames = options.fps * options.seconds;
    const std::uint64_t startNs = NowNs();
    const std::uint64_t cpuBefore = OwnCpuUs();
    for (unsigned int n = 0; n < frames; ++n)
    {
        SleepUntilNs(startNs + n * std::uint64_t{1000000000u} / options.fps);
        for (const Receiver& sender : senders)
            way.send(sender, frame);
    }
    const double packets = static_cast<double>(frames) * options.packets * options.clients;
    return static_cast<double>(OwnCpuUs() - cpuBefore) / packets;
}

[[noreturn]] void ServeHttp(const Options& options)
{
    const int listener = OpenSocket(SOCK_STREAM);
    const sockaddr_in address = BoundLocal(listener);
    Require(listen(listener, 128) == 0, "listen");
    std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(options.bytes) + "\r\n\r\n";
    answer.append(options.bytes, 'x');
    printf("ready port=%u\n", ntohs(address.sin_port));
    fflush(stdout);
    for (;;)
    {
        const int fd = accept(listener, nullptr, nullptr);
        char request[4096];
        if (recv(fd, request, sizeof(request), 0) > 0)
            send(fd, answer.data(), answer.size(), MSG_NOSIGNAL);
        close(fd);
    }
}

Options ReadOptions(int argc, char** argv)
{
    Options options;
    BenchOptions line(USAGE);
    line.Text("way", options.way)
        .Number("clients", options.clients)
        .Number("packets", options.packets)
        .Number("fps", options.fps)
        .Number("seconds", options.seconds)
        .Number("bytes", options.bytes)
        .Read(argc, argv);
    line.Require(FindWay(options.way) != nullptr || options.way == "http");
    line.Require(options.packets - 1 < MAX_PACKETS_PER_FRAME && options.fps != 0 && options.clients != 0);
    return options;
}
} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    RaiseDescriptorLimit();
    if (options.way == "http")
        ServeHttp(options);
    const WayRow& way = *FindWay(options.way);
    std::vector<Receiver> senders;
    std::vector<int> receivers;
    Connect(options, way.tcp, senders, receivers);
    const pid_t child = fork();
    Require(child != -1, "fork");
    if (child == 0)
        Drain(receivers);
    for (int fd : receivers)
        close(fd);
    PrintFigure("cpu_us_per_packet", Run(options, way, senders));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return 0;
}
