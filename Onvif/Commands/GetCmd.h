// GetCmd.h: the SOAP requests of all commands, from the documents of Templates/ and the fields of a host's request.
//
// The sources are split by family: GetCmdDevice.cpp (services, device, network), GetCmdEvents.cpp, GetCmdMedia.cpp,
// GetCmdImaging.cpp, GetCmdPtz.cpp and GetCmdMotion.cpp. A request's security header is empty; CHttpClient fills it.
//
// Without state. Any thread.
#pragma once

#include "OnvifTypes.h"

#include <string>

class CQLXXMLParse;

class CGetDefaultCmd
{
public:
    enum CRUISE_OPERATE
    {
        CRUISE_START = 0,
        CRUISE_STOP = 1,
        CRUISE_PAUSE = 2,
    };

    static CGetDefaultCmd& Instance();

    // Services.

    std::string GetServices() const;
    std::string GetAllCapabilities() const;
    std::string GetCapabilities(SERVICE_TYPE type) const;
    /// A WS-Discovery probe for cameras.
    std::string Probe() const;

    // Device and network. An empty text: the request lacks its key.

    std::string GetNetworkInterfaces() const;
    std::string SetNetworkInterfaces(const std::string& request) const;
    std::string GetNetworkGateway() const;
    std::string SetNetworkGateway(const std::string& request) const;
    std::string GetSystemDateAndTime() const;
    std::string SetSystemDateAndTime(const std::string& request) const;
    std::string GetDeviceInformation() const;
    std::string GetDNS() const;
    std::string SetDNS(const std::string& request) const;
    std::string GetNetworkProtocols() const;
    std::string SetNetworkProtocols(const std::string& request) const;

    // Events.

    std::string CreatePullPointSubscription(const std::string& request) const;
    std::string Subscribe(const std::string& request) const;
    std::string Renew(const std::string& request) const;
    std::string Unsubscribe() const;
    std::string PullMessages(const std::string& request) const;

    // Media.

    // Imaging.

    // PTZ and cruises.

    // Motion, relays and digital inputs.

private:
    CGetDefaultCmd() = default;
};
