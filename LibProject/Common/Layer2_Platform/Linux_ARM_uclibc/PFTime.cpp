#include "PFTime.h"

#include <sys/time.h>

namespace
{

const std::uint64_t UNITS_PER_SECOND = 10000000;       // of 100 ns
const std::uint64_t EPOCH_OFFSET = 116444736000000000; // units from 1601 to 1970

std::uint64_t UnitsSince1970(const _FILETIME& fileTime)
{
    return ((static_cast<std::uint64_t>(fileTime.dwHighDateTime) << 32) | fileTime.dwLowDateTime) - EPOCH_OFFSET;
}

time_t SecondsOf(int year, int month, int day, int hour, int minute, int second, bool utc)
{
    tm fields = {};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = -1;
    return utc ? timegm(&fields) : mktime(&fields);
}

} // namespace

CPFTime::CPFTime()
{
    timeval now = {};
    gettimeofday(&now, nullptr);
    m_seconds = now.tv_sec;
    m_100ns = static_cast<std::uint32_t>(now.tv_usec * 10);
}

CPFTime::CPFTime(time_t seconds) : m_seconds(seconds), m_100ns(0) {}

CPFTime::CPFTime(const _FILETIME& fileTime)
    : m_seconds(static_cast<time_t>(UnitsSince1970(fileTime) / UNITS_PER_SECOND)),
      m_100ns(static_cast<std::uint32_t>(UnitsSince1970(fileTime) % UNITS_PER_SECOND))
{
}

CPFTime::CPFTime(int year, int month, int day, int hour, int minute, int second, bool utc)
    : m_seconds(SecondsOf(year, month, day, hour, minute, second, utc)), m_100ns(0)
{
}

tm CPFTime::Local() const
{
    tm fields = {};
    localtime_r(&m_seconds, &fields);
    return fields;
}

tm CPFTime::UTC() const
{
    tm fields = {};
    gmtime_r(&m_seconds, &fields);
    return fields;
}

int CPFTime::GetYear() const
{
    return Local().tm_year + 1900;
}

int CPFTime::GetMonth() const
{
    return Local().tm_mon + 1;
}

int CPFTime::GetDay() const
{
    return Local().tm_mday;
}

int CPFTime::GetHour() const
{
    return Local().tm_hour;
}

int CPFTime::GetMinute() const
{
    return Local().tm_min;
}

int CPFTime::GetSecond() const
{
    return Local().tm_sec;
}

int CPFTime::GetDayOfWeek() const
{
    return Local().tm_wday;
}

int CPFTime::GetUTCYear() const
{
    return UTC().tm_year + 1900;
}

int CPFTime::GetUTCMonth() const
{
    return UTC().tm_mon + 1;
}

int CPFTime::GetUTCDay() const
{
    return UTC().tm_mday;
}

int CPFTime::GetUTCHour() const
{
    return UTC().tm_hour;
}

int CPFTime::GetUTCMinute() const
{
    return UTC().tm_min;
}

int CPFTime::GetUTCSecond() const
{
    return UTC().tm_sec;
}

int CPFTime::GetUTCDayOfWeek() const
{
    return UTC().tm_wday;
}

unsigned int CPFTime::Get100ns() const
{
    return m_100ns;
}

time_t CPFTime::GetTime() const
{
    return m_seconds;
}

void CPFTime::GetFileTime(_FILETIME& fileTime) const
{
    const std::uint64_t units = static_cast<std::uint64_t>(m_seconds) * UNITS_PER_SECOND + m_100ns + EPOCH_OFFSET;
    fileTime.dwLowDateTime = static_cast<std::uint32_t>(units);
    fileTime.dwHighDateTime = static_cast<std::uint32_t>(units >> 32);
}

void CPFTime::GetLocalTime_100ns(unsigned long long& time) const
{
    _FILETIME fileTime;
    GetFileTime(fileTime);
    tzset();
    time = ((static_cast<unsigned long long>(fileTime.dwHighDateTime) << 32) | fileTime.dwLowDateTime) +
           static_cast<unsigned long long>(static_cast<long long>(timezone) * static_cast<long long>(UNITS_PER_SECOND));
}
