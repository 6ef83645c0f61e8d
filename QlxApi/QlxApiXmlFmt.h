// QlxApiXmlFmt.h: the XML documents that API commands fill. All operations are static; any thread.
#pragma once

#include <string>

/// Namespace of every document's root element.
extern const char* const QLX_API_NAMESPACE;

class CQlxApiXmlFmt
{
public:
    /// The answer to a command that succeeded.
    static std::string CorrectResponse();
    /// The answer to one that failed; its error code is filled in.
    static std::string ErrorResponse();
    /// The user verification text, with "%s" for the user's name, the password and the peer's address.
    static std::string GetVerifyXml();

    static std::string GetDeviceInfo();
    static std::string GetDateAndTime();
    static std::string GetImageConfig();
    static std::string GetImageOsdCfg();
    static std::string GetPrivacyMaskCfg();
    static std::string GetStreamCaps();
    static std::string GetVideoStreamCfg();
    static std::string GetAudioStreamCfg();
    static std::string GetMotionConfig();
    static std::string GetAlarmInConfig();
    static std::string GetAlarmOutConfig();
    static std::string GetAlarmServerConfig();
    static std::string GetAlarmStauts();
    static std::string PtzGetProtocolConfig();
    static std::string GetNetBasicConfig();
    static std::string GetNetPppoeConfig();
    static std::string GetPortConfig();
    static std::string GetDdnsConfig();
};
