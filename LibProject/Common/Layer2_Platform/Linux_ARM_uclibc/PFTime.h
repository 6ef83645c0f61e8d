// PFTime.h: a point in wall-clock time. Values are immutable; any thread.
#pragma once

#include <cstdint>
#include <ctime>

/// A count of 100 ns since 1601, as two halves.
struct _FILETIME // NOLINT(bugprone-reserved-identifier)
{
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

class CPFTime
{
public:
    /// Now.
    CPFTime();
    /// @param seconds  since 1970
    explicit CPFTime(time_t seconds);
    explicit CPFTime(const _FILETIME& fileTime);
    /// @param month  from 1
    /// @param utc    whether the fields are of UTC; otherwise of the local time, daylight saving as it was then
    CPFTime(int year, int month, int day, int hour, int minute, int second, bool utc);

    int GetYear() const;
    int GetMonth() const; ///< from 1
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; ///< 0 is Sunday

    int GetUTCYear() const;
    int GetUTCMonth() const;
    int GetUTCDay() const;
    int GetUTCHour() const;
    int GetUTCMinute() const;
    int GetUTCSecond() const;
    int GetUTCDayOfWeek() const;

    /// The part of a second, in units of 100 ns.
    unsigned int Get100ns() const;
    /// Seconds since 1970.
    time_t GetTime() const;
    void GetFileTime(_FILETIME& fileTime) const;
    /// The file time plus the C library's `timezone`. This counts seconds west of UTC, so the result is on the other
    /// side of UTC than the local time; it stands as it is.
    void GetLocalTime_100ns(unsigned long long& time) const;

private:
    tm Local() const;
    tm UTC() const;

    time_t m_seconds;
    std::uint32_t m_100ns;
};
