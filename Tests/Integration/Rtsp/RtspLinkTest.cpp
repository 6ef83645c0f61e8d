// The two kinds of links on scripted sockets: what is counted, lost and reported when a send fails or goes out in part.

#include "ByteOrder.h"
#include "RTSP_RTCPLink.h"
#include "RTSP_RTPLink.h"
#include "RtspWorld.h"

#include <deque>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <vector>

namespace
{

/// What the next sends answer, in order; afterwards everything is sent.
enum SEND : int
{
    SEND_FAILS = -1,
    SEND_WOULD_BLOCK = 0,
    SEND_FIVE_BYTES = 5,
};

template <class Link>
class Scripted : public Link
{
public:
    template <class Cfg, class... More>
    explicit Scripted(const Cfg& cfg, More... more) : Link(cfg, more...)
    {
    }
    ~Scripted() override = default;

    int HandleTimeOut(int iTypeMask) override
    {
        timeOuts.push_back(iTypeMask);
        return 0;
    }
    void CloseSocket() override { NC_CloseSocket(this->m_sock); }
    void CRTSP_Erase(CRTSP_ClientSession* /*session*/) override {}
    int RecvData(char* /*buffer*/, int /*length*/) override { return received; }
    int SendData(const char* data, int length) override
    {
        int count = length;
        if (!script.empty())
        {
            count = script.front();
            script.pop_front();
        }
        if (count > 0)
            sent.emplace_back(data, static_cast<std::size_t>(count));
        return count;
    }

    std::deque<int> script;
    std::vector<std::string> sent;
    std::vector<int> timeOuts;
    int received = 0;
};

const unsigned char* Bytes(const std::string& text)
{
    return reinterpret_cast<const unsigned char*>(text.data());
}

class RtspLink : public ::testing::Test
{
protected:
    RtspLink()
    {
        RTSP_STREAM_CFG config;
        config.frameType = NETNS::RTSP_FRAME_AUDIO;
        config.encodeType = NETNS::RTSP_ENCODE_PCMA;
        config.payloadType = 8;
        config.clockRate = 8000;
        rtp = new Scripted<CRTSP_RTPLink>(
            RTP_LINK_CFG{nullptr, htonl(INADDR_LOOPBACK), 9, config, 0x11223344, 7, world.scheduler, Socket()});
        rtcp = new Scripted<CRTSP_RTCPLink>(
            RTCP_LINK_CFG{nullptr, htonl(INADDR_LOOPBACK), 9, 1, 0x11223344, world.scheduler, Socket(), 0}, -1);
        world.PushAudio(1, 0, AudioFrame(), 1000000); // says what the stream is
        rtp->RTSP_RTPLink_Start(
            world.data.CreateSharedDataList(1, 0, NETNS::RTSP_FRAME_AUDIO, -1, 2000, REFUSAL_ENDS_WALK), rtcp);
        rtcp->RTSP_RTCPLink_Start(rtp);
    }
    ~RtspLink() override
    {
        rtcp->Destroy();
        rtp->Destroy();
    }
    int Socket() { return world.server->Create_A_Valid_Sock(1, "127.0.0.1", 0); }
    void Push(std::uint64_t us) { world.PushAudio(1, 0, AudioFrame(100), us); }
    std::uint16_t Sequence(std::size_t index) const { return GetBE16(Bytes(rtp->sent.at(index)) + 2); }

    RtspWorld world;
    Scripted<CRTSP_RTPLink>* rtp = nullptr;
    Scripted<CRTSP_RTCPLink>* rtcp = nullptr;
};

TEST_F(RtspLink, NothingToSendIsNothing)
{
    EXPECT_FALSE(rtp->HasDataToSend());
    EXPECT_EQ(HANDLER_NOTHING, rtp->HandleSend());
}

TEST_F(RtspLink, AFrameIsProgress)
{
    Push(2000000);
    EXPECT_TRUE(rtp->HasDataToSend());
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend());
    EXPECT_EQ(112u, rtp->sent.at(0).size());
    EXPECT_FALSE(rtp->HasDataToSend());
}

// UDP does not repeat: what finds no room is lost, and what follows keeps its order.
TEST_F(RtspLink, APacketThatFindsNoRoomIsLostAndTheOrderStays)
{
    Push(2000000);
    Push(2040000);
    Push(2080000);
    rtp->script = {SEND_WOULD_BLOCK};
    EXPECT_EQ(HANDLER_WOULD_BLOCK, rtp->HandleSend());
    EXPECT_TRUE(rtp->sent.empty());
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend());
    ASSERT_EQ(2u, rtp->sent.size());
    EXPECT_EQ(static_cast<std::uint16_t>(Sequence(0) + 1), Sequence(1));
}

TEST_F(RtspLink, RoomThatEndsBehindAPacketIsAPartOfTheWork)
{
    Push(2000000);
    Push(2040000);
    rtp->script = {112, SEND_WOULD_BLOCK};
    EXPECT_EQ(HANDLER_PARTIAL, rtp->HandleSend());
    EXPECT_EQ(1u, rtp->sent.size());
}

TEST_F(RtspLink, AFailedSendIsToldAndThePacketLost)
{
    Push(2000000);
    rtp->script = {SEND_FAILS};
    EXPECT_EQ(HANDLER_GONE, rtp->HandleSend());
    EXPECT_FALSE(rtp->HasDataToSend());
    EXPECT_TRUE(rtcp->sent.empty());
    Push(2040000);
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend()); // the link lives on
}

TEST_F(RtspLink, AReportWaitsForAWholePacket)
{
    Push(2000000);
    rtp->script = {SEND_FIVE_BYTES};
    EXPECT_EQ(HANDLER_PARTIAL, rtp->HandleSend());
    EXPECT_TRUE(rtcp->sent.empty());
    EXPECT_TRUE(rtp->HasDataToSend());
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend());
    EXPECT_EQ(107u, rtp->sent.at(1).size());
    ASSERT_EQ(1u, rtcp->sent.size());
    EXPECT_EQ(1u, GetBE32(Bytes(rtcp->sent[0]) + 20));   // packets
    EXPECT_EQ(100u, GetBE32(Bytes(rtcp->sent[0]) + 24)); // octets: the first 12 bytes never count
}

TEST_F(RtspLink, AReportCountsOnlyWhatWentOut)
{
    Push(2000000);
    Push(2040000);
    rtp->script = {SEND_WOULD_BLOCK};
    rtp->HandleSend();
    rtp->HandleSend();
    ASSERT_EQ(1u, rtcp->sent.size());
    EXPECT_EQ(1u, GetBE32(Bytes(rtcp->sent[0]) + 20));
    EXPECT_EQ(100u, GetBE32(Bytes(rtcp->sent[0]) + 24));
}

TEST_F(RtspLink, AFailedReportIsToldAndTriedAgainBehindTheNextPacket)
{
    Push(2000000);
    rtcp->script = {SEND_FAILS};
    EXPECT_EQ(HANDLER_GONE, rtp->HandleSend());
    EXPECT_EQ(1u, rtp->sent.size()); // the packet itself went out
    Push(2040000);
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend());
    ASSERT_EQ(1u, rtcp->sent.size());
    EXPECT_EQ(2u, GetBE32(Bytes(rtcp->sent[0]) + 20));
}

TEST_F(RtspLink, AReportGoesOnWhereItStopped)
{
    Push(2000000);
    rtcp->script = {SEND_WOULD_BLOCK, SEND_FIVE_BYTES};
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend());
    ASSERT_EQ(2u, rtcp->sent.size());
    EXPECT_EQ(56u, rtcp->sent[0].size() + rtcp->sent[1].size());
}

TEST_F(RtspLink, AReportThatFindsNoRoomForASecondFails)
{
    FakeClock clock;
    class Full : public Scripted<CRTSP_RTCPLink>
    {
    public:
        Full(const RTCP_LINK_CFG& cfg, FakeClock& fake) : Scripted<CRTSP_RTCPLink>(cfg, -1), m_fake(fake) {}
        int SendData(const char* /*data*/, int /*length*/) override
        {
            m_fake.Advance(10);
            ++tries;
            return SEND_WOULD_BLOCK;
        }
        int tries = 0;

    private:
        FakeClock& m_fake;
    };
    auto* full = new Full({nullptr, htonl(INADDR_LOOPBACK), 9, 1, 1, world.scheduler, Socket(), 0}, clock);
    EXPECT_EQ(-1, full->RTSP_RTCPLink_Send_SR_SDES(1, 1000000, 1, 1));
    EXPECT_EQ(100, full->tries); // each took 10 ms
    full->Destroy();
}

TEST_F(RtspLink, PacketsThatFindNoRoomFor25SecondsTimeOut)
{
    FakeClock clock;
    world.Rounds(2);
    for (int i = 0; i < 20; ++i)
    {
        Push(2000000 + static_cast<std::uint64_t>(i) * 40000);
        rtp->script.push_back(SEND_WOULD_BLOCK);
    }
    world.Round();
    clock.Advance(24999);
    world.Round();
    EXPECT_TRUE(rtp->timeOuts.empty());
    clock.Advance(1);
    world.Round();
    EXPECT_EQ(std::vector<int>{2}, rtp->timeOuts);
}

TEST_F(RtspLink, ASilentClientIsNotTimedOutByItsLinks)
{
    FakeClock clock;
    world.Rounds(2);
    for (int i = 0; i < 200; ++i)
    {
        clock.Advance(20000);
        world.Round();
    }
    EXPECT_TRUE(rtp->timeOuts.empty());
    EXPECT_TRUE(rtcp->timeOuts.empty());
}

TEST_F(RtspLink, AnErrorInReadingIsToldAndNothingElseIs)
{
    for (const int received : {0, 1, 16384})
    {
        rtp->received = received;
        rtcp->received = received;
        EXPECT_EQ(HANDLER_NOTHING, rtp->HandleRecv()) << received;
        EXPECT_EQ(HANDLER_NOTHING, rtcp->HandleRecv()) << received;
    }
    rtp->received = -1;
    rtcp->received = -1;
    EXPECT_EQ(HANDLER_GONE, rtp->HandleRecv());
    EXPECT_EQ(HANDLER_GONE, rtcp->HandleRecv());
}

// The time stamp that goes with a report is that of the frame that made it due.
TEST_F(RtspLink, AReportTellsTheTimeOfItsFrame)
{
    Push(2000000);
    rtp->HandleSend();
    Push(2000000 + 6999999);
    rtp->HandleSend();
    ASSERT_EQ(1u, rtcp->sent.size());
    EXPECT_EQ(7u, GetBE32(Bytes(rtcp->sent[0]) + 16)); // the initial time stamp
    Push(2000000 + 7000000);
    rtp->HandleSend();
    ASSERT_EQ(2u, rtcp->sent.size());
    EXPECT_EQ(0x83AA7E80u + 9, GetBE32(Bytes(rtcp->sent[1]) + 8));
    EXPECT_EQ(GetBE32(Bytes(rtp->sent[2]) + 4), GetBE32(Bytes(rtcp->sent[1]) + 16));
    EXPECT_NE(7u, GetBE32(Bytes(rtcp->sent[1]) + 16));
    EXPECT_EQ(3u, GetBE32(Bytes(rtcp->sent[1]) + 20));
    EXPECT_EQ(300u, GetBE32(Bytes(rtcp->sent[1]) + 24));
}

TEST_F(RtspLink, AStoppedLinkSendsNothing)
{
    Push(2000000);
    rtp->RTSP_RTPLink_Stop();
    EXPECT_FALSE(rtp->HasDataToSend());
    EXPECT_EQ(HANDLER_NOTHING, rtp->HandleSend());
}

TEST_F(RtspLink, AFurtherStartReplacesTheList)
{
    Push(2000000);
    CSharedDataList* list = world.data.CreateSharedDataList(1, 0, NETNS::RTSP_FRAME_AUDIO, -1, 2000, REFUSAL_ENDS_WALK);
    rtp->RTSP_RTPLink_Start(list, rtcp);
    EXPECT_FALSE(rtp->HasDataToSend());
    Push(2040000);
    EXPECT_EQ(HANDLER_PROGRESS, rtp->HandleSend());
    EXPECT_EQ(1u, rtp->sent.size());
}

// The reports' link goes first, and the other one must not ask it for a report afterwards.
TEST_F(RtspLink, ALinkWithoutItsPartnerFailsToReportAndLives)
{
    rtcp->Destroy();
    Push(2000000);
    EXPECT_EQ(HANDLER_GONE, rtp->HandleSend());
    EXPECT_EQ(1u, rtp->sent.size());
    rtcp = new Scripted<CRTSP_RTCPLink>(
        RTCP_LINK_CFG{nullptr, htonl(INADDR_LOOPBACK), 9, 1, 1, world.scheduler, Socket(), 0}, -1);
}

TEST_F(RtspLink, TheReportsSocketNeverWaitsForRoom)
{
    EXPECT_FALSE(rtcp->HasDataToSend());
    EXPECT_DEATH(rtcp->HandleSend(), "");
}

TEST_F(RtspLink, LinksDoNotAcceptAndDoNotConnect)
{
    EXPECT_DEATH(rtp->HandleAccept(), "");
    EXPECT_DEATH(rtp->HandleConnected(), "");
    EXPECT_DEATH(rtcp->HandleAccept(), "");
    EXPECT_DEATH(rtcp->HandleConnected(), "");
}

} // namespace
