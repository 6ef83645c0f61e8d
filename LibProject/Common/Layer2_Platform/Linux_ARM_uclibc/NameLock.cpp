#include "NameLock.h"

#include <cerrno>

#include <fcntl.h>

CNameLock::CNameLock(const char* name) : m_semaphore(sem_open(name, 0))
{
    if (m_semaphore == SEM_FAILED)
    {
        m_semaphore = sem_open(name, O_CREAT | O_RDWR, 0666, 1);
    }
}

CNameLock::~CNameLock()
{
    if (m_semaphore != SEM_FAILED)
    {
        sem_close(m_semaphore);
    }
}

void CNameLock::Lock()
{
    while (m_semaphore != SEM_FAILED && sem_wait(m_semaphore) != 0 && errno == EINTR)
    {
    }
}

void CNameLock::Unlock()
{
    if (m_semaphore != SEM_FAILED)
    {
        sem_post(m_semaphore);
    }
}
