// FuzzRtspSession.cpp: whole RTSP sessions over loopback connections, round by round in the fuzzer's own thread.
//
// The first byte chooses policy and login. Then come steps of one byte: the low two bits choose one of four
// connections, the others what happens (see STEP). Steps that send take two more bytes, a little-endian length, and so
// many bytes of text; "%P" in it is a port that listens to UDP.
#include "Base64Coder.h"
#include "FakeClock.h"
#include "FakeDevice.h"
#include "FakeStreamCtrl.h"
#include "NC_Socket.h"
#include "Policy.h"
#include "RTSP_DataManager.h"
#include "RTSP_Server.h"
#include "RTSP_SockScheduler.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

constexpr int CONNECTIONS = 4;
constexpr int MAX_STEPS = 64;
constexpr int MAX_END_ROUNDS = 20000;

enum STEP
{
    STEP_SEND,
    STEP_SEND_BASE64,
    STEP_SEND_WITHOUT_ROUND, // joins the next one
    STEP_KEY_FRAME,
    STEP_LARGE_KEY_FRAME,
    STEP_DELTA_FRAME,
    STEP_AUDIO_FRAME,
    STEP_READ,
    STEP_SHUTDOWN,
    STEP_RESET,
    STEP_80_MS,
    STEP_30_S,
    STEP_DATAGRAM, // to the newest UDP links
    STEP_COUNT,
};

void Require(bool condition)
{
    if (!condition)
        abort();
}

sockaddr_in Loopback(unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    return address;
}

int LowestFreeDescriptor()
{
    const int descriptor = dup(0);
    close(descriptor);
    return descriptor;
}

/// The input, byte by byte; zeros behind its end.
class CInput
{
public:
    CInput(const std::uint8_t* data, std::size_t size) : m_next(data), m_left(size) {}

    bool IsEmpty() const { return m_left == 0; }
    unsigned int Byte()
    {
        if (m_left == 0)
            return 0;
        --m_left;
        return *m_next++;
    }
    std::string Text()
    {
        const std::size_t low = Byte();
        const std::size_t length = std::min<std::size_t>(low | Byte() << 8, m_left);
        const std::string text(reinterpret_cast<const char*>(m_next), length);
        m_next += length;
        m_left -= length;
        return text;
    }

private:
    const std::uint8_t* m_next;
    std::size_t m_left;
};

/// A server, a host, and the far ends of the connections.
class CWorld
{
public:
    CWorld()
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        NC_Init();
        m_data.SetLiveRtspUrl(1, 0, "/live");
        m_data.SetLiveRtspUrl(2, 0, "/late");
        m_server = CRTSP_Server::Create_RTSP_Server(m_scheduler, nullptr);
        Require(m_server->Start_RTSP_Server(0) == 0);
        m_udp = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        const sockaddr_in address = Loopback(0);
        Require(bind(m_udp, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0);
        NC_GetSockName(m_udp, static_cast<int*>(nullptr), &m_udpPort);
    }

    void Run(CInput input)
    {
        FakeStreamCtrl stream;
        const unsigned int flags = input.Byte();
        CPolicy::SetCurrent(CPolicy(flags & 1));
        m_device.needAuthorization = (flags & 2) != 0;
        m_data.Init(&stream, &m_device);
        Push(NETNS::RTSP_FRAME_VIDEO, true, 40);
        Push(NETNS::RTSP_FRAME_AUDIO, false, 40);
        const int descriptor = LowestFreeDescriptor();

        for (int i = 0; i < MAX_STEPS && !input.IsEmpty(); ++i)
        {
            const unsigned int step = input.Byte();
            Step(static_cast<STEP>(step / CONNECTIONS % STEP_COUNT), m_peers[step % CONNECTIONS], input);
        }

        for (int& peer : m_peers)
            Reset(peer);
        // Each "$" that still waits in a socket takes rounds of its own.
        for (int i = 0; i < MAX_END_ROUNDS && m_server->SessionCount() != 0; ++i)
            Rounds(1);
        Require(m_server->SessionCount() == 0);
        Require(LowestFreeDescriptor() == descriptor);
        m_data.Clear();
    }

private:
    void Rounds(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            m_scheduler.WakeUp();
            m_scheduler.RunRound();
        }
    }

    void Step(STEP step, int& peer, CInput& input)
    {
        switch (step)
        {
        case STEP_SEND:
            Send(peer, WithPort(input.Text()));
            break;
        case STEP_SEND_BASE64:
            Send(peer, Base64(WithPort(input.Text())));
            break;
        case STEP_SEND_WITHOUT_ROUND:
            Send(peer, WithPort(input.Text()));
            return;
        case STEP_KEY_FRAME:
            Push(NETNS::RTSP_FRAME_VIDEO, true, 40);
            break;
        case STEP_LARGE_KEY_FRAME:
            Push(NETNS::RTSP_FRAME_VIDEO, true, 100000);
            break;
        case STEP_DELTA_FRAME:
            Push(NETNS::RTSP_FRAME_VIDEO, false, 3000);
            break;
        case STEP_AUDIO_FRAME:
            Push(NETNS::RTSP_FRAME_AUDIO, false, 320);
            break;
        case STEP_READ:
            Read(peer);
            break;
        case STEP_SHUTDOWN:
            shutdown(peer, SHUT_WR);
            break;
        case STEP_RESET:
            Reset(peer);
            break;
        case STEP_80_MS:
            m_clock.Advance(80);
            break;
        case STEP_30_S:
            m_clock.Advance(30000);
            break;
        case STEP_DATAGRAM:
            SendDatagrams();
            break;
        case STEP_COUNT:
            break;
        }
        Rounds(2);
    }

    void Connect(int& peer)
    {
        peer = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const linger hard{1, 0}; // no connection stays behind in the kernel
        setsockopt(peer, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
        const int receiveBytes = 4096;
        setsockopt(peer, SOL_SOCKET, SO_RCVBUF, &receiveBytes, sizeof(receiveBytes));
        const sockaddr_in address = Loopback(m_server->GetPort());
        Require(connect(peer, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0);
        Rounds(1);
    }
    void Send(int& peer, const std::string& bytes)
    {
        if (peer == -1)
            Connect(peer);
        send(peer, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    static void Read(int peer)
    {
        static char block[65536];
        while (peer != -1 && recv(peer, block, sizeof(block), MSG_DONTWAIT) > 0)
        {
        }
    }
    static void Reset(int& peer)
    {
        if (peer != -1)
            close(peer);
        peer = -1;
    }
    void SendDatagrams() const
    {
        const unsigned short next = m_server->NextPort();
        for (unsigned short port = static_cast<unsigned short>(next - 2); port != next; ++port)
        {
            const sockaddr_in address = Loopback(port);
            sendto(m_udp, "datagram", 8, MSG_DONTWAIT, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
        }
    }

    std::string WithPort(std::string text) const
    {
        for (std::size_t at = text.find("%P"); at != std::string::npos; at = text.find("%P", at))
            text.replace(at, 2, std::to_string(m_udpPort));
        return text;
    }
    static std::string Base64(const std::string& text)
    {
        std::string encoded;
        CBase64Coder::Encode(reinterpret_cast<const unsigned char*>(text.data()), text.size(), encoded);
        return encoded;
    }

    void Push(NETNS::RTSP_FRAME_TYPE type, bool keyFrame, std::size_t bytes)
    {
        static const std::string KEY("\0\0\0\1\x67\x42\xc0\x1e\0\0\0\1\x68\xce\x3c\x80\0\0\0\1\x65", 21);
        static const std::string DELTA("\0\0\0\1\x41", 5);
        static const std::string SOUND("\0\1\xa0\0", 4);
        const bool video = type == NETNS::RTSP_FRAME_VIDEO;
        const std::string payload = (video ? (keyFrame ? KEY : DELTA) : SOUND) + std::string(bytes, 'x');
        m_presentationUs += 1500000;
        NETNS::RTSP_FRAME frame{};
        frame.frameType = type;
        frame.encodeType = video ? NETNS::RTSP_ENCODE_H264 : NETNS::RTSP_ENCODE_PCMA;
        frame.keyFrame = keyFrame ? 1 : 0;
        frame.presentationUs = m_presentationUs;
        frame.clockRate = video ? 90000 : 8000;
        frame.length = static_cast<std::uint32_t>(payload.size());
        for (const unsigned int channel : {0u, 1u})
            m_data.AddData(channel, 0, frame, payload.data());
        m_data.AddData(39, 39, frame, payload.data());
        m_data.AddData(55, 29, frame, payload.data());
    }

    FakeClock m_clock;
    CFakeDevice m_device; // one user, admin with the password admin
    CRTSP_SockScheduler m_scheduler;
    CRTSP_DataManager& m_data = CRTSP_DataManager::Instance();
    CRTSP_Server* m_server = nullptr;
    int m_udp = -1;
    unsigned short m_udpPort = 0;
    int m_peers[CONNECTIONS] = {-1, -1, -1, -1};
    std::uint64_t m_presentationUs = 1000000;
};

} // namespace

/// A loopback of its own where the kernel lets us: an input may have packets sent to any port.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return 0;
    const int sock = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq loopback{};
    std::strcpy(loopback.ifr_name, "lo");
    loopback.ifr_flags = IFF_UP;
    Require(ioctl(sock, SIOCSIFFLAGS, &loopback) == 0);
    close(sock);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static CWorld& world = *new CWorld; // lives as long as the process
    world.Run(CInput(data, size));
    return 0;
}
