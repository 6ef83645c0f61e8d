// The facade behind the exported calls, with its own thread: start, stop, the way of frames, hosts that push meanwhile.

#include "FakeDevice.h"
#include "FakeStreamCtrl.h"
#include "Peer.h"
#include "Policy.h"
#include "RTSP_Manager.h"
#include "RtspWorld.h"

#include <atomic>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace
{

class RtspManager : public ::testing::Test
{
protected:
    RtspManager() { device.needAuthorization = false; }
    ~RtspManager() override
    {
        manager.Stop_RTSP_Manager();
        CPolicy::SetCurrent(CPolicy());
    }

    void Start(unsigned short port = 0) { EXPECT_EQ(0, manager.Start_RTSP_Manager(port, &stream, &device)); }
    void PushVideo(unsigned int id, int streamIndex, const std::string& payload, bool keyFrame, std::uint64_t us)
    {
        const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, keyFrame, us, payload.size());
        manager.AddData_RTSP_Manager(id, streamIndex, frame, const_cast<char*>(payload.data()));
    }
    void PushAudio(unsigned int id, int streamIndex, const std::string& payload, std::uint64_t us)
    {
        const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_AUDIO, false, us, payload.size());
        manager.AddData_RTSP_Manager(id, streamIndex, frame, const_cast<char*>(payload.data()));
    }
    std::string Url(const std::string& path) { return "rtsp://127.0.0.1:" + std::to_string(manager.GetPort()) + path; }
    static std::string Ask(Peer& peer, const std::string& request)
    {
        peer.Send(request);
        return peer.ReadAnswer();
    }
    std::string Options(Peer& peer) { return Ask(peer, "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n").substr(0, 15); }
    /// @return the answer to PLAY of one track, on the channels 0 and 1
    std::string Play(Peer& peer, const std::string& path, int track)
    {
        Ask(peer, "DESCRIBE " + Url(path) + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
        Ask(peer, "SETUP " + Url(path + "/trackID=" + std::to_string(track)) +
                      " RTSP/1.0\r\nCSeq: 2\r\nTransport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n\r\n");
        return Ask(peer, "PLAY " + Url(path) + " RTSP/1.0\r\nCSeq: 3\r\n\r\n").substr(0, 15);
    }

    CFakeDevice device;
    FakeStreamCtrl stream;
    CRTSP_Manager& manager = CRTSP_Manager::Instance();
};

TEST_F(RtspManager, ServesAfterEachStart)
{
    for (int i = 0; i < 2; ++i)
    {
        Start();
        Peer peer(manager.GetPort());
        EXPECT_EQ("RTSP/1.0 200 OK", Options(peer));
        EXPECT_EQ(0, manager.Stop_RTSP_Manager());
        EXPECT_TRUE(peer.WaitClosed());
        EXPECT_EQ(0, manager.GetPort());
    }
}

TEST_F(RtspManager, ASecondStartWhileItRunsDoesNothing)
{
    Start();
    const unsigned short port = manager.GetPort();
    Peer peer(port);
    EXPECT_EQ("RTSP/1.0 200 OK", Options(peer));
    EXPECT_EQ(0, manager.Start_RTSP_Manager(0, nullptr, nullptr));
    EXPECT_EQ(port, manager.GetPort());
    EXPECT_EQ("RTSP/1.0 200 OK", Options(peer));
}

TEST_F(RtspManager, AStopWhileItDoesNotRunDoesNothing)
{
    EXPECT_EQ(0, manager.Stop_RTSP_Manager());
    Start();
    EXPECT_EQ(0, manager.Stop_RTSP_Manager());
    EXPECT_EQ(0, manager.Stop_RTSP_Manager());
}

TEST_F(RtspManager, QuitDoesNothing)
{
    Start();
    EXPECT_EQ(1, manager.Quit_RTSP_Manager());
    Peer peer(manager.GetPort());
    EXPECT_EQ("RTSP/1.0 200 OK", Options(peer));
}

// It counts as running all the same: a further start does nothing until it was stopped.
TEST_F(RtspManager, APortThatCannotBeHadLeavesItRunningWithoutAPort)
{
    NC_Init();
    int holder = NC_CreateTCPSockAndListen(0, nullptr);
    unsigned short taken = 0;
    NC_GetSockName(holder, static_cast<int*>(nullptr), &taken);
    Start(taken);
    EXPECT_EQ(0, manager.GetPort());
    PushVideo(1, 0, KeyFrame(), true, 1000000);
    Start();
    EXPECT_EQ(0, manager.GetPort());
    NC_CloseSocket(holder);
    EXPECT_EQ(0, manager.Stop_RTSP_Manager());
    Start();
    EXPECT_NE(0, manager.GetPort());
}

TEST_F(RtspManager, FramesThatComeWhileItIsStoppedAreDropped)
{
    const std::string payload = DeltaFrame();
    const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, false, 1000000, payload.size());
    char* data = const_cast<char*>(payload.data());
    EXPECT_EQ(0, manager.AddData_RTSP_Manager(81, 0, frame, data));
    Start();
    EXPECT_EQ(-1, manager.AddData_RTSP_Manager(81, 0, frame, data)); // in front of the first key frame
}

TEST_F(RtspManager, AStopForgetsTheStreams)
{
    const std::string key = KeyFrame();
    const std::string delta = DeltaFrame();
    const NETNS::RTSP_FRAME keyFrame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, true, 1000000, key.size());
    const NETNS::RTSP_FRAME deltaFrame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, false, 1040000, delta.size());
    Start();
    EXPECT_EQ(0, manager.AddData_RTSP_Manager(80, 0, keyFrame, const_cast<char*>(key.data())));
    EXPECT_EQ(0, manager.AddData_RTSP_Manager(80, 0, deltaFrame, const_cast<char*>(delta.data())));
    manager.Stop_RTSP_Manager();
    Start();
    EXPECT_EQ(-1, manager.AddData_RTSP_Manager(80, 0, deltaFrame, const_cast<char*>(delta.data())));
}

// The host delivers sound once per channel, and each stream of the channel gets it.
TEST_F(RtspManager, SoundOfAChannelWithTwoUrlsReachesBothStreams)
{
    manager.SetLiveRTSPUrl(82, 0, "/manager/two/main");
    manager.SetLiveRTSPUrl(82, 1, "/manager/two/sub");
    Start();
    for (const int index : {0, 1})
        PushVideo(82, index, KeyFrame(), true, 1000000);
    PushAudio(82, 0, AudioFrame(), 1000000);

    Peer main(manager.GetPort());
    Peer sub(manager.GetPort());
    EXPECT_EQ("RTSP/1.0 200 OK", Play(main, "/manager/two/main", 1));
    EXPECT_EQ("RTSP/1.0 200 OK", Play(sub, "/manager/two/sub", 1));
    PushAudio(82, 0, AudioFrame(), 1040000);
    EXPECT_EQ(std::string("$\0\x01\x4c", 4), main.Read(4)); // 12 + 320
    EXPECT_EQ(std::string("$\0\x01\x4c", 4), sub.Read(4));
}

TEST_F(RtspManager, VideoOfAChannelWithTwoUrlsGoesToTheStreamThatTheHostNames)
{
    manager.SetLiveRTSPUrl(78, 0, "/manager/video/main");
    manager.SetLiveRTSPUrl(78, 1, "/manager/video/sub");
    Start();
    PushVideo(78, 0, KeyFrame(), true, 1000000);
    std::string payload = DeltaFrame();
    const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, false, 1040000, payload.size());
    EXPECT_EQ(0, manager.AddData_RTSP_Manager(78, 0, frame, payload.data()));
    EXPECT_EQ(-1, manager.AddData_RTSP_Manager(78, 1, frame, payload.data())); // no key frame has come there
}

TEST_F(RtspManager, SoundOfAChannelWithOneUrlGoesToTheStreamThatTheHostNames)
{
    manager.SetLiveRTSPUrl(83, 0, "/manager/single");
    Start();
    for (const int index : {0, 1})
        PushVideo(83, index, KeyFrame(), true, 1000000);
    PushAudio(83, 0, AudioFrame(), 1000000);
    Peer peer(manager.GetPort());
    EXPECT_EQ("RTSP/1.0 200 OK", Play(peer, "/manager/single", 1));
    PushAudio(83, 1, AudioFrame(100), 1040000); // another stream of the channel
    PushAudio(83, 0, AudioFrame(200), 1080000);
    EXPECT_EQ(std::string("$\0\x00\xd4", 4), peer.Read(4)); // 12 + 200
}

/// Lists of one stream: the first client's has no key frame yet, the one behind it has.
class RtspManagerWaiting : public RtspManager
{
protected:
    RtspManagerWaiting() { manager.SetLiveRTSPUrl(84, 0, "/manager/waiting"); }

    // The first client's frames are dropped as too old while it does not read, so that it waits for a key frame again
    // while the one behind it plays on.
    void PlayWithOneStalled()
    {
        Start();
        PushVideo(84, 0, KeyFrame(), true, 1000000);
        stalled = Peer(manager.GetPort());
        const int bytes = 4096;
        setsockopt(stalled.Socket(), SOL_SOCKET, SO_RCVBUF, &bytes, sizeof(bytes));
        playing = Peer(manager.GetPort());
        EXPECT_EQ("RTSP/1.0 200 OK", Play(stalled, "/manager/waiting", 0));
        EXPECT_EQ("RTSP/1.0 200 OK", Play(playing, "/manager/waiting", 0));
        PushVideo(84, 0, KeyFrame(1000000), true, 2000000); // more than its socket takes
        Skip(1000000);
        PushVideo(84, 0, DeltaFrame(), false, 3000000); // waits in the stalled client's list
        EXPECT_EQ(20u + 16u, playing.Read(36).size());
        PushVideo(84, 0, DeltaFrame(), false, 6000000); // drops both there
    }
    /// Reads a key frame of so many slice bytes off the playing client.
    void Skip(std::size_t sliceBytes)
    {
        playing.Read(40); // parameter sets
        for (std::size_t payload = 1; payload < sliceBytes;)
        {
            const std::string head = playing.Read(4);
            ASSERT_EQ(4u, head.size());
            const std::size_t length = static_cast<std::size_t>(static_cast<unsigned char>(head[2])) << 8 |
                                       static_cast<unsigned char>(head[3]);
            payload += playing.Read(length).size() - 14;
        }
    }

    Peer stalled;
    Peer playing;
};

// A client that waits for a key frame keeps frames from those behind it; clients see it so.
TEST_F(RtspManagerWaiting, ByDefaultAClientWaitingForAKeyFrameCostsThoseBehindItTheFrame)
{
    PlayWithOneStalled();
    PushVideo(84, 0, DeltaFrame(100), false, 6040000);
    PushVideo(84, 0, KeyFrame(), true, 6080000); // begins the waiting list anew: this one reaches both
    EXPECT_EQ(std::string("$\0\x00\x10", 4), playing.Read(4));
}

TEST_F(RtspManagerWaiting, WithStandardRtspAClientWaitingForAKeyFrameCostsNobodyAFrame)
{
    CPolicy::SetCurrent(CPolicy(1));
    PlayWithOneStalled();
    EXPECT_EQ(36u, playing.Read(36).size()); // the one that dropped the others
    PushVideo(84, 0, DeltaFrame(100), false, 6040000);
    EXPECT_EQ(std::string("$\0\x00\x70", 4), playing.Read(4)); // 12 + 100
}

/// Two host threads that push until they are told to end.
class Feeders
{
public:
    explicit Feeders(const std::function<void(unsigned int id, std::uint64_t us)>& push)
    {
        for (const unsigned int id : {85u, 86u})
            m_threads.emplace_back(
                [this, id, push]
                {
                    for (std::uint64_t us = 1000000; !m_end; us += 40000)
                        push(id, us);
                });
    }
    ~Feeders()
    {
        m_end = true;
        for (std::thread& thread : m_threads)
            thread.join();
    }

private:
    std::atomic<bool> m_end{false};
    std::vector<std::thread> m_threads;
};

TEST_F(RtspManager, HostsPushWhileClientsComeAndGoAndItStopsAndStarts)
{
    manager.SetLiveRTSPUrl(85, 0, "/manager/five");
    manager.SetLiveRTSPUrl(86, 0, "/manager/six");
    manager.SetLiveRTSPUrl(86, 1, "/manager/seven");
    const Feeders feeders(
        [this](unsigned int id, std::uint64_t us)
        {
            PushVideo(id, 0, us % 200000 == 0 ? KeyFrame(5000) : DeltaFrame(2000), us % 200000 == 0, us);
            PushAudio(id, 0, AudioFrame(), us);
            std::this_thread::yield();
        });
    for (int run = 0; run < 3; ++run)
    {
        Start();
        const std::string path = run % 2 == 0 ? "/manager/five" : "/manager/six";
        std::vector<Peer> playing;
        for (int client = 0; client < 8; ++client)
        {
            playing.emplace_back(manager.GetPort());
            EXPECT_EQ("RTSP/1.0 200 OK", Play(playing.back(), path, client % 2));
            EXPECT_EQ("$", playing.back().Read(1));
            if (client % 3 == 0)
                playing.back().Reset();
        }
        UdpPeer rtp;
        Peer overUdp(manager.GetPort());
        Ask(overUdp, "DESCRIBE " + Url(path) + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
        const std::string port = std::to_string(rtp.Port());
        Ask(overUdp, "SETUP " + Url(path + "/trackID=0") +
                         " RTSP/1.0\r\nCSeq: 2\r\nTransport: RTP/AVP;client_port=" + port + "-" + port + "\r\n\r\n");
        Ask(overUdp, "PLAY " + Url(path) + " RTSP/1.0\r\nCSeq: 3\r\n\r\n");
        EXPECT_FALSE(rtp.Read().empty());
        manager.Stop_RTSP_Manager(); // while everything plays
        EXPECT_TRUE(overUdp.WaitClosed());
    }
}

// A client whose DESCRIBE waits for a first key frame does not hold up a stop.
TEST_F(RtspManager, StopsWhileADescribeWaits)
{
    manager.SetLiveRTSPUrl(87, 0, "/manager/late");
    Start();
    Peer waiting(manager.GetPort());
    waiting.Send("DESCRIBE " + Url("/manager/late") + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    Peer other(manager.GetPort());
    EXPECT_EQ("RTSP/1.0 200 OK", Options(other));
    EXPECT_EQ("", waiting.Drain());
    manager.Stop_RTSP_Manager();
    EXPECT_EQ("", waiting.ReadAll());
}

TEST_F(RtspManager, AHeldDescribeIsAnsweredWhenAnotherThreadPushesTheFirstKeyFrame)
{
    manager.SetLiveRTSPUrl(88, 0, "/manager/later");
    Start();
    Peer waiting(manager.GetPort());
    waiting.Send("DESCRIBE " + Url("/manager/later") + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    Peer other(manager.GetPort());
    EXPECT_EQ("RTSP/1.0 200 OK", Options(other));
    PushVideo(88, 0, KeyFrame(), true, 1000000);
    EXPECT_EQ("RTSP/1.0 200 OK", waiting.ReadAnswer().substr(0, 15));
}

} // namespace
