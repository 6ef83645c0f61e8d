// OnvifTemplates.h: the documents of Templates/, as the build embeds them byte for byte. Constants; any thread.
#pragma once

#include <string_view>

namespace ONVIF_TEMPLATES
{

// Services, device and network.
extern const std::string_view GetAllCapabilities;
extern const std::string_view GetCapabilities;
extern const std::string_view GetDNS;
extern const std::string_view GetDeviceInformation;
extern const std::string_view GetNetworkDefaultGateway;
extern const std::string_view GetNetworkInterfaces;
extern const std::string_view GetNetworkProtocols;
extern const std::string_view GetServices;
extern const std::string_view GetSystemDateAndTime;
extern const std::string_view Probe;
extern const std::string_view SetDNS;
extern const std::string_view SetNetworkDefaultGateway;
extern const std::string_view SetNetworkInterfaces;
extern const std::string_view SetNetworkProtocols;
extern const std::string_view SetSystemDateAndTime;

// Events.
extern const std::string_view CreatePullPointSubscription;
extern const std::string_view PullMessages;
extern const std::string_view Renew;
extern const std::string_view Subscribe;
extern const std::string_view Unsubscribe;

// Media.

// Imaging.

// PTZ and cruises.

// Motion, relays and digital inputs.

} // namespace ONVIF_TEMPLATES
