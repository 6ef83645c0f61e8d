// FakeClock.h: a tick count that stands still until a test moves it, from the present on. One at a time in a process.
#pragma once

#include "PFHelper.h"

#include <atomic>

class FakeClock
{
public:
    explicit FakeClock(unsigned int startTick = CPFHelper::GetTickCount())
    {
        Tick() = startTick;
        CPFHelper::ReplaceTickCount([]() -> unsigned int { return Tick(); });
    }
    ~FakeClock() { CPFHelper::ReplaceTickCount(nullptr); }
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    unsigned int Now() const { return Tick(); }
    void Advance(unsigned int ms) { Tick() += ms; }

private:
    static std::atomic<unsigned int>& Tick()
    {
        static std::atomic<unsigned int> tick{0};
        return tick;
    }
};
