// RtspWorld.h: an RTSP server on a free port, driven round by round by the test itself, with a fake host.
#pragma once

#include "FakeClock.h"
#include "FakeDevice.h"
#include "FakeStreamCtrl.h"
#include "NC_Socket.h"
#include "Peer.h"
#include "Policy.h"
#include "RTSP_DataManager.h"
#include "RTSP_Server.h"
#include "RTSP_SockScheduler.h"

#include <regex>
#include <string>

/// An H.264 access unit: SPS, PPS and an IDR slice of `sliceBytes`.
inline std::string KeyFrame(std::size_t sliceBytes = 20)
{
    return std::string("\0\0\0\1\x67\x42\xc0\x1e", 8) + std::string("\0\0\0\1\x68\xce\x3c\x80", 8) +
           std::string("\0\0\0\1", 4) + "\x65" + std::string(sliceBytes - 1, 'k');
}

/// An access unit of one P slice.
inline std::string DeltaFrame(std::size_t sliceBytes = 20)
{
    return std::string("\0\0\0\1", 4) + "\x41" + std::string(sliceBytes - 1, 'd');
}

/// One chunk of sound behind its marker.
inline std::string AudioFrame(std::size_t bytes = 320)
{
    return std::string("\0\1\xa0\0", 4) + std::string(bytes, 'a');
}

inline NETNS::RTSP_FRAME FrameRecord(NETNS::RTSP_FRAME_TYPE type, bool keyFrame, std::uint64_t presentationUs,
                                     std::size_t length)
{
    NETNS::RTSP_FRAME frame{};
    frame.frameType = type;
    frame.encodeType = type == NETNS::RTSP_FRAME_VIDEO ? NETNS::RTSP_ENCODE_H264 : NETNS::RTSP_ENCODE_PCMA;
    frame.keyFrame = keyFrame ? 1 : 0;
    frame.presentationUs = presentationUs;
    frame.clockRate = type == NETNS::RTSP_FRAME_VIDEO ? 90000 : 8000;
    frame.length = static_cast<std::uint32_t>(length);
    return frame;
}

/// The time in Date and Expires, and the random numbers of an answer, made comparable.
inline std::string Normalized(std::string answer)
{
    answer = std::regex_replace(
        answer,
        std::regex("Date: [A-Z][a-z]{2}, [A-Z][a-z]{2} \\d\\d \\d{4} \\d\\d:\\d\\d:\\d\\d GMT\r\n"
                   "Expires: [A-Z][a-z]{2}, [A-Z][a-z]{2} \\d\\d \\d{4} \\d\\d:\\d\\d:\\d\\d GMT\r\n"),
        "DATE\r\n");
    answer = std::regex_replace(answer, std::regex("ssrc=[0-9a-f]{1,8}"), "ssrc=SSRC");
    answer = std::regex_replace(answer, std::regex("nonce=\"[0-9a-f]{32}\""), "nonce=\"NONCE\"");
    answer = std::regex_replace(answer, std::regex("Session:( ?)[1-9][0-9]{14}"), "Session:$1ID");
    answer = std::regex_replace(answer, std::regex("server_port=[0-9]+-[0-9]+"), "server_port=P-P");
    answer = std::regex_replace(answer, std::regex("seq=[0-9]+;rtptime=[0-9]+"), "seq=S;rtptime=T");
    return std::regex_replace(answer, std::regex("o=- [0-9]+ 1"), "o=- TICK 1");
}

class RtspWorld
{
public:
    RtspWorld()
    {
        NC_Init();
        device.needAuthorization = false;
        device.users.clear();
        data.Init(&stream, &device);
        server = CRTSP_Server::Create_RTSP_Server(scheduler, nullptr);
        server->Start_RTSP_Server(0);
    }
    ~RtspWorld()
    {
        server->Stop_RTSP_Server();
        data.Clear();
        server->Destroy();
        CPolicy::SetCurrent(CPolicy());
    }

    /// One round that does not wait.
    void Round()
    {
        scheduler.WakeUp();
        scheduler.RunRound();
    }
    void Rounds(int count)
    {
        for (int i = 0; i < count; ++i)
            Round();
    }

    Peer Connect()
    {
        Peer peer(server->GetPort(), [this] { Round(); });
        Rounds(2);
        return peer;
    }
    std::string Ask(Peer& peer, const std::string& request)
    {
        peer.Send(request);
        return Normalized(peer.ReadAnswer());
    }

    void PushVideo(unsigned int id, int streamIndex, const std::string& payload, bool keyFrame, std::uint64_t us)
    {
        const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_VIDEO, keyFrame, us, payload.size());
        data.AddData(id, streamIndex, frame, payload.data());
    }
    void PushAudio(unsigned int id, int streamIndex, const std::string& payload, std::uint64_t us)
    {
        const NETNS::RTSP_FRAME frame = FrameRecord(NETNS::RTSP_FRAME_AUDIO, false, us, payload.size());
        data.AddData(id, streamIndex, frame, payload.data());
    }
    /// Makes the stream 1/0 known, under the URL "/live/one".
    void BeginLive()
    {
        data.SetLiveRtspUrl(1, 0, "/live/one");
        PushVideo(1, 0, KeyFrame(), true, 1000000);
        PushAudio(1, 0, AudioFrame(), 1000000);
    }
    std::string Url(const std::string& path) const
    {
        return "rtsp://127.0.0.1:" + std::to_string(server->GetPort()) + path;
    }

    void RequireLogin(const char* name, const char* password)
    {
        device.AddUser(name, password);
        device.needAuthorization = true;
    }

    CFakeDevice device;
    FakeStreamCtrl stream;
    CRTSP_SockScheduler scheduler;
    CRTSP_DataManager& data = CRTSP_DataManager::Instance();
    CRTSP_Server* server = nullptr;
};
