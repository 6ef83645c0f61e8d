#include "RtspClient.h"

#include "BenchTools.h"
#include "FrameStamp.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace
{
constexpr int ANSWER_WAIT_MS = 15000;
constexpr std::size_t RTP_HEADER_BYTES = 12;
constexpr std::size_t INTERLEAVE_BYTES = 4;
constexpr unsigned int VIDEO_CLOCK = 90000;

sockaddr_in Local(unsigned short port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

unsigned int Get16(const unsigned char* in)
{
    return static_cast<unsigned int>((in[0] << 8) | in[1]);
}

// A UDP socket on a port of the system's choice. @return -1 on failure
int OpenUdp(unsigned short& port)
{
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int bytes = 1 << 20;
    setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
    sockaddr_in address = Local(0);
    socklen_t length = sizeof(address);
    if (bind(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0)
    {
        close(fd);
        return -1;
    }
    port = ntohs(address.sin_port);
    return fd;
}
} // namespace

void RtpTrack::Take(const unsigned char* packet, std::size_t seen, std::size_t length, std::uint64_t now,
                    MediaCounts& counts)
{
    if (seen < RTP_HEADER_BYTES)
        return;
    const auto sequence = static_cast<std::uint16_t>(Get16(packet + 2));
    const std::uint32_t timestamp = (Get16(packet + 4) << 16) | Get16(packet + 6);
    ++counts.packets;
    counts.bytes += length;
    if (m_started)
        counts.lostPackets += static_cast<std::uint16_t>(sequence - m_nextSequence);
    if (!m_started || timestamp != m_timestamp)
        TakeFrameStart(packet, seen, timestamp, now, counts);
    m_started = true;
    m_nextSequence = static_cast<std::uint16_t>(sequence + 1);
    m_timestamp = timestamp;
}

void RtpTrack::TakeFrameStart(const unsigned char* packet, std::size_t seen, std::uint32_t timestamp, std::uint64_t now,
                              MediaCounts& counts)
{
    if (m_clockStep == 0)
        return;
    ++counts.frames;
    if (m_started)
        counts.missingFrames += (timestamp - m_timestamp + m_clockStep / 2) / m_clockStep - 1;
    // The stamp stands behind the unit's header: one byte of a whole unit, two of a fragment.
    for (std::size_t at : {RTP_HEADER_BYTES + 1, RTP_HEADER_BYTES + 2})
    {
        const std::uint64_t stamp = seen >= at + FRAME_STAMP_BYTES ? ReadFrameStamp(packet + at) : 0;
        if (stamp != 0)
            counts.latenciesMs.push_back(static_cast<double>(now - stamp) / 1e6);
    }
}

RtspClient::RtspClient(const ServerAddress& server, int receiveBuffer)
    : m_server(server), m_receiveBuffer(receiveBuffer)
{
}

RtspClient::~RtspClient()
{
    for (int fd : {m_fd, m_rtpFd, m_rtcpFd})
    {
        if (fd != -1)
            close(fd);
    }
}

bool RtspClient::Connect()
{
    m_fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_fd == -1)
        return false;
    if (m_receiveBuffer != 0)
        setsockopt(m_fd, SOL_SOCKET, SO_RCVBUF, &m_receiveBuffer, sizeof(m_receiveBuffer));
    const int on = 1;
    setsockopt(m_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    const sockaddr_in address = Local(m_server.port);
    return connect(m_fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
}

std::string RtspClient::BaseUrl() const
{
    return "rtsp://127.0.0.1:" + std::to_string(m_server.port) + m_server.path;
}

int RtspClient::Request(const std::string& method, const std::string& url, const std::string& headers)
{
    std::string text = method + " " + url + " RTSP/1.0\r\nCSeq: " + std::to_string(++m_cseq) + "\r\n" + headers;
    if (!m_session.empty())
        text += "Session: " + m_session + "\r\n";
    text += "\r\n";
    if (send(m_fd, text.data(), text.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(text.size()))
        return 0;

    int status = 0;
    std::string answer;
    if (!ReadAnswer(status, answer))
        return 0;
    const std::size_t session = answer.find("\r\nSession: ");
    if (session != std::string::npos)
        m_session = answer.substr(session + 11, answer.find_first_of(";\r", session + 11) - session - 11);
    return status;
}

bool RtspClient::FillInput()
{
    pollfd ready = {m_fd, POLLIN, 0};
    if (poll(&ready, 1, ANSWER_WAIT_MS) != 1)
        return false;
    char buffer[4096];
    const ssize_t got = recv(m_fd, buffer, sizeof(buffer), 0);
    if (got <= 0)
        return false;
    m_input.append(buffer, static_cast<std::size_t>(got));
    return true;
}

bool RtspClient::ReadAnswer(int& status, std::string& headers)
{
    std::size_t end = std::string::npos;
    while ((end = m_input.find("\r\n\r\n")) == std::string::npos)
    {
        if (!FillInput())
            return false;
    }
    headers = m_input.substr(0, end + 4);
    std::size_t body = 0;
    const std::size_t contentLength = headers.find("\r\nContent-Length: ");
    if (contentLength != std::string::npos)
        body = strtoul(headers.c_str() + contentLength + 18, nullptr, 10);
    while (m_input.size() < headers.size() + body)
    {
        if (!FillInput())
            return false;
    }
    m_input.erase(0, headers.size() + body);
    status = headers.compare(0, 9, "RTSP/1.0 ") == 0 ? atoi(headers.c_str() + 9) : 0;
    return true;
}

bool RtspClient::SetupUdp()
{
    unsigned short rtpPort = 0;
    unsigned short rtcpPort = 0;
    m_rtpFd = OpenUdp(rtpPort);
    m_rtcpFd = OpenUdp(rtcpPort);
    if (m_rtpFd == -1 || m_rtcpFd == -1)
        return false;
    const std::string ports = std::to_string(rtpPort) + "-" + std::to_string(rtcpPort);
    return Request("SETUP", BaseUrl() + "/trackID=0", "Transport: RTP/AVP;unicast;client_port=" + ports + "\r\n") ==
           200;
}

bool RtspClient::Play(Transport transport, unsigned int fps)
{
    m_transport = transport;
    m_video.ExpectStep(VIDEO_CLOCK / fps);
    if (Request("DESCRIBE", BaseUrl(), "Accept: application/sdp\r\n") != 200)
        return false;
    const bool ready =
        transport == Transport::Udp
            ? SetupUdp()
            : Request("SETUP", BaseUrl() + "/trackID=0", "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n") == 200;
    return ready && Request("PLAY", BaseUrl()) == 200;
}

void RtspClient::Teardown()
{
    const std::string text = "TEARDOWN " + BaseUrl() + " RTSP/1.0\r\nCSeq: " + std::to_string(++m_cseq) + "\r\n\r\n";
    send(m_fd, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
}

bool RtspClient::TakeMedia(MediaCounts& counts)
{
    if (m_transport == Transport::Udp)
    {
        TakeDatagrams(counts);
        return true;
    }
    static unsigned char buffer[256 * 1024];
    if (!m_input.empty())
    {
        const std::string early = std::move(m_input);
        m_input.clear();
        TakeInterleaved(reinterpret_cast<const unsigned char*>(early.data()), early.size(), NowNs(), counts);
    }
    const ssize_t got = recv(m_fd, buffer, sizeof(buffer), MSG_DONTWAIT);
    if (got > 0)
        TakeInterleaved(buffer, static_cast<std::size_t>(got), NowNs(), counts);
    return got > 0 || (got == -1 && (errno == EAGAIN || errno == EINTR));
}

void RtspClient::TakeDatagrams(MediaCounts& counts)
{
    constexpr unsigned int BATCH = 64;
    static unsigned char buffers[BATCH][2048];
    mmsghdr messages[BATCH] = {};
    iovec vectors[BATCH];
    for (unsigned int i = 0; i < BATCH; ++i)
    {
        vectors[i] = {buffers[i], sizeof(buffers[i])};
        messages[i].msg_hdr.msg_iov = &vectors[i];
        messages[i].msg_hdr.msg_iovlen = 1;
    }
    const int got = recvmmsg(m_rtpFd, messages, BATCH, MSG_DONTWAIT, nullptr);
    const std::uint64_t now = NowNs();
    for (int i = 0; i < got; ++i)
        TakePacket(buffers[i], messages[i].msg_len, messages[i].msg_len, now, counts);
}

void RtspClient::TakeInterleaved(const unsigned char* data, std::size_t length, std::uint64_t now, MediaCounts& counts)
{
    while (length > 0)
    {
        if (m_left == 0 && m_headLength < INTERLEAVE_BYTES)
        {
            m_head[m_headLength++] = *data++;
            --length;
            if (m_headLength == INTERLEAVE_BYTES)
                m_left = Get16(m_head + 2);
            continue;
        }
        const std::size_t take = std::min(length, m_left);
        const std::size_t keep = std::min(take, sizeof(m_head) - m_headLength);
        memcpy(m_head + m_headLength, data, keep);
        m_headLength += keep;
        data += take;
        length -= take;
        m_left -= take;
        if (m_left > 0)
            return;
        // Only the first channel carries RTP; a text answer between the packets would show as a wrong mark.
        if (m_head[0] == '$' && m_head[1] == 0)
            TakePacket(m_head + INTERLEAVE_BYTES, m_headLength - INTERLEAVE_BYTES, Get16(m_head + 2), now, counts);
        m_headLength = 0;
    }
}

void RtspClient::TakePacket(const unsigned char* packet, std::size_t seen, std::size_t length, std::uint64_t now,
                            MediaCounts& counts)
{
    if (m_lastPacketNs != 0)
        counts.longestGapMs = std::max(counts.longestGapMs, static_cast<double>(now - m_lastPacketNs) / 1e6);
    m_lastPacketNs = now;
    m_video.Take(packet, seen, length, now, counts);
}
