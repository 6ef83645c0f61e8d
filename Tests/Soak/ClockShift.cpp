// ClockShift.cpp: a library to preload, in which the time of day of one process can be moved while it runs.
//
// The file that SOAK_CLOCK_SHIFT names holds eight bytes, how many seconds to add, in this machine's byte order. It is
// mapped once, at the start, so that a move costs no descriptor and works while none is free and while the disk is
// full. The monotonic clock stays, as it does when somebody sets a device's clock. Any thread.
#include <cstdint>
#include <cstdlib>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

namespace
{

constexpr std::int64_t NO_SHIFT = 0;

const volatile std::int64_t* MapShift()
{
    const char* path = std::getenv("SOAK_CLOCK_SHIFT");
    const int file = path != nullptr ? open(path, O_RDONLY | O_CLOEXEC) : -1;
    if (file == -1)
    {
        return &NO_SHIFT;
    }
    void* mapped = mmap(nullptr, sizeof(std::int64_t), PROT_READ, MAP_SHARED, file, 0);
    close(file);
    return mapped != MAP_FAILED ? static_cast<const std::int64_t*>(mapped) : &NO_SHIFT;
}

std::int64_t Shift()
{
    static const volatile std::int64_t* const shift = MapShift();
    return *shift;
}

using ClockGetTime = int (*)(clockid_t, timespec*);

int RealClock(clockid_t clock, timespec* time)
{
    static const ClockGetTime real = reinterpret_cast<ClockGetTime>(dlsym(RTLD_NEXT, "clock_gettime"));
    return real(clock, time);
}

} // namespace

extern "C"
{
    int clock_gettime(clockid_t clock, timespec* time) noexcept
    {
        const int result = RealClock(clock, time);
        if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        {
            time->tv_sec += static_cast<time_t>(Shift());
        }
        return result;
    }

    int gettimeofday(timeval* time, void* /*zone*/) noexcept
    {
        timespec now{};
        const int result = clock_gettime(CLOCK_REALTIME, &now);
        time->tv_sec = now.tv_sec;
        time->tv_usec = static_cast<suseconds_t>(now.tv_nsec / 1000);
        return result;
    }

    time_t time(time_t* out) noexcept
    {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        if (out != nullptr)
        {
            *out = now.tv_sec;
        }
        return now.tv_sec;
    }
}
