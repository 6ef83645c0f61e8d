// SocketWait.h: descriptors that close themselves, waiting with a deadline, and the signal that ends all waits.
#pragma once

#include <atomic>
#include <cstdint>

#include <poll.h>

/// Owns a file descriptor. Local to its owner.
class CFileDescriptor
{
public:
    explicit CFileDescriptor(int fd = -1) : m_fd(fd) {}
    ~CFileDescriptor() { Close(); }
    CFileDescriptor(CFileDescriptor&& other) noexcept : m_fd(other.m_fd) { other.m_fd = -1; }
    CFileDescriptor& operator=(CFileDescriptor&& other) noexcept;
    CFileDescriptor(const CFileDescriptor&) = delete;
    CFileDescriptor& operator=(const CFileDescriptor&) = delete;

    int Get() const { return m_fd; }
    bool IsOpen() const { return m_fd != -1; }
    void Close();

private:
    int m_fd;
};

/// A signal that, once given, stays given and ends every poll that watches it. Any thread.
class CQuitSignal
{
public:
    CQuitSignal();

    bool IsUsable() const { return m_event.IsOpen(); }
    void Give();
    bool IsGiven() const { return m_given; }
    /// Readable once the signal is given.
    int Descriptor() const { return m_event.Get(); }

private:
    const CFileDescriptor m_event;
    std::atomic<bool> m_given{false};
};

/// Milliseconds of the monotonic clock.
std::uint64_t MonotonicMs();

/// @return the deadline for a wait of at least so long; 0 waits not at all
std::uint64_t DeadlineAfter(std::uint64_t waitMs);

/// poll() that goes on after signals of the operating system, until the deadline.
/// @param deadlineMs  as of MonotonicMs; NO_DEADLINE waits for ever
/// @return descriptors with something to tell, 0 when the deadline has passed
int PollUntil(pollfd* descriptors, unsigned int count, std::uint64_t deadlineMs);
constexpr std::uint64_t NO_DEADLINE = UINT64_MAX;
