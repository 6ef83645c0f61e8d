// PtzHead.h: the digital head: a view of the picture that pans, tilts and zooms with a speed.
//
// Any thread. Time comes from the callers, in microseconds of one steady clock.
#pragma once

#include "DeviceSettings.h"

#include <cstdint>
#include <mutex>

constexpr unsigned int PTZ_SPEED_MIN = 1;
constexpr unsigned int PTZ_SPEED_MAX = 8;
constexpr double PTZ_ZOOM_MAX = 8;

/// The commands of PtzControl, by their value.
enum class PtzCommand
{
    Up,
    Down,
    Left,
    Right,
    LeftUp,
    LeftDown,
    RightUp,
    RightDown,
    Near,
    Far,
    ZoomIn,
    ZoomOut,
    IrisOpen,
    IrisClose,
    Stop,
};

/// Moves like a real head: a command starts a movement, which goes on until the next one, and ends at the rim. A view
/// never leaves the picture, so at zoom 1 there is nothing to pan to.
///
/// At speed 8 a pan crosses half of the picture in a second and the zoom doubles in a second; at speed 1 an eighth of
/// that.
class CPtzHead
{
public:
    /// Starts a movement or, with Stop, ends it. Near, Far and the iris move nothing.
    void Control(PtzCommand command, int speed, std::uint64_t nowUs);

    /// Starts a movement to a view.
    void GoTo(const PtzView& view, int speed, std::uint64_t nowUs);

    /// Where the head looks now.
    PtzView At(std::uint64_t nowUs);

    /// Whether a movement goes on.
    bool IsMoving(std::uint64_t nowUs);

private:
    void Advance(std::uint64_t nowUs);
    void AdvanceBy(double seconds);
    void Approach(double seconds);

    std::mutex m_lock;
    PtzView m_view;
    PtzView m_target;
    int m_pan = 0;  // -1 left, 1 right
    int m_tilt = 0; // -1 up, 1 down
    int m_zoom = 0; // -1 out, 1 in
    bool m_hasTarget = false;
    double m_speed = 0; // 1 is the fastest
    std::uint64_t m_lastUs = 0;
};
