// MulticastService.h: a sending socket for each interface, a receiving one, and a thread that sends once.
//
// The caller prepares and starts; the thread, named "multicast thread!", sends, takes what has come by then and ends.
// Members are written before the thread starts and only read afterwards, so there is no lock.
#pragma once

#include <netinet/in.h>

class CMulticastService
{
public:
    /// Opens the sockets, for eight interfaces at most; an interface whose socket fails is left out. Sockets that an
    /// earlier call opened stay as they are. Nothing closes them before the object goes.
    /// @param group  dotted text; @param port  host order
    void Initial(const char* group, unsigned short port);

    int Start(); ///< starts the thread. @return 1
    void Stop(); ///< waits for the thread

protected:
    CMulticastService();
    virtual ~CMulticastService();
    CMulticastService(const CMulticastService&) = delete;
    CMulticastService& operator=(const CMulticastService&) = delete;

    /// Sends what there is to tell. This one sends an empty datagram.
    virtual void InvokeSend();

    /// A datagram was looked for. This one prints it on standard error.
    /// @param data    with a zero byte behind it
    /// @param length  0 or less when there was none
    virtual void ParseResp(const char* data, int length);

    /// Sends a datagram through every interface, whatever becomes of the others.
    void SendCmd(const char* data, int length);

private:
    static constexpr int SOCKETS_MAX = 8;

    static void RecvThread(void* service);
    void RecvThreadRun();
    void RecvMsg();
    static int OpenSendSocket(unsigned int group, unsigned int nicIp);
    void OpenReceiveSocket(unsigned int group, unsigned short port);

    int m_sendSockets[SOCKETS_MAX];
    int m_receiveSocket = -1;
    int m_sendSocketCount = 0;
    sockaddr_in m_destination{};
    unsigned int m_thread = 0;
};
