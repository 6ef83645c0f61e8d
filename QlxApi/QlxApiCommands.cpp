// The one table of the API commands.
#include "QlxApiProtocolProc.h"

namespace
{

// clang-format off
const QLX_API_COMMAND_TABLE COMMANDS = {{
    {"GetProfileInfo",           0, nullptr                      },
    {"GetDeviceInfo",            1, &CQLXApiProc::GetDeviceInfo  },
    {"Reboot",                   2, &CQLXApiProc::Reboot         },
    {"GetDateAndTime",           3, &CQLXApiProc::GetDateAndTime },
    {"SetDateAndTime",           4, &CQLXApiProc::SetDateAndTime },
    {"GetImageConfig",           5, nullptr                      },
    {"SetImageConfig",           6, nullptr                      },
    {"GetStreamCaps",            7, nullptr                      },
    {"GetVideoStreamConfig",     8, nullptr                      },
    {"SetVideoStreamConfig",     9, nullptr                      },
    {"GetAudioStreamConfig",    10, nullptr                      },
    {"SetAudioStreamConfig",    11, nullptr                      },
    {"GetImageOsdConfig",       12, nullptr                      },
    {"SetImageOsdConfig",       13, nullptr                      },
    {"GetPrivacyMaskConfig",    14, nullptr                      },
    {"SetPrivacyMaskConfig",    15, nullptr                      },
    {"PtzGetProtocolConfig",    16, nullptr                      },
    {"PtzGetCaps",              17, nullptr                      },
    {"PtzSetProtocolConfig",    18, nullptr                      },
    {"PtzGetPresets",           19, nullptr                      },
    {"PtzAddPreset",            20, nullptr                      },
    {"PtzDeletePreset",         21, nullptr                      },
    {"PtzModifyPresetPosition", 22, nullptr                      },
    {"PtzModifyPresetName",     23, nullptr                      },
    {"PtzGotoPreset",           24, nullptr                      },
    {"PtzGetCruises",           25, nullptr                      },
    {"PtzGetCruise",            26, nullptr                      },
    {"PtzAddCruise",            27, nullptr                      },
    {"PtzDeleteCruise",         28, nullptr                      },
    {"PtzModifyCruise",         29, nullptr                      },
    {"PtzRunCruise",            30, nullptr                      },
    {"PtzStopCruise",           31, nullptr                      },
    {"PtzControl",              32, nullptr                      },
    {"GetMotionConfig",         33, nullptr                      },
    {"SetMotionConfig",         34, nullptr                      },
    {"GetAlarmInConfig",        35, nullptr                      },
    {"SetAlarmInConfig",        36, nullptr                      },
    {"GetAlarmOutConfig",       37, nullptr                      },
    {"SetAlarmOutConfig",       38, nullptr                      },
    {"GetAlarmStatus",          39, nullptr                      },
    {"ManualAlarmOut",          40, nullptr                      },
    {"GetPortConfig",           41, nullptr                      },
    {"SetPortConfig",           42, nullptr                      },
    {"GetNetBasicConfig",       43, nullptr                      },
    {"SetNetBasicConfig",       44, nullptr                      },
    {"GetNetPppoeConfig",       45, nullptr                      },
    {"SetNetPppoeConfig",       46, nullptr                      },
    {"GetDdnsConfig",           47, nullptr                      },
    {"SetDdnsConfig",           48, nullptr                      },
    {"ModifyPassword",          49, &CQLXApiProc::ModifyPassword },
    {"RequestKeyFrame",         50, nullptr                      },
    {"GetAlarmServerConfig",    51, nullptr                      },
    {"SetAlarmServerConfig",    52, nullptr                      },
    {"GetSnapshot",             53, nullptr                      },
    {"GetChannelList",          55, &CQLXApiProc::GetChnList     },   // 54 has no word
    {"GetAlarmInList",          56, &CQLXApiProc::GetAlarmInList },
    {"GetAlarmOutList",         57, &CQLXApiProc::GetAlarmOutList},
    {"SearchRecordDate",        58, nullptr                      },
    {"SearchByTime",            59, nullptr                      },
}};
// clang-format on

} // namespace

const QLX_API_COMMAND_TABLE& QlxApiCommands()
{
    return COMMANDS;
}
