// RTSP_ClientSessionSetup.cpp: the SETUP request (RFC 2326, 10.4 and 12.39) and the probe of a client's connection.

#include "RTSP_ClientSession.h"

#include "NC_Socket.h"
#include "PFHelper.h"
#include "PubHelper.h"
#include "RTSP_Console.h"
#include "RTSP_RTCPLink.h"
#include "RTSP_RTPLink.h"
#include "RTSP_Server.h"
#include "RTSP_SessionTexts.h"
#include "RtspProtocol.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace
{

constexpr const char* SESSION_TIMEOUT = ";timeout=60";
constexpr int PROBE_BYTES = 1400;

std::string RoundTripLine(const char* options, unsigned int answerTick, unsigned int sendTick)
{
    char line[160];
    std::snprintf(line, sizeof(line), "%sx-Dynamic-Rate: 1;rtt=%" PRId32 "\r\n", options,
                  static_cast<std::int32_t>(answerTick - sendTick));
    return line;
}

} // namespace

/// @return 0 with the answer ready; 1 when the probe was sent instead of an answer; -1 with a refusal ready
int CRTSP_ClientSession::handleCmd_SETUP(CRtspProtocol* protocol)
{
    const unsigned int cseq = protocol->GetCSeq();
    const char* text = protocol->GetProtocolContent();
    const int trackId = protocol->GetTrackID();
    RTSP_LogLine(__FILE__, __LINE__, "rtsp setup, sock = %d, track = %d", m_sock, trackId);
    if (trackId < 0 || trackId > 2)
    {
        handleCmd_notFound(cseq);
        return -1;
    }
    const RTSP_STREAM_CFG& config = trackId == 0 ? m_profile.video : m_profile.audio;

    if (m_dynamicRate == DYNAMIC_RATE_ASKED)
        m_dynamicRate = DYNAMIC_RATE_DONE;
    else if (m_dynamicRate == DYNAMIC_RATE_NONE && RtspAsksDynamicRate(text))
        m_dynamicRate = DYNAMIC_RATE_ASKED;
    RTSP_TRANSPORT transport{};
    if (parseTransportHeader(text, m_nextChannel, transport) != 0)
    {
        handleCmd_unsupportedTransport(cseq);
        return -1;
    }
    if (m_dynamicRate == DYNAMIC_RATE_ASKED)
    {
        SendProbe();
        return 1;
    }
    double start = 0;
    double end = 0;
    parseRangeHeader(text, start, end); // accepted and not used: every PLAY begins at the present
    if (transport.mode == STREAMING_NONE)
    {
        handleCmd_unsupportedTransport(cseq);
        return -1;
    }
    if (!SetUpTrack(config, transport, cseq, text))
    {
        handleCmd_unknownError(cseq);
        return -1;
    }
    m_state = STATE_READY;
    return 0;
}

/// @return false when the track is set up already, or no ports or no group can be had
bool CRTSP_ClientSession::SetUpTrack(const RTSP_STREAM_CFG& config, const RTSP_TRANSPORT& transport, unsigned int cseq,
                                     const char* request)
{
    const unsigned char key = static_cast<unsigned char>(config.frameType);
    if (m_subSessionStreamMap.count(key) != 0)
        return false;
    auto track = std::make_unique<SUB_SESSION_STREAM_INFO>(&config, transport.mode);
    const std::string source = SourceAddress(request);
    if (transport.mode == STREAMING_TCP)
        SetUpTcp(*track, transport, cseq, source);
    else if (!SetUpUdp(*track, transport, cseq, source))
        return false;
    m_subSessionStreamMap[key] = std::move(track);
    return true;
}

/// The address by which the client knows us, else the connection's own.
std::string CRTSP_ClientSession::SourceAddress(const char* request) const
{
    std::string host;
    if (GetLocalIPFromRequest(request, host))
        return host;
    char address[16];
    GetSockName(address, nullptr);
    return address;
}

/// Random bytes that a client answers with a 501, from which its round trip would be known.
void CRTSP_ClientSession::SendProbe()
{
    char header[128];
    const int headerLength = std::snprintf(
        header, sizeof(header),
        "OPTIONS * RTSP/1.0\r\nContent-Type: application/x-random-data\r\nContent-Length: %d\r\n\r\n", PROBE_BYTES);
    std::string probe(header, static_cast<std::size_t>(headerLength));
    srandom(static_cast<unsigned int>(std::time(nullptr)));
    while (probe.size() < static_cast<std::size_t>(headerLength) + PROBE_BYTES)
    {
        const std::uint32_t word = static_cast<std::uint32_t>(std::rand());
        probe.append(reinterpret_cast<const char*>(&word), sizeof(word));
    }
    SendCmdData(probe.data(), static_cast<int>(probe.size()));
    m_probeSendTick = CPFHelper::GetTickCount();
}

/// @return false when no ports or no group can be had
bool CRTSP_ClientSession::SetUpUdp(SUB_SESSION_STREAM_INFO& track, const RTSP_TRANSPORT& transport, unsigned int cseq,
                                   const std::string& source)
{
    char group[16];
    NC_inet_ntoa(track.config.multicastAddress, group);
    const char* destination = transport.multicast ? group : m_peerAddress;
    if (m_server.Create_RTP_RTCP_Link_UDP(this, transport.multicast ? 0 : 1, &track.rtcpLink, &track.rtpLink,
                                          destination, transport.port1, transport.port2, &track.config) != 0)
        return false;

    const unsigned short rtpPort = track.rtpLink->GetPort();
    const unsigned short rtcpPort = track.rtcpLink->GetPort();
    if (transport.multicast)
    {
        AnswerSetup(cseq, "",
                    MulticastTransport(destination, source, transport.port1, transport.port2, rtpPort, rtcpPort,
                                       track.config.ttl),
                    "");
        return true;
    }
    std::string dynamicRate;
    if (m_dynamicRate == DYNAMIC_RATE_DONE)
        dynamicRate = RoundTripLine("x-Transport-Options: late-tolerance=1.400000\r\nx-Retransmit: our-retransmit\r\n",
                                    m_probeAnswerTick, m_probeSendTick);
    AnswerSetup(cseq, "",
                UnicastTransport(destination, source, transport.port1, transport.port2, rtpPort, rtcpPort,
                                 track.rtpLink->GetSSRC()),
                dynamicRate);
    return true;
}

void CRTSP_ClientSession::SetUpTcp(SUB_SESSION_STREAM_INFO& track, const RTSP_TRANSPORT& transport, unsigned int cseq,
                                   const std::string& source)
{
    const unsigned int ssrc = static_cast<unsigned int>(PUB_Rand());
    const unsigned int initialTimestamp = static_cast<unsigned int>(PUB_Rand());
    // The answer repeats the client's numbers as they are; the packets carry their low byte.
    track.tcp.packUp = std::make_unique<CRTSP_RTPPackUp>(STREAMING_TCP, track.config.frameType, track.config.encodeType,
                                                         track.config.payloadType, track.config.clockRate, ssrc,
                                                         initialTimestamp, static_cast<unsigned char>(transport.chn1));
    track.tcp.rtpChannel = static_cast<int>(transport.chn1);
    track.tcp.rtcpChannel = static_cast<int>(transport.chn2);
    m_tcpData = true;

    std::string dynamicRate;
    if (m_dynamicRate == DYNAMIC_RATE_DONE)
        dynamicRate =
            RoundTripLine("x-Transport-Options: late-tolerance=1.400000\r\n", m_probeAnswerTick, m_probeSendTick);
    AnswerSetup(cseq, dynamicRate, InterleavedTransport(m_peerAddress, source, transport.chn1, transport.chn2, ssrc),
                "");
}

/// The lines of the dynamic rate stand in front of the date for TCP, and behind the transport for UDP.
void CRTSP_ClientSession::AnswerSetup(unsigned int cseq, const std::string& beforeDate, const std::string& transport,
                                      const std::string& behindTransport)
{
    Answer(cseq,
           "RTSP/1.0 200 OK\r\nServer: %s\r\nCSeq: %u\r\nLast-Modified: %s\r\nCache-Control: must-revalidate\r\n"
           "%s%s%s%sSession: %s%s\r\n\r\n",
           RTSP_SERVER_NAME, cseq, RTSP_LAST_MODIFIED, beforeDate.c_str(), DateHeader().c_str(), transport.c_str(),
           behindTransport.c_str(), GetSetupSessionID(), SESSION_TIMEOUT);
}
