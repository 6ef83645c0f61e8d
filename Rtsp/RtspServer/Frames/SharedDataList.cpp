#include "SharedDataList.h"

CSharedDataList::CSharedDataList(NETNS::RTSP_FRAME_TYPE type, int maxBytes, int maxMs, RefusalRule rule)
    : m_type(type), m_maxBytes(maxBytes), m_maxMs(maxMs), m_rule(rule)
{
}

CSharedDataList::~CSharedDataList()
{
    for (CSharedData* frame : m_frames)
        frame->Dec();
}

int CSharedDataList::AddDataToList(CSharedData* data)
{
    CMySingleLock lock(m_lock);
    const unsigned long long newestUs = data->GetFrameInfo()->presentationUs;
    data->Add();
    if (IsVideo() && !m_started)
    {
        if (!data->IsKeyFrame())
        {
            data->Dec();
            return -1;
        }
        m_started = true;
    }
    m_frames.push_back(data);
    m_totalBytes += data->GetLength();

    // The new frame itself may go: from here on `data` is the caller's to look at, if anyone's.
    if (m_maxBytes != -1)
        DropByBytes();
    if (m_maxMs != -1)
        DropByAge(newestUs);
    if (m_frames.empty())
        m_started = false;
    return IsVideo() && !m_started ? -1 : 0;
}

void CSharedDataList::DropFirst()
{
    CSharedData* first = m_frames.front();
    m_frames.pop_front();
    m_totalBytes -= first->GetLength();
    first->Dec();
}

// Once a video frame is dropped, so is everything up to the next key frame: what follows could not be decoded.
void CSharedDataList::DropByBytes()
{
    bool dropped = false;
    while (!m_frames.empty() && (m_totalBytes > m_maxBytes || (IsVideo() && dropped)))
    {
        if (dropped && m_frames.front()->IsKeyFrame() && m_totalBytes <= m_maxBytes)
            return;
        dropped = true;
        DropFirst();
    }
}

void CSharedDataList::DropByAge(unsigned long long newestUs)
{
    const long long limitUs = m_maxMs * 1000LL;
    bool dropped = false;
    while (!m_frames.empty())
    {
        const CSharedData* first = m_frames.front();
        // With its sign: a host clock that jumps back drops nothing.
        const auto ageUs = static_cast<long long>(newestUs - first->GetFrameInfo()->presentationUs);
        const bool canBegin = !IsVideo() || !dropped || first->IsKeyFrame();
        if (ageUs <= limitUs && canBegin)
            return;
        dropped = true;
        DropFirst();
    }
}

CSharedData* CSharedDataList::GetFirstData()
{
    CMySingleLock lock(m_lock);
    if (m_frames.empty())
        return nullptr;
    CSharedData* first = m_frames.front();
    m_frames.pop_front();
    m_totalBytes -= first->GetLength();
    return first;
}

int CSharedDataList::Size() const
{
    CMySingleLock lock(m_lock);
    return static_cast<int>(m_frames.size());
}

bool CSharedDataList::IsEmpty() const
{
    CMySingleLock lock(m_lock);
    return m_frames.empty();
}

int CSharedDataList::DeleteUntilKeyFrame()
{
    CMySingleLock lock(m_lock);
    if (!IsVideo())
        return -1;
    m_started = false;
    while (!m_frames.empty())
    {
        if (m_frames.front()->IsKeyFrame())
        {
            m_started = true;
            return 0;
        }
        DropFirst();
    }
    return 0;
}
