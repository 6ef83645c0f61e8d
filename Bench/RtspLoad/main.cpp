// netserver-bench-rtspload: RTSP clients in one thread, and what they see of the server.
#include "BenchOptions.h"
#include "BenchTools.h"
#include "RtspClient.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{
const char USAGE[] =
    "usage: netserver-bench-rtspload --mode MODE --port N [--path PATH] [--transport tcp|udp]\n"
    "                                [--clients N] [--idle N] [--seconds N] [--fps N] [--server-pid PID]\n"
    "  load     N clients play: packets, losses, server CPU for each packet\n"
    "  latency  the same, and the time from the host's call to the first packet (host with --stamp)\n"
    "  memory   idle connections and N playing clients: the server's memory for each\n"
    "  stalled  N clients play beside one that reads nothing and one whose DESCRIBE waits\n";

struct Options
{
    std::string mode;
    ServerAddress server = {0, "/live/ch1/main"};
    Transport transport = Transport::Tcp;
    unsigned int clients = 16;
    unsigned int idle = 2000;
    unsigned int seconds = 10;
    unsigned int fps = 25;
    pid_t serverPid = 0;
};

constexpr std::uint64_t SECOND_NS = 1000000000u;

// Clients that play, served by one epoll.
class PlayingClients
{
public:
    explicit PlayingClients(const Options& options) : m_options(options), m_epoll(epoll_create1(EPOLL_CLOEXEC))
    {
        Require(m_epoll != -1, "epoll");
    }
    ~PlayingClients() { close(m_epoll); }
    PlayingClients(const PlayingClients&) = delete;
    PlayingClients& operator=(const PlayingClients&) = delete;

    // Media of those that play already are read between two dialogues.
    void Add(unsigned int count)
    {
        for (unsigned int i = 0; i < count; ++i)
        {
            m_clients.push_back(std::make_unique<RtspClient>(m_options.server));
            RtspClient& client = *m_clients.back();
            Require(client.Connect() && client.Play(m_options.transport, m_options.fps), "a client cannot play");
            epoll_event event = {};
            event.events = EPOLLIN;
            event.data.ptr = &client;
            Require(epoll_ctl(m_epoll, EPOLL_CTL_ADD, client.MediaFd(), &event) == 0, "epoll");
            Turn(0);
        }
    }

    void RunUntil(std::uint64_t endNs)
    {
        for (std::uint64_t now = NowNs(); now < endNs; now = NowNs())
            Turn(static_cast<int>((endNs - now) / 1000000u) + 1);
    }

    // Runs for some seconds and returns what was counted in them.
    MediaCounts Measure(unsigned int seconds)
    {
        m_counts = MediaCounts();
        RunUntil(NowNs() + seconds * SECOND_NS);
        return m_counts;
    }

    void Teardown()
    {
        for (const auto& client : m_clients)
            client->Teardown();
        RunUntil(NowNs() + SECOND_NS / 5);
        m_clients.clear();
    }

    unsigned int Ended() const { return m_ended; }

private:
    void Turn(int waitMs)
    {
        epoll_event events[256];
        const int count = epoll_wait(m_epoll, events, 256, waitMs);
        for (int i = 0; i < count; ++i)
        {
            auto* client = static_cast<RtspClient*>(events[i].data.ptr);
            if (client->TakeMedia(m_counts))
                continue;
            ++m_ended;
            epoll_ctl(m_epoll, EPOLL_CTL_DEL, client->MediaFd(), nullptr);
        }
    }

    const Options& m_options;
    const int m_epoll;
    std::vector<std::unique_ptr<RtspClient>> m_clients;
    MediaCounts m_counts;
    unsigned int m_ended = 0; // connections that the server closed
};

void PrintCounts(const MediaCounts& counts, const PlayingClients& clients)
{
    PrintFigure("packets", static_cast<double>(counts.packets));
    PrintFigure("lost_packets", static_cast<double>(counts.lostPackets));
    PrintFigure("missing_frames", static_cast<double>(counts.missingFrames));
    PrintFigure("connections_ended", clients.Ended());
}

double CpuPerPacketUs(std::uint64_t cpuUs, const MediaCounts& counts)
{
    return counts.packets == 0 ? 0 : static_cast<double>(cpuUs) / static_cast<double>(counts.packets);
}

void Load(const Options& options)
{
    PlayingClients clients(options);
    clients.Add(options.clients);
    clients.Measure(2); // every client has its first key frame
    const std::uint64_t cpuBefore = CpuOfProcessUs(options.serverPid);
    MediaCounts counts = clients.Measure(options.seconds);
    const std::uint64_t cpuUs = CpuOfProcessUs(options.serverPid) - cpuBefore;

    PrintCounts(counts, clients);
    PrintFigure("cpu_us_per_packet", CpuPerPacketUs(cpuUs, counts));
    PrintFigure("packets_per_frame",
                counts.frames == 0 ? 0 : static_cast<double>(counts.packets) / static_cast<double>(counts.frames));
    if (options.mode == "latency")
    {
        PrintFigure("stamped_frames", static_cast<double>(counts.latenciesMs.size()));
        PrintFigure("latency_p50_ms", Percentile(counts.latenciesMs, 0.50));
        PrintFigure("latency_p99_ms", Percentile(counts.latenciesMs, 0.99));
        PrintFigure("latency_max_ms", Percentile(counts.latenciesMs, 1.0));
    }
    clients.Teardown();
}

double KbEach(std::uint64_t before, std::uint64_t after, unsigned int count)
{
    return count == 0 ? 0 : (static_cast<double>(after) - static_cast<double>(before)) / count;
}

void Memory(const Options& options)
{
    const std::uint64_t atStart = ResidentKb(options.serverPid);
    std::vector<std::unique_ptr<RtspClient>> idle;
    for (unsigned int i = 0; i < options.idle; ++i)
    {
        idle.push_back(std::make_unique<RtspClient>(options.server));
        Require(idle.back()->Connect() && idle.back()->Request("OPTIONS", "*") == 200, "an idle client gets no answer");
    }
    const std::uint64_t withIdle = ResidentKb(options.serverPid);

    PlayingClients clients(options);
    clients.Add(options.clients);
    clients.Measure(3);
    const MediaCounts counts = clients.Measure(options.seconds);
    const std::uint64_t withPlaying = ResidentKb(options.serverPid);

    unsigned int answered = 0;
    for (const auto& client : idle)
        answered += client->Request("OPTIONS", "*") == 200 ? 1 : 0;
    PrintCounts(counts, clients);
    PrintFigure("idle_connections", options.idle);
    PrintFigure("idle_answered_at_the_end", answered);
    PrintFigure("playing_clients", options.clients);
    PrintFigure("kb_per_idle_connection", KbEach(atStart, withIdle, options.idle));
    PrintFigure("kb_per_playing_client", KbEach(withIdle, withPlaying, options.clients));
    clients.Teardown();
}

void Stalled(const Options& options)
{
    // In front of the others: it is the first that each frame meets.
    RtspClient shut(options.server, 4096);
    Require(shut.Connect() && shut.Play(Transport::Tcp, options.fps), "the stalled client cannot play");

    PlayingClients clients(options);
    clients.Add(options.clients);
    clients.Measure(2);

    std::atomic<unsigned int> waits{0};
    std::atomic<bool> stop{false};
    std::thread waiter(
        [&options, &waits, &stop]
        {
            while (!stop)
            {
                RtspClient describing({options.server.port, "/live/ch2/main"});
                if (!describing.Connect() || describing.Request("DESCRIBE", describing.BaseUrl()) != 404)
                    break;
                ++waits;
            }
        });
    const MediaCounts counts = clients.Measure(options.seconds);
    stop = true;
    PrintCounts(counts, clients);
    PrintFigure("longest_gap_ms", counts.longestGapMs);
    PrintFigure("frame_period_ms", 1000.0 / options.fps);
    clients.Teardown();
    waiter.join();
    PrintFigure("describes_that_waited", waits);
}

const struct ModeRow
{
    const char* name;
    void (*run)(const Options& options);
} MODES[] = {
    {"load", Load},
    {"latency", Load},
    {"memory", Memory},
    {"stalled", Stalled},
};

const ModeRow* FindMode(const std::string& name)
{
    for (const ModeRow& row : MODES)
    {
        if (name == row.name)
            return &row;
    }
    return nullptr;
}

Options ReadOptions(int argc, char** argv)
{
    Options options;
    std::string transport = "tcp";
    BenchOptions line(USAGE);
    line.Text("mode", options.mode)
        .Number("port", options.server.port)
        .Text("path", options.server.path)
        .Text("transport", transport)
        .Number("clients", options.clients)
        .Number("idle", options.idle)
        .Number("seconds", options.seconds)
        .Number("fps", options.fps)
        .Number("server-pid", options.serverPid)
        .Read(argc, argv);
    line.Require(FindMode(options.mode) != nullptr && (transport == "tcp" || transport == "udp"));
    line.Require(options.server.port != 0 && options.fps != 0);
    options.transport = transport == "udp" ? Transport::Udp : Transport::Tcp;
    return options;
}
} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    RaiseDescriptorLimit();
    FindMode(options.mode)->run(options);
    return 0;
}
