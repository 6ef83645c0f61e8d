#include "RTSP_DataManager.h"

#include "Limits.h"
#include "RTSP_Console.h"
#include "ShareSDK.h"

#include <cstdio>
#include <cstring>
#include <new>

CRTSP_DataManager& CRTSP_DataManager::Instance()
{
    static CRTSP_DataManager instance;
    return instance;
}

CRTSP_DataManager::CRTSP_DataManager(unsigned int snapShotWaitMs)
    : m_snapShotTaken(false), m_snapShotWaitMs(snapShotWaitMs)
{
}

CRTSP_DataManager::~CRTSP_DataManager() = default;

void CRTSP_DataManager::Init(CStreamCtrl* stream, CDevInterface* dev)
{
    if (stream == nullptr || dev == nullptr)
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    m_streamCtrl = stream;
    m_dev = dev;
    CMySingleLock lock(m_dataLock);
    m_snapShotsEnded = false;
}

void CRTSP_DataManager::Clear()
{
    CMySingleLock lock(m_dataLock);
    m_records.clear();
    m_snapShotsEnded = true;
    m_snapShotTaken.SetEvent();
}

// The copy is made between two short holds of the lock, so that host threads of different channels do not wait for one
// another's copies.
int CRTSP_DataManager::AddData(unsigned int id, int stream, const NETNS::RTSP_FRAME& frame, const void* data)
{
    const RTSP_MANAGER_KEY key = {id, stream, frame.frameType};
    bool hasLists = false;
    const int result = FindLists(key, frame, data, hasLists);
    if (!hasLists)
        return result;

    // A reference of our own for the walk: the scheduler may take the frame from the first list, send it and give it
    // back before the next list has it.
    auto* shared = new CSharedData(frame, data);
    shared->Add();
    const int pushed = PushToLists(key, shared);
    shared->Dec();
    return pushed;
}

int CRTSP_DataManager::FindLists(const RTSP_MANAGER_KEY& key, const NETNS::RTSP_FRAME& frame, const void* data,
                                 bool& hasLists)
{
    CMySingleLock lock(m_dataLock);
    TakeSnapShot(key.id, frame, data);
    const auto found = m_records.find(key);
    if (found == m_records.end())
    {
        StreamRecord record;
        if (!Describe(frame, data, record))
            return -1;
        m_records[key] = std::move(record);
        return 0;
    }
    // A client may play a stream before its first frame has come: its record is made by the list, empty.
    if (!found->second.described)
        Describe(frame, data, found->second);
    hasLists = !found->second.lists.empty();
    return 0;
}

bool CRTSP_DataManager::Describe(const NETNS::RTSP_FRAME& frame, const void* data, StreamRecord& record)
{
    if (frame.frameType != NETNS::RTSP_FRAME_VIDEO)
    {
        record.hasAudio = true;
        record.audioEncodeType = frame.encodeType;
        record.audioSampleRate = frame.clockRate;
        record.described = true;
        return true;
    }
    if (frame.keyFrame == 0)
        return false;
    Create_SPS_PPS_INFO(static_cast<const unsigned char*>(data), data != nullptr ? frame.length : 0, &record.h264);
    record.videoEncodeType = frame.encodeType;
    record.videoClockRate = frame.clockRate;
    record.described = true;
    return true;
}

int CRTSP_DataManager::PushToLists(const RTSP_MANAGER_KEY& key, CSharedData* shared)
{
    CMySingleLock lock(m_dataLock);
    const auto found = m_records.find(key);
    if (found == m_records.end())
        return 0;
    for (const auto& list : found->second.lists)
    {
        // Clients see it so: one that waits for a key frame keeps the frame from those that came after it.
        if (list->AddDataToList(shared) == -1 && list->GetRefusalRule() == REFUSAL_ENDS_WALK)
            return -1;
    }
    return 0;
}

CSharedDataList* CRTSP_DataManager::CreateSharedDataList(unsigned int id, int stream, NETNS::RTSP_FRAME_TYPE type,
                                                         int maxBytes, int maxMs, RefusalRule rule)
{
    char line[256];
    snprintf(line, sizeof(line), " ----CRTSP_DataManager::CreateSharedDataList  begin chnidx:%d, streamidx:%d  \n",
             static_cast<int>(id), stream);
    SHARESDK_NormalOutput(line, __FILE__, __LINE__);

    CMySingleLock lock(m_dataLock);
    StreamRecord& record = m_records[RTSP_MANAGER_KEY{id, stream, type}];
    record.lists.push_back(std::make_unique<CSharedDataList>(type, maxBytes, maxMs, rule));
    return record.lists.back().get();
}

int CRTSP_DataManager::DelSharedDataList(CSharedDataList* list)
{
    CMySingleLock lock(m_dataLock);
    for (auto& entry : m_records)
    {
        auto& lists = entry.second.lists;
        for (auto it = lists.begin(); it != lists.end(); ++it)
        {
            if (it->get() == list)
            {
                lists.erase(it);
                return 0;
            }
        }
    }
    SHARESDK_AbnormalOutput("a frame list is deleted that is not there", __FILE__, __LINE__);
    return -1;
}

void CRTSP_DataManager::SetLiveRtspUrl(unsigned int chn, int stream, const char* url)
{
    if (url == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return;
    }
    CMySingleLock lock(m_urlLock);
    m_urls.insert(std::make_pair(std::string(url), std::make_pair(chn, stream)));
}

bool CRTSP_DataManager::FindRtspUrl(const char* url, unsigned int& chn, int& stream) const
{
    bool found = false;
    CMySingleLock lock(m_urlLock);
    for (const auto& entry : m_urls)
    {
        if (strstr(url, entry.first.c_str()) == nullptr)
            continue;
        chn = entry.second.first;
        stream = entry.second.second;
        found = true;
    }
    return found || strstr(url, "talkback") != nullptr;
}

void CRTSP_DataManager::GetRtspUrl(unsigned int chn, std::vector<RTSP_URL_CHN_EX>& urls) const
{
    CMySingleLock lock(m_urlLock);
    for (const auto& entry : m_urls)
    {
        if (entry.second.first == chn)
            urls.push_back({chn, entry.second.second, entry.first});
    }
}

void CRTSP_DataManager::TakeSnapShot(unsigned int id, const NETNS::RTSP_FRAME& frame, const void* data)
{
    if (!m_snapShotWanted || m_snapShotChannel != id || frame.frameType != NETNS::RTSP_FRAME_JPEG)
        return;
    if (data == nullptr || frame.length == 0 || frame.length > LIMIT_SNAPSHOT_BYTES)
        return;
    m_snapShot.reset(new (std::nothrow) char[frame.length]);
    if (m_snapShot == nullptr)
        return;
    memcpy(m_snapShot.get(), data, frame.length);
    m_snapShotLength = frame.length;
    m_snapShotTaken.SetEvent();
}

bool CRTSP_DataManager::GetSnapShot(unsigned int chn, char*& data, unsigned int& len)
{
    CMySingleLock oneCaller(m_snapShotLock);
    {
        CMySingleLock lock(m_dataLock);
        if (m_snapShotsEnded)
            return false;
        m_snapShotChannel = chn;
        m_snapShotWanted = true;
        m_snapShot.reset();
        m_snapShotTaken.ResetEvent();
    }
    const bool taken = m_snapShotTaken.WaitEvent(m_snapShotWaitMs) == CMyEvent::EVENT_SET;

    CMySingleLock lock(m_dataLock);
    m_snapShotWanted = false;
    if (!taken || m_snapShot == nullptr)
    {
        m_snapShot.reset();
        RTSP_ConsoleLine(" CRTSP_DataManager::GetSnapShot timeout \n ");
        return false;
    }
    data = m_snapShot.release();
    len = m_snapShotLength;
    return true;
}

bool CRTSP_DataManager::IsDescribable(unsigned int id, int stream) const
{
    if (id == RTSP_STREAM_TALKBACK)
        return true;
    CMySingleLock lock(m_dataLock);
    return m_records.count(RTSP_MANAGER_KEY{id, stream, NETNS::RTSP_FRAME_VIDEO}) != 0;
}

bool CRTSP_DataManager::NeedAuthorization()
{
    return m_dev == nullptr || m_dev->NeedAuthorization();
}

void CRTSP_DataManager::GetRtspUserInfo(std::vector<NETNS::DEV_USER_INFO>& users)
{
    users.clear();
    if (m_dev == nullptr)
        return;
    NETNS::DEV_USER_INFO list[MAX_RTSP_USERS] = {};
    int count = 0;
    m_dev->GetUserList(list, MAX_RTSP_USERS, count);
    if (count > 0 && count < MAX_RTSP_USERS)
        users.assign(list, list + count);
}

unsigned int CRTSP_DataManager::OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out)
{
    return m_streamCtrl != nullptr ? m_streamCtrl->OpenLiveStream(userInfoXml, chn, stream, out) : 0;
}

void CRTSP_DataManager::CloseLiveStream(unsigned int handle)
{
    if (m_streamCtrl != nullptr)
        m_streamCtrl->CloseLiveStream(handle);
}

unsigned int CRTSP_DataManager::OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                                              const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& out)
{
    return m_streamCtrl != nullptr ? m_streamCtrl->OpenRecStream(userInfoXml, chn, date, time, timeLen, out) : 0;
}

void CRTSP_DataManager::ClosePlayStream(unsigned int handle)
{
    if (m_streamCtrl != nullptr)
        m_streamCtrl->ClosePlayStream(handle);
}

unsigned int CRTSP_DataManager::OpenTalkBackStream(const char* userInfoXml)
{
    return m_streamCtrl != nullptr ? m_streamCtrl->OpenTalkBackStream(userInfoXml) : 0;
}

void CRTSP_DataManager::CloseTalkBackStream(unsigned int handle)
{
    if (m_streamCtrl != nullptr)
        m_streamCtrl->CloseTalkBackStream(handle);
}

int CRTSP_DataManager::TalkBackStremInput(unsigned char* data, int len, int encodeType)
{
    return m_streamCtrl != nullptr ? m_streamCtrl->TalkBackStreamInput(data, len, encodeType) : -1;
}
