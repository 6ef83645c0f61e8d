// netserver-bench-host: serves one H.264 file at its frame rate, looped, without an encoder.
//
// The main thread waits for the end; one thread feeds the frames.
#include "BenchDevice.h"
#include "BenchOptions.h"
#include "BenchTools.h"
#include "FrameStamp.h"
#include "H264File.h"
#include "LocalPorts.h"
#include "NetServerSDK.h"

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace
{
constexpr unsigned int CHANNEL = 1;
constexpr int STREAM = 0;
constexpr unsigned int SILENT_CHANNEL = 2; // never fed: a DESCRIBE of it waits
constexpr std::size_t PAGE_BYTES = 10240;
constexpr unsigned int AUDIO_CHUNK_MS = 40;
constexpr std::size_t AUDIO_CHUNK_BYTES = 320; // 40 ms at 8000 Hz

const char USAGE[] = "usage: netserver-bench-host --file FILE [--fps N] --http-port N --rtsp-port N\n"
                     "                            [--audio] [--no-rtsp-auth] [--compat] [--stamp] [--announce]\n"
                     "  --file FILE      H.264 in Annex B form, one slice a picture; served as /live/ch1/main\n"
                     "  --fps N          its frame rate (25)\n"
                     "  --audio          a G.711 A-law track of silence\n"
                     "  --no-rtsp-auth   RTSP without a login (otherwise admin:admin)\n"
                     "  --compat         without the policy of standard RTSP\n"
                     "  --announce       announce the host over UPnP\n"
                     "  --stamp          write the time into each frame, for the latency benchmark\n";

struct Options
{
    std::string file;
    unsigned int fps = 25;
    unsigned short httpPort = 0;
    unsigned short rtspPort = 0;
    bool audio = false;
    bool auth = true;
    bool compat = false;
    bool announce = false;
    bool stamp = false;
};

class Device : public BenchDevice
{
public:
    explicit Device(bool auth) : m_auth(auth) {}

    bool NeedAuthorization() override { return m_auth; }

private:
    const bool m_auth;
};

// A directory with the page in it, gone when the program ends.
class WebRoot
{
public:
    WebRoot()
    {
        Require(mkdtemp(m_path) != nullptr, "web root");
        std::ofstream page(Page(), std::ios::binary);
        page << std::string(PAGE_BYTES, 'x');
    }
    ~WebRoot()
    {
        unlink(Page().c_str());
        rmdir(m_path);
    }
    WebRoot(const WebRoot&) = delete;
    WebRoot& operator=(const WebRoot&) = delete;

    const char* Path() const { return m_path; }

private:
    std::string Page() const { return std::string(m_path) + "/f10k.html"; }

    char m_path[32] = "/tmp/netserver-bench-XXXXXX";
};

// Feeds the frames at their times, which go on without a jump where the file begins again.
class Feeder
{
public:
    Feeder(std::vector<H264Frame> frames, const Options& options)
        : m_frames(std::move(frames)), m_options(options), m_thread([this] { Run(); })
    {
    }
    ~Feeder()
    {
        m_stop = true;
        m_thread.join();
    }
    Feeder(const Feeder&) = delete;
    Feeder& operator=(const Feeder&) = delete;

private:
    void Run()
    {
        const std::uint64_t startNs = NowNs();
        std::uint64_t chunks = 0;
        for (std::uint64_t n = 0; !m_stop; ++n)
        {
            const std::uint64_t timeUs = n * 1000000u / m_options.fps;
            SleepUntilNs(startNs + timeUs * 1000u);
            Video(m_frames[n % m_frames.size()], timeUs);
            for (; m_options.audio && chunks * AUDIO_CHUNK_MS * 1000u <= timeUs; ++chunks)
                Audio(chunks * AUDIO_CHUNK_MS * 1000u);
        }
    }

    void Video(H264Frame& frame, std::uint64_t timeUs)
    {
        NETNS::RTSP_FRAME info = {};
        info.frameType = NETNS::RTSP_FRAME_VIDEO;
        info.encodeType = NETNS::RTSP_ENCODE_H264;
        info.keyFrame = frame.keyFrame ? 1 : 0;
        info.presentationUs = timeUs;
        info.clockRate = 90000;
        info.length = static_cast<std::uint32_t>(frame.data.size());
        // Start code and header of the slice stay.
        if (m_options.stamp && !frame.keyFrame && frame.data.size() >= 5 + FRAME_STAMP_BYTES)
            WriteFrameStamp(frame.data.data() + 5, NowNs());
        NET_SERVER_LiveStreamIn(CHANNEL, STREAM, info, frame.data.data());
    }

    void Audio(std::uint64_t timeUs)
    {
        static const unsigned char MARKER[4] = {0x00, 0x01, 0xA0, 0x00};
        unsigned char chunk[sizeof(MARKER) + AUDIO_CHUNK_BYTES];
        memcpy(chunk, MARKER, sizeof(MARKER));
        memset(chunk + sizeof(MARKER), 0xD5, AUDIO_CHUNK_BYTES); // A-law silence
        NETNS::RTSP_FRAME info = {};
        info.frameType = NETNS::RTSP_FRAME_AUDIO;
        info.encodeType = NETNS::RTSP_ENCODE_PCMA;
        info.presentationUs = timeUs;
        info.clockRate = 8000;
        info.length = sizeof(chunk);
        NET_SERVER_LiveStreamIn(CHANNEL, STREAM, info, chunk);
    }

    std::vector<H264Frame> m_frames;
    const Options m_options;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

Options ReadOptions(int argc, char** argv)
{
    Options options;
    BenchOptions line(USAGE);
    line.Text("file", options.file)
        .Number("fps", options.fps)
        .Number("http-port", options.httpPort)
        .Number("rtsp-port", options.rtspPort)
        .Switch("audio", options.audio)
        .Switch("no-rtsp-auth", options.auth, false)
        .Switch("compat", options.compat)
        .Switch("announce", options.announce)
        .Switch("stamp", options.stamp)
        .Read(argc, argv);
    line.Require(!options.file.empty() && options.httpPort != 0 && options.rtspPort != 0);
    line.Require(options.fps != 0 && options.fps <= 1000);
    return options;
}

void WaitForPort(unsigned short port)
{
    const std::uint64_t end = NowNs() + 5000000000u;
    while (!DoesPortAnswer(port))
    {
        if (NowNs() > end)
        {
            fprintf(stderr, "port %u does not answer\n", port);
            exit(1);
        }
        SleepUntilNs(NowNs() + 5000000u);
    }
}
} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    std::vector<H264Frame> frames;
    std::string why;
    if (!ReadH264File(options.file, frames, why))
    {
        fprintf(stderr, "%s %s\n", options.file.c_str(), why.c_str());
        return 2;
    }

    // Blocked before any thread starts, so that all inherit it and sigwait below gets them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    RaiseDescriptorLimit();

    Device device(options.auth);
    CDefaultStreams streams;
    const WebRoot webRoot;
    const std::string configFile = std::string(webRoot.Path()) + "/config.xml";
    NET_SERVER_SetPolicy((options.compat ? 0 : NET_POLICY_STANDARD_RTSP) |
                         (options.announce ? 0 : NET_POLICY_NO_ANNOUNCE));
    NET_SERVER_Initial(2, 2, 4, &device, &streams, "", "", 1, NETNS::DEV_TYPE_DEFAULT);
    NET_SERVER_Start(options.httpPort, webRoot.Path(), configFile.c_str());
    NET_SERVER_RTSPStart(options.rtspPort, &streams, &device);
    NET_SERVER_SetLiveRTSPUrl(CHANNEL, STREAM, "/live/ch1/main");
    NET_SERVER_SetLiveRTSPUrl(SILENT_CHANNEL, STREAM, "/live/ch2/main");
    WaitForPort(options.httpPort);
    WaitForPort(options.rtspPort);
    {
        const Feeder feeder(std::move(frames), options);
        printf("ready http=%u rtsp=%u\n", options.httpPort, options.rtspPort);
        fflush(stdout);
        int signal = 0;
        sigwait(&signals, &signal);
    }
    NET_SERVER_RTSPStop();
    NET_SERVER_Stop();
    NET_SERVER_Quit();
    unlink(configFile.c_str());
    return 0;
}
