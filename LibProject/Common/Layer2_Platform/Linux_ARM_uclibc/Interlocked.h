// Interlocked.h: a number that several threads change. Any thread.
#pragma once

#include "Lock.h"

#include <atomic>
#include <cstdint>

class Interlocked
{
public:
    explicit Interlocked(int value);

    /// @return the new value
    int Increment();
    int Decrement();

    /// @return the old value
    int SetValue(int value);
    int ExchangeAdd(int delta);

    /// Read without the lock.
    operator int() const { return m_value.load(); } // NOLINT(google-explicit-constructor)

private:
    int Replace(int value);

    // Written with the lock held, read without it.
    std::atomic<std::int32_t> m_value;
    CLock m_lock;
};
