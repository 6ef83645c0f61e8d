// RecordTime.h: the device's local time, as clients have it, and the time of recordings: microseconds since 1970, UTC.
#pragma once

#include "NetTypes.h"

#include <cstdint>

/// @return 0 for the zero date and for what is no date
std::int64_t ToRecordTime(const NETNS::DEV_DATETIME& local);

/// Whole seconds; the rest is cut off.
NETNS::DEV_DATETIME ToLocalTime(std::int64_t recordUs);

/// The wall clock, now.
std::int64_t WallClockUs();

/// The steady clock, now: that of frames' presentation times.
std::uint64_t SteadyClockUs();
