// QlxApiTemplates.h: the documents of Templates/, as the build embeds them byte for byte. Constants; any thread.
#pragma once

#include <string_view>

namespace QLX_TEMPLATES
{

extern const std::string_view CorrectResponse;
extern const std::string_view ErrorResponse;
extern const std::string_view GetAlarmInConfig;
extern const std::string_view GetAlarmOutConfig;
extern const std::string_view GetAlarmServerConfig;
extern const std::string_view GetAlarmStauts;
extern const std::string_view GetAudioStreamCfg;
extern const std::string_view GetDateAndTime;
extern const std::string_view GetDdnsConfig;
extern const std::string_view GetDeviceInfo;
extern const std::string_view GetImageConfig;
extern const std::string_view GetImageOsdCfg;
extern const std::string_view GetMotionConfig;
extern const std::string_view GetNetBasicConfig;
extern const std::string_view GetNetPppoeConfig;
extern const std::string_view GetPortConfig;
extern const std::string_view GetPrivacyMaskCfg;
extern const std::string_view GetStreamCaps;
extern const std::string_view GetVerifyXml;
extern const std::string_view GetVideoStreamCfg;
extern const std::string_view PtzGetProtocolConfig;

} // namespace QLX_TEMPLATES
