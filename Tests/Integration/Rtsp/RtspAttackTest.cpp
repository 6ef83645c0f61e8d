// What peers may try: half requests, tunnels in cycles, connections that end at the wrong moment, floods.

#include "Base64Coder.h"
#include "RtspWorld.h"
#include "ShareSDK.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>

namespace
{

std::string Base64(const std::string& text)
{
    std::string encoded;
    CBase64Coder::Encode(reinterpret_cast<const unsigned char*>(text.data()), text.size(), encoded);
    return encoded;
}

std::string Options(int cseq)
{
    return "OPTIONS * RTSP/1.0\r\nCSeq: " + std::to_string(cseq) + "\r\n\r\n";
}

std::string Http(const std::string& method, const std::string& cookie)
{
    return method + " / HTTP/1.0\r\nx-sessioncookie: " + cookie + "\r\n\r\n";
}

bool IsAnswerTo(const std::string& answer, int cseq)
{
    return answer.find("CSeq: " + std::to_string(cseq) + "\r\n") != std::string::npos;
}

int OpenDescriptors()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<int>(std::distance(begin(descriptors), end(descriptors)));
}

class RtspAttack : public ::testing::Test
{
protected:
    RtspAttack() { world.data.SetLiveRtspUrl(4, 0, "/live/late"); }

    std::string Request(const std::string& method, const std::string& path, int cseq, const std::string& headers = "")
    {
        return method + " " + world.Url(path) + " RTSP/1.0\r\nCSeq: " + std::to_string(cseq) + "\r\n" + headers +
               "\r\n";
    }
    Peer Get(const std::string& cookie)
    {
        Peer get = world.Connect();
        get.Send(Http("GET", cookie));
        get.ReadAnswer();
        return get;
    }
    Peer Post(const std::string& cookie)
    {
        Peer post = world.Connect();
        post.Send(Http("POST", cookie));
        world.Rounds(3);
        return post;
    }
    void Play(Peer& client, const std::string& transport)
    {
        client.Send(Request("DESCRIBE", "/live/one", 91));
        client.ReadAnswer();
        client.Send(Request("SETUP", "/live/one/trackID=0", 92, "Transport: " + transport + "\r\n"));
        client.ReadAnswer();
        client.Send(Request("PLAY", "/live/one", 93));
        EXPECT_TRUE(IsAnswerTo(client.ReadAnswer(), 93));
    }
    void ExpectThatOthersAreServed()
    {
        Peer other = world.Connect();
        other.Send(Options(77));
        EXPECT_TRUE(IsAnswerTo(other.ReadAnswer(), 77));
    }

    FakeClock clock;
    RtspWorld world;
};

TEST_F(RtspAttack, HalfRequestsOnManyConnectionsDoNotKeepOthersWaiting)
{
    std::vector<Peer> slow;
    for (int i = 0; i < 100; ++i)
    {
        slow.push_back(world.Connect());
        slow.back().Send("DESCRIBE rtsp://127.0.0.1/live");
    }
    ExpectThatOthersAreServed();
}

TEST_F(RtspAttack, ThePostOfAConnectionThatIsAPostItselfRunsWhereItsCookieSays)
{
    Peer first = Get("one");
    Peer second = Get("two");
    Peer post = Post("one");
    post.Send(Http("POST", "two")); // plain, on a POST connection: it is run on the GET that it feeds
    world.Rounds(3);
    post.Send(Base64(Options(1)));
    EXPECT_TRUE(IsAnswerTo(first.ReadAnswer(), 1)); // the POST itself feeds the first GET as before
    first.Send(Options(2));
    EXPECT_TRUE(IsAnswerTo(second.ReadAnswer(), 2)); // and that one feeds the second
}

TEST_F(RtspAttack, TunnelsInACycleServeAndEnd)
{
    Peer first = Get("one");
    Peer second = Get("two");
    Peer toFirst = Post("one");
    Peer toSecond = Post("two");
    toFirst.Send(Base64(Http("GET", "one") + Http("POST", "two"))); // the first GET feeds the second,
    world.Rounds(3);
    toSecond.Send(Base64(Http("POST", "none"))); // and the second looks for nobody: it ends
    world.Rounds(3);
    EXPECT_TRUE(second.WaitClosed());
    EXPECT_TRUE(toSecond.WaitClosed());
    first.Drain();
    first.Send(Options(5)); // its partner is gone, so it serves itself
    EXPECT_TRUE(IsAnswerTo(first.ReadAnswer(), 5));
    toFirst.Send(Base64(Options(6)));
    EXPECT_TRUE(IsAnswerTo(first.ReadAnswer(), 6));
}

TEST_F(RtspAttack, TwoGetsThatFeedEachOtherServeAndEnd)
{
    Peer first = Get("one");
    Peer second = Get("two");
    Peer toFirst = Post("one");
    toFirst.Send(Base64(Http("POST", "two")));
    world.Rounds(3);
    first.Send(Http("GET", "three")); // run on the second: it changes its cookie
    second.ReadAnswer();
    toFirst.Send(Base64(Http("GET", "one"))); // the first has its cookie again
    first.ReadAnswer();
    second.Send(Http("POST", "one")); // now each feeds the other
    world.Rounds(3);
    second.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(first.ReadAnswer(), 1));
    first.Send(Options(2));
    EXPECT_TRUE(IsAnswerTo(second.ReadAnswer(), 2));
    first.Reset();
    world.Rounds(3);
    second.Send(Options(3));
    EXPECT_TRUE(IsAnswerTo(second.ReadAnswer(), 3));
}

TEST_F(RtspAttack, AGetThatChangesItsCookieTakesItsPostAlong)
{
    Peer get = Get("one");
    Peer post = Post("one");
    get.Send(Http("GET", "two"));
    get.ReadAnswer();
    post.Send(Base64(Options(1)));
    EXPECT_TRUE(IsAnswerTo(get.ReadAnswer(), 1));
    get.Reset();
    world.Rounds(3);
    post.Send(Base64(Options(2)));
    EXPECT_TRUE(IsAnswerTo(post.ReadAnswer(), 2)); // detached, whatever the cookie was
}

TEST_F(RtspAttack, AConnectionIsNeverItsOwnTunnelPartner)
{
    Peer peer = Get("one");
    peer.Send(Http("POST", "one")); // clears its own GET cookie first
    EXPECT_TRUE(peer.WaitClosed());
    ExpectThatOthersAreServed();
}

TEST_F(RtspAttack, ThePostMayGoWhileItsDescribeWaits)
{
    Peer get = Get("one");
    Peer post = Post("one");
    post.Send(Base64(Request("DESCRIBE", "/live/late", 1)));
    world.Rounds(3);
    post.Reset();
    world.Rounds(3);
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    EXPECT_TRUE(IsAnswerTo(get.ReadAnswer(), 1));
}

TEST_F(RtspAttack, TheGetMayGoWhileADescribeOfItsPostWaits)
{
    Peer get = Get("one");
    Peer post = Post("one");
    post.Send(Base64(Request("DESCRIBE", "/live/late", 1)));
    post.Send(Base64(Options(2)));
    world.Rounds(3);
    get.Reset();
    world.Rounds(3);
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    world.Rounds(3);
    EXPECT_EQ(1u, world.server->SessionCount());
    post.Send(Base64(Options(3)));
    EXPECT_TRUE(IsAnswerTo(post.ReadAnswer(), 3));
}

TEST_F(RtspAttack, ASecondDescribeWaitsBehindAWaitingOne)
{
    world.BeginLive();
    Peer peer = world.Connect();
    peer.Send(Request("DESCRIBE", "/live/late", 1));
    world.Rounds(3);
    peer.Send(Request("DESCRIBE", "/live/late", 2));
    world.Rounds(3);
    peer.Send(Request("DESCRIBE", "/live/one", 3));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    for (const int cseq : {1, 2, 3})
        EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), cseq)) << cseq;
}

TEST_F(RtspAttack, ADescribeBehindAWaitingOneHasItsOwnFourSeconds)
{
    Peer peer = world.Connect();
    world.data.SetLiveRtspUrl(5, 0, "/live/never");
    peer.Send(Request("DESCRIBE", "/live/late", 1));
    world.Rounds(3);
    peer.Send(Request("DESCRIBE", "/live/never", 2));
    world.Rounds(3);
    clock.Advance(3000);
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
    for (int i = 0; i < 49; ++i)
    {
        clock.Advance(80);
        world.Round();
    }
    EXPECT_EQ("", peer.Drain());
    clock.Advance(80);
    world.Rounds(2);
    EXPECT_EQ("RTSP/1.0 404 Stream Not Found", peer.ReadAnswer().substr(0, 29));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspAttack, ATeardownBehindAWaitingDescribeEndsTheSessionBehindTheAnswer)
{
    Peer peer = world.Connect();
    peer.Send(Request("DESCRIBE", "/live/late", 1));
    world.Rounds(3);
    peer.Send(Request("SETUP", "/live/late/trackID=0", 2, "Transport: RTP/AVP/TCP\r\n"));
    world.Rounds(3);
    peer.Send(Request("TEARDOWN", "/live/late", 3));
    world.Rounds(3);
    peer.Send(Options(4));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    for (const int cseq : {1, 2, 3})
        EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), cseq)) << cseq;
    EXPECT_EQ("", peer.ReadAll());
    EXPECT_EQ(0u, world.server->SessionCount());
}

// Each costs more memory than its text has bytes.
TEST_F(RtspAttack, ManySmallRequestsBehindAWaitingDescribeEndTheSession)
{
    Peer peer = world.Connect();
    peer.Send(Request("DESCRIBE", "/live/late", 1));
    world.Rounds(3);
    for (int i = 0; i < 1000 && !peer.IsClosedNow(); ++i)
    {
        peer.Send("x\r\n\r\nx\r\n\r\n");
        world.Round();
    }
    EXPECT_TRUE(peer.IsClosedNow());
    EXPECT_EQ(0u, world.server->SessionCount());
}

TEST_F(RtspAttack, ManyWaitingDescribesAreAllAnsweredByOneKeyFrame)
{
    std::vector<Peer> waiting;
    for (int i = 0; i < 200; ++i)
    {
        waiting.push_back(world.Connect());
        waiting.back().Send(Request("DESCRIBE", "/live/late", i));
        world.Round();
    }
    world.Rounds(3);
    ExpectThatOthersAreServed();
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    for (int i = 0; i < 200; ++i)
        EXPECT_TRUE(IsAnswerTo(waiting[static_cast<std::size_t>(i)].ReadAnswer(), i)) << i;
}

// The second SETUP of a track ends the session, and takes no port for it.
TEST_F(RtspAttack, ASecondSetupOfATrackTakesNoPorts)
{
    world.BeginLive();
    Peer peer = world.Connect();
    const std::string transport = "Transport: RTP/AVP;client_port=6000-6001\r\n";
    peer.Send(Request("SETUP", "/live/one/trackID=0", 1, transport));
    peer.ReadAnswer();
    const unsigned short next = world.server->NextPort();
    peer.Send(Request("SETUP", "/live/one/trackID=0", 2, transport));
    EXPECT_EQ("RTSP/1.0 404 Unknown Error!", peer.ReadAnswer().substr(0, 27));
    EXPECT_TRUE(peer.WaitClosed());
    EXPECT_EQ(next, world.server->NextPort());
}

TEST_F(RtspAttack, SetupsOnManyConnectionsLeaveNoSocketBehind)
{
    world.BeginLive();
    const int before = OpenDescriptors();
    for (int i = 0; i < 50; ++i)
    {
        Peer peer = world.Connect();
        for (const int track : {0, 1, 0})
            peer.Send(Request("SETUP", "/live/one/trackID=" + std::to_string(track), i,
                              "Transport: RTP/AVP;client_port=6000-6001\r\n"));
        world.Rounds(3);
    }
    world.Rounds(5);
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(RtspAttack, AFloodOfTheLongestInterleavedPacketsKeepsNothingAndNobody)
{
    Peer flood = world.Connect();
    const std::string packet = std::string("$\0\xff\xff", 4) + std::string(65535, 'x');
    for (int i = 0; i < 30; ++i)
    {
        send(flood.Socket(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        world.Round();
        ExpectThatOthersAreServed();
    }
}

TEST_F(RtspAttack, ManyEmptyInterleavedPacketsAreReadAway)
{
    Peer peer = world.Connect();
    std::string packets;
    for (int i = 0; i < 2000; ++i)
        packets += std::string("$\0\0\0", 4);
    peer.Send(packets);
    world.Rounds(4100);
    peer.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
}

TEST_F(RtspAttack, AClientThatReadsNothingDelaysNobody)
{
    world.BeginLive();
    Peer stalled = world.Connect();
    const int bytes = 4096;
    setsockopt(stalled.Socket(), SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
    Play(stalled, "RTP/AVP/TCP;interleaved=0-1");
    Peer playing = world.Connect();
    Play(playing, "RTP/AVP/TCP;interleaved=0-1");
    for (int i = 0; i < 50; ++i)
    {
        world.PushVideo(1, 0, KeyFrame(20000), true, 2000000 + static_cast<std::uint64_t>(i) * 40000);
        world.Rounds(2);
        EXPECT_LT(20000u, playing.Drain().size()) << i;
    }
}

// The links' sockets are ready in the same pass in which their session ends.
TEST_F(RtspAttack, ASessionMayEndInThePassInWhichItsLinksAreReady)
{
    world.BeginLive();
    UdpPeer rtp;
    Peer quiet = world.Connect();
    for (int i = 0; i < 20; ++i)
    {
        Peer peer = world.Connect();
        const std::string port = std::to_string(rtp.Port());
        Play(peer, "RTP/AVP;client_port=" + port + "-" + port);
        const unsigned short next = world.server->NextPort();
        rtp.SendTo(static_cast<unsigned short>(next - 2), "to the packets' socket");
        rtp.SendTo(static_cast<unsigned short>(next - 1), "to the reports' socket");
        world.PushVideo(1, 0, KeyFrame(3000), true, 2000000 + static_cast<std::uint64_t>(i) * 40000);
        if (i % 2 == 0)
            peer.Reset();
        else
            peer.Send(Request("TEARDOWN", "/live/one", 5));
        Peer later = world.Connect(); // takes the numbers of the sockets that were closed
        world.Rounds(3);
        EXPECT_FALSE(later.IsClosedNow());
    }
    world.Rounds(3);
    EXPECT_EQ(1u, world.server->SessionCount());
    quiet.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(quiet.ReadAnswer(), 1));
}

TEST_F(RtspAttack, AServerThatStopsWhileEverythingGoesOnLeavesNothingOpen)
{
    world.BeginLive();
    const int before = OpenDescriptors();
    {
        UdpPeer rtp;
        const std::string port = std::to_string(rtp.Port());
        Peer get = Get("one");
        Peer post = Post("one");
        Peer overTcp = world.Connect();
        Play(overTcp, "RTP/AVP/TCP;interleaved=0-1");
        Peer overUdp = world.Connect();
        Play(overUdp, "RTP/AVP;client_port=" + port + "-" + port);
        Peer waiting = world.Connect();
        waiting.Send(Request("DESCRIBE", "/live/late", 1));
        post.Send(Base64(Request("DESCRIBE", "/live/late", 1)));
        world.Rounds(2);
        world.PushVideo(1, 0, KeyFrame(500000), true, 2000000);
        world.Round();
        EXPECT_EQ(5u, world.server->SessionCount());
        world.server->Stop_RTSP_Server();
        EXPECT_EQ(0u, world.server->SessionCount());
        world.Rounds(2); // nobody is left to be called
        for (Peer* peer : {&get, &post, &overTcp, &overUdp, &waiting})
            EXPECT_TRUE(peer->WaitClosed());
    }
    EXPECT_EQ(before - 1, OpenDescriptors()); // the listener went as well
    world.server->Start_RTSP_Server(0);
    ExpectThatOthersAreServed();
}

TEST_F(RtspAttack, AMessageOfBlankLinesOnlyIsNoRequest)
{
    Peer peer = world.Connect();
    peer.Send(Options(1) + "\r\n\r\n\r\n\r\n");
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
    EXPECT_EQ("RTSP/1.0 400 Bad Request", peer.ReadAnswer().substr(0, 24));
    peer.Send(Options(2));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
}

TEST_F(RtspAttack, AZeroByteEndsTheText)
{
    Peer peer = world.Connect();
    peer.Send(std::string("OPTIONS * RTSP/1.0\r\n\0CSeq: 1\r\n\r\n", 32));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    EXPECT_FALSE(peer.IsClosedNow());
}

// A status line may carry a track in its place for the URL; it is then a SETUP like any other.
TEST_F(RtspAttack, A501ThatNamesATrackIsASetup)
{
    world.BeginLive();
    Peer peer = world.Connect();
    peer.Send(Request("SETUP", "/live/one/trackID=0", 1, "x-Dynamic-Rate: 1\r\nTransport: RTP/AVP/TCP\r\n"));
    peer.ReadUntil("\r\n\r\n");
    peer.Read(1400);
    peer.Send("RTSP/1.0 501trackID=0 x\r\nCSeq: 2\r\nTransport: RTP/AVP/TCP\r\n\r\n");
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
    EXPECT_FALSE(peer.IsClosedNow());
}

int CountSaid(const std::string& said, const std::string& text)
{
    int count = 0;
    for (std::size_t at = said.find(text); at != std::string::npos; at = said.find(text, at + 1))
        ++count;
    return count;
}

// The connection waits still, so that the listener stays readable: without a rest the loop would turn as fast as it
// can.
TEST_F(RtspAttack, WithoutAnyDescriptorTheListenerRestsBetweenItsTries)
{
    Peer peer(world.server->GetPort(), [this] { world.Round(); });
    SHARESDK_AbnormalOutput("the log is open", __FILE__, __LINE__); // it cannot be opened later
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {3, limit.rlim_max};
    testing::internal::CaptureStderr();
    setrlimit(RLIMIT_NOFILE, &none);
    world.Rounds(10);
    clock.Advance(49);
    world.Rounds(10);
    clock.Advance(1);
    world.Rounds(10);
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(2, CountSaid(testing::internal::GetCapturedStderr(), " ASSERT"));
    clock.Advance(50);
    world.Rounds(2);
    peer.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
}

// Neither is called any more: the one that waits nor the one that listens.
TEST_F(RtspAttack, AServerMayStopWhileItRests)
{
    Peer peer(world.server->GetPort(), [this] { world.Round(); });
    SHARESDK_AbnormalOutput("the log is open", __FILE__, __LINE__);
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {3, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    world.Rounds(2);
    setrlimit(RLIMIT_NOFILE, &limit);
    world.server->Stop_RTSP_Server();
    clock.Advance(50);
    world.Rounds(2);
    EXPECT_TRUE(peer.WaitClosed());
    world.server->Start_RTSP_Server(0);
    ExpectThatOthersAreServed();
}

} // namespace
