#include "WaitForMultipleObjects.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace
{

const unsigned int SLICE_MS = 10;
const int NONE = -1;

// Waits a slice for each event that is not done. @return the first that is set, NONE when none is
int PassOver(const CMyEvent** events, const std::vector<char>& done, std::uint64_t& elapsed)
{
    for (size_t i = 0; i < done.size(); ++i)
    {
        if (done[i] != 0)
        {
            continue;
        }
        elapsed += SLICE_MS;
        if (events[i]->WaitEvent(SLICE_MS) == CMyEvent::EVENT_SET)
        {
            return static_cast<int>(i);
        }
    }
    return NONE;
}

} // namespace

int WaitForMultipleObjects(int count, const CMyEvent** events, bool waitAll, unsigned int ms)
{
    if (count < 1)
    {
        return CMyEvent::EVENT_TIMED_OUT;
    }
    std::vector<char> done(static_cast<size_t>(count), 0);
    std::uint64_t elapsed = 0;
    do
    {
        const int set = PassOver(events, done, elapsed);
        if (set != NONE && !waitAll)
        {
            return set;
        }
        if (set != NONE)
        {
            done[static_cast<size_t>(set)] = 1;
        }
        if (std::find(done.begin(), done.end(), 0) == done.end())
        {
            return 0;
        }
    } while (elapsed <= ms);
    return CMyEvent::EVENT_TIMED_OUT;
}
