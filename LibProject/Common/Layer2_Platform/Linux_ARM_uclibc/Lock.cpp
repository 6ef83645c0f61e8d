#include "Lock.h"

CLock::CLock() : CLock(true) {}

CLock::CLock(bool recursive)
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, recursive ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
    pthread_mutex_init(&m_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CLock::~CLock()
{
    pthread_mutex_destroy(&m_mutex);
}
