#include "PtzTour.h"

#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace
{

constexpr auto STEP = 40ms;
constexpr std::uint64_t SECOND_US = 1000000;

} // namespace

CPtzTour::CPtzTour(CPtzHead& head, std::function<std::uint64_t()> nowUs) : m_head(head), m_nowUs(std::move(nowUs)) {}

CPtzTour::~CPtzTour()
{
    Stop();
}

void CPtzTour::Start(std::vector<PtzTourStop> stops)
{
    Stop();
    const std::lock_guard<std::mutex> control(m_controlLock);
    if (m_thread.joinable())
    {
        return; // somebody else has started one meanwhile
    }
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_running = true;
    }
    m_thread = std::thread([this, stops = std::move(stops)] { Run(stops); });
}

void CPtzTour::Stop()
{
    const std::lock_guard<std::mutex> control(m_controlLock);
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_running = false;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
    {
        m_thread.join();
        m_head.Control(PtzCommand::Stop, 0, m_nowUs());
    }
}

bool CPtzTour::IsRunning() const
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_running;
}

void CPtzTour::Run(const std::vector<PtzTourStop>& stops)
{
    std::size_t at = 0;
    while (Visit(stops[at]))
    {
        at = (at + 1) % stops.size();
    }
}

/// @return false when the tour shall end
bool CPtzTour::Visit(const PtzTourStop& stop)
{
    m_head.GoTo(stop.view, stop.speed, m_nowUs());
    while (m_head.IsMoving(m_nowUs()))
    {
        if (IsEnded(STEP))
        {
            return false;
        }
    }
    const std::uint64_t leaveUs = m_nowUs() + stop.holdSeconds * SECOND_US;
    do
    {
        if (IsEnded(STEP))
        {
            return false;
        }
    } while (m_nowUs() < leaveUs);
    return true;
}

bool CPtzTour::IsEnded(std::chrono::milliseconds wait)
{
    std::unique_lock<std::mutex> guard(m_lock);
    return m_wake.wait_for(guard, wait, [this] { return !m_running; });
}
