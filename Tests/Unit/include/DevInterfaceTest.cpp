// A host that was built with an older header is called by place, so no operation may move.
#include "DevInterface.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

struct Operation
{
    std::string name;
    std::size_t place; ///< in the table of virtual operations
};

// The first word of a pointer to a virtual operation is its offset in the table; where functions may begin at odd
// addresses it is that, else one more (Itanium C++ ABI, 2.3, and its ARM variant).
template <typename OPERATION>
Operation Row(const char* name, OPERATION operation)
{
    std::uintptr_t words[2] = {};
    static_assert(sizeof(operation) == sizeof(words), "two words");
    std::memcpy(words, &operation, sizeof(words));
    return {name, (words[0] & ~static_cast<std::uintptr_t>(1)) / sizeof(void*)};
}

// clang-format off
const std::vector<Operation> OPERATIONS = {
    Row("ProcHttpRequest", &CDevInterface::ProcHttpRequest),
    Row("ProcHttpData", &CDevInterface::ProcHttpData),
    Row("GetWebFile", &CDevInterface::GetWebFile),
    Row("FreeBuffer", &CDevInterface::FreeBuffer),
    Row("GetIntegratedPtz", &CDevInterface::GetIntegratedPtz),
    Row("GetSupportRS485Ptz", &CDevInterface::GetSupportRS485Ptz),
    Row("GetSupportSDCard", &CDevInterface::GetSupportSDCard),
    Row("GetUserList", &CDevInterface::GetUserList),
    Row("GetDevInfo", &CDevInterface::GetDevInfo),
    Row("GetTimeConfig", &CDevInterface::GetTimeConfig),
    Row("SetTimeConfig", &CDevInterface::SetTimeConfig),
    Row("SetDateTime", &CDevInterface::SetDateTime),
    Row("GetImageCaps", &CDevInterface::GetImageCaps),
    Row("GetImageParam", &CDevInterface::GetImageParam),
    Row("SetImageParam", &CDevInterface::SetImageParam),
    Row("ImageReserved", &CDevInterface::ImageReserved),
    Row("GetVideoEncodeCaps", &CDevInterface::GetVideoEncodeCaps),
    Row("GetProfileName", &CDevInterface::GetProfileName),
    Row("GetProfileCount", &CDevInterface::GetProfileCount),
    Row("SupportAudioEncode", &CDevInterface::SupportAudioEncode),
    Row("SetAudioEncode", &CDevInterface::SetAudioEncode),
    Row("GetVideoProfile", &CDevInterface::GetVideoProfile),
    Row("SetVideoProfile", &CDevInterface::SetVideoProfile),
    Row("RequestKeyFrame", &CDevInterface::RequestKeyFrame),
    Row("NeedAuthorization", &CDevInterface::NeedAuthorization),
    Row("GetTimeOsd", &CDevInterface::GetTimeOsd),
    Row("GetChannelNameOsd", &CDevInterface::GetChannelNameOsd),
    Row("SetTimeOsd", &CDevInterface::SetTimeOsd),
    Row("SetChannelNameOsd", &CDevInterface::SetChannelNameOsd),
    Row("GetPrivacyMask", &CDevInterface::GetPrivacyMask),
    Row("SetPrivacyMask", &CDevInterface::SetPrivacyMask),
    Row("GetPtzPresetCaps", &CDevInterface::GetPtzPresetCaps),
    Row("GetPtzCruiseCaps", &CDevInterface::GetPtzCruiseCaps),
    Row("GetPtzProtocol", &CDevInterface::GetPtzProtocol),
    Row("SetPtzProtocol", &CDevInterface::SetPtzProtocol),
    Row("PtzControl", &CDevInterface::PtzControl),
    Row("PtzGotoPreset", &CDevInterface::PtzGotoPreset),
    Row("PtzGetPresets", &CDevInterface::PtzGetPresets),
    Row("PtzReserved", &CDevInterface::PtzReserved),
    Row("PtzAddPreset", &CDevInterface::PtzAddPreset),
    Row("PtzModifyPresetName", &CDevInterface::PtzModifyPresetName),
    Row("PtzDeletePreset", &CDevInterface::PtzDeletePreset),
    Row("PtzModifyPresetPosition", &CDevInterface::PtzModifyPresetPosition),
    Row("PtzGetCruises", &CDevInterface::PtzGetCruises),
    Row("PtzGetCruisePoints", &CDevInterface::PtzGetCruisePoints),
    Row("PtzAddCruise", &CDevInterface::PtzAddCruise),
    Row("PtzModifyCruise", &CDevInterface::PtzModifyCruise),
    Row("PtzDeleteCruise", &CDevInterface::PtzDeleteCruise),
    Row("PtzRunCruise", &CDevInterface::PtzRunCruise),
    Row("PtzStopCruise", &CDevInterface::PtzStopCruise),
    Row("GetMotionParam", &CDevInterface::GetMotionParam),
    Row("GetMotionCaps", &CDevInterface::GetMotionCaps),
    Row("SetMotionParam", &CDevInterface::SetMotionParam),
    Row("GetSensorConfig", &CDevInterface::GetSensorConfig),
    Row("SetSensorConfig", &CDevInterface::SetSensorConfig),
    Row("ManualAlarmOut", &CDevInterface::ManualAlarmOut),
    Row("GetAlarmOutConfig", &CDevInterface::GetAlarmOutConfig),
    Row("SetAlarmOutConfig", &CDevInterface::SetAlarmOutConfig),
    Row("GetAlarmStatusXml", &CDevInterface::GetAlarmStatusXml),
    Row("GetNetBasic", &CDevInterface::GetNetBasic),
    Row("SetNetBasic", &CDevInterface::SetNetBasic),
    Row("GetPppoe", &CDevInterface::GetPppoe),
    Row("SetPppoe", &CDevInterface::SetPppoe),
    Row("GetPortInfo", &CDevInterface::GetPortInfo),
    Row("SetPortInfo", &CDevInterface::SetPortInfo),
    Row("GetDdns", &CDevInterface::GetDdns),
    Row("SetDdns", &CDevInterface::SetDdns),
    Row("ModifyPassword", &CDevInterface::ModifyPassword),
    Row("Reboot", &CDevInterface::Reboot),
    Row("GetChannelIdList", &CDevInterface::GetChannelIdList),
    Row("SearchRecordDate", &CDevInterface::SearchRecordDate),
    Row("SearchRecord", &CDevInterface::SearchRecord),
    Row("GetMaxLen", &CDevInterface::GetMaxLen),
};
// clang-format on

TEST(DevInterface, OperationsKeepTheirPlaces)
{
    std::size_t place = 2; // behind the pair of destructors
    for (const Operation& operation : OPERATIONS)
    {
        EXPECT_EQ(place, operation.place) << operation.name;
        ++place;
    }
}

class CDeviceWithOneMore : public CDevInterface
{
public:
    virtual void OneMore() = 0;
};

TEST(DevInterface, HasSeventyThreeOperations)
{
    EXPECT_EQ(73u, OPERATIONS.size());
    EXPECT_EQ(75u, Row("OneMore", &CDeviceWithOneMore::OneMore).place);
}

} // namespace
