#include "PtzHead.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double PAN_PER_SECOND = 0.5;  // of the picture, at the highest speed
constexpr double ZOOM_PER_SECOND = 1.0; // doublings
constexpr double ARRIVED = 1e-4;

struct Direction
{
    int pan;
    int tilt;
    int zoom;
};

// clang-format off
constexpr Direction DIRECTIONS[] = { // by PtzCommand
    { 0, -1,  0}, // Up
    { 0,  1,  0}, // Down
    {-1,  0,  0}, // Left
    { 1,  0,  0}, // Right
    {-1, -1,  0}, // LeftUp
    {-1,  1,  0}, // LeftDown
    { 1, -1,  0}, // RightUp
    { 1,  1,  0}, // RightDown
    { 0,  0,  0}, // Near
    { 0,  0,  0}, // Far
    { 0,  0,  1}, // ZoomIn
    { 0,  0, -1}, // ZoomOut
    { 0,  0,  0}, // IrisOpen
    { 0,  0,  0}, // IrisClose
    { 0,  0,  0}, // Stop
};
// clang-format on

double SpeedOf(int speed)
{
    const int clamped = std::clamp(speed, static_cast<int>(PTZ_SPEED_MIN), static_cast<int>(PTZ_SPEED_MAX));
    return static_cast<double>(clamped) / PTZ_SPEED_MAX;
}

/// Keeps the view inside the picture.
PtzView Inside(PtzView view)
{
    view.zoom = std::clamp(view.zoom, 1.0, PTZ_ZOOM_MAX);
    const double half = 0.5 / view.zoom;
    view.x = std::clamp(view.x, half, 1 - half);
    view.y = std::clamp(view.y, half, 1 - half);
    return view;
}

double StepTo(double from, double to, double step)
{
    return std::abs(to - from) <= step ? to : from + std::copysign(step, to - from);
}

bool IsSame(const PtzView& one, const PtzView& other)
{
    return std::abs(one.x - other.x) < ARRIVED && std::abs(one.y - other.y) < ARRIVED &&
           std::abs(one.zoom - other.zoom) < ARRIVED;
}

} // namespace

void CPtzHead::Control(PtzCommand command, int speed, std::uint64_t nowUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    Advance(nowUs);
    const Direction& direction = DIRECTIONS[static_cast<int>(command)];
    m_pan = direction.pan;
    m_tilt = direction.tilt;
    m_zoom = direction.zoom;
    m_speed = SpeedOf(speed);
    m_hasTarget = false;
}

void CPtzHead::GoTo(const PtzView& view, int speed, std::uint64_t nowUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    Advance(nowUs);
    m_pan = m_tilt = m_zoom = 0;
    m_target = Inside(view);
    m_speed = SpeedOf(speed);
    m_hasTarget = true;
}

PtzView CPtzHead::At(std::uint64_t nowUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    Advance(nowUs);
    return m_view;
}

bool CPtzHead::IsMoving(std::uint64_t nowUs)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    Advance(nowUs);
    return m_hasTarget || m_pan != 0 || m_tilt != 0 || m_zoom != 0;
}

void CPtzHead::Advance(std::uint64_t nowUs)
{
    if (nowUs > m_lastUs)
    {
        const double seconds = static_cast<double>(nowUs - m_lastUs) / 1e6;
        m_lastUs = nowUs;
        AdvanceBy(seconds);
    }
}

void CPtzHead::AdvanceBy(double seconds)
{
    if (m_hasTarget)
    {
        Approach(seconds);
        return;
    }
    if (m_pan == 0 && m_tilt == 0 && m_zoom == 0)
    {
        return;
    }
    const double step = PAN_PER_SECOND * m_speed * seconds;
    PtzView wanted = m_view;
    wanted.x += m_pan * step;
    wanted.y += m_tilt * step;
    wanted.zoom *= std::exp2(m_zoom * ZOOM_PER_SECOND * m_speed * seconds);
    const PtzView reached = Inside(wanted);
    if (IsSame(reached, m_view) && !IsSame(wanted, m_view))
    {
        m_pan = m_tilt = m_zoom = 0; // at the rim
    }
    m_view = reached;
}

void CPtzHead::Approach(double seconds)
{
    const double step = PAN_PER_SECOND * m_speed * seconds;
    m_view.x = StepTo(m_view.x, m_target.x, step);
    m_view.y = StepTo(m_view.y, m_target.y, step);
    const double doublings =
        StepTo(std::log2(m_view.zoom), std::log2(m_target.zoom), ZOOM_PER_SECOND * m_speed * seconds);
    m_view.zoom = std::exp2(doublings);
    m_view = Inside(m_view);
    if (IsSame(m_view, m_target))
    {
        m_view = m_target;
        m_hasTarget = false;
    }
}
