// What a host calls: each of the three ways in which frames come reaches the clients of its kind and no others.

#include "FakeDevice.h"
#include "FakeStreamCtrl.h"
#include "NetServerSDK.h"
#include "Peer.h"
#include "RTSP_Manager.h"
#include "RtspWorld.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

class RtspExports : public ::testing::Test
{
protected:
    RtspExports()
    {
        device.needAuthorization = false;
        EXPECT_EQ(0, NET_SERVER_RTSPStart(0, &stream, &device));
    }
    ~RtspExports() override
    {
        EXPECT_EQ(0, NET_SERVER_RTSPStop());
        EXPECT_EQ(1, NET_SERVER_Quit());
    }

    static Peer Connect() { return Peer(CRTSP_Manager::Instance().GetPort()); }
    static void Send(Peer& peer, const std::string& method, const std::string& path, const std::string& lines = "")
    {
        peer.Send(method + " rtsp://127.0.0.1:" + std::to_string(CRTSP_Manager::Instance().GetPort()) + path +
                  " RTSP/1.0\r\nCSeq: 1\r\n" + lines + "\r\n");
    }
    static std::string Ask(Peer& peer, const std::string& method, const std::string& path,
                           const std::string& lines = "")
    {
        Send(peer, method, path, lines);
        return peer.ReadAnswer().substr(0, 15);
    }
    static void Play(Peer& peer, const std::string& path, int track)
    {
        EXPECT_EQ("RTSP/1.0 200 OK", Ask(peer, "SETUP", path + "/trackID=" + std::to_string(track),
                                         "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n"));
        EXPECT_EQ("RTSP/1.0 200 OK", Ask(peer, "PLAY", path));
    }
    static NETNS::RTSP_FRAME Video(const std::string& payload, bool keyFrame, std::uint64_t us)
    {
        return FrameRecord(NETNS::RTSP_FRAME_VIDEO, keyFrame, us, payload.size());
    }

    CFakeDevice device;
    FakeStreamCtrl stream;
    std::string keyFrame = KeyFrame();
    std::string deltaFrame = DeltaFrame();
    std::string sound = AudioFrame();
};

TEST_F(RtspExports, LiveFramesReachTheStreamOfTheirUrl)
{
    EXPECT_EQ(0, NET_SERVER_SetLiveRTSPUrl(91, 1, "/exports/sub"));
    EXPECT_EQ(0, NET_SERVER_LiveStreamIn(91, 0, Video(keyFrame, true, 1000000), keyFrame.data()));
    Peer peer = Connect();
    Send(peer, "DESCRIBE", "/exports/sub"); // waits: the frame was another stream's
    EXPECT_EQ(0, NET_SERVER_LiveStreamIn(91, 1, Video(keyFrame, true, 1000000), keyFrame.data()));
    EXPECT_EQ("RTSP/1.0 200 OK", peer.ReadAnswer().substr(0, 15));
    Play(peer, "/exports/sub", 0);
    EXPECT_EQ(0, NET_SERVER_LiveStreamIn(91, 1, Video(keyFrame, true, 2000000), keyFrame.data()));
    EXPECT_EQ(std::string("$\0\0\x10", 4), peer.Read(4)); // the sequence parameter set
}

TEST_F(RtspExports, RecordedFramesReachThePlaybackOfTheirHandle)
{
    const std::string path = "/3?date=2016-1-2&time=8:30:0&timelen=600";
    EXPECT_EQ(0, NET_SERVER_LiveStreamIn(55, 0, Video(keyFrame, true, 1000000), keyFrame.data()));
    Peer peer = Connect();
    Send(peer, "DESCRIBE", path); // the host opens it as 55; live frames of that number are not its
    EXPECT_EQ(0, NET_SERVER_PlayStreamIn(55, Video(keyFrame, true, 1000000), keyFrame.data()));
    EXPECT_EQ("RTSP/1.0 200 OK", peer.ReadAnswer().substr(0, 15));
    Play(peer, path, 0);
    EXPECT_EQ(0, NET_SERVER_PlayStreamIn(55, Video(keyFrame, true, 2000000), keyFrame.data()));
    EXPECT_EQ(std::string("$\0\0\x10", 4), peer.Read(4));
}

TEST_F(RtspExports, TheDevicesOwnSoundReachesTalkClients)
{
    Peer peer = Connect();
    EXPECT_EQ("RTSP/1.0 200 OK", Ask(peer, "DESCRIBE", "/talk"));
    Play(peer, "/talk", 2);
    const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_AUDIO, false, 1000000, sound.size());
    EXPECT_EQ(0, NET_SERVER_TalkBackStreamIn(frame, sound.data()));
    EXPECT_EQ(std::string("$\0\x01\x4c\x80\x88", 6), peer.Read(6)); // 12 + 320 bytes, payload type 8
}

TEST_F(RtspExports, EveryResultIsZeroWhateverBecomesOfAFrame)
{
    EXPECT_EQ(0, NET_SERVER_LiveStreamIn(92, 0, Video(deltaFrame, false, 1000000), deltaFrame.data()));
    EXPECT_EQ(0, NET_SERVER_PlayStreamIn(92, Video(deltaFrame, false, 1000000), deltaFrame.data()));
    EXPECT_EQ(0, NET_SERVER_RTSPStop());
    EXPECT_EQ(0, NET_SERVER_LiveStreamIn(92, 0, Video(keyFrame, true, 1000000), keyFrame.data()));
    const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_AUDIO, false, 1000000, sound.size());
    EXPECT_EQ(0, NET_SERVER_TalkBackStreamIn(frame, sound.data()));
}

} // namespace
