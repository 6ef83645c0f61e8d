// RtspClient.h: one RTSP client that counts what it gets (RFC 2326, RFC 3550). Local to one thread.
//
// The dialogue blocks, with a time limit; the media do not.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

enum class Transport
{
    Tcp,
    Udp,
};

struct ServerAddress
{
    unsigned short port; // on 127.0.0.1
    std::string path;    // "/live/ch1/main"
};

/// What all clients counted together.
struct MediaCounts
{
    std::uint64_t packets = 0;
    std::uint64_t bytes = 0;         // RTP packets with their headers
    std::uint64_t lostPackets = 0;   // gaps in the sequence numbers
    std::uint64_t frames = 0;        // video
    std::uint64_t missingFrames = 0; // gaps in the time stamps of video
    double longestGapMs = 0;         // between two packets of one client
    std::vector<double> latenciesMs; // from a frame's stamp to its first packet here
};

/// The packets of one track.
class RtpTrack
{
public:
    /// @param ticks  from one video frame to the next
    void ExpectStep(std::uint32_t ticks) { m_clockStep = ticks; }

    /// @param packet   the first `seen` bytes of a packet of `length`
    /// @param now      when it came, in ns of the monotonic clock
    void Take(const unsigned char* packet, std::size_t seen, std::size_t length, std::uint64_t now,
              MediaCounts& counts);

private:
    void TakeFrameStart(const unsigned char* packet, std::size_t seen, std::uint32_t timestamp, std::uint64_t now,
                        MediaCounts& counts);

    std::uint32_t m_clockStep = 0; // 0: frames are not counted
    bool m_started = false;
    std::uint16_t m_nextSequence = 0;
    std::uint32_t m_timestamp = 0;
};

/// Bytes of a packet that RtpTrack looks at.
constexpr std::size_t RTP_SEEN_BYTES = 48;

class RtspClient
{
public:
    /// @param receiveBuffer  SO_RCVBUF of the connection; 0: as the system has it
    explicit RtspClient(const ServerAddress& server, int receiveBuffer = 0);
    ~RtspClient();
    RtspClient(const RtspClient&) = delete;
    RtspClient& operator=(const RtspClient&) = delete;

    bool Connect();

    /// Sends a request and reads its answer. @return the status, 0 when none came
    int Request(const std::string& method, const std::string& url, const std::string& headers = "");

    /// DESCRIBE, SETUP of the video, PLAY. @param fps  of the video, for counting frames
    bool Play(Transport transport, unsigned int fps);

    void Teardown();

    /// Descriptor on which the media come.
    int MediaFd() const { return m_transport == Transport::Tcp ? m_fd : m_rtpFd; }

    /// Reads what is there. @return false when the connection ended
    bool TakeMedia(MediaCounts& counts);

    std::string BaseUrl() const;

private:
    bool ReadAnswer(int& status, std::string& headers);
    bool FillInput();
    bool SetupUdp();
    void TakeInterleaved(const unsigned char* data, std::size_t length, std::uint64_t now, MediaCounts& counts);
    void TakeDatagrams(MediaCounts& counts);
    void TakePacket(const unsigned char* packet, std::size_t seen, std::size_t length, std::uint64_t now,
                    MediaCounts& counts);

    const ServerAddress m_server;
    const int m_receiveBuffer;
    int m_fd = -1;
    int m_rtpFd = -1;
    int m_rtcpFd = -1;
    unsigned int m_cseq = 0;
    std::string m_session;
    std::string m_input; // text received and not yet read
    Transport m_transport = Transport::Tcp;

    RtpTrack m_video;
    std::uint64_t m_lastPacketNs = 0;

    // The interleaved packet under way: its header and first bytes, and how many are still to come.
    unsigned char m_head[4 + RTP_SEEN_BYTES];
    std::size_t m_headLength = 0;
    std::size_t m_left = 0;
};
