#include "Interlocked.h"

namespace
{

// At the ends of the range the value goes on at the other end.
int Sum(int a, int b)
{
    return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
}

} // namespace

Interlocked::Interlocked(int value) : m_value(value) {}

int Interlocked::Increment()
{
    CMySingleLock guard(m_lock);
    return Replace(Sum(m_value, 1));
}

int Interlocked::Decrement()
{
    CMySingleLock guard(m_lock);
    return Replace(Sum(m_value, -1));
}

int Interlocked::SetValue(int value)
{
    CMySingleLock guard(m_lock);
    const int old = m_value;
    Replace(value);
    return old;
}

int Interlocked::ExchangeAdd(int delta)
{
    CMySingleLock guard(m_lock);
    const int old = m_value;
    Replace(Sum(old, delta));
    return old;
}

int Interlocked::Replace(int value)
{
    m_value = value;
    return value;
}
