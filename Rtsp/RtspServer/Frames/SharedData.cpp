#include "SharedData.h"

#include "ShareSDK.h"

#include <climits>
#include <cstring>
#include <new>

CSharedData::CSharedData(const NETNS::RTSP_FRAME& frame, const void* data) : m_frame(frame)
{
    if (frame.length == 0 || frame.length > INT_MAX || data == nullptr)
    {
        SHARESDK_AbnormalOutput("a frame without payload", __FILE__, __LINE__);
        return;
    }
    m_data = new (std::nothrow) unsigned char[frame.length];
    if (m_data == nullptr)
    {
        SHARESDK_AbnormalOutput("no memory for a frame", __FILE__, __LINE__);
        return;
    }
    memcpy(m_data, data, frame.length);
    m_length = static_cast<int>(frame.length);
}

CSharedData::~CSharedData()
{
    delete[] m_data;
}

int CSharedData::Add()
{
    CMySingleLock lock(m_lock);
    return ++m_count;
}

int CSharedData::Dec()
{
    m_lock.Lock();
    const int before = m_count;
    if (before == 0)
        SHARESDK_AbnormalOutput("a frame's reference is given back twice", __FILE__, __LINE__);
    const int left = --m_count;
    m_lock.Unlock();
    if (left == 0)
        delete this;
    return before;
}

unsigned char* CSharedData::GetRtData() const
{
    if (m_data == nullptr)
        SHARESDK_AbnormalOutput("a frame without payload is read", __FILE__, __LINE__);
    return m_data;
}

int CSharedData::GetLength() const
{
    if (m_data == nullptr)
        SHARESDK_AbnormalOutput("a frame without payload is read", __FILE__, __LINE__);
    return m_length;
}
