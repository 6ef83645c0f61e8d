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

    std::string GetProfiles() const;
    std::string GetProfile(const std::string& profileToken) const;
    std::string GetVideoEncoderConfigurationOption(const std::string& profileToken,
                                                   const std::string& encoderToken) const;
    std::string GetVideoEncoderConfiguration(const std::string& encoderToken) const;
    /// @param item        one encoder's settings in the host's request, with its `encodeToken`
    /// @param encodeName  the name under which the device has it
    std::string SetVideoEncoderConfiguration(CQLXXMLParse& request, const unsigned int& item,
                                             const char* encodeName) const;
    std::string GetStreamUri(const std::string& request) const;
    std::string GetSnapshotUri(const std::string& request) const;

    // Imaging.

    std::string GetImgOptions(const std::string& request) const;
    std::string GetImgSettings(const std::string& request) const;
    std::string SetImgSettings(const std::string& request) const;
    std::string ImgStop(const std::string& request) const;
    /// The host's percentage of a speed. @param range  null: -1 to 1
    std::string ContinuousFocus(const std::string& request, const ONVIF_RANGE* range) const;
    std::string GetImgMoveOptions(const std::string& videoSourceToken) const;

    // PTZ and cruises. An empty text: the request of a cruise lacks a field.

    std::string GetPTZCfgOptions(const std::string& ptzToken) const;
    /// The host's percentages of speeds. @param velocity  null: all ranges from -1 to 1
    std::string ContinuousMove(const std::string& request, const ONVIF_PTZ_VELOCITY* velocity) const;
    std::string PTZStop(const std::string& request) const;
    std::string GetPresets(const std::string& request) const;
    std::string AddPreset(const std::string& request) const;
    std::string ModifyPresetName(const std::string& request) const;
    std::string RemovePreset(const std::string& request) const;
    std::string GotoPreset(const std::string& request) const;
    std::string GetCruises(const std::string& request) const;
    std::string AddPresetTour(const std::string& request) const;
    std::string ModifyCruise(const std::string& request) const;
    std::string DelCruise(const std::string& request) const;
    std::string OperateCruise(const std::string& request, CRUISE_OPERATE operate) const;

    // Motion, relays and digital inputs. An empty text: the request has nothing for the module, or for the rule.

    std::string GetAnalyticsModules(const std::string& analyticsToken) const;
    std::string GetRules(const std::string& analyticsToken) const;
    /// @param moduleName, ruleName  as the device was read with
    std::string SetAnalyticsModules(const std::string& request, const std::string& analyticsToken,
                                    const char* moduleName) const;
    std::string SetRules(const std::string& request, const std::string& analyticsToken, const char* ruleName) const;
    std::string GetRelayOutputs() const;
    std::string SetRelayOutputs(const std::string& request) const;
    std::string SetRelayOutputState(const std::string& request) const;
    std::string GetDigitalInputs() const;

private:
    CGetDefaultCmd() = default;
};
