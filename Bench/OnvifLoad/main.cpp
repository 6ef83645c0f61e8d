// netserver-bench-onvif: the ONVIF client against simulated cameras of this process, over loopback.
#include "BenchOptions.h"
#include "BenchTools.h"
#include "OnvifDeviceSimulator.h"
#include "OnvifSDK.h"
#include "ShareSDK.h"

#include <algorithm>
#include <atomic>
#include <ctime>
#include <memory>
#include <string>
#include <thread>

#include <unistd.h>

namespace
{

const char USAGE[] =
    "usage: netserver-bench-onvif --mode logins|clients [--count N] [--clients N] [--seconds N]\n"
    "  logins   N logins in a row: time and CPU of each on the calling thread, memory before and after\n"
    "  clients  N threads with a login each at cameras of their own, which move and read for so many seconds\n";

struct Options
{
    std::string mode = "logins";
    unsigned int count = 200;
    unsigned int clients = 64;
    unsigned int seconds = 30;
};

constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;
constexpr unsigned int NO_LOGIN = 0xFFFFFFFF;
constexpr int WARM_UP = 20;

const char* const MOVE = "<Set><continuousMove><ptz><velocity><x>50</x><y>-20</y><zoom>0</zoom></velocity></ptz>"
                         "</continuousMove></Set>";
const char* const READ = "<Get><profiles/></Get>";

/// A camera that remembers no nonces, so that what grows is the client's.
OnvifSimulatorOptions Forgetful()
{
    OnvifSimulatorOptions options;
    options.digestIsChecked = false;
    return options;
}

/// CPU time of the calling thread.
std::uint64_t ThreadCpuNs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000000000 + static_cast<std::uint64_t>(now.tv_nsec);
}

struct Cost
{
    std::vector<double> ms;
    std::vector<double> cpuUs;
};

/// @return what the work returned
template <typename WORK>
bool Measure(Cost& cost, const WORK& work)
{
    const std::uint64_t begin = NowNs();
    const std::uint64_t cpu = ThreadCpuNs();
    const bool done = work();
    cost.cpuUs.push_back(static_cast<double>(ThreadCpuNs() - cpu) / 1000);
    cost.ms.push_back(static_cast<double>(NowNs() - begin) / 1000000);
    return done;
}

void Print(const std::string& name, Cost& cost)
{
    PrintFigure((name + "_ms_median").c_str(), Percentile(cost.ms, 0.5));
    PrintFigure((name + "_ms_p99").c_str(), Percentile(cost.ms, 0.99));
    PrintFigure((name + "_cpu_us_median").c_str(), Percentile(cost.cpuUs, 0.5));
}

unsigned int Login(const OnvifDeviceSimulator& camera)
{
    unsigned int error = 0;
    return ONVIF_CLIENT_Login(NEW_LOGIN, "127.0.0.1", camera.Port(), "admin", "secret", &error);
}

bool Move(unsigned int token)
{
    char* response = nullptr;
    const bool good =
        ONVIF_CLIENT_SetCfg(token, MOVE, response) && std::strstr(response, "<status>success</status>") != nullptr;
    ONVIF_CLIENT_DelResponseBuff(response);
    return good;
}

bool Read(unsigned int token)
{
    char* response = nullptr;
    const bool good =
        ONVIF_CLIENT_GetCfg(token, READ, response, nullptr) && std::strstr(response, "<profile>") != nullptr;
    ONVIF_CLIENT_DelResponseBuff(response);
    return good;
}

void Logins(unsigned int count)
{
    OnvifDeviceSimulator camera(Forgetful());
    for (int i = 0; i < WARM_UP; ++i)
    {
        ONVIF_CLIENT_Logout(Login(camera));
        camera.Forget();
    }
    const std::uint64_t before = ResidentKb(getpid());
    Cost login;
    for (unsigned int i = 0; i < count; ++i)
    {
        unsigned int token = NO_LOGIN;
        Require(Measure(login, [&] { return (token = Login(camera)) != NO_LOGIN; }), "login");
        ONVIF_CLIENT_Logout(token);
        camera.Forget(); // what came is kept otherwise
    }
    const std::uint64_t after = ResidentKb(getpid());
    const unsigned int token = Login(camera);
    Cost move;
    Cost read;
    for (unsigned int i = 0; i < count; ++i)
    {
        Require(Measure(move, [&] { return Move(token); }), "move");
        Require(Measure(read, [&] { return Read(token); }), "read");
        camera.Forget();
    }
    Print("login", login);
    Print("move", move);
    Print("profiles", read);
    PrintFigure("resident_kb_before", static_cast<double>(before));
    PrintFigure("resident_kb_growth", static_cast<double>(after) - static_cast<double>(before));
}

void Work(const OnvifDeviceSimulator& camera, const std::atomic<bool>& running, std::atomic<unsigned int>& done,
          std::atomic<unsigned int>& errors)
{
    const unsigned int token = Login(camera);
    errors += token == NO_LOGIN ? 1 : 0;
    while (running && token != NO_LOGIN)
    {
        errors += Move(token) && Read(token) ? 0 : 1;
        ++done;
    }
    ONVIF_CLIENT_Logout(token);
}

void Clients(unsigned int clients, unsigned int seconds)
{
    RaiseDescriptorLimit();
    std::vector<std::unique_ptr<OnvifDeviceSimulator>> cameras;
    std::vector<std::thread> threads;
    std::atomic<bool> running{true};
    std::atomic<unsigned int> done{0};
    std::atomic<unsigned int> errors{0};
    for (unsigned int i = 0; i < clients; ++i)
    {
        cameras.push_back(std::make_unique<OnvifDeviceSimulator>(Forgetful()));
    }
    for (const auto& camera : cameras)
    {
        threads.emplace_back([&] { Work(*camera, running, done, errors); });
    }
    std::uint64_t warm = 0;
    std::uint64_t most = 0;
    for (unsigned int second = 0; second < seconds; ++second)
    {
        SleepUntilNs(NowNs() + 1000000000);
        for (const auto& camera : cameras)
        {
            camera->Forget();
        }
        const std::uint64_t resident = ResidentKb(getpid());
        warm = second == seconds / 2 ? resident : warm;
        most = std::max(most, resident);
    }
    const std::uint64_t end = ResidentKb(getpid());
    running = false;
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    PrintFigure("rounds", done);
    PrintFigure("errors", errors);
    PrintFigure("resident_kb_half", static_cast<double>(warm));
    PrintFigure("resident_kb_end", static_cast<double>(end));
    PrintFigure("resident_kb_most", static_cast<double>(most));
}

Options ReadOptions(int argc, char** argv)
{
    Options options;
    BenchOptions line(USAGE);
    line.Text("mode", options.mode)
        .Number("count", options.count)
        .Number("clients", options.clients)
        .Number("seconds", options.seconds)
        .Read(argc, argv);
    line.Require(options.mode == "logins" || options.mode == "clients");
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    ONVIF_CLIENT_Initial();
    if (options.mode == "clients")
    {
        Clients(options.clients, options.seconds);
    }
    else
    {
        Logins(options.count);
    }
    ONVIF_CLIENT_Quit();
    return 0;
}
