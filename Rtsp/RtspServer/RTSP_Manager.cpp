#include "RTSP_Manager.h"

#include "NC_Socket.h"
#include "RTSP_Server.h"

#include <vector>

CRTSP_Manager& CRTSP_Manager::Instance()
{
    static CRTSP_Manager manager;
    return manager;
}

CRTSP_Manager::CRTSP_Manager()
    : m_scheduler(CRTSP_SockScheduler::Instance()), m_dataManager(&CRTSP_DataManager::Instance())
{
    NC_Init();
}

CRTSP_Manager::~CRTSP_Manager()
{
    Stop_RTSP_Manager();
}

int CRTSP_Manager::Start_RTSP_Manager(unsigned short port, CStreamCtrl* stream, CDevInterface* dev)
{
    const CMySingleLock lock(m_lock);
    if (m_running)
        return 0;
    m_server = CRTSP_Server::Create_RTSP_Server(m_scheduler, nullptr);
    m_server->Start_RTSP_Server(port);
    m_dataManager->Init(stream, dev);
    m_scheduler.Start_RTSP_SockScheduler();
    m_running = true;
    return 0;
}

int CRTSP_Manager::Stop_RTSP_Manager()
{
    const CMySingleLock lock(m_lock);
    if (!m_running)
        return 0;
    m_running = false;
    // The loop is gone before a handler dies.
    m_scheduler.Stop_RTSP_SockScheduler();
    m_server->Stop_RTSP_Server();
    m_dataManager->Clear();
    m_server->Destroy();
    m_server = nullptr;
    return 0;
}

int CRTSP_Manager::AddData_RTSP_Manager(unsigned int id, int stream, const NETNS::RTSP_FRAME& frame, void* data)
{
    if (!m_running)
        return 0;
    int result = 0;
    std::vector<RTSP_URL_CHN_EX> urls;
    if (frame.frameType == NETNS::RTSP_FRAME_AUDIO)
        m_dataManager->GetRtspUrl(id, urls);
    if (urls.size() > 1)
    {
        for (const RTSP_URL_CHN_EX& url : urls)
            m_dataManager->AddData(id, url.stream, frame, data);
    }
    else
    {
        result = m_dataManager->AddData(id, stream, frame, data);
    }
    m_scheduler.WakeUp();
    return result;
}

int CRTSP_Manager::SetLiveRTSPUrl(unsigned int channel, int stream, const char* url)
{
    m_dataManager->SetLiveRtspUrl(channel, stream, url);
    return 0;
}

int CRTSP_Manager::Quit_RTSP_Manager()
{
    return 1;
}

unsigned short CRTSP_Manager::GetPort()
{
    const CMySingleLock lock(m_lock);
    return m_server == nullptr ? static_cast<unsigned short>(0) : m_server->GetPort();
}
