// PtzTour.h: runs a cruise: from preset to preset, with a stay at each, over and over, until it is stopped.
//
// A thread of its own for each run. Start and Stop may be called on any thread.
#pragma once

#include "PtzHead.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

struct PtzTourStop
{
    PtzView view;
    int speed = 1;
    unsigned int holdSeconds = 0;
};

class CPtzTour
{
public:
    /// @param head   borrowed for the tour's life
    /// @param nowUs  the clock of the head
    CPtzTour(CPtzHead& head, std::function<std::uint64_t()> nowUs);
    ~CPtzTour();

    /// Stops what runs and starts a tour of at least one stop.
    void Start(std::vector<PtzTourStop> stops);

    /// Returns once the head is left where it is.
    void Stop();

    bool IsRunning() const;

private:
    void Run(const std::vector<PtzTourStop>& stops);
    bool Visit(const PtzTourStop& stop);
    bool IsEnded(std::chrono::milliseconds wait);

    CPtzHead& m_head;
    const std::function<std::uint64_t()> m_nowUs;

    std::mutex m_controlLock; // one Start or Stop at a time; taken in front of m_lock
    std::thread m_thread;

    mutable std::mutex m_lock;
    std::condition_variable m_wake;
    bool m_running = false;
};
