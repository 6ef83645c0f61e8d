// Tracks over UDP: packets, reports, ports.

#include "ByteOrder.h"
#include "NetworkNamespace.h"
#include "RTSP_ClientSession.h"
#include "RTSP_RTCPLink.h"
#include "RTSP_RTCPLink_UDP_Multicast.h"
#include "RTSP_RTPLink.h"
#include "RTSP_RTPLink_UDP_Multicast.h"
#include "RtspWorld.h"
#include "ShareSDK.h"

#include <arpa/inet.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

const unsigned char* Bytes(const std::string& text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

class RtspUdp : public ::testing::Test
{
protected:
    RtspUdp()
    {
        world.BeginLive();
        peer.Send("DESCRIBE " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
        peer.ReadAnswer();
    }
    void SetUpTrack(int track)
    {
        peer.Send("SETUP " + world.Url("/live/one/trackID=" + std::to_string(track)) +
                  " RTSP/1.0\r\nCSeq: 2\r\nTransport: RTP/AVP;unicast;client_port=" + std::to_string(rtp.Port()) + "-" +
                  std::to_string(rtcp.Port()) + "\r\n\r\n");
        setupAnswer = peer.ReadAnswer();
    }
    void Play(int track = 0)
    {
        SetUpTrack(track);
        peer.Send("PLAY " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 3\r\n\r\n");
        peer.ReadAnswer();
    }
    int ServerPort(int which) const
    {
        int first = 0;
        int second = 0;
        const std::size_t begin = setupAnswer.find("server_port=");
        std::sscanf(setupAnswer.c_str() + begin, "server_port=%d-%d", &first, &second);
        return which == 0 ? first : second;
    }

    static int OpenDescriptors()
    {
        const std::filesystem::directory_iterator descriptors("/proc/self/fd");
        return static_cast<int>(std::distance(begin(descriptors), end(descriptors)));
    }

    RtspWorld world;
    Peer peer = world.Connect();
    UdpPeer rtp{[this]
                {
                    world.Round();
                }};
    UdpPeer rtcp{[this]
                 {
                     world.Round();
                 }};
    std::string setupAnswer;
};

TEST_F(RtspUdp, PacketsComeWithoutTheInterleaveHeader)
{
    Play();
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    const std::string sps = rtp.Read();
    EXPECT_EQ(16u, sps.size());
    EXPECT_EQ(std::string("\x80\x60", 2), sps.substr(0, 2));
    EXPECT_EQ(std::string("\x67\x42\xc0\x1e", 4), sps.substr(12));
    EXPECT_EQ(16u, rtp.Read().size());
    EXPECT_EQ(std::string("\x80\xe0", 2), rtp.Read().substr(0, 2));
}

TEST_F(RtspUdp, ALargeFrameComesWholeAndInOrder)
{
    Play();
    world.PushVideo(1, 0, KeyFrame(60000), true, 2000000);
    std::uint16_t next = 0;
    std::size_t payload = 0;
    for (bool first = true, last = false; !last; first = false)
    {
        const std::string packet = rtp.Read();
        ASSERT_GE(packet.size(), 12u);
        ASSERT_LE(packet.size(), 1472u);
        const std::uint16_t sequence = GetBE16(Bytes(packet) + 2);
        if (!first)
        {
            ASSERT_EQ(next, sequence);
        }
        next = static_cast<std::uint16_t>(sequence + 1);
        last = (packet[1] & 0x80) != 0;
        if (packet.size() > 16)
            payload += packet.size() - 14;
    }
    EXPECT_EQ(59999u, payload);
}

TEST_F(RtspUdp, AReportFollowsTheFirstPacket)
{
    Play();
    world.PushVideo(1, 0, KeyFrame(), true, 1700000000123456ULL);
    const std::string first = rtp.Read();
    const std::string report = rtcp.Read();
    ASSERT_GE(report.size(), 56u);
    EXPECT_EQ(std::string("\x80\xc8\x00\x06", 4), report.substr(0, 4));
    EXPECT_EQ(first.substr(8, 4), report.substr(4, 4));                  // SSRC
    EXPECT_EQ(1700000000u + 0x83AA7E80u, GetBE32(Bytes(report) + 8));    // NTP seconds
    EXPECT_EQ(123456u, GetBE32(Bytes(report) + 12));                     // microseconds, as they are
    EXPECT_EQ(first.substr(4, 4), report.substr(16, 4));                 // RTP timestamp
    EXPECT_EQ(1u, GetBE32(Bytes(report) + 20));                          // packets: the one that went out
    EXPECT_EQ(4u, GetBE32(Bytes(report) + 24));                          // octets: the SPS
    EXPECT_EQ(std::string("\x81\xca\x00\x06", 4), report.substr(28, 4)); // source description
    EXPECT_EQ(std::string("\x01\x11", 2), report.substr(36, 2));         // CNAME of 17 bytes
    EXPECT_EQ(56u, report.size());
}

TEST_F(RtspUdp, AReportFollowsWhenMoreThanSevenSecondsOfMediaHavePassed)
{
    Play();
    world.PushVideo(1, 0, KeyFrame(), true, 1000000);
    rtcp.Read();
    world.PushVideo(1, 0, DeltaFrame(), false, 1000000 + 6999999); // not yet
    world.Rounds(3);
    world.PushVideo(1, 0, KeyFrame(), true, 1000000 + 7000000);
    const std::string report = rtcp.Read();
    EXPECT_EQ(8u, GetBE32(Bytes(report) + 8) - 0x83AA7E80u);
    EXPECT_EQ(5u, GetBE32(Bytes(report) + 20)); // 3 of the first frame, 1, and the first of this frame
}

TEST_F(RtspUdp, SoundHasItsOwnLink)
{
    Play(1);
    world.PushAudio(1, 0, AudioFrame(), 2000000);
    const std::string packet = rtp.Read();
    EXPECT_EQ(332u, packet.size());
    EXPECT_EQ(std::string("\x80\x88", 2), packet.substr(0, 2));
}

// By default a live audio track has the clock 0, so its time stamps stand still; clients see it so.
TEST_F(RtspUdp, TheTimeStampOfLiveSoundStandsStill)
{
    Play(1);
    world.PushAudio(1, 0, AudioFrame(), 2000000);
    world.PushAudio(1, 0, AudioFrame(), 2040000);
    const std::string first = rtp.Read();
    EXPECT_EQ(first.substr(4, 4), rtp.Read().substr(4, 4));
}

TEST_F(RtspUdp, TheTimeStampOfLiveSoundAdvancesWhenStandardRtspIsChosen)
{
    CPolicy::SetCurrent(CPolicy(1));
    peer = world.Connect();
    peer.Send("DESCRIBE " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    peer.ReadAnswer();
    Play(1);
    world.PushAudio(1, 0, AudioFrame(), 2000000);
    world.PushAudio(1, 0, AudioFrame(), 2040000);
    const std::uint32_t first = GetBE32(Bytes(rtp.Read()) + 4);
    EXPECT_EQ(first + 320, GetBE32(Bytes(rtp.Read()) + 4));
}

TEST_F(RtspUdp, WhatAClientSendsToTheLinksIsReadAndDropped)
{
    Play();
    for (int i = 0; i < 20; ++i)
    {
        rtp.SendTo(static_cast<unsigned short>(ServerPort(0)), "punch");
        rtcp.SendTo(static_cast<unsigned short>(ServerPort(1)), std::string(2000, 'r'));
    }
    ::testing::internal::CaptureStderr();
    world.Rounds(50);
    const std::string lines = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(0u, lines.find("warning: "));
    EXPECT_NE(std::string::npos, lines.find("   why recv data? \n"));
    EXPECT_EQ(std::string::npos, lines.find("RTCP")); // of reports nothing is told
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    EXPECT_EQ(16u, rtp.Read().size());
}

TEST_F(RtspUdp, AClientThatGoesTakesItsLinksAlong)
{
    const int before = OpenDescriptors();
    SetUpTrack(0);
    EXPECT_EQ(before + 2, OpenDescriptors());
    peer.Close();
    world.Rounds(4);
    EXPECT_EQ(before - 2, OpenDescriptors()); // both ends of the connection
}

TEST_F(RtspUdp, NoTwoTracksShareAPort)
{
    SetUpTrack(0);
    const int port = ServerPort(0);
    while (world.server->NextPort() != port)
        world.server->IncreasePort();
    SetUpTrack(1);
    ASSERT_EQ("RTSP/1.0 200 OK", setupAnswer.substr(0, 15));
    EXPECT_NE(port, ServerPort(0));
    EXPECT_NE(port, ServerPort(1));
}

// A client that asked for the frame first waits for a key frame and so keeps it from those behind it.
TEST_F(RtspUdp, AWaitingClientKeepsFramesFromThoseBehindIt)
{
    Play();
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    world.Rounds(3);
    RTSP_MANAGER_KEY key{1, 0, NETNS::RTSP_FRAME_VIDEO};
    CSharedDataList* behind = world.data.CreateSharedDataList(key.id, key.stream, key.type, -1, 2000);
    world.PushVideo(1, 0, DeltaFrame(), false, 2040000); // the new list refuses it, the playing one has it
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(rtp.Read().empty());
    EXPECT_EQ(0, behind->Size());
    world.data.DelSharedDataList(behind);
}

class RtspPorts : public ::testing::Test
{
protected:
    RtspWorld world;
};

TEST_F(RtspPorts, CountUpByOneFrom20000)
{
    EXPECT_EQ(20000, world.server->NextPort());
    world.server->IncreasePort();
    EXPECT_EQ(20001, world.server->NextPort());
}

TEST_F(RtspPorts, GoBackTo20000Behind49999)
{
    while (world.server->NextPort() != 49999)
        world.server->IncreasePort();
    world.server->IncreasePort();
    EXPECT_EQ(20000, world.server->NextPort());
}

TEST_F(RtspPorts, AUnicastSocketIsBoundToAnyAddressWithItsBuffer)
{
    int sock = world.server->Create_A_Valid_Sock(1, "127.0.0.1", 6000);
    char ip[16];
    unsigned short port = 0;
    EXPECT_EQ(0, NC_GetSockName(sock, ip, &port));
    EXPECT_STREQ("0.0.0.0", ip);
    EXPECT_GE(port, 20000); // others on this machine may have the first ones
    EXPECT_EQ(port + 1, world.server->NextPort());
    int bytes = 0;
    socklen_t length = sizeof(bytes);
    getsockopt(sock, SOL_SOCKET, SO_SNDBUF, &bytes, &length);
    EXPECT_EQ(2 * 0x20000, bytes); // the kernel tells twice what was asked for
    NC_CloseSocket(sock);
}

TEST_F(RtspPorts, AGroupIsJoinedWithoutLoopAndBoundToTheClientsPort)
{
    if (!CNetworkNamespace::Enter() || !CNetworkNamespace::AddInterface("eth0", "10.1.0.5/24") ||
        !CNetworkNamespace::Ip("route add default dev eth0"))
        GTEST_SKIP() << "no network of its own";
    int sock = world.server->Create_A_Valid_Sock(0, "239.1.2.3", 6000);
    ASSERT_NE(-1, sock);
    char ip[16];
    unsigned short port = 0;
    EXPECT_EQ(0, NC_GetSockName(sock, ip, &port));
    EXPECT_STREQ("239.1.2.3", ip);
    EXPECT_EQ(6000, port);
    int loops = -1;
    socklen_t length = sizeof(loops);
    getsockopt(sock, IPPROTO_IP, IP_MULTICAST_LOOP, &loops, &length);
    EXPECT_EQ(0, loops);
    std::ifstream groups("/proc/self/net/igmp");
    const std::string joined((std::istreambuf_iterator<char>(groups)), std::istreambuf_iterator<char>());
    EXPECT_NE(std::string::npos, joined.find("030201EF")); // as the kernel prints 239.1.2.3
    EXPECT_EQ(20000, world.server->NextPort());            // none was used
    NC_CloseSocket(sock);
}

#ifndef __SANITIZE_ADDRESS__ // the sanitizer opens a pipe to check a pointer, and takes a failure for a bad pointer
// The packets' socket alone is no use: it goes with the second one that cannot be had.
TEST_F(RtspPorts, WithoutASocketForReportsThereIsNoneForPackets)
{
    ::testing::internal::CaptureStderr(); // it needs descriptors itself
    const int next = dup(0);
    close(next);
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit one{static_cast<rlim_t>(next) + 1, before.rlim_max};
    const RTSP_STREAM_CFG config;
    CRTSP_RTPLink* rtp = reinterpret_cast<CRTSP_RTPLink*>(this);
    CRTSP_RTCPLink* rtcp = reinterpret_cast<CRTSP_RTCPLink*>(this);
    setrlimit(RLIMIT_NOFILE, &one);
    EXPECT_EQ(-1, world.server->Create_RTP_RTCP_Link_UDP(nullptr, 1, &rtcp, &rtp, "127.0.0.1", 1, 2, &config));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(nullptr, rtp);
    EXPECT_EQ(nullptr, rtcp);
    const int after = dup(0);
    close(after);
    EXPECT_EQ(next, after);
    EXPECT_EQ(-1, world.scheduler.DelSockHandler(next));
    EXPECT_EQ("RTP sock " + std::to_string(next) + "\n", ::testing::internal::GetCapturedStderr());
}
#endif

TEST_F(RtspPorts, AFailedGroupLeavesNoSocketOpen)
{
    const int before = dup(0);
    close(before);
    EXPECT_EQ(-1, world.server->Create_A_Valid_Sock(0, "0.0.0.0", 6000));
    const int after = dup(0);
    close(after);
    EXPECT_EQ(before, after);
}

TEST_F(RtspPorts, BothOutputsAreAskedFor)
{
    const RTSP_STREAM_CFG config;
    CRTSP_RTPLink* rtp = nullptr;
    CRTSP_RTCPLink* rtcp = nullptr;
    EXPECT_DEATH(world.server->Create_RTP_RTCP_Link_UDP(nullptr, 1, nullptr, &rtp, "127.0.0.1", 1, 2, &config), "");
    EXPECT_DEATH(world.server->Create_RTP_RTCP_Link_UDP(nullptr, 1, &rtcp, nullptr, "127.0.0.1", 1, 2, &config), "");
}

/// The shared links, made on plain sockets: no group is joined.
class RtspMulticast : public ::testing::Test
{
protected:
    CRTSP_RTPLink* MakeRtp()
    {
        const int sock = world.server->Create_A_Valid_Sock(1, "127.0.0.1", 0);
        sockets.push_back(sock);
        return CRTSP_RTPLink_UDP_Multicast::Create_RTSP_RTPLink_UDP_Multicast(
            {nullptr, htonl(INADDR_LOOPBACK), receiver.Port(), {}, 1, 1, world.scheduler, sock});
    }
    CRTSP_RTCPLink* MakeRtcp()
    {
        const int sock = world.server->Create_A_Valid_Sock(1, "127.0.0.1", 0);
        sockets.push_back(sock);
        return CRTSP_RTCPLink_UDP_Multicast::Create_RTSP_RTCPLink_UDP_Multicast(
            {nullptr, htonl(INADDR_LOOPBACK), reports.Port(), 0, 1, world.scheduler, sock, 0});
    }
    CSharedDataList* MakeList() { return world.data.CreateSharedDataList(1, 0, NETNS::RTSP_FRAME_VIDEO, -1, 2000); }

    RtspWorld world;
    UdpPeer receiver{[this]
                     {
                         world.Round();
                     }};
    UdpPeer reports{[this]
                    {
                        world.Round();
                    }};
    std::vector<int> sockets;
};

TEST_F(RtspMulticast, ALaterClientSharesTheLink)
{
    CRTSP_RTPLink* first = MakeRtp();
    CRTSP_RTPLink* second = MakeRtp();
    EXPECT_EQ(first, second);
    second->Destroy();
    EXPECT_NE(0, first->GetPort()); // still open
    first->Destroy();
    EXPECT_EQ(0, close(sockets[1])); // the second client's socket had nothing on it
}

TEST_F(RtspMulticast, AClientBehindTheLastOneGetsALinkOfItsOwn)
{
    MakeRtp()->Destroy();
    MakeRtcp()->Destroy();
    CRTSP_RTPLink* rtp = MakeRtp();
    CRTSP_RTCPLink* rtcp = MakeRtcp();
    EXPECT_NE(0, rtp->GetPort());
    EXPECT_NE(0, rtcp->GetPort());
    rtp->Destroy();
    rtcp->Destroy();
}

TEST_F(RtspMulticast, StartsAndStopsAreCountedOnTheConsole)
{
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE); // the console lines alone
    CRTSP_RTCPLink* rtcp = MakeRtcp();
    CRTSP_RTPLink* rtp = MakeRtp();
    ::testing::internal::CaptureStderr();
    for (int i = 0; i < 2; ++i)
    {
        rtp->RTSP_RTPLink_Start(MakeList(), rtcp);
        rtcp->RTSP_RTCPLink_Start(rtp);
    }
    for (int i = 0; i < 2; ++i)
    {
        rtp->RTSP_RTPLink_Stop();
        rtcp->RTSP_RTCPLink_Stop();
    }
    EXPECT_EQ("m_NuRTPStart = 1\nm_NuRTCPStart = 1\nm_NuRTPStart = 2\nm_NuRTCPStart = 2\n"
              "m_NuRTPStart = 1\nm_NuRTCPStart = 1\nm_NuRTPStart = 0\nm_NuRTCPStart = 0\n",
              ::testing::internal::GetCapturedStderr());
    ::testing::internal::CaptureStderr();
    char buffer[16];
    EXPECT_EQ(0, rtp->RecvData(buffer, sizeof(buffer)));
    EXPECT_EQ(0, rtcp->RecvData(buffer, sizeof(buffer)));
    const std::string lines = ::testing::internal::GetCapturedStderr();
    const std::size_t packets = lines.find("   why recv data? \n");
    EXPECT_EQ(0u, lines.find("warning: "));
    EXPECT_NE(std::string::npos, packets);
    EXPECT_NE(std::string::npos, lines.find("   recv RTCP data \n", packets));
    SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    rtcp->Destroy();
    rtp->Destroy();
}

// The list of a further client would only fill: it is given back, and the link has its own one.
TEST_F(RtspMulticast, TheFirstStopLeavesTheStreamFlowing)
{
    world.BeginLive();
    CRTSP_RTCPLink* rtcp = MakeRtcp();
    CRTSP_RTPLink* rtp = MakeRtp();
    rtp->RTSP_RTPLink_Start(MakeList(), rtcp);
    rtcp->RTSP_RTCPLink_Start(rtp);
    MakeRtp()->RTSP_RTPLink_Start(MakeList(), rtcp);
    rtp->RTSP_RTPLink_Stop();
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    EXPECT_EQ(16u, receiver.Read().size());
    EXPECT_EQ(56u, reports.Read().size());
    rtp->RTSP_RTPLink_Stop();
    EXPECT_FALSE(rtp->HasDataToSend());
    rtcp->Destroy();
    rtp->Destroy();
    rtp->Destroy();
    close(sockets[2]);
}

/// Sessions on one end of a socket pair, made for links alone.
class RtspLinkTimeOut : public RtspMulticast
{
protected:
    RtspLinkTimeOut() { SHARESDK_SetLogLevel(SHARESDK_LOG_NONE); } // the console lines alone
    ~RtspLinkTimeOut() override { SHARESDK_SetLogLevel(SHARESDK_LOG_ALL); }

    struct Client
    {
        CRTSP_ClientSession* session;
        int sock; // the session's
        int far;
    };
    Client MakeClient()
    {
        int pair[2];
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair);
        return {CRTSP_ClientSession::Create_RTSP_ClientSession(world.scheduler, *world.server, pair[0], ""), pair[0],
                pair[1]};
    }
    static bool IsEnded(const Client& client)
    {
        char byte = 0;
        const bool ended = recv(client.far, &byte, 1, MSG_DONTWAIT) == 0;
        close(client.far);
        return ended;
    }
    /// The shared link of its kind, with one more user.
    CRTSP_SockHandler* Share(bool ofReports, CRTSP_ClientSession* session)
    {
        const unsigned int ip = htonl(INADDR_LOOPBACK);
        sockets.push_back(world.server->Create_A_Valid_Sock(1, "127.0.0.1", 0));
        if (ofReports)
            return CRTSP_RTCPLink_UDP_Multicast::Create_RTSP_RTCPLink_UDP_Multicast(
                {session, ip, 9, 0, 1, world.scheduler, sockets.back(), 0});
        return CRTSP_RTPLink_UDP_Multicast::Create_RTSP_RTPLink_UDP_Multicast(
            {session, ip, 9, {}, 1, 1, world.scheduler, sockets.back()});
    }
    /// The sockets of all users but the first have nothing on them.
    void CloseUnused()
    {
        for (std::size_t i = 1; i < sockets.size(); ++i)
            close(sockets[i]);
        sockets.clear();
    }
    static std::string SessionLine(const Client& client)
    {
        return "rtsp session time out, sock = " + std::to_string(client.sock) + "\n";
    }
};

TEST_F(RtspLinkTimeOut, OfASessionEndsItAndKnowsNoOtherKinds)
{
    for (const int type : {2, 4, 6})
    {
        const Client client = MakeClient();
        for (const int other : {0, 1, 3, 8})
            EXPECT_DEATH(client.session->HandleTimeOut(other), "") << other;
        client.session->HandleTimeOut(type);
        EXPECT_TRUE(IsEnded(client)) << type;
    }
}

TEST_F(RtspLinkTimeOut, OfAUnicastLinkEndsItsSession)
{
    const RTSP_STREAM_CFG config;
    for (const bool ofReports : {false, true})
    {
        const Client client = MakeClient();
        CRTSP_RTCPLink* rtcp = nullptr;
        CRTSP_RTPLink* rtp = nullptr;
        ASSERT_EQ(0,
                  world.server->Create_RTP_RTCP_Link_UDP(client.session, 1, &rtcp, &rtp, "127.0.0.1", 9, 9, &config));
        ::testing::internal::CaptureStderr();
        CRTSP_SockHandler* link = rtp;
        if (ofReports)
            link = rtcp;
        link->HandleTimeOut(SOCK_HANDLER_RECV);
        EXPECT_EQ((ofReports ? "RTCP Time Out " : "RTP Time Out ") + SessionLine(client),
                  ::testing::internal::GetCapturedStderr());
        EXPECT_TRUE(IsEnded(client));
        ::testing::internal::CaptureStderr();
        rtcp->Destroy();
        rtp->Destroy();
        const std::string lines = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(0u, lines.find("RTcP sock "));
        EXPECT_NE(std::string::npos, lines.find("\nRTP sock "));
    }
}

TEST_F(RtspLinkTimeOut, AUnicastLinkWithoutMemoryEndsItsSession)
{
    const RTSP_STREAM_CFG config;
    for (const bool ofReports : {false, true})
    {
        const Client client = MakeClient();
        CRTSP_RTCPLink* rtcp = nullptr;
        CRTSP_RTPLink* rtp = nullptr;
        ASSERT_EQ(0,
                  world.server->Create_RTP_RTCP_Link_UDP(client.session, 1, &rtcp, &rtp, "127.0.0.1", 9, 9, &config));
        if (ofReports)
            rtcp->Fail();
        else
            rtp->Fail();
        EXPECT_TRUE(IsEnded(client));
        rtcp->Destroy(); // the session had no track with them
        rtp->Destroy();
    }
}

// The first user may hold the last reference to the link, so it goes last.
TEST_F(RtspLinkTimeOut, OfASharedLinkEndsItsUsersTheFirstLast)
{
    for (const bool ofReports : {false, true})
    {
        const Client clients[] = {MakeClient(), MakeClient(), MakeClient()};
        CRTSP_SockHandler* link = nullptr;
        for (const Client& client : clients)
            link = Share(ofReports, client.session);
        ::testing::internal::CaptureStderr();
        link->HandleTimeOut(SOCK_HANDLER_SEND);
        EXPECT_EQ((ofReports ? "Multicast RTCP Time Out " : "Multicast RTP Time Out ") + SessionLine(clients[1]) +
                      SessionLine(clients[2]) + SessionLine(clients[0]),
                  ::testing::internal::GetCapturedStderr());
        for (const Client& client : clients)
            EXPECT_TRUE(IsEnded(client));
        ::testing::internal::CaptureStderr();
        for (int i = 0; i < 3; ++i)
            link->Destroy();
        const std::string sock = std::to_string(sockets[0]) + "\n";
        EXPECT_EQ(ofReports ? "m_NURTCPMulticast = 2\nm_NURTCPMulticast = 1\nMulticast RTcP sock " + sock
                            : "m_NURTPMulticast = 2\nm_NURTPMulticast = 1\nMulticast RTP sock " + sock,
                  ::testing::internal::GetCapturedStderr());
        CloseUnused();
    }
}

TEST_F(RtspLinkTimeOut, ASharedLinkWithoutMemoryEndsItsUsers)
{
    for (const bool ofReports : {false, true})
    {
        const Client clients[] = {MakeClient(), MakeClient()};
        CRTSP_SockHandler* link = nullptr;
        for (const Client& client : clients)
            link = Share(ofReports, client.session);
        link->Fail();
        for (const Client& client : clients)
        {
            EXPECT_TRUE(IsEnded(client));
            link->Destroy();
        }
        CloseUnused();
    }
}

TEST_F(RtspMulticast, AUserThatGoesIsNotTimedOutLater)
{
    auto* gone = reinterpret_cast<CRTSP_ClientSession*>(&world); // never looked at
    sockets.push_back(world.server->Create_A_Valid_Sock(1, "127.0.0.1", 0));
    CRTSP_RTPLink* rtp = CRTSP_RTPLink_UDP_Multicast::Create_RTSP_RTPLink_UDP_Multicast(
        {gone, htonl(INADDR_LOOPBACK), 9, {}, 1, 1, world.scheduler, sockets.back()});
    rtp->CRTSP_Erase(gone);
    rtp->HandleTimeOut(SOCK_HANDLER_SEND);
    rtp->Destroy();
}

} // namespace
