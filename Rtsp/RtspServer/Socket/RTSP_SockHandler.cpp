#include "RTSP_SockHandler.h"

#include "NC_Socket.h"
#include "RTSP_SockScheduler.h"

void CRTSP_SockHandler::Destroy()
{
    if (m_sock != -1)
    {
        m_scheduler.DelSockHandler(m_sock);
        CloseSocket();
    }
    delete this;
}

int CRTSP_SockHandler::HandleWait(unsigned int /*now*/)
{
    return HANDLER_NOTHING;
}

void CRTSP_SockHandler::Fail()
{
    Destroy();
}

int CRTSP_SockHandler::GetSockName(int* ip, unsigned short* port) const
{
    return NC_GetSockName(m_sock, ip, port);
}

int CRTSP_SockHandler::GetSockName(char* ipText, unsigned short* port) const
{
    return NC_GetSockName(m_sock, ipText, port);
}

int CRTSP_SockHandler::GetPeerName(int* ip, unsigned short* port) const
{
    return NC_GetPeerName(m_sock, ip, port);
}

int CRTSP_SockHandler::GetPeerName(char* ipText, unsigned short* port) const
{
    return NC_GetPeerName(m_sock, ipText, port);
}
