// UpnpServer.h: tells the network that the device is there (UPnP Device Architecture 1.0, "ssdp:alive"), and serves the
// description that the announcement points to.
//
// One announcement for each start and interface; searches are not answered, and nothing is said at the end. The host's
// thread prepares, starts and stops; the announcement goes out on a thread of its own; the socket service's threads
// serve the description. Members are written before those threads start, so there is no lock.
#pragma once

#include "AbandonedConnections.h"
#include "MulticastService.h"
#include "NetSocket.h"
#include "NetTypes.h"

#include <atomic>
#include <string>

class CHttpDataPacket;
class CHttpProtocolAnalyse;

class CUpnpServer : public CListenSocketObserver, public CMulticastService
{
public:
    /// Room that the description and the announcement need, each with a zero byte behind it.
    static constexpr int TEXT_BYTES = 1024;

    static CUpnpServer& Instance();
    ~CUpnpServer() override = default;

    /// Takes the identity, which gets a new UDN, and opens the multicast sockets.
    /// @param name  the friendly name; copied
    /// @param port  serves the description
    /// @return 1
    int InitUpnp(const char* name, unsigned short port, NETNS::DEV_TYPE type);

    /// Opens the description port and announces the device, after ending what runs.
    /// @param webPort  shown as the place of the device's pages
    /// @return 1, whatever becomes of it
    int StartUpnp(unsigned short webPort);
    void StopUpnp();

    void OnAcceptCreateSocket(int handle, unsigned short port, unsigned int address) override;

    /// Writes the description. The name is the established one.
    /// @param buffer  room for TEXT_BYTES. @return its length
    int GetEnqueryXml(char* buffer) const;

protected:
    void InvokeSend() override;
    void ParseResp(const char* data, int length) override; ///< does nothing: this device only announces

private:
    CUpnpServer() = default;

    static bool GetAcceptHttp(int handle, CHttpDataPacket& packet);
    static void ReplyExecute(int handle, const CHttpProtocolAnalyse& reply);
    static std::string LocalAddress();

    std::string m_friendlyName;
    std::atomic<unsigned short> m_webPort{0};
    unsigned short m_descriptionPort = 0;
    NETNS::DEV_TYPE m_deviceType{};
    char m_udn[128] = {};
    char m_localIp[64] = {};
    CAbandonedConnections m_silent;
};
