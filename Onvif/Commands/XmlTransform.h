// XmlTransform.h: what a device answers, as the host reads it.
//
// Each transform reads a SOAP document and appends to the host's answer so far: root "GetResponse" or "SetResponse",
// below it one element for each key. The sources are split by family: XmlTransform.cpp (what all share),
// XmlTransformServices.cpp, XmlTransformDevice.cpp, XmlTransformEvents.cpp, XmlTransformMedia.cpp,
// XmlTransformImaging.cpp, XmlTransformPtz.cpp and XmlTransformMotion.cpp.
//
// All operations are static. Any thread.
#pragma once

#include "OnvifTypes.h"

#include <map>
#include <string>
#include <vector>

class COnvifXmlParse;
class CQLXXMLParse;

class CXmlTransform
{
public:
    // What all share.

    /// Adds `status` below an element of the answer: "success", or "fail" with `errorCode` 5 and the fault's
    /// `description`. @return false for a fault
    static bool TransResponseBase(const std::string& soap, CQLXXMLParse& answer, unsigned int item);
    static bool TransResponseBase(const COnvifXmlParse& soap, CQLXXMLParse& answer, unsigned int item);
    /// The same, with `errorCode` 30 for a fault that blames an argument. @return 0, or the error code of a fault
    static int TransResponseGeneric(const std::string& soap, CQLXXMLParse& answer, unsigned int item);
    static int TransResponseGeneric(const COnvifXmlParse& soap, CQLXXMLParse& answer, unsigned int item);
    /// The answer to a change: `status` below a key of "SetResponse". A repeated key gains a further `status`.
    static void TransSetBaseResponse(const std::string& soap, std::string& answer, const std::string& key);

    // Services.

    /// The path in a URL, without leading "/". A text without "http://" stays as it is.
    static std::string ParseUrlInXaddr(const std::string& url);
    /// @param urls  receives the paths by service key
    static void TransGetServers(const std::string& soap, std::map<std::string, std::string>& urls);
    /// Adds the paths of services that are not in the table.
    /// @param wsSubscriptionSupport, wsPullPointSupport  receive what the device says of events, if it does
    /// @return false for a fault, and when no capabilities came
    static bool TransGetAllCapabilitiesUrl(const std::string& soap, std::map<std::string, std::string>& urls,
                                           bool& wsSubscriptionSupport, bool& wsPullPointSupport);
    /// @return false for a fault, and when the category's path did not come
    static bool TransGetCapabilitieUrl(SERVICE_TYPE type, const std::string& soap, std::string& url);
    /// The answer to a WS-Discovery probe as a search result. @return an empty text without an address
    static std::string TransPorbeMatch(const std::string& soap);

    // Device and network.

    static void TransGetNetworkInterface(const std::string& soap, std::string& answer);
    static void TransSetNetworkInterface(const std::string& soap, std::string& answer);
    static void TransGetNetworkGateway(const std::string& soap, std::string& answer);
    static void TransSetNetworkGateway(const std::string& soap, std::string& answer);
    static void TransGetSystemDateAndTime(const std::string& soap, std::string& answer);
    static void TransSetSystemDateAndTime(const std::string& soap, std::string& answer);
    static void TransGetDeviceInformation(const std::string& soap, std::string& answer);
    static void TransGetDNS(const std::string& soap, std::string& answer);
    static void TransGetNetworkProtocols(const std::string& soap, std::string& answer);

    // Events.

    static void TransCreatePullPointSubscription(const std::string& soap, std::string& answer);
    static void TransSubscribe(const std::string& soap, std::string& answer);
    static void TransRenew(const std::string& soap, std::string& answer);
    static void TransPullMessages(const std::string& soap, std::string& answer);

    // Media.

    /// @param profiles  receives those with a video encoder, behind what is there; their names are cut to 63 bytes
    /// @return ONVIF_OK, or ONVIF_FAULT with `profiles` as it was
    static int TransGetProfiles(const std::string& soap, std::string& answer,
                                std::vector<ONVIF_PROFILE_TOKEN>& profiles);
    /// @param index  of the profile that was asked for; each answer is an `item` of its own
    static void TransGetProfile(const std::string& soap, std::string& answer, int index);
    static void TransGetVideoEncoderConfiguration(const std::string& soap, std::string& answer, int index);
    static void TransGetVideoEncoderConfigurationOption(const std::string& soap, std::string& answer, int index);
    static void TransSetVideoEncoderConfiguration(const std::string& soap, std::string& answer);
    static void TransGetStreamUri(const std::string& soap, std::string& answer);
    /// @param uri  receives the address; empty when the device gives none
    static void TransGetSnapshotUri(const std::string& soap, std::string& answer, std::string& uri);

    // Imaging.

    static void TransGetImgOptions(const std::string& soap, std::string& answer);
    static void TransGetImgSettings(const std::string& soap, std::string& answer);
    static void TransSetImgSettings(const std::string& soap, std::string& answer);
    static void TransImgStop(const std::string& soap, std::string& answer);
    static void TransContinuousFocus(const std::string& soap, std::string& answer);
    /// @return ONVIF_OK, ONVIF_FAULT, or ONVIF_UNREADABLE when the device gives no such range
    static int TransGetImgMoveOption(const std::string& soap, ONVIF_RANGE* range);

    // PTZ and cruises.

    /// @return ONVIF_OK, ONVIF_FAULT, or ONVIF_UNREADABLE when the device does not give all the ranges
    static int TransGetPTZCfgOptions(const std::string& soap, ONVIF_PTZ_VELOCITY* velocity);
    static void TransContinuousMove(const std::string& soap, std::string& answer);
    static void TransGetPresets(const std::string& soap, std::string& answer);
    static void TransAddPreset(const std::string& soap, std::string& answer);
    static void TransModifyPresetName(const std::string& soap, std::string& answer);
    static void TransRemovePreset(const std::string& soap, std::string& answer);
    static void TransGetCruises(const std::string& soap, std::string& answer);
    static void TransAddPresetTour(const std::string& soap, std::string& answer);

    // Motion, relays and digital inputs.

    /// @param moduleName  room for 64 bytes; receives the module's name, cut to 63 bytes, if the device gives one
    static void TransGetAnalyticsModules(const std::string& soap, std::string& answer, char* moduleName);
    /// Adds to the answer of TransGetAnalyticsModules; without it nothing is done.
    /// @param ruleName  room for 64 bytes; receives the rule's name in the same way
    static void TransGetRules(const std::string& soap, std::string& answer, char* ruleName);
    static void TransSetAnalyticsModules(const std::string& soap, std::string& answer);
    static void TransSetRules(const std::string& soap, std::string& answer);
    /// An idle state other than "closed" and "open" ends the process.
    static void TransGetRelayOutputs(const std::string& soap, std::string& answer);
    static void TransSetRelayOutputs(const std::string& soap, std::string& answer);
    static void TransSetRelayOutputState(const std::string& soap, std::string& answer);
    static void TransGetDigitalInputs(const std::string& soap, std::string& answer);
};
