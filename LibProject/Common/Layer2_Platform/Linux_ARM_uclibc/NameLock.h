// NameLock.h: a lock between processes. Any thread of any process.
#pragma once

#include <semaphore.h>

/// A named semaphore that one at a time holds. It outlives the process: nobody ever removes its name.
class CNameLock
{
public:
    /// Opens the semaphore, and makes it when it is not there. @param name  as sem_open takes it
    explicit CNameLock(const char* name);
    ~CNameLock();
    CNameLock(const CNameLock&) = delete;
    CNameLock& operator=(const CNameLock&) = delete;

    /// Both do nothing when the semaphore could be neither opened nor made.
    void Lock();
    void Unlock();

private:
    sem_t* m_semaphore;
};
