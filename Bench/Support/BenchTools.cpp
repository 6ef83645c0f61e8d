#include "BenchTools.h"

#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

std::uint64_t NowNs()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000000000u + static_cast<std::uint64_t>(now.tv_nsec);
}

void SleepUntilNs(std::uint64_t ns)
{
    timespec at = {};
    at.tv_sec = static_cast<time_t>(ns / 1000000000u);
    at.tv_nsec = static_cast<long>(ns % 1000000000u);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &at, nullptr) == EINTR)
    {
    }
}

namespace
{
// From the fields utime and stime, the 12th and 13th behind the name in parentheses (proc(5)). They are as coarse as
// the system's tick.
std::uint64_t CpuByTicksUs(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line);
    const std::size_t name = line.rfind(')');
    if (name == std::string::npos)
        return 0;
    std::istringstream fields(line.substr(name + 1));
    std::string skipped;
    for (int i = 0; i < 11; ++i)
        fields >> skipped;
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    fields >> user >> system;
    return (user + system) * 1000000u / static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
}
} // namespace

std::uint64_t CpuOfProcessUs(pid_t pid)
{
    std::uint64_t ns = 0;
    std::error_code error;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task", error))
    {
        std::uint64_t taskNs = 0;
        std::ifstream file(task.path() / "schedstat");
        if (file >> taskNs)
            ns += taskNs;
    }
    return ns != 0 ? ns / 1000u : CpuByTicksUs(pid);
}

std::uint64_t OwnCpuUs()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = static_cast<std::uint64_t>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec);
    return seconds * 1000000u + static_cast<std::uint64_t>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

std::uint64_t ResidentKb(pid_t pid)
{
    std::ifstream file("/proc/" + std::to_string(pid) + "/status");
    std::string word;
    while (file >> word)
    {
        std::uint64_t kb = 0;
        if (word == "VmRSS:" && file >> kb)
            return kb;
    }
    return 0;
}

void RaiseDescriptorLimit()
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

double Percentile(std::vector<double>& values, double part)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const auto index = static_cast<std::size_t>(std::ceil(part * static_cast<double>(values.size())));
    return values[index == 0 ? 0 : index - 1];
}

void PrintFigure(const char* name, double value)
{
    printf("%s\t%.3f\n", name, value);
    fflush(stdout);
}

void Require(bool condition, const char* what)
{
    if (condition)
        return;
    fprintf(stderr, "%s: %s\n", what, strerror(errno));
    exit(1);
}
