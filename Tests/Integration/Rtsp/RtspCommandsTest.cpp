// Every answer of a session, byte by byte, over real connections.

#include "MD5.h"
#include "PubHelper.h"
#include "RtspWorld.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace
{

const std::string SERVER = "Server: QLX RTSP Server/1.0.0\r\n";
const std::string ALLOWED = "OPTIONS, DESCRIBE, SETUP, TEARDOWN, PLAY, GET_PARAMETER, SET_PARAMETER";
const std::string MODIFIED = "Last-Modified: Tue Dec 22 15:13:46 2015 GMT\r\nCache-Control: must-revalidate\r\n";

std::string NotFound(const std::string& cseq)
{
    return "RTSP/1.0 404 Stream Not Found\r\nServer: 0\r\nCSeq: " + cseq + "\r\nDATE\r\n\r\n";
}

std::string UnknownError(const std::string& cseq)
{
    return "RTSP/1.0 404 Unknown Error!\r\n" + SERVER + "CSeq: " + cseq + "\r\nDATE\r\n\r\n";
}

class RtspCommands : public ::testing::Test
{
protected:
    std::string Ask(const std::string& request) { return world.Ask(peer, request); }
    std::string Request(const std::string& method, const std::string& url, const std::string& headers = "")
    {
        return method + " " + url + " RTSP/1.0\r\nCSeq: " + std::to_string(++cseq) + "\r\n" + headers + "\r\n";
    }
    std::string Url(const std::string& path) const { return world.Url(path); }
    std::string SetupTrack(int track, const std::string& transport)
    {
        return Ask(
            Request("SETUP", Url("/live/one/trackID=" + std::to_string(track)), "Transport: " + transport + "\r\n"));
    }
    void Describe() { Ask(Request("DESCRIBE", Url("/live/one"))); }

    RtspWorld world;
    Peer peer = world.Connect();
    int cseq = 0;
};

TEST_F(RtspCommands, OptionsNamesTheMethods)
{
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 1\r\nPublic: " + ALLOWED + "\r\n\r\n",
              Ask("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n"));
}

TEST_F(RtspCommands, OptionsNeedsNoLogin)
{
    world.RequireLogin("admin", "secret");
    EXPECT_EQ("RTSP/1.0 200 OK", Ask(Request("OPTIONS", "*")).substr(0, 15));
}

TEST_F(RtspCommands, AMessageWithoutCSeqGets400AndTheSessionStays)
{
    const std::string expected =
        "RTSP/1.0 400 Bad Request\r\n" + SERVER + "CSeq: 0\r\nDATE\r\nAllow: " + ALLOWED + "\r\n\r\n";
    EXPECT_EQ(expected, Ask("OPTIONS * RTSP/1.0\r\n\r\n"));
    EXPECT_EQ("RTSP/1.0 200 OK", Ask(Request("OPTIONS", "*")).substr(0, 15));
}

TEST_F(RtspCommands, AnUnknownMethodGets405AndTheSessionStays)
{
    const std::string expected =
        "RTSP/1.0 405 Method Not Allowed\r\n" + SERVER + "CSeq: 1\r\nDATE\r\nAllow: " + ALLOWED + "\r\n\r\n";
    EXPECT_EQ(expected, Ask(Request("PAUSE", Url("/live/one"))));
    EXPECT_EQ("RTSP/1.0 200 OK", Ask(Request("OPTIONS", "*")).substr(0, 15));
}

TEST_F(RtspCommands, DescribeOfALiveUrlAnswersItsSdp)
{
    world.BeginLive();
    const std::string sdp = "v=0\r\no=- TICK 1 IN IP4 0.0.0.0\r\ns=RTSP SESSION\r\nu=http:///\r\ne=admin@\r\nt=0 0\r\n"
                            "a=control:*\r\na=range:npt=00.000- \r\n"
                            "m=video 0 RTP/AVP 96\r\na=control:trackID=0\r\na=rtpmap:96 H264/90000\r\n"
                            "a=fmtp:96 profile-level-id=6742c0; sprop-parameter-sets=Z0LAHg==,aM48gA==; "
                            "packetization-mode=1\r\n"
                            "m=audio 0 RTP/AVP 8\r\na=control:trackID=1\r\na=rtpmap:8 pcma/8000\r\na=ptime:40\r\n";
    const std::string answer = Ask(Request("DESCRIBE", Url("/live/one")));
    const std::string head = "RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 1\r\n" + MODIFIED +
                             "DATE\r\nContent-Type: application/sdp\r\nx-Accept-Retransmit: our-retransmit\r\n"
                             "x-Accept-Dynamic-Rate: 1\r\nContent-Length: ";
    EXPECT_EQ(head, answer.substr(0, head.size()));
    const std::string tail = "Content-Base: " + Url("/live/one") + "/\r\n\r\n" + sdp;
    ASSERT_GT(answer.size(), tail.size());
    EXPECT_EQ(tail, answer.substr(answer.size() - tail.size()));
    EXPECT_EQ(std::vector<std::string>{"OpenLiveStream 1 0 0"}, world.stream.Calls());
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username></username><password></password>"
              "<ip>127.0.0.1</ip></userinfo>",
              world.stream.LastUserText());
}

TEST_F(RtspCommands, DescribeOfAnUnknownUrlCloses)
{
    EXPECT_EQ(NotFound("1"), Ask(Request("DESCRIBE", Url("/nothing"))));
    EXPECT_TRUE(peer.WaitClosed());
}

struct PlaybackCase
{
    const char* name;
    const char* url;
    const char* call; ///< null: not found, nothing is opened
};

const PlaybackCase PLAYBACK_CASES[] = {
    {"Whole", "rtsp://h/3?date=2016-1-2&time=8:30:0&timelen=600", "3 2016-1-2 8:30:0 600"},
    {"SlashAtTheEnd", "rtsp://h/3?date=2016-1-2&time=8:30:0&timelen=600/", "3 2016-1-2 8:30:0 600"},
    {"TimeInFront", "rtsp://h/3?time=8:30:0&date=2016-1-2&timelen=600", "3 2016-1-2 8:30:0 600"},
    {"NoChannel", "rtsp://h/x?date=2016-1-2&time=8:30:0&timelen=600", "4294967295 2016-1-2 8:30:0 600"},
    {"NoPath", "rtsp://h?date=2016-1-2&time=8:30:0&timelen=600", "4294967295 2016-1-2 8:30:0 600"},
    {"LargestChannel", "rtsp://h/2147483647?date=2016-1-2&time=8:30:0&timelen=1", "2147483647 2016-1-2 8:30:0 1"},
    {"NegativeChannel", "rtsp://h/-2?date=2016-1-2&time=8:30:0&timelen=1", "4294967294 2016-1-2 8:30:0 1"},
    {"SlashAtIndexSeven", "rtsp:///7?date=2016-1-2&time=8:30:0&timelen=1", "7 2016-1-2 8:30:0 1"},
    {"OtherScheme", "abc://x/4/5?date=2016-1-2&time=8:30:0&timelen=1", "4 2016-1-2 8:30:0 1"},
    {"LengthIsNoNumber", "rtsp://h/3?date=2016-1-2&time=8:30:0&timelen=x", "3 2016-1-2 8:30:0 0"},
    {"LengthBeyondAnInt", "rtsp://h/3?date=2016-1-2&time=8:30:0&timelen=4294967297", "3 2016-1-2 8:30:0 2147483647"},
    {"TwoDateFields", "rtsp://h/3?date=2016-1&time=8:30:0&timelen=600", nullptr},
    {"TwoTimeFields", "rtsp://h/3?date=2016-1-2&time=8:30&timelen=600", nullptr},
    {"LengthInFrontOfTime", "rtsp://h/3?date=2016-1-2&timelen=600&time=8:30:0", nullptr}, // its name is found first
    {"NoLength", "rtsp://h/3?date=2016-1-2&time=8:30:0", nullptr},
    {"NoTime", "rtsp://h/3?date=2016-1-2&timelen=600", nullptr},
    {"NoDate", "rtsp://h/3?time=8:30:0&timelen=600", nullptr},
};

class RtspPlayback : public RtspCommands, public ::testing::WithParamInterface<PlaybackCase>
{
};

TEST_P(RtspPlayback, IsOpenedAsItsUrlSays)
{
    world.PushVideo(55, 29, KeyFrame(), true, 1000000);
    const std::string answer = Ask(Request("DESCRIBE", GetParam().url));
    if (GetParam().call == nullptr)
    {
        EXPECT_EQ(NotFound("1"), answer);
        EXPECT_TRUE(peer.WaitClosed());
        EXPECT_TRUE(world.stream.Calls().empty());
        return;
    }
    EXPECT_EQ("RTSP/1.0 200 OK", answer.substr(0, 15));
    EXPECT_EQ(std::vector<std::string>{std::string("OpenRecStream ") + GetParam().call + " 0"}, world.stream.Calls());
}

INSTANTIATE_TEST_SUITE_P(Cases, RtspPlayback, ::testing::ValuesIn(PLAYBACK_CASES),
                         [](const auto& test) { return test.param.name; });

TEST_F(RtspCommands, TalkIsDescribedWithoutWaiting)
{
    const std::string answer = Ask(Request("DESCRIBE", Url("/talk")));
    const std::string media = "m=application 0 RTP/AVP \r\na=control:trackID=2\r\na=rtpmap:8 pcma/8000\r\n"
                              "a=ptime:40\r\na=recvonly\r\n";
    EXPECT_NE(std::string::npos, answer.find(media));
    EXPECT_EQ(std::vector<std::string>{"OpenTalkBackStream"}, world.stream.Calls());
}

TEST_F(RtspCommands, AnyUrlWithTalkInItIsATalk)
{
    Ask(Request("DESCRIBE", "rtsp://walktalk.example/x"));
    EXPECT_EQ(std::vector<std::string>{"OpenTalkBackStream"}, world.stream.Calls());
}

// "talkback" names a live stream: the one that the session described before, at first that of channel 0.
TEST_F(RtspCommands, ATalkbackUrlIsALiveStream)
{
    world.PushVideo(0, 0, KeyFrame(), true, 1000000);
    EXPECT_EQ("RTSP/1.0 200 OK", Ask(Request("DESCRIBE", Url("/talkback"))).substr(0, 15));
    world.BeginLive();
    Describe();
    Ask(Request("DESCRIBE", Url("/talkback")));
    const std::vector<std::string> calls{"OpenLiveStream 0 0 0", "OpenLiveStream 1 0 0", "OpenLiveStream 1 0 0"};
    EXPECT_EQ(calls, world.stream.Calls());
}

TEST_F(RtspCommands, ATalkSessionThatGoesIsClosedOnceAtTheHost)
{
    Ask(Request("DESCRIBE", Url("/talk")));
    peer.Close();
    world.Rounds(3);
    EXPECT_EQ((std::vector<std::string>{"OpenTalkBackStream", "CloseTalkBackStream 77"}), world.stream.Calls());
}

TEST_F(RtspCommands, ATalkSessionIsClosedTwiceAtTheHostByTeardown)
{
    Ask(Request("DESCRIBE", Url("/talk")));
    Ask(Request("SETUP", Url("/talk/trackID=2"), "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n"));
    Ask(Request("TEARDOWN", Url("/talk")));
    EXPECT_TRUE(peer.WaitClosed());
    const std::vector<std::string> calls{"OpenTalkBackStream", "CloseLiveStream 39", "CloseTalkBackStream 77"};
    EXPECT_EQ(calls, world.stream.Calls());
}

TEST_F(RtspCommands, SetupOverTcpRepeatsTheChannels)
{
    world.BeginLive();
    Describe();
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 2\r\n" + MODIFIED +
                  "DATE\r\nTransport: RTP/AVP/TCP;unicast;destination=127.0.0.1;source=127.0.0.1;interleaved=2-3;"
                  "ssrc=SSRC\r\nSession: ID;timeout=60\r\n\r\n",
              SetupTrack(0, "RTP/AVP/TCP;unicast;interleaved=2-3"));
}

TEST_F(RtspCommands, SetupOverTcpWithoutChannelsCountsThemUp)
{
    world.BeginLive();
    Describe();
    EXPECT_NE(std::string::npos, SetupTrack(0, "RTP/AVP/TCP;unicast").find(";interleaved=0-1;"));
    EXPECT_NE(std::string::npos, SetupTrack(1, "RTP/AVP/TCP;unicast").find(";interleaved=2-3;"));
}

TEST_F(RtspCommands, SetupRepeatsChannelsAboveAByteAsTheyAre)
{
    world.BeginLive();
    Describe();
    EXPECT_NE(std::string::npos, SetupTrack(0, "RTP/AVP/TCP;interleaved=300-301").find(";interleaved=300-301;"));
    Ask(Request("PLAY", Url("/live/one")));
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    EXPECT_EQ(std::string("$\x2c", 2), peer.Read(2)); // 300 in its low byte
}

TEST_F(RtspCommands, SetupOverUdpNamesBothPairsOfPorts)
{
    world.BeginLive();
    Describe();
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 2\r\n" + MODIFIED +
                  "DATE\r\nTransport: RTP/AVP;unicast;destination=127.0.0.1;source=127.0.0.1;client_port=6000-6001;"
                  "server_port=P-P;ssrc=SSRC\r\nSession: ID;timeout=60\r\n\r\n",
              SetupTrack(0, "RTP/AVP;unicast;client_port=6000-6001"));
}

// Else a client could have media sent to somebody who never asked for them.
TEST_F(RtspCommands, ADestinationInSetupIsNotUsed)
{
    world.BeginLive();
    Describe();
    const std::string answer = SetupTrack(0, "RTP/AVP;unicast;destination=192.0.2.1;client_port=6000-6001");
    EXPECT_NE(std::string::npos, answer.find(";destination=127.0.0.1;source=127.0.0.1;client_port=6000-6001;"));
}

// The address is looked for at even places of the text only, so a method word of odd length hides it.
TEST_F(RtspCommands, TheSourceIsTheHostOfTheRequestUrl)
{
    world.BeginLive();
    Describe();
    const std::string answer = Ask("SETUP rtsp://camera.example:554/live/one/trackID=0 RTSP/1.0\r\nCSeq: 9\r\n"
                                   "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n\r\n");
    EXPECT_NE(std::string::npos, answer.find(";source=camera.example;"));
}

TEST_F(RtspCommands, SetupOverMulticastFindsNoGroup)
{
    world.BeginLive();
    Describe();
    EXPECT_EQ(UnknownError("2"), SetupTrack(0, "RTP/AVP;multicast;port=6000-6001"));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspCommands, SetupWithoutATransportIs461AndCloses)
{
    world.BeginLive();
    Describe();
    EXPECT_EQ("RTSP/1.0 461 Unsupported Transport\r\n" + SERVER + "CSeq: 2\r\nDATE\r\n\r\n",
              Ask(Request("SETUP", Url("/live/one/trackID=0"))));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspCommands, SetupWithoutATrackIsNotFound)
{
    EXPECT_EQ(NotFound("1"), Ask(Request("SETUP", Url("/live/one"), "Transport: RTP/AVP/TCP\r\n")));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspCommands, SetupOfTrackThreeIsNotFound)
{
    EXPECT_EQ(NotFound("1"), SetupTrack(3, "RTP/AVP/TCP"));
}

TEST_F(RtspCommands, ASecondSetupOfATrackCloses)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    EXPECT_EQ(UnknownError("3"), SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1"));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspCommands, SetupWithoutDescribeSetsUpVideoWithPayloadZero)
{
    EXPECT_EQ("RTSP/1.0 200 OK", SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1").substr(0, 15));
    Ask(Request("PLAY", Url("/live/one")));
    world.PushVideo(0, 0, KeyFrame(), true, 1000000); // describes the stream that the client made
    const std::string packet = peer.Read(20);
    ASSERT_EQ(20u, packet.size());
    EXPECT_EQ(0x00, packet[5] & 0x7F);
}

// "Transport:" in a Base64 message whose header has ended before it: no mode can be read.
TEST_F(RtspCommands, ATransportBehindTheBlankLineIs461)
{
    world.BeginLive();
    Describe();
    const std::string request =
        "SETUP " + Url("/live/one/trackID=0") + " RTSP/1.0\r\nCSeq: 2\r\n\r\nTransport: RTP/AVP/";
    EXPECT_EQ("RTSP/1.0 461", Ask(request).substr(0, 12));
}

TEST_F(RtspCommands, PlayNamesTheTracksInOrder)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    SetupTrack(1, "RTP/AVP/TCP;interleaved=2-3");
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 4\r\nSession: ID\r\nRange: npt=0.000- \r\nRTP-Info: url=" +
                  Url("/live/one") + "/0;seq=S;rtptime=T,url=" + Url("/live/one") + "/1;seq=S;rtptime=T\r\n\r\n",
              Ask(Request("PLAY", Url("/live/one"))));
}

TEST_F(RtspCommands, ARangeInPlayIsNotLookedAt)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    const std::string answer = Ask(Request("PLAY", Url("/live/one"), "Range: npt=7.5-20\r\n"));
    EXPECT_NE(std::string::npos, answer.find("\r\nRange: npt=0.000- \r\n"));
}

TEST_F(RtspCommands, PlayBeforeSetupIs404AndCloses)
{
    EXPECT_EQ("RTSP/1.0 404 File Not Found, Or In Incorrect Format\r\n" + SERVER + "CSeq: 1\r\nDATE\r\n\r\n",
              Ask(Request("PLAY", Url("/live/one"))));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspCommands, PlayWhilePlayingIs405)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    Ask(Request("PLAY", Url("/live/one")));
    EXPECT_EQ("RTSP/1.0 405 Method Not Allowed", Ask(Request("PLAY", Url("/live/one"))).substr(0, 31));
}

TEST_F(RtspCommands, ATrackAddedWhilePlayingIsPlayedByAFurtherPlay)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    Ask(Request("PLAY", Url("/live/one")));
    EXPECT_EQ("RTSP/1.0 200 OK", SetupTrack(1, "RTP/AVP/TCP;interleaved=2-3").substr(0, 15));
    world.PushVideo(1, 0, KeyFrame(), true, 2000000); // the first track goes on meanwhile
    EXPECT_EQ(std::string("$\0", 2), peer.Read(2));
    peer.Read(18 + 20 + 36); // the rest of the SPS's, the PPS's and the slice's packets
    EXPECT_EQ("RTSP/1.0 200 OK", Ask(Request("PLAY", Url("/live/one"))).substr(0, 15));
    world.PushAudio(1, 0, AudioFrame(), 2000000);
    EXPECT_EQ(std::string("$\2", 2), peer.Read(2));
}

TEST_F(RtspCommands, TeardownAnswersAndCloses)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 3\r\nSession:ID\r\nConnection: Close\r\n\r\n",
              Ask(Request("TEARDOWN", Url("/live/one"))));
    EXPECT_TRUE(peer.WaitClosed());
    const std::vector<std::string> calls{"OpenLiveStream 1 0 0", "CloseLiveStream 700"};
    EXPECT_EQ(calls, world.stream.Calls());
}

// The host may free the stream in that call: no client's queue is on it any more.
TEST_F(RtspCommands, TeardownLeavesTheStreamBeforeItIsClosedAtTheHost)
{
    class Host : public FakeStreamCtrl
    {
    public:
        explicit Host(RtspWorld& world) : m_world(world) {}
        void CloseLiveStream(unsigned int /*handle*/) override
        {
            const std::string payload = DeltaFrame();
            const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, false, 2000000, payload.size());
            result = m_world.data.AddData(1, 0, frame, payload.data());
        }
        int result = 1;

    private:
        RtspWorld& m_world;
    };
    Host host(world);
    world.data.Init(&host, &world.device);
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    Ask(Request("PLAY", Url("/live/one")));
    Ask(Request("TEARDOWN", Url("/live/one")));
    EXPECT_EQ(0, host.result); // a queue that waits for a key frame would refuse it
}

TEST_F(RtspCommands, TeardownOfAPlaybackClosesThePlayback)
{
    world.PushVideo(55, 29, KeyFrame(), true, 1000000);
    Ask(Request("DESCRIBE", Url("/3?date=2016-1-2&time=8:30:0&timelen=600")));
    Ask(Request("SETUP", Url("/3/trackID=0"), "Transport: RTP/AVP/TCP;interleaved=0-1\r\n"));
    Ask(Request("TEARDOWN", Url("/3")));
    EXPECT_EQ("ClosePlayStream 55", world.stream.Calls().back());
}

TEST_F(RtspCommands, TeardownBeforeSetupIsNotFound)
{
    EXPECT_EQ(NotFound("1"), Ask(Request("TEARDOWN", Url("/live/one"))));
    EXPECT_TRUE(peer.WaitClosed());
}

// The host sees it: a stream whose client just goes away stays open.
TEST_F(RtspCommands, AClientThatDisconnectsLeavesTheStreamOpen)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    peer.Close();
    world.Rounds(3);
    EXPECT_EQ(std::vector<std::string>{"OpenLiveStream 1 0 0"}, world.stream.Calls());
}

// The methods begin with the letters of the tunnel's GET, whose CSeq is not read.
TEST_F(RtspCommands, GetParameterIsAnsweredWithCSeqZero)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 0\r\nSession: ID\r\n\r\n",
              Ask(Request("GET_PARAMETER", Url("/live/one"))));
}

TEST_F(RtspCommands, GetParameterIsAnsweredWithItsCSeqWhenStandardRtspIsChosen)
{
    CPolicy::SetCurrent(CPolicy(1));
    peer = world.Connect();
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 3\r\nSession: ID\r\n\r\n",
              Ask(Request("GET_PARAMETER", Url("/live/one"))));
}

TEST_F(RtspCommands, ThePolicyOfAConnectionIsThatOfItsBeginning)
{
    CPolicy::SetCurrent(CPolicy(1));
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    EXPECT_NE(std::string::npos, Ask(Request("GET_PARAMETER", Url("/live/one"))).find("CSeq: 0\r\n"));
}

TEST_F(RtspCommands, SetParameterIsAnsweredLikeGetParameter)
{
    world.BeginLive();
    Describe();
    SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1");
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 3\r\nSession: ID\r\n\r\n",
              Ask(Request("SET_PARAMETER", Url("/live/one"))));
}

TEST_F(RtspCommands, GetParameterBeforeSetupIsNotFound)
{
    EXPECT_EQ(NotFound("0"), Ask(Request("GET_PARAMETER", Url("/live/one"))));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspCommands, TheSessionIdStaysTheSame)
{
    world.BeginLive();
    Describe();
    peer.Send(Request("SETUP", Url("/live/one/trackID=0"), "Transport: RTP/AVP/TCP\r\n"));
    const std::string setup = peer.ReadAnswer();
    const std::string id = setup.substr(setup.find("Session: ") + 9, 15);
    while (static_cast<char>('0' + PUB_Rand() % 10) == id[1]) // a new id would be this one again
        std::this_thread::yield();
    peer.Send(Request("SET_PARAMETER", Url("/live/one")));
    EXPECT_NE(std::string::npos, peer.ReadAnswer().find("Session: " + id + "\r\n"));
    EXPECT_EQ(15u, id.find_first_not_of("0123456789") == std::string::npos ? id.size() : 0);
    EXPECT_NE('0', id[0]);
}

/// What each command answers in each state, and whether the session goes on.
struct StateCase
{
    const char* name;
    const char* method;
    int state; // 0 at the beginning, 1 with a track set up, 2 playing
    const char* status;
    bool closes;
};

const StateCase STATE_CASES[] = {
    {"OptionsAtTheBeginning", "OPTIONS", 0, "RTSP/1.0 200 OK", false},
    {"OptionsWhenSetUp", "OPTIONS", 1, "RTSP/1.0 200 OK", false},
    {"OptionsWhilePlaying", "OPTIONS", 2, "RTSP/1.0 200 OK", false},
    {"DescribeAtTheBeginning", "DESCRIBE", 0, "RTSP/1.0 200 OK", false},
    {"DescribeWhenSetUp", "DESCRIBE", 1, "RTSP/1.0 200 OK", false},
    {"DescribeWhilePlaying", "DESCRIBE", 2, "RTSP/1.0 200 OK", false},
    {"SetupAtTheBeginning", "SETUP", 0, "RTSP/1.0 200 OK", false},
    {"SetupOfAnotherTrackWhenSetUp", "SETUP", 1, "RTSP/1.0 200 OK", false},
    {"SetupOfAnotherTrackWhilePlaying", "SETUP", 2, "RTSP/1.0 200 OK", false},
    {"PlayAtTheBeginning", "PLAY", 0, "RTSP/1.0 404 File Not Found, Or In Incorrect Format", true},
    {"PlayWhenSetUp", "PLAY", 1, "RTSP/1.0 200 OK", false},
    {"PlayWhilePlaying", "PLAY", 2, "RTSP/1.0 405 Method Not Allowed", false},
    {"TeardownAtTheBeginning", "TEARDOWN", 0, "RTSP/1.0 404 Stream Not Found", true},
    {"TeardownWhenSetUp", "TEARDOWN", 1, "RTSP/1.0 200 OK", true},
    {"TeardownWhilePlaying", "TEARDOWN", 2, "RTSP/1.0 200 OK", true},
    {"GetParameterAtTheBeginning", "GET_PARAMETER", 0, "RTSP/1.0 404 Stream Not Found", true},
    {"GetParameterWhenSetUp", "GET_PARAMETER", 1, "RTSP/1.0 200 OK", false},
    {"GetParameterWhilePlaying", "GET_PARAMETER", 2, "RTSP/1.0 200 OK", false},
    {"SetParameterAtTheBeginning", "SET_PARAMETER", 0, "RTSP/1.0 404 Stream Not Found", true},
    {"SetParameterWhenSetUp", "SET_PARAMETER", 1, "RTSP/1.0 200 OK", false},
    {"SetParameterWhilePlaying", "SET_PARAMETER", 2, "RTSP/1.0 200 OK", false},
};

class RtspState : public RtspCommands, public ::testing::WithParamInterface<StateCase>
{
};

TEST_P(RtspState, AnswersAndStaysOrCloses)
{
    world.BeginLive();
    Describe();
    if (GetParam().state > 0)
        SetupTrack(1, "RTP/AVP/TCP;interleaved=2-3");
    if (GetParam().state > 1)
        Ask(Request("PLAY", Url("/live/one")));
    const bool setup = GetParam().method == std::string("SETUP");
    const std::string answer =
        setup ? SetupTrack(0, "RTP/AVP/TCP;interleaved=0-1") : Ask(Request(GetParam().method, Url("/live/one")));
    EXPECT_EQ(GetParam().status, answer.substr(0, answer.find("\r\n")));
    world.Rounds(3);
    EXPECT_EQ(GetParam().closes, peer.IsClosedNow());
}

INSTANTIATE_TEST_SUITE_P(Cases, RtspState, ::testing::ValuesIn(STATE_CASES),
                         [](const auto& test) { return test.param.name; });

TEST_F(RtspCommands, AConnectionGetsItsBuffersAndSendsAtOnce)
{
    ::testing::internal::CaptureStderr();
    const Peer other = world.Connect();
    const std::string lines = ::testing::internal::GetCapturedStderr();
    const std::string expected = "rtsp accept 127.0.0.1:" + std::to_string(other.LocalPort()) + "  sock = ";
    const std::size_t found = lines.find(expected);
    ASSERT_NE(std::string::npos, found) << lines;
    const int sock = std::atoi(lines.c_str() + found + expected.size());
    EXPECT_NE(std::string::npos, lines.find("+++++++++++++++++++++m_sessionList.size() = 2\n"));

    const auto option = [sock](int level, int name)
    {
        int value = -1;
        socklen_t length = sizeof(value);
        getsockopt(sock, level, name, &value, &length);
        return value;
    };
    EXPECT_EQ(2 * 0x20000, option(SOL_SOCKET, SO_SNDBUF)); // the kernel tells twice what was asked for
    EXPECT_EQ(2 * 0x20000, option(SOL_SOCKET, SO_RCVBUF));
    EXPECT_EQ(1, option(IPPROTO_TCP, TCP_NODELAY));
}

TEST_F(RtspCommands, APortInUseIsToldOnTheConsole)
{
    CRTSP_Server* second = CRTSP_Server::Create_RTSP_Server(world.scheduler, nullptr);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(-1, second->Start_RTSP_Server(world.server->GetPort()));
    EXPECT_EQ("creat listen socket error ", ::testing::internal::GetCapturedStderr().substr(0, 26));
    EXPECT_EQ(0, second->Stop_RTSP_Server()); // was never started
    EXPECT_EQ(0, second->Start_RTSP_Server(0));
    second->Stop_RTSP_Server();
    second->Destroy();
}

TEST_F(RtspCommands, AStartedServerIsNotStartedAgain)
{
    const unsigned short port = world.server->GetPort();
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(0, world.server->Start_RTSP_Server(0));
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find(" error RTSP_Server.cpp:"));
    EXPECT_EQ(port, world.server->GetPort());
}

TEST_F(RtspCommands, TheListenerOnlyAccepts)
{
    EXPECT_DEATH(world.server->HandleRecv(), "");
    EXPECT_DEATH(world.server->HasDataToSend(), "");
    EXPECT_DEATH(world.server->HandleSend(), "");
    EXPECT_DEATH(world.server->HandleConnected(), "");
    EXPECT_DEATH(world.server->HandleTimeOut(SOCK_HANDLER_RECV), "");
    EXPECT_EQ(0, world.server->GetPasswordByUser());
    EXPECT_EQ(-1, world.server->HandleAccept()); // nobody waits
}

// Its socket is closed by a stop alone.
TEST_F(RtspCommands, AListenerThatTimesOutEndsAndLeavesItsSocketOpen)
{
    int next = dup(0);
    close(next);
    CRTSP_Server* second = CRTSP_Server::Create_RTSP_Server(world.scheduler, nullptr);
    second->Start_RTSP_Server(0);
    second->HandleTimeOut(SOCK_HANDLER_ACCEPT);
    EXPECT_EQ(-1, world.scheduler.DelSockHandler(next));
    EXPECT_EQ(0, NC_CloseSocket(next));
}

TEST_F(RtspCommands, ASessionThatGoesIsLogged)
{
    ::testing::internal::CaptureStderr();
    peer.Close();
    world.Rounds(3);
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find(" m_sessionList.size = 1 "));
    EXPECT_EQ(0u, world.server->SessionCount());
}

TEST_F(RtspCommands, AMessageThatCannotBeReadIsLogged)
{
    ::testing::internal::CaptureStderr();
    Ask("OPTIONS *\r\n\r\n");
    const std::string lines = ::testing::internal::GetCapturedStderr();
    const std::size_t first = lines.find("  rtsp cmd parse error, take care!!!!!");
    ASSERT_NE(std::string::npos, first);
    EXPECT_NE(std::string::npos, lines.find("  rtsp cmd len:13, ----OPTIONS *    ----.", first)) << lines;
}

TEST_F(RtspCommands, AnAnswerIsLogged)
{
    ::testing::internal::CaptureStderr();
    Ask(Request("OPTIONS", "*"));
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find(" send data : RTSP/1.0 200 OK"));
}

TEST_F(RtspCommands, AnUnknownMethodIsToldOnTheConsole)
{
    ::testing::internal::CaptureStderr();
    Ask(Request("PAUSE", Url("/live/one")));
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find("handleCmd_notSupported\n"));
}

class RtspLogin : public RtspCommands
{
protected:
    RtspLogin()
    {
        world.RequireLogin("admin", "secret");
        world.BeginLive();
    }
    static std::string Md5(const std::string& text)
    {
        char digest[33];
        PUB_MD5Encrypt(text.data(), static_cast<int>(text.size()), digest, false);
        return digest;
    }
    static std::string NonceOf(const std::string& answer)
    {
        const std::size_t begin = answer.find("nonce=\"");
        return begin == std::string::npos ? "" : answer.substr(begin + 7, 32);
    }
    std::string Credentials(const std::string& nonce, const std::string& password) const
    {
        const std::string ha1 = Md5("admin:RTSP SERVER:" + password);
        const std::string ha2 = Md5("DESCRIBE:" + Url("/live/one"));
        return "Authorization: Digest username=\"admin\", realm=\"RTSP SERVER\", nonce=\"" + nonce + "\", uri=\"" +
               Url("/live/one") + "\", response=\"" + Md5(ha1 + ":" + nonce + ":" + ha2) + "\"\r\n";
    }
    std::string Challenge()
    {
        peer.Send(Request("DESCRIBE", Url("/live/one")));
        return NonceOf(peer.ReadAnswer());
    }
};

TEST_F(RtspLogin, WithoutCredentialsDigestIsOffered)
{
    EXPECT_EQ("RTSP/1.0 401 Unauthorized\r\nCSeq: 1\r\nDATE\r\nWWW-Authenticate: Digest realm=\"RTSP SERVER\", "
              "nonce=\"NONCE\"\r\n\r\n",
              Ask(Request("DESCRIBE", Url("/live/one"))));
}

TEST_F(RtspLogin, TheRightDigestIsServedAndNamesTheUserToTheHost)
{
    const std::string nonce = Challenge();
    EXPECT_EQ("RTSP/1.0 200 OK",
              Ask(Request("DESCRIBE", Url("/live/one"), Credentials(nonce, "secret"))).substr(0, 15));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username>admin</username>"
              "<password>secret</password><ip>127.0.0.1</ip></userinfo>",
              world.stream.LastUserText());
}

TEST_F(RtspLogin, AWrongPasswordGetsAFreshNonce)
{
    const std::string nonce = Challenge();
    peer.Send(Request("DESCRIBE", Url("/live/one"), Credentials(nonce, "wrong")));
    const std::string answer = peer.ReadAnswer();
    EXPECT_EQ("RTSP/1.0 401 Unauthorized", answer.substr(0, 25));
    EXPECT_NE(nonce, NonceOf(answer));
    EXPECT_TRUE(world.stream.Calls().empty());
}

TEST_F(RtspLogin, AnOldNonceIsRefused)
{
    const std::string first = Challenge();
    Challenge();
    EXPECT_EQ("RTSP/1.0 401 Unauthorized",
              Ask(Request("DESCRIBE", Url("/live/one"), Credentials(first, "secret"))).substr(0, 25));
}

// MD5 over the four bytes of the tick count and a number that goes up with each nonce of the process.
TEST_F(RtspLogin, ANonceIsMadeOfTheTimeAndACount)
{
    const FakeClock clock;
    const auto nonceOf = [&clock](unsigned int count)
    {
        const std::uint32_t value = clock.Now() + count;
        char digest[33];
        PUB_MD5Encrypt(&value, sizeof(value), digest, false);
        return std::string(digest);
    };
    const std::string first = Challenge();
    unsigned int count = 1;
    while (count < 100000 && nonceOf(count) != first)
        ++count;
    EXPECT_EQ(nonceOf(count), first);
    EXPECT_EQ(nonceOf(count + 1), Challenge());
}

TEST_F(RtspLogin, ABasicRequestIsOfferedBasic)
{
    EXPECT_EQ("RTSP/1.0 401 Unauthorized\r\nCSeq: 1\r\nDATE\r\nWWW-Authenticate: Basic realm=\"RTSP SERVER\"\r\n\r\n",
              Ask(Request("DESCRIBE", Url("/live/one"), "Authorization: Basic YWRtaW46c2VjcmV0\r\n")));
}

TEST_F(RtspLogin, EveryCommandButOptionsNeedsIt)
{
    for (const char* method : {"DESCRIBE", "SETUP", "PLAY", "TEARDOWN", "GET_PARAMETER", "SET_PARAMETER"})
        EXPECT_EQ("RTSP/1.0 401 Unauthorized", Ask(Request(method, Url("/live/one"))).substr(0, 25)) << method;
}

class RtspDynamicRate : public RtspCommands
{
protected:
    std::string AskForRate(int track, const std::string& transport)
    {
        return Request("SETUP", Url("/live/one/trackID=" + std::to_string(track)),
                       "x-dynamic-rate: 1\r\nTransport: " + transport + "\r\n");
    }
};

TEST_F(RtspDynamicRate, AskingForItBringsTheProbeAndThe501Closes)
{
    world.BeginLive();
    Describe();
    peer.Send(AskForRate(0, "RTP/AVP;client_port=6000-6001"));
    const std::string head =
        "OPTIONS * RTSP/1.0\r\nContent-Type: application/x-random-data\r\nContent-Length: 1400\r\n\r\n";
    EXPECT_EQ(head, peer.Read(head.size()));
    EXPECT_EQ(1400u, peer.Read(1400).size());
    EXPECT_EQ(NotFound("7"), Ask("RTSP/1.0 501 Not Implemented\r\nCSeq: 7\r\n\r\n"));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspDynamicRate, A501WithoutCSeqGets400)
{
    world.BeginLive();
    Describe();
    peer.Send(AskForRate(0, "RTP/AVP;client_port=6000-6001"));
    peer.Read(1400 + 85);
    peer.Drain();
    EXPECT_NE(std::string::npos, Ask("RTSP/1.0 501 Not Implemented\r\n\r\n").find("RTSP/1.0 400 Bad Request"));
}

TEST_F(RtspDynamicRate, TheProbeIsNotLogged)
{
    world.BeginLive();
    Describe();
    ::testing::internal::CaptureStderr();
    peer.Send(AskForRate(0, "RTP/AVP;client_port=6000-6001"));
    peer.Read(1400 + 85);
    EXPECT_EQ(std::string::npos, ::testing::internal::GetCapturedStderr().find("send data"));
}

// Any other status line is a request of an unknown method, and so is the 501 that nobody asked for.
TEST_F(RtspDynamicRate, OnlyA501BehindAProbeAnswersIt)
{
    EXPECT_EQ("RTSP/1.0 405 Method Not Allowed", Ask("RTSP/1.0 501 Not Implemented\r\nCSeq: 7\r\n\r\n").substr(0, 31));
    world.BeginLive();
    Describe();
    peer.Send(AskForRate(0, "RTP/AVP;client_port=6000-6001"));
    peer.ReadUntil("\r\n\r\n");
    peer.Read(1400);
    EXPECT_EQ("RTSP/1.0 405 Method Not Allowed",
              Ask("RTSP/1.0 500 Internal Server Error\r\nCSeq: 8\r\n\r\n").substr(0, 31));
}

// A status line may carry a track in its place for the URL; it is then a SETUP that tells the round trip.
TEST_F(RtspDynamicRate, TheRoundTripIsTheTimeFromTheProbeToThe501)
{
    FakeClock clock;
    world.BeginLive();
    Describe();
    peer.Send(AskForRate(0, "RTP/AVP/TCP"));
    peer.ReadUntil("\r\n\r\n");
    peer.Read(1400);
    clock.Advance(123);
    const std::string answer = Ask("RTSP/1.0 501trackID=0 x\r\nCSeq: 2\r\nTransport: RTP/AVP/TCP\r\n\r\n");
    EXPECT_NE(std::string::npos, answer.find("x-Dynamic-Rate: 1;rtt=123\r\n"));
}

// The time of the answer is still 0 then, so the difference is that of the clock itself.
TEST_F(RtspDynamicRate, ASecondSetupBeforeThe501SaysTheRoundTrip)
{
    const FakeClock clock;
    const std::string rtt = std::to_string(-static_cast<std::int32_t>(clock.Now()));
    world.BeginLive();
    Describe();
    peer.Send(AskForRate(0, "RTP/AVP;client_port=6000-6001"));
    peer.ReadUntil("\r\n\r\n");
    peer.Read(1400);
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 3\r\n" + MODIFIED +
                  "DATE\r\nTransport: RTP/AVP;unicast;destination=127.0.0.1;source=127.0.0.1;client_port=6000-6001;"
                  "server_port=P-P;ssrc=SSRC\r\nx-Transport-Options: late-tolerance=1.400000\r\n"
                  "x-Retransmit: our-retransmit\r\nx-Dynamic-Rate: 1;rtt=" +
                  rtt + "\r\nSession: ID;timeout=60\r\n\r\n",
              Ask(AskForRate(0, "RTP/AVP;client_port=6000-6001")));
    EXPECT_EQ("RTSP/1.0 200 OK\r\n" + SERVER + "CSeq: 4\r\n" + MODIFIED +
                  "x-Transport-Options: late-tolerance=1.400000\r\nx-Dynamic-Rate: 1;rtt=" + rtt +
                  "\r\n"
                  "DATE\r\nTransport: RTP/AVP/TCP;unicast;destination=127.0.0.1;source=127.0.0.1;interleaved=0-1;"
                  "ssrc=SSRC\r\nSession: ID;timeout=60\r\n\r\n",
              Ask(AskForRate(1, "RTP/AVP/TCP")));
}

class RtspDescribeWait : public RtspCommands
{
protected:
    RtspDescribeWait() { world.data.SetLiveRtspUrl(4, 0, "/live/late"); }

    FakeClock clock;
};

TEST_F(RtspDescribeWait, AnswersAsSoonAsTheFirstKeyFrameCame)
{
    peer.Send(Request("DESCRIBE", Url("/live/late")));
    world.Rounds(5);
    EXPECT_EQ("", peer.Drain());
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    EXPECT_EQ("RTSP/1.0 200 OK", peer.ReadAnswer().substr(0, 15));
    EXPECT_EQ(1u, world.stream.Calls().size()); // opened once
}

TEST_F(RtspDescribeWait, GivesUpAfterFourSeconds)
{
    peer.Send(Request("DESCRIBE", Url("/live/late")));
    world.Rounds(3);
    for (int waitedMs = 80; waitedMs < 4000; waitedMs += 80)
    {
        clock.Advance(80);
        world.Round();
    }
    clock.Advance(79); // 3999 ms
    world.Rounds(2);
    EXPECT_EQ("", peer.Drain());
    clock.Advance(1);
    world.Rounds(2);
    EXPECT_EQ(NotFound("1"), Normalized(peer.ReadAnswer()));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspDescribeWait, RequestsBehindItAreAnsweredBehindIt)
{
    peer.Send(Request("DESCRIBE", Url("/live/late")));
    world.Rounds(3);
    peer.Send(Request("OPTIONS", "*"));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    EXPECT_NE(std::string::npos, peer.ReadAnswer().find("CSeq: 1\r\n"));
    EXPECT_NE(std::string::npos, peer.ReadAnswer().find("CSeq: 2\r\n"));
}

TEST_F(RtspDescribeWait, OtherClientsAreServedMeanwhile)
{
    peer.Send(Request("DESCRIBE", Url("/live/late")));
    world.Rounds(3);
    Peer other = world.Connect();
    EXPECT_EQ("RTSP/1.0 200 OK", world.Ask(other, Request("OPTIONS", "*")).substr(0, 15));
    EXPECT_EQ("", peer.Drain());
}

TEST_F(RtspDescribeWait, AClientThatGoesMeanwhileIsForgotten)
{
    peer.Send(Request("DESCRIBE", Url("/live/late")));
    world.Rounds(3);
    peer.Close();
    world.Rounds(3);
    world.PushVideo(4, 0, KeyFrame(), true, 1000000);
    world.Rounds(3);
    Peer other = world.Connect();
    EXPECT_EQ("RTSP/1.0 200 OK", world.Ask(other, Request("OPTIONS", "*")).substr(0, 15));
}

TEST_F(RtspDescribeWait, TooManyRequestsBehindItEndTheSession)
{
    peer.Send(Request("DESCRIBE", Url("/live/late")));
    world.Rounds(3);
    const std::string padding = "X: " + std::string(8000, 'x') + "\r\n";
    for (int i = 0; i < 10 && !peer.IsClosedNow(); ++i)
    {
        peer.Send(Request("OPTIONS", "*", padding));
        world.Rounds(3);
    }
    EXPECT_TRUE(peer.IsClosedNow());
}

} // namespace
