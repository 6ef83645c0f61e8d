// Requests and packets as bytes: how they are read, interleaved, tunnelled and ended.

#include "Base64Coder.h"
#include "ByteOrder.h"
#include "RTSP_ClientSession.h"
#include "RtspWorld.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

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

bool IsAnswerTo(const std::string& answer, int cseq)
{
    return answer.find("CSeq: " + std::to_string(cseq) + "\r\n") != std::string::npos;
}

class RtspDataPath : public ::testing::Test
{
protected:
    void SetUpTrack(Peer& client, int track, const std::string& transport)
    {
        client.Send("SETUP " + world.Url("/live/one/trackID=" + std::to_string(track)) +
                    " RTSP/1.0\r\nCSeq: 90\r\nTransport: " + transport + "\r\n\r\n");
        setupAnswer = client.ReadAnswer();
    }
    /// A client that plays the video of "/live/one" on channel 0.
    void Play(Peer& client)
    {
        world.BeginLive();
        client.Send("DESCRIBE " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 91\r\n\r\n");
        client.ReadAnswer();
        SetUpTrack(client, 0, "RTP/AVP/TCP;unicast;interleaved=0-1");
        client.Send("PLAY " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 92\r\n\r\n");
        client.ReadAnswer();
    }
    static int ReceiveBuffer(int bytes, int sock)
    {
        return setsockopt(sock, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
    }

    RtspWorld world;
    Peer peer = world.Connect();
    std::string setupAnswer;
};

TEST_F(RtspDataPath, TwoMessagesInOneReadAreBothServed)
{
    peer.Send(Options(1) + Options(2));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
}

TEST_F(RtspDataPath, OfThreeMessagesInOneReadTheThirdIsLost)
{
    peer.Send(Options(1) + Options(2) + Options(3));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
}

// A request is served only when one read brings all of it: the tail alone has no request line.
TEST_F(RtspDataPath, ARequestSplitInTwoReadsGets400)
{
    peer.Send("OPTIONS * RTSP/1.0\r\nCS");
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    peer.Send("eq: 1\r\n\r\n");
    EXPECT_EQ("RTSP/1.0 400 Bad Request", peer.ReadAnswer().substr(0, 24));
}

TEST_F(RtspDataPath, AMessageThatBeginsWithABlankLineIsNotServed)
{
    peer.Send("\r\n\r\n");
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    EXPECT_FALSE(peer.IsClosedNow());
}

TEST_F(RtspDataPath, ARequestMayBeOneByteShortOfTheLimit)
{
    const std::string frame = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nX: \r\n\r\n";
    const std::string padding(16383 - frame.size(), 'x');
    peer.Send("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nX: " + padding + "\r\n\r\n");
    EXPECT_EQ("RTSP/1.0 200 OK", peer.ReadAnswer().substr(0, 15));
}

TEST_F(RtspDataPath, ARequestOfTheLimitEndsTheSession)
{
    peer.Send(std::string(16384, 'x'));
    EXPECT_TRUE(peer.WaitClosed());
}

TEST_F(RtspDataPath, BinaryNoiseDoesNotEndTheServer)
{
    std::string noise;
    for (int i = 0; i < 8000; ++i)
        noise += static_cast<char>(i * 37 % 251);
    peer.Send(noise);
    world.Rounds(5);
    Peer other = world.Connect();
    other.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(other.ReadAnswer(), 1));
}

TEST_F(RtspDataPath, APlainBodyIsNotWaitedFor)
{
    peer.Send("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nContent-Length: 10\r\n\r\n");
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
}

TEST_F(RtspDataPath, ABase64MessageIsServedOnAnyConnection)
{
    peer.Send(Base64(Options(5)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 5));
}

TEST_F(RtspDataPath, TwoBase64MessagesInOneTextAreBothServed)
{
    peer.Send(Base64(Options(5) + Options(6)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 5));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 6));
}

// It counts its encoded bytes, which are more than its header, so a body is awaited and no answer comes.
TEST_F(RtspDataPath, ABase64MessageWithAContentLengthWaitsForItsBody)
{
    const std::string message = Base64("OPTIONS * RTSP/1.0\r\nCSeq: 5\r\nContent-Length: 4\r\n\r\n");
    peer.Send(message);
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    EXPECT_FALSE(peer.IsClosedNow());
}

TEST_F(RtspDataPath, OfThreeBase64MessagesInOneTextTheThirdIsLost)
{
    peer.Send(Base64(Options(5) + Options(6) + Options(7)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 5));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 6));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
}

TEST_F(RtspDataPath, APlainMessageMayHaveABase64MessageBehindIt)
{
    peer.Send(Options(5) + Base64(Options(6)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 5));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 6));
}

TEST_F(RtspDataPath, ABase64MessageBehindAPlainOneWaitsForItsBodyAsWell)
{
    peer.Send(Options(5) + Base64("OPTIONS * RTSP/1.0\r\nCSeq: 6\r\nContent-Length: 4\r\n\r\n"));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 5));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
}

// The body takes what comes next, message by message, and more than it announced is told on the console.
TEST_F(RtspDataPath, WhatABase64MessageWaitsForIsNotServed)
{
    const std::string message = "OPTIONS * RTSP/1.0\r\nCSeq: 5\r\nContent-Length: 4\r\n\r\n"; // 50 bytes, 68 in Base64
    peer.Send(Base64(message));
    world.Rounds(3);
    ::testing::internal::CaptureStderr();
    // 31 bytes, more than the 68 - 50 that are waited for; the second one does not count.
    peer.Send(Options(6) + Options(6));
    world.Rounds(3);
    EXPECT_EQ("error recv more data~   m_iNeedMoreContentData = -13 ",
              ::testing::internal::GetCapturedStderr().substr(0, 53));
    EXPECT_EQ("", peer.Drain());
    peer.Send(Options(7));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 7));
}

TEST_F(RtspDataPath, Base64GarbageIsIgnored)
{
    peer.Send(std::string(4000, '=') + std::string(200, 'A'));
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
    EXPECT_FALSE(peer.IsClosedNow());
}

TEST_F(RtspDataPath, ADollarInTheMiddleOfTextEndsTheText)
{
    peer.Send(Options(1) + std::string("$\0\0\4abcd", 8));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
    world.Rounds(3);
    peer.Send(Options(2));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
}

// Text that waits for its end is looked at again, with nothing new in it, and what comes behind goes on as ever.
TEST_F(RtspDataPath, ADollarBehindUnfinishedTextLooksAtNothingNew)
{
    peer.Send("OPTIONS");
    world.Rounds(3);
    ::testing::internal::CaptureStderr();
    peer.Send(std::string("$\0\0\4abcd", 8));
    world.Rounds(3);
    EXPECT_NE(std::string::npos,
              ::testing::internal::GetCapturedStderr().find("  warning --rtsp data has exception! \n"));
    peer.Send(Options(2));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
}

TEST_F(RtspDataPath, InterleavedPacketsOfEveryLengthAreRead)
{
    for (const int length : {0, 1, 11, 12, 13, 100, 508, 509, 1472, 65535})
    {
        std::string packet = "$";
        packet += static_cast<char>(0);
        packet += static_cast<char>(length >> 8);
        packet += static_cast<char>(length & 0xFF);
        packet.append(static_cast<std::size_t>(length), 'x');
        Peer client = world.Connect();
        client.Send(packet);
        world.Rounds(4);
        EXPECT_LE(world.stream.Calls().size(), 0u) << length;
    }
    peer.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
}

std::string TalkPacket(const std::string& payload)
{
    std::string packet("$\0\0\0\x80\x08\0\1\0\0\0\0\0\0\0\0", 16);
    const std::size_t length = 12 + payload.size();
    packet[2] = static_cast<char>(length >> 8);
    packet[3] = static_cast<char>(length & 0xFF);
    return packet + payload;
}

TEST_F(RtspDataPath, SpeechReachesTheHostBehindItsMarker)
{
    peer.Send(TalkPacket("hello"));
    world.Rounds(3);
    EXPECT_EQ(std::vector<std::string>{"TalkBackStreamInput 9 11"}, world.stream.Calls());
    EXPECT_EQ(std::string("\0\1\xa0\0hello", 9), world.stream.Speech());
}

TEST_F(RtspDataPath, ASpeechPacketOfItsHeaderAloneReachesTheHostAsAMarker)
{
    peer.Send(TalkPacket(""));
    world.Rounds(3);
    EXPECT_EQ(std::vector<std::string>{"TalkBackStreamInput 4 11"}, world.stream.Calls());
    peer.Send(std::string("$\0\0\x0b\x80\x08\0\1\0\0\0\0\0\0\0", 15)); // one byte less
    world.Rounds(3);
    EXPECT_EQ(1u, world.stream.Calls().size());
}

TEST_F(RtspDataPath, ALongSpeechPacketReachesTheHostWhole)
{
    const std::string speech(3000, 's');
    peer.Send(TalkPacket(speech));
    world.Rounds(3);
    EXPECT_EQ(std::string("\0\1\xa0\0", 4) + speech, world.stream.Speech());
}

TEST_F(RtspDataPath, SpeechIsToldOnTheConsole)
{
    ::testing::internal::CaptureStderr();
    peer.Send(TalkPacket("hello"));
    world.Rounds(3);
    EXPECT_EQ("  ----- CRTSP_ClientSession::HandleTalkData, len:9  \n", ::testing::internal::GetCapturedStderr());
}

TEST_F(RtspDataPath, TheMarkerBitOfSpeechDoesNotMatter)
{
    std::string packet = TalkPacket("hello");
    packet[5] = static_cast<char>(0x88);
    peer.Send(packet);
    world.Rounds(3);
    EXPECT_EQ(1u, world.stream.Calls().size());
}

TEST_F(RtspDataPath, OtherInterleavedPacketsAreDropped)
{
    std::string packet = TalkPacket("hello");
    packet[5] = static_cast<char>(200); // a sender report's type
    peer.Send(packet);
    packet[5] = 0; // PCMU
    peer.Send(packet);
    world.Rounds(3);
    EXPECT_TRUE(world.stream.Calls().empty());
}

// The state of a packet is forgotten after each read, so its tail is read as text.
TEST_F(RtspDataPath, AnInterleavedPacketInTwoReadsIsLost)
{
    const std::string packet = TalkPacket("hello");
    peer.Send(packet.substr(0, 10));
    world.Rounds(3);
    peer.Send(packet.substr(10));
    world.Rounds(3);
    EXPECT_TRUE(world.stream.Calls().empty());
    EXPECT_FALSE(peer.IsClosedNow());
}

TEST_F(RtspDataPath, VideoComesInterleavedAsItWasPushed)
{
    Play(peer);
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    const std::string sps = peer.Read(20);
    EXPECT_EQ(std::string("$\0\0\x10\x80\x60", 6), sps.substr(0, 6));
    EXPECT_EQ(std::string("\x67\x42\xc0\x1e", 4), sps.substr(16));
    const std::string pps = peer.Read(20);
    EXPECT_EQ(std::string("\x68\xce\x3c\x80", 4), pps.substr(16));
    const std::string slice = peer.Read(36);
    EXPECT_EQ(std::string("$\0\0\x20\x80\xe0", 6), slice.substr(0, 6)); // the marker on the last packet alone
    EXPECT_EQ("\x65" + std::string(19, 'k'), slice.substr(16));
    const auto sequence = [](const std::string& packet)
    {
        return GetBE16(reinterpret_cast<const unsigned char*>(packet.data()) + 6);
    };
    EXPECT_EQ(static_cast<std::uint16_t>(sequence(sps) + 1), sequence(pps));
    EXPECT_EQ(static_cast<std::uint16_t>(sequence(sps) + 2), sequence(slice));
}

TEST_F(RtspDataPath, AFrameBeforeTheFirstKeyFrameIsNotSent)
{
    Play(peer);
    world.PushVideo(1, 0, DeltaFrame(), false, 2000000);
    world.Rounds(3);
    EXPECT_EQ("", peer.Drain());
}

TEST_F(RtspDataPath, ALargeFrameComesInPacketsOf1472Bytes)
{
    Play(peer);
    world.PushVideo(1, 0, KeyFrame(100000), true, 2000000);
    peer.Read(40);
    std::size_t payload = 0;
    for (bool last = false; !last;)
    {
        const std::string head = peer.Read(18);
        ASSERT_EQ(18u, head.size());
        const std::size_t length = GetBE16(reinterpret_cast<const unsigned char*>(head.data()) + 2);
        EXPECT_LE(length, 1468u);
        last = (head[5] & 0x80) != 0;
        EXPECT_EQ(last ? 0x45 : (payload == 0 ? 0x85 : 0x05), static_cast<unsigned char>(head[17]));
        payload += peer.Read(length - 14).size();
    }
    EXPECT_EQ(99999u, payload);
}

// Answers written while a packet is out in part go behind it, and in front of the packets that follow.
TEST_F(RtspDataPath, AnAnswerGoesBehindThePacketThatIsOutInPart)
{
    ReceiveBuffer(65536, peer.Socket());
    Play(peer);
    for (int i = 0; i < 12; ++i)
        world.PushVideo(1, 0, KeyFrame(200000), true, 2000000 + static_cast<std::uint64_t>(i) * 40000);
    world.Rounds(5);
    peer.Send("SET_PARAMETER " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 93\r\n\r\n");
    world.Rounds(5);

    std::size_t mediaBytes = 0;
    std::string first = peer.Read(1);
    for (; first == "$"; first = peer.Read(1))
    {
        const std::string head = peer.Read(3);
        ASSERT_EQ(3u, head.size());
        mediaBytes += peer.Read(GetBE16(reinterpret_cast<const unsigned char*>(head.data()) + 1)).size();
    }
    EXPECT_TRUE(IsAnswerTo(first + peer.ReadUntil("\r\n\r\n"), 93));
    EXPECT_LT(mediaBytes, 12 * 200000u);
    EXPECT_EQ("$", peer.Read(1)); // the media goes on behind it
}

/// A session whose client's kernel takes as few bytes as can be. Its end is seen at once, and no timer of TCP is in it.
class RtspSlowReader : public RtspDataPath
{
protected:
    void SetUp() override
    {
        int pair[2];
        ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair));
        const int least = 1; // the kernel makes the buffer as small as it gets
        setsockopt(pair[0], SOL_SOCKET, SO_SNDBUF, &least, sizeof(least));
        session = CRTSP_ClientSession::Create_RTSP_ClientSession(world.scheduler, *world.server, pair[0], "");
        client = pair[1];
    }
    void TearDown() override { close(client); }

    /// @return false when the session has ended
    bool Ask(int cseq)
    {
        const std::string request = Options(cseq);
        const ssize_t sent = send(client, request.data(), request.size(), MSG_NOSIGNAL);
        world.Rounds(2);
        return sent == static_cast<ssize_t>(request.size());
    }

    CRTSP_ClientSession* session = nullptr;
    int client = -1;
};

// More answers than the connection takes at once wait for the client, all of them and in order.
TEST_F(RtspSlowReader, GetsAllAnswersThatItReadsLate)
{
    for (int cseq = 1; cseq <= 100; ++cseq)
    {
        ASSERT_TRUE(Ask(cseq));
    }
    EXPECT_TRUE(session->HasDataToSend());
    std::string answers;
    char block[4096];
    for (ssize_t count = 1; count > 0; world.Rounds(2))
    {
        count = recv(client, block, sizeof(block), 0);
        answers.append(block, count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    std::size_t at = 0;
    for (int cseq = 1; cseq <= 100; ++cseq)
    {
        at = answers.find("\r\nCSeq: " + std::to_string(cseq) + "\r\n", at);
        ASSERT_NE(std::string::npos, at) << cseq;
    }
    EXPECT_FALSE(session->HasDataToSend());
    session->Destroy();
}

// Answers to a client that never reads are bounded: the session ends.
TEST_F(RtspSlowReader, IsEndedWhenAMebibyteOfAnswersWaits)
{
    peer.Send(Options(1));
    const std::size_t answerBytes = peer.ReadAnswer().size();
    const std::size_t most = 1048576 / answerBytes;
    std::size_t asked = 0;
    while (asked < 2 * most && Ask(1))
    {
        ++asked;
    }
    EXPECT_GE(asked, most);
    EXPECT_LE(asked, most + 65536 / answerBytes); // what the kernel has taken
}

TEST_F(RtspDataPath, AStalledClientIsEndedAfter25Seconds)
{
    FakeClock clock;
    Peer client = world.Connect();
    ReceiveBuffer(4096, client.Socket());
    Play(client);
    for (int i = 0; i < 30; ++i)
        world.PushVideo(1, 0, KeyFrame(300000), true, 2000000 + static_cast<std::uint64_t>(i) * 40000);
    world.Rounds(5);
    clock.Advance(24999);
    world.Rounds(2);
    EXPECT_EQ(2u, world.server->SessionCount()); // this one and the fixture's
    clock.Advance(1);
    world.Rounds(2);
    EXPECT_EQ(1u, world.server->SessionCount());
}

TEST_F(RtspDataPath, ASilentClientIsEndedAfter1300Seconds)
{
    FakeClock clock;
    Peer client = world.Connect();
    for (int passedMs = 0; passedMs < 1280000; passedMs += 20000)
    {
        clock.Advance(20000);
        world.Round();
    }
    clock.Advance(19999);
    world.Rounds(2);
    EXPECT_FALSE(client.IsClosedNow());
    clock.Advance(1);
    world.Rounds(2);
    EXPECT_TRUE(client.WaitClosed());
}

TEST_F(RtspDataPath, AClientThatResetsIsForgotten)
{
    Play(peer);
    peer.Reset();
    world.PushVideo(1, 0, KeyFrame(100000), true, 2000000);
    world.Rounds(5);
    Peer other = world.Connect();
    other.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(other.ReadAnswer(), 1));
}

TEST_F(RtspDataPath, ManyConnectsAndDisconnectsLeaveNothing)
{
    for (int i = 0; i < 500; ++i)
    {
        Peer client = world.Connect();
        if (i % 3 == 0)
            client.Send("OPTIONS");
        if (i % 2 == 0)
            client.Reset();
    }
    world.Rounds(10);
    peer.Send(Options(1));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
}

class RtspTunnel : public RtspDataPath
{
protected:
    RtspTunnel()
    {
        peer.Send("GET /live/one HTTP/1.0\r\nx-sessioncookie: abc123\r\nAccept: application/x-rtsp-tunnelled\r\n\r\n");
        getAnswer = Normalized(peer.ReadAnswer());
    }
    Peer Post(const std::string& cookie)
    {
        Peer post = world.Connect();
        post.Send("POST /live/one HTTP/1.0\r\nx-sessioncookie: " + cookie + "\r\nContent-Length: 32767\r\n\r\n");
        world.Rounds(3);
        return post;
    }

    std::string getAnswer;
};

TEST_F(RtspTunnel, TheGetIsAnsweredAndThePostIsNot)
{
    EXPECT_EQ("HTTP/1.0 200 OK\r\nConnection: close\r\nDATE\r\nCache-Control: no-store\r\nPragma: no-cache\r\n"
              "Content-Type: application/x-rtsp-tunnelled\r\n\r\n",
              getAnswer);
    Peer post = Post("abc123");
    EXPECT_EQ("", post.Drain());
    EXPECT_FALSE(post.IsClosedNow());
}

TEST_F(RtspTunnel, RequestsOnThePostAreAnsweredOnTheGet)
{
    Peer post = Post("abc123");
    post.Send(Base64(Options(8)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 8));
    EXPECT_EQ("", post.Drain());
}

TEST_F(RtspTunnel, APostWithABodyInTheSameReadIsServed)
{
    Peer post = world.Connect();
    post.Send("POST /live/one HTTP/1.0\r\nx-sessioncookie: abc123\r\n\r\n" + Base64(Options(8)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 8));
}

TEST_F(RtspTunnel, MediaGoesOutOnTheGet)
{
    Peer post = Post("abc123");
    world.BeginLive();
    post.Send(Base64("DESCRIBE " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 1\r\n\r\n"));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 1));
    post.Send(Base64("SETUP " + world.Url("/live/one/trackID=0") +
                     " RTSP/1.0\r\nCSeq: 2\r\nTransport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n\r\n"));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 2));
    post.Send(Base64("PLAY " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 3\r\n\r\n"));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 3));
    world.PushVideo(1, 0, KeyFrame(), true, 2000000);
    EXPECT_EQ("$", peer.Read(1));
}

TEST_F(RtspTunnel, APostWithAnotherCookieIsClosedWithoutAnAnswer)
{
    Peer post = Post("other");
    EXPECT_EQ("", post.ReadAll());
    EXPECT_FALSE(peer.IsClosedNow());
}

TEST_F(RtspTunnel, APostWithoutACookieFindsNobody)
{
    Peer post = world.Connect();
    ::testing::internal::CaptureStderr();
    post.Send("POST /live/one HTTP/1.0\r\n\r\n");
    EXPECT_TRUE(post.WaitClosed());
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find(" get cliensession err\n"));
}

// The header does not count against the limit of what comes behind it.
TEST_F(RtspTunnel, APostOfAlmostTheLimitIsFollowedByItsMessages)
{
    Peer post = world.Connect();
    post.Send("POST /live/one HTTP/1.0\r\nx-sessioncookie: abc123\r\nX: " + std::string(16300, 'x') + "\r\n\r\n");
    world.Rounds(3);
    for (const int cseq : {7, 8})
    {
        post.Send(Base64("OPTIONS * RTSP/1.0\r\nCSeq: " + std::to_string(cseq) + "\r\nX: " + std::string(9000, 'x') +
                         "\r\n\r\n"));
        EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), cseq));
    }
}

TEST_F(RtspTunnel, ACookieCountsToItsFiftiethByte)
{
    const std::string cookie(50, 'c');
    Peer get = world.Connect();
    get.Send("GET / HTTP/1.0\r\nx-sessioncookie: " + cookie + "tail\r\n\r\n");
    get.ReadAnswer();
    Peer post = Post(cookie);
    post.Send(Base64(Options(8)));
    EXPECT_TRUE(IsAnswerTo(get.ReadAnswer(), 8));
}

TEST_F(RtspTunnel, APostIsFoundAndDetachedByItsCookie)
{
    Peer post = Post("abc123");
    EXPECT_EQ(-1, world.server->GetPostSession("other"));
    EXPECT_EQ(-1, world.server->GetPostSession(""));
    EXPECT_EQ(0, world.server->GetPostSession("abc123"));
    post.Send(Base64(Options(8))); // served by the POST connection itself from now on
    EXPECT_TRUE(IsAnswerTo(post.ReadAnswer(), 8));
    EXPECT_EQ(nullptr, world.server->GetClientSession("other", nullptr));
    EXPECT_NE(nullptr, world.server->GetClientSession("abc123", nullptr));
}

TEST_F(RtspTunnel, KillingTheGetLeavesThePostOpen)
{
    Peer post = Post("abc123");
    peer.Close();
    world.Rounds(4);
    EXPECT_FALSE(post.IsClosedNow());
    post.Send(Base64(Options(8))); // served by the POST connection itself from now on
    EXPECT_TRUE(IsAnswerTo(post.ReadAnswer(), 8));
}

TEST_F(RtspTunnel, TwoPostsOfOneCookieAreBothDetachedWhenTheGetGoes)
{
    Peer first = Post("abc123");
    Peer second = Post("abc123");
    peer.Close();
    world.Rounds(4);
    first.Send(Base64(Options(1)));
    EXPECT_TRUE(IsAnswerTo(first.ReadAnswer(), 1));
    second.Send(Base64(Options(2)));
    EXPECT_TRUE(IsAnswerTo(second.ReadAnswer(), 2));
}

TEST_F(RtspTunnel, ATeardownThroughTheTunnelEndsBothConnections)
{
    Peer post = Post("abc123");
    world.BeginLive();
    post.Send(
        Base64("SETUP " + world.Url("/live/one/trackID=0") + " RTSP/1.0\r\nCSeq: 2\r\nTransport: RTP/AVP/TCP\r\n\r\n"));
    peer.ReadAnswer();
    post.Send(Base64("TEARDOWN " + world.Url("/live/one") + " RTSP/1.0\r\nCSeq: 3\r\n\r\n"));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 3));
    EXPECT_TRUE(peer.WaitClosed());
    EXPECT_TRUE(post.WaitClosed());
}

// What a client sends interleaved on the POST side is looked for on the GET side, where there is none.
TEST_F(RtspTunnel, SpeechOnThePostDoesNotReachTheHost)
{
    Peer post = Post("abc123");
    post.Send(TalkPacket("hello"));
    world.Rounds(3);
    EXPECT_TRUE(world.stream.Calls().empty());
    post.Send(Base64(Options(8)));
    EXPECT_TRUE(IsAnswerTo(peer.ReadAnswer(), 8));
}

} // namespace
