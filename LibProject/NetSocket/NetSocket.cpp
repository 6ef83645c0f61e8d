// NetSocket.cpp: the exported functions. Each finds its connection and forwards to it.
#include "NetSocket.h"

#include "SimpleClient.h"
#include "SocketService.h"

#include <arpa/inet.h>

namespace
{

int Send(int handle, const char* data, int length, CConnection::SendKind kind, bool& broken)
{
    const auto connection = CSocketService::Instance().Find(handle);
    if (connection != nullptr)
    {
        return connection->Send(data, length, kind, broken);
    }
    broken = true;
    return 0;
}

} // namespace

bool NET_SOCKET_Initial(const char*)
{
    return CSocketService::Instance().Initial();
}

void NET_SOCKET_Quit()
{
    CSocketService::Instance().Quit();
}

bool NET_SOCKET_StartListen(unsigned short port, CListenSocketObserver* observer, unsigned int localAddress,
                            bool reuseAddress)
{
    return CSocketService::Instance().StartListen(port, observer, localAddress, reuseAddress);
}

bool NET_SOCKET_StopListen(unsigned short port)
{
    return CSocketService::Instance().StopListen(port);
}

unsigned short NET_SOCKET_GetListenPort(const CListenSocketObserver* observer)
{
    return CSocketService::Instance().GetListenPort(observer);
}

int NET_SOCKET_Recv_Immediate(int handle, char* buffer, int length, bool* broken)
{
    const auto connection = CSocketService::Instance().Find(handle);
    if (connection != nullptr)
    {
        return connection->Recv(buffer, length, broken);
    }
    if (broken != nullptr)
    {
        *broken = true;
    }
    return 0;
}

bool NET_SOCKET_WaitRecv(int handle, unsigned int timeoutMs)
{
    const auto connection = CSocketService::Instance().Find(handle);
    return connection == nullptr || connection->WaitRecv(timeoutMs);
}

int NET_SOCKET_Send_Immediate(int handle, const char* data, int length, bool& broken)
{
    return Send(handle, data, length, CConnection::SendKind::Plain, broken);
}

int NET_SOCKET_Send_Last(int handle, const char* data, int length, bool& broken)
{
    return Send(handle, data, length, CConnection::SendKind::Last, broken);
}

void NET_SOCKET_DestroyHNetCommunication(int handle)
{
    CSocketService::Instance().Destroy(handle);
}

bool NET_SOCKET_GetRemoteIP(int handle, sockaddr_in& address)
{
    const auto connection = CSocketService::Instance().Find(handle);
    address = connection != nullptr ? connection->Peer() : sockaddr_in{};
    return address.sin_family == AF_INET;
}

void NET_SOCKET_Inet_ntoa(unsigned int address, char* text)
{
    in_addr word{};
    word.s_addr = address;
    inet_ntop(AF_INET, &word, text, INET_ADDRSTRLEN);
}

int NET_SOCKET_AddConnect(unsigned int, const char* address, unsigned short port)
{
    in_addr word{};
    const bool isAddress = address != nullptr && inet_pton(AF_INET, address, &word) == 1;
    return CSocketService::Instance().AddConnect(isAddress ? &word : nullptr, port);
}

bool NET_SOCKET_PopConnectResult(int handle, int& result, unsigned int timeoutMs)
{
    const auto connection = CSocketService::Instance().Find(handle);
    result = connection != nullptr ? connection->ConnectResult(timeoutMs) : -1;
    return connection != nullptr;
}

void NET_SOCKET_DelConnect(int handle)
{
    const auto connection = CSocketService::Instance().Find(handle);
    if (connection != nullptr)
    {
        connection->GiveUpConnect();
    }
}

bool NET_SOCKET_RegisterNode(int handle, CSocketDataObserver* observer, void* param, int, int)
{
    const auto connection = CSocketService::Instance().Find(handle);
    return connection != nullptr && connection->Node().Bind(observer, param);
}

bool NET_SOCKET_Start(int handle)
{
    const auto connection = CSocketService::Instance().Find(handle);
    const auto loop = CSocketService::Instance().EventLoop();
    return connection != nullptr && loop != nullptr && connection->Node().Start(loop);
}

bool NET_SOCKET_Stop(int handle)
{
    const auto connection = CSocketService::Instance().Find(handle);
    return connection != nullptr && connection->Node().Stop();
}

bool NET_SOCKET_UnRegisterNode(int handle)
{
    const auto connection = CSocketService::Instance().Find(handle);
    return connection != nullptr && connection->Node().Unbind();
}

int NET_SOCKET_SimpleClientComm(const char* ip, unsigned short port, const char* send, unsigned int sendLen, char* recv,
                                unsigned int recvSize, const char* endMark, unsigned int timeoutMs)
{
    if (recv == nullptr || recvSize == 0)
    {
        return -1;
    }
    recv[0] = 0;
    in_addr address{};
    const auto quit = CSocketService::Instance().QuitSignal();
    if (quit == nullptr || ip == nullptr || inet_pton(AF_INET, ip, &address) != 1)
    {
        return -1;
    }
    CSimpleClient client(*quit, DeadlineAfter(timeoutMs));
    if (!client.Connect(address, port))
    {
        return -1;
    }
    const std::size_t received =
        client.Exchange(send, send != nullptr ? sendLen : 0, recv, recvSize - 1, endMark != nullptr ? endMark : "");
    recv[received] = 0;
    return static_cast<int>(received);
}
