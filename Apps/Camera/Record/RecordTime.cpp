#include "RecordTime.h"

#include <chrono>
#include <ctime>

using namespace NETNS;

namespace
{

constexpr std::int64_t SECOND_US = 1000000;

} // namespace

std::int64_t ToRecordTime(const DEV_DATETIME& local)
{
    const bool plausible = local.date.year >= 1970 && local.date.month >= 1 && local.date.month <= 12 &&
                           local.date.day >= 1 && local.date.day <= 31;
    if (!plausible)
    {
        return 0;
    }
    std::tm broken = {};
    broken.tm_year = local.date.year - 1900;
    broken.tm_mon = local.date.month - 1;
    broken.tm_mday = local.date.day;
    broken.tm_hour = local.time.hour;
    broken.tm_min = local.time.minute;
    broken.tm_sec = local.time.second;
    broken.tm_isdst = -1;
    const std::time_t seconds = std::mktime(&broken);
    return seconds < 0 ? 0 : std::int64_t{seconds} * SECOND_US;
}

DEV_DATETIME ToLocalTime(std::int64_t recordUs)
{
    const std::time_t seconds = recordUs / SECOND_US;
    std::tm broken = {};
    localtime_r(&seconds, &broken);
    const auto narrow = [](int value)
    {
        return static_cast<std::uint16_t>(value);
    };
    return {{narrow(broken.tm_year + 1900), narrow(broken.tm_mon + 1), narrow(broken.tm_mday)},
            {narrow(broken.tm_hour), narrow(broken.tm_min), narrow(broken.tm_sec)}};
}

std::int64_t WallClockUs()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

std::uint64_t SteadyClockUs()
{
    using namespace std::chrono;
    return static_cast<std::uint64_t>(duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count());
}
