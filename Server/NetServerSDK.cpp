// NetServerSDK.cpp: the exported functions; each forwards to one singleton.
#include "NetServerSDK.h"

#include "AlarmServer.h"
#include "NetServer.h"
#include "NetServerDataProc.h"
#include "NetSocket.h"
#include "Policy.h"
#include "RTSP_Manager.h"
#include "RTSP_ManagerKey.h"
#include "ShareSDK.h"
#include "UpnpServer.h"

#include <atomic>

namespace
{

constexpr const char* UPNP_NAME = "MOKA";
constexpr unsigned short UPNP_PORT = 33899;
constexpr unsigned int QUIT_WAIT_MS = 5000;

std::atomic<bool> s_announces{false}; ///< as the policy had it at NET_SERVER_Initial

} // namespace

void NET_SERVER_SetPolicy(unsigned int bits)
{
    CPolicy::SetCurrent(CPolicy(bits));
}

unsigned int NET_SERVER_GetPolicy()
{
    return CPolicy::Current().Bits();
}

int NET_SERVER_Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors, CDevInterface* dev,
                       CStreamCtrl* /*stream*/, const char* oldVersion, const char* newVersion, unsigned int flags,
                       NETNS::DEV_TYPE /*type*/)
{
    if (!NET_SOCKET_Initial(nullptr))
    {
        return 0;
    }
    s_announces = !CPolicy::Current().NoAnnounce();
    if (s_announces)
    {
        CUpnpServer::Instance().InitUpnp(UPNP_NAME, UPNP_PORT, NETNS::DEV_TYPE_DEFAULT);
    }
    CNetServerDataProc::Instance().Initial(channels, alarmOuts, sensors, dev, oldVersion, newVersion, flags);
    return 1;
}

int NET_SERVER_Start(unsigned short port, const char* webRoot, const char* cfgFile)
{
    CNetServer::Instance().start(port, webRoot, cfgFile);
    if (s_announces)
    {
        CUpnpServer::Instance().StartUpnp(port);
    }
    return 0;
}

int NET_SERVER_SetHttpPort(unsigned short port)
{
    return CNetServer::Instance().SetHttpPort(port);
}

int NET_SERVER_RTSPStart(unsigned short port, CStreamCtrl* stream, CDevInterface* dev)
{
    if (NET_SOCKET_Initial(nullptr))
    {
        CRTSP_Manager::Instance().Start_RTSP_Manager(port, stream, dev);
    }
    return 0;
}

int NET_SERVER_SetLiveRTSPUrl(unsigned int channel, int stream, const char* url)
{
    CRTSP_Manager::Instance().SetLiveRTSPUrl(channel, stream, url);
    return 0;
}

int NET_SERVER_LiveStreamIn(unsigned int channel, int stream, const NETNS::RTSP_FRAME& frame, void* data)
{
    CRTSP_Manager::Instance().AddData_RTSP_Manager(channel, stream, frame, data);
    return 0;
}

int NET_SERVER_PlayStreamIn(unsigned int channel, const NETNS::RTSP_FRAME& frame, void* data)
{
    CRTSP_Manager::Instance().AddData_RTSP_Manager(channel, RTSP_STREAM_PLAYBACK, frame, data);
    return 0;
}

int NET_SERVER_TalkBackStreamIn(const NETNS::RTSP_FRAME& frame, void* data)
{
    CRTSP_Manager::Instance().AddData_RTSP_Manager(RTSP_STREAM_TALKBACK, RTSP_STREAM_TALKBACK, frame, data);
    return 0;
}

int NET_SERVER_SetMotionStatus(unsigned int channel, bool active)
{
    CAlarmServer::Instance().SetMotionStatus(channel, active);
    return 0;
}

int NET_SERVER_SetSensorStatus(unsigned int id, bool active)
{
    CAlarmServer::Instance().SetSensorStatus(id, active);
    return 0;
}

int NET_SERVER_SetVideoLossStatus(unsigned int channel, bool active)
{
    CAlarmServer::Instance().SetVideoLossStatus(channel, active);
    return 0;
}

int NET_SERVER_RTSPStop()
{
    CRTSP_Manager::Instance().Stop_RTSP_Manager();
    return 0;
}

int NET_SERVER_Stop()
{
    if (s_announces)
    {
        CUpnpServer::Instance().StopUpnp();
    }
    CNetServer::Instance().Stop();
    return 0;
}

int NET_SERVER_Quit()
{
    NET_SOCKET_Quit();
    // The host may end its device now: the requests that are still inside of it come out first.
    if (!CNetServer::AwaitRequests(QUIT_WAIT_MS))
    {
        SHARESDK_AbnormalOutput("a request is still inside the host", __FILE__, __LINE__);
    }
    return 1;
}

int NET_SERVER_GetVersion()
{
    return 0;
}

int NET_SERVER_GetOnvifVersion()
{
    return 0;
}

int NET_SERVER_GetAPIVersion()
{
    return 0;
}
