// Lock.h: a mutex and its scoped guard. Any thread.
#pragma once

#include "ThreadAnnotations.h"

#include <pthread.h>

/// A mutex, recursive unless built with CLock(false): several classes hold a lock across calls that take it again.
class CAPABILITY("mutex") CLock
{
public:
    CLock();
    explicit CLock(bool recursive);
    ~CLock();
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    void Lock() ACQUIRE() { pthread_mutex_lock(&m_mutex); }
    void Unlock() RELEASE() { pthread_mutex_unlock(&m_mutex); }

    /// For waiting on a condition variable.
    pthread_mutex_t* Native() { return &m_mutex; }

private:
    pthread_mutex_t m_mutex;
};

/// Holds a lock from construction to destruction.
class SCOPED_CAPABILITY CMySingleLock
{
public:
    explicit CMySingleLock(CLock& lock) ACQUIRE(lock) : m_lock(lock) { m_lock.Lock(); }
    ~CMySingleLock() RELEASE() { m_lock.Unlock(); }
    CMySingleLock(const CMySingleLock&) = delete;
    CMySingleLock& operator=(const CMySingleLock&) = delete;

private:
    CLock& m_lock;
};
