// OnvifSDK.cpp: the exported functions; each forwards to one singleton.
#include "OnvifSDK.h"

#include "HttpClientManager.h"
#include "NetSocket.h"
#include "OnvifTrace.h"

#include <cstring>

bool ONVIF_CLIENT_Initial()
{
    NET_SOCKET_Initial(nullptr);
    CHttpClientManager::Instance().Init();
    return true;
}

bool ONVIF_CLIENT_Quit()
{
    NET_SOCKET_Quit();
    CHttpClientManager::Instance().Quit();
    return true;
}

unsigned int ONVIF_CLIENT_Login(unsigned int token, const char* ip, unsigned short port, const char* user,
                                const char* password, unsigned int* error)
{
    return CHttpClientManager::Instance().ClientLogin(token, ip, port, user, password, error);
}

bool ONVIF_CLIENT_Logout(unsigned int token)
{
    return CHttpClientManager::Instance().ClientLogout(token);
}

bool ONVIF_CLIENT_GetCfg(unsigned int token, const char* request, char*& response, int* length)
{
    return CHttpClientManager::Instance().GetCfg(token, request != nullptr ? request : "", response, length);
}

bool ONVIF_CLIENT_SetCfg(unsigned int token, const char* request, char*& response)
{
    response = nullptr;
    std::string answer;
    if (!CHttpClientManager::Instance().SetCfg(token, request != nullptr ? request : "", answer) || answer.empty())
    {
        return false;
    }
    response = new char[answer.size() + 1];
    std::memcpy(response, answer.c_str(), answer.size() + 1);
    return true;
}

void ONVIF_CLIENT_DelResponseBuff(char*& buffer)
{
    delete[] buffer;
}

void ONVIF_CLIENT_SetTraceObserver(CONVIFTraceObserver* observer)
{
    COnvifTrace::SetObserver(observer);
}

bool ONVIF_CLIENT_AddAlarmStateObserver(unsigned int token, CONVIFAlarmStateObserver* observer)
{
    CHttpClientManager::Instance().AddAlarmStateObserver(token, observer);
    return true;
}

bool ONVIF_CLIENT_DelAlarmStateObserver(unsigned int token)
{
    return CHttpClientManager::Instance().DelAlarmStateObserver(token);
}

int ONVIF_CLIENT_LIVESTREAM_Start(int token, int channel, NETNS::RTSP_NETPROTOCOL protocol,
                                  NETNS::RTSP_MEDIADATA_TYPE type, CRTSPReceiver* receiver, unsigned int* result)
{
    return CHttpClientManager::Instance().LiveStreamStart(static_cast<unsigned int>(token), channel, protocol, type,
                                                          receiver, result);
}

bool ONVIF_CLIENT_LIVESTREAM_Stop(int token, int streamId)
{
    return CHttpClientManager::Instance().LiveStreamStop(static_cast<unsigned int>(token), streamId);
}

int ONVIF_SEARCH_Initial(void (* /*callback*/)(char*, int, const char*, void*), void* /*context*/,
                         unsigned int /*option*/)
{
    return 1;
}

int ONVIF_SEARCH_StartManual()
{
    return 1;
}

int ONVIF_SEARCH_Set_Config(char* /*name*/, const char* /*value*/)
{
    return 1;
}

int ONVIF_SEARCH_Quit()
{
    NET_SOCKET_Quit();
    return 1;
}
