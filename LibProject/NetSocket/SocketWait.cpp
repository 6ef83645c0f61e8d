// SocketWait.cpp: descriptors, deadlines and the quit signal.
#include "SocketWait.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

CFileDescriptor& CFileDescriptor::operator=(CFileDescriptor&& other) noexcept
{
    if (this != &other)
    {
        Close();
        m_fd = other.m_fd;
        other.m_fd = -1;
    }
    return *this;
}

void CFileDescriptor::Close()
{
    if (m_fd != -1)
    {
        close(m_fd);
        m_fd = -1;
    }
}

CQuitSignal::CQuitSignal() : m_event(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

void CQuitSignal::Give()
{
    m_given = true;
    eventfd_write(m_event.Get(), 1);
}

std::uint64_t MonotonicMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
}

std::uint64_t DeadlineAfter(std::uint64_t waitMs)
{
    return waitMs == 0 ? 0 : MonotonicMs() + waitMs + 1; // the clock's millisecond may be nearly over
}

int PollUntil(pollfd* descriptors, unsigned int count, std::uint64_t deadlineMs)
{
    for (;;)
    {
        int waitMs = -1;
        if (deadlineMs != NO_DEADLINE)
        {
            const std::uint64_t now = MonotonicMs();
            waitMs = now >= deadlineMs ? 0 : static_cast<int>(std::min<std::uint64_t>(deadlineMs - now, INT_MAX));
        }
        const int ready = poll(descriptors, count, waitMs);
        if (ready >= 0)
        {
            return ready;
        }
        if (errno != EINTR)
        {
            return 0;
        }
    }
}
