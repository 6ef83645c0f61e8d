// netserver-bench-eventload: motion events of simulated cameras, from the camera to the host's observer.
//
// The cameras run in a process of their own, each with a server on loopback. Each changes its motion state once a
// second, spread over the second, and notes the time. In mode "push" it posts a notification, in mode "pull" the next
// answer of its pull point tells. This process is the NVR: it logs in, watches, and takes the time at the observer's
// call.
#include "AlarmStateObserver.h"
#include "BenchOptions.h"
#include "BenchTools.h"
#include "OnvifDeviceSimulator.h"
#include "OnvifNotification.h"
#include "OnvifSDK.h"
#include "ShareSDK.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace
{

const char USAGE[] =
    "usage: netserver-bench-eventload --mode push|pull [--cameras N] [--seconds N] [--unreachable N]\n"
    "  --unreachable N   so many further cameras were logged in to, and then answer no packet any more\n";

constexpr unsigned int CAMERAS_MAX = 256;
constexpr std::uint64_t ROUNDS_KEPT = 64; ///< changes of a camera whose times are known
constexpr unsigned short NOTIFICATION_PORT = 6699;
constexpr std::uint64_t SECOND_NS = 1000000000;

struct Options
{
    std::string mode;
    unsigned int cameras = 64;
    unsigned int seconds = 10;
    unsigned int unreachable = 0;
};

/// What both processes see.
struct Shared
{
    std::atomic<std::uint64_t> changedNs[CAMERAS_MAX][ROUNDS_KEPT]; ///< by round; even rounds begin motion
    std::atomic<std::uint64_t> rounds[CAMERAS_MAX];
    std::atomic<unsigned short> ports[CAMERAS_MAX];
    std::atomic<bool> ready;
    std::atomic<bool> go;
    std::atomic<unsigned int> changes;
};

Options ReadOptions(int argc, char** argv)
{
    Options options;
    BenchOptions line(USAGE);
    line.Text("mode", options.mode)
        .Number("cameras", options.cameras)
        .Number("seconds", options.seconds)
        .Number("unreachable", options.unreachable)
        .Read(argc, argv);
    line.Require(options.mode == "push" || options.mode == "pull");
    line.Require(options.cameras <= CAMERAS_MAX && options.unreachable <= CAMERAS_MAX - options.cameras);
    return options;
}

sockaddr_in Loopback(unsigned short port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// Makes a port look like a machine that is switched off: with its queue full the system drops what asks to connect.
void MakeUnreachable(unsigned short port)
{
    const int on = 1;
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    const sockaddr_in address = Loopback(port);
    Require(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
                listen(listener, 0) == 0,
            "the port of a camera cannot be taken over");
    for (int i = 0; i < 3; ++i)
    {
        const int waiting = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        connect(waiting, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    }
}

/// One notification, as a camera posts it. @return whether it was acknowledged
bool Post(const std::string& to, bool state)
{
    OnvifNotification notification;
    notification.to = to;
    notification.messages.push_back({ONVIF_MOTION_TOPIC, state ? "true" : "false", ""});
    return !PostOnvifNotification(NOTIFICATION_PORT, notification).empty();
}

/// Lets a camera see the other state, or tell it.
void Change(const Options& options, OnvifDeviceSimulator& camera, unsigned int index, std::uint64_t round,
            Shared& shared)
{
    const bool state = round % 2 == 0;
    camera.Forget(); // it would note every request for as long as this runs
    shared.changedNs[index][round % ROUNDS_KEPT] = NowNs();
    shared.rounds[index] = round + 1;
    ++shared.changes;
    if (options.mode == "push")
    {
        Require(Post(camera.Value("subscribe.consumer"), state), "a notification could not be posted");
    }
    else
    {
        camera.SetValue("motion", state ? "true" : "false");
    }
}

/// The cameras' process.
[[noreturn]] void RunCameras(const Options& options, Shared& shared)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    RaiseDescriptorLimit();
    OnvifSimulatorOptions manners;
    manners.subscriptionPolicy = options.mode == "push";
    manners.pullPoint = options.mode == "pull";
    std::vector<std::unique_ptr<OnvifDeviceSimulator>> cameras;
    for (unsigned int i = 0; i < options.cameras + options.unreachable; ++i)
    {
        cameras.push_back(std::make_unique<OnvifDeviceSimulator>(manners));
        cameras.back()->SetValue("motion", "false");
        shared.ports[i] = cameras.back()->Port();
    }
    shared.ready = true;
    while (!shared.go)
    {
        usleep(1000);
    }
    cameras.resize(options.cameras);
    for (unsigned int i = options.cameras; i < options.cameras + options.unreachable; ++i)
    {
        MakeUnreachable(shared.ports[i]);
    }
    const std::uint64_t beginNs = NowNs();
    for (std::uint64_t round = 0;; ++round)
    {
        for (unsigned int i = 0; i < options.cameras; ++i)
        {
            SleepUntilNs(beginNs + round * SECOND_NS + i * SECOND_NS / options.cameras);
            Change(options, *cameras[i], i, round, shared);
        }
    }
}

/// Takes the time of every call.
class CTimingObserver : public CONVIFAlarmStateObserver
{
public:
    CTimingObserver(Shared& shared, bool isEveryChangeTold) : m_shared(shared), m_isEveryChangeTold(isEveryChangeTold)
    {
    }

    void Know(unsigned int token, unsigned int camera)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_cameras[token] = camera;
    }
    void OnMotionState(unsigned int token, bool state) override
    {
        const std::uint64_t nowNs = NowNs();
        const std::lock_guard<std::mutex> lock(m_mutex);
        const unsigned int camera = m_cameras[token];
        const std::uint64_t round = m_isEveryChangeTold ? m_calls[camera]++ : LastRoundOf(camera, state);
        const std::uint64_t changedNs = m_shared.changedNs[camera][round % ROUNDS_KEPT];
        m_latenciesMs.push_back(static_cast<double>(nowNs - changedNs) / 1e6);
    }
    void OnAlarmInState(unsigned int, unsigned int, bool) override {}

    /// Has room for so many calls from now on, so that none of them grows the process.
    void Reserve(std::size_t calls)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_latenciesMs.assign(calls, 0);
        m_latenciesMs.clear();
    }
    std::vector<double> Take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_latenciesMs, {});
    }

private:
    /// Changes between two pulls are never told; the last one to this state is.
    std::uint64_t LastRoundOf(unsigned int camera, bool state) const
    {
        const std::uint64_t last = m_shared.rounds[camera] - 1;
        return (last % 2 == 0) == state ? last : last - 1;
    }

    Shared& m_shared;
    const bool m_isEveryChangeTold;
    std::mutex m_mutex;
    std::map<unsigned int, std::uint64_t> m_calls; ///< by camera
    std::map<unsigned int, unsigned int> m_cameras;
    std::vector<double> m_latenciesMs;
};

/// @return the cameras' process
pid_t StartCameras(const Options& options, Shared& shared)
{
    const pid_t cameras = fork();
    Require(cameras != -1, "no process for the cameras");
    if (cameras == 0)
    {
        RunCameras(options, shared);
    }
    while (!shared.ready)
    {
        usleep(1000);
    }
    return cameras;
}

/// @return the tokens of all cameras, which are observed
std::vector<unsigned int> LogIn(const Options& options, Shared& shared, CTimingObserver& observer)
{
    std::vector<unsigned int> tokens;
    for (unsigned int i = 0; i < options.cameras + options.unreachable; ++i)
    {
        unsigned int error = 0;
        const unsigned int token =
            ONVIF_CLIENT_Login(0xFFFFFFFF, "127.0.0.1", shared.ports[i], "admin", "secret", &error);
        Require(error == 0, "a login failed");
        observer.Know(token, i);
        tokens.push_back(token);
        ONVIF_CLIENT_AddAlarmStateObserver(token, &observer);
    }
    return tokens;
}

void Measure(const Options& options, Shared& shared, CTimingObserver& observer)
{
    shared.go = true;
    sleep(3); // the first states are told
    observer.Take();
    observer.Reserve(std::size_t{2} * options.cameras * options.seconds);
    const std::uint64_t cpuUs = CpuOfProcessUs(getpid());
    const std::uint64_t residentKb = ResidentKb(getpid());
    const unsigned int changes = shared.changes;
    sleep(options.seconds);
    const auto usedUs = static_cast<double>(CpuOfProcessUs(getpid()) - cpuUs);
    const unsigned int made = shared.changes - changes;
    std::vector<double> latenciesMs = observer.Take();
    PrintFigure("cameras", options.cameras);
    PrintFigure("changes", made);
    PrintFigure("calls", static_cast<double>(latenciesMs.size()));
    PrintFigure("p50_ms", Percentile(latenciesMs, 0.5));
    PrintFigure("p99_ms", Percentile(latenciesMs, 0.99));
    PrintFigure("max_ms", Percentile(latenciesMs, 1));
    PrintFigure("cpu_us_per_event", made > 0 ? usedUs / made : 0);
    PrintFigure("cpu_cores", usedUs / 1e6 / options.seconds);
    PrintFigure("resident_kb_before", static_cast<double>(residentKb));
    PrintFigure("resident_kb_after", static_cast<double>(ResidentKb(getpid())));
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    Require(memory != MAP_FAILED, "no shared memory");
    Shared& shared = *new (memory) Shared{};
    const pid_t cameras = StartCameras(options, shared);

    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    ONVIF_CLIENT_Initial();
    CTimingObserver observer(shared, options.mode == "push");
    const std::vector<unsigned int> tokens = LogIn(options, shared, observer);
    Measure(options, shared, observer);

    kill(cameras, SIGKILL);
    waitpid(cameras, nullptr, 0);
    for (const unsigned int token : tokens)
    {
        ONVIF_CLIENT_DelAlarmStateObserver(token);
        ONVIF_CLIENT_Logout(token);
    }
    ONVIF_CLIENT_Quit();
    return 0;
}
