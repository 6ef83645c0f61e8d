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
extern const std::string_view GetProfile;
extern const std::string_view GetProfiles;
extern const std::string_view GetSnapshotUri;
extern const std::string_view GetStreamUri;
extern const std::string_view GetVideoEncoderConfiguration;
extern const std::string_view GetVideoEncoderConfigurationOptions;
extern const std::string_view SetVideoEncoderConfiguration;

// Imaging.
extern const std::string_view ContinuousFocus;
extern const std::string_view GetImgMoveOptions;
extern const std::string_view GetImgOptions;
extern const std::string_view GetImgSettings;
extern const std::string_view ImgStop;
extern const std::string_view SetImgSettings;

// PTZ and cruises.
extern const std::string_view ContinuousMove;
extern const std::string_view CreatePresetTour;
extern const std::string_view GetPTZCfgOptions;
extern const std::string_view GetPresetTours;
extern const std::string_view GetPresets;
extern const std::string_view GotoPreset;
extern const std::string_view ModifyPresetTour;
extern const std::string_view OperatePresetTour;
extern const std::string_view PTZStop;
extern const std::string_view RemovePreset;
extern const std::string_view RemovePresetTour;
extern const std::string_view SetPreset;

// Motion, relays and digital inputs.
extern const std::string_view GetAnalyticsModules;
extern const std::string_view GetDigitalInputs;
extern const std::string_view GetRelayOutputs;
extern const std::string_view GetRules;
extern const std::string_view SetAnalyticsModules;
extern const std::string_view SetRelayOutputSettings;
extern const std::string_view SetRelayOutputState;
extern const std::string_view SetRules;

} // namespace ONVIF_TEMPLATES
