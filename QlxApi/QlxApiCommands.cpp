// The one table of the API commands.
#include "QlxApiProtocolProc.h"

namespace
{

// clang-format off
const QLX_API_COMMAND_TABLE COMMANDS = {{
    {"GetProfileInfo",           0, nullptr                               },
    {"GetDeviceInfo",            1, &CQLXApiProc::GetDeviceInfo           },
    {"Reboot",                   2, &CQLXApiProc::Reboot                  },
    {"GetDateAndTime",           3, &CQLXApiProc::GetDateAndTime          },
    {"SetDateAndTime",           4, &CQLXApiProc::SetDateAndTime          },
    {"GetImageConfig",           5, &CQLXApiProc::GetImageConfig          },
    {"SetImageConfig",           6, &CQLXApiProc::SetImageConfig          },
    {"GetStreamCaps",            7, &CQLXApiProc::GetStreamCaps           },
    {"GetVideoStreamConfig",     8, &CQLXApiProc::GetVideoStreamCfg       },
    {"SetVideoStreamConfig",     9, &CQLXApiProc::SetVideoStreamCfg       },
    {"GetAudioStreamConfig",    10, &CQLXApiProc::GetAudioStreamCfg       },
    {"SetAudioStreamConfig",    11, &CQLXApiProc::SetAudioStreamCfg       },
    {"GetImageOsdConfig",       12, &CQLXApiProc::GetImageOsdCfg          },
    {"SetImageOsdConfig",       13, &CQLXApiProc::SetImageOsdCfg          },
    {"GetPrivacyMaskConfig",    14, &CQLXApiProc::GetPrivacyMaskCfg       },
    {"SetPrivacyMaskConfig",    15, &CQLXApiProc::SetPrivacyMaskCfg       },
    {"PtzGetProtocolConfig",    16, &CQLXApiProc::PtzGetProtocolConfig    },
    {"PtzGetCaps",              17, &CQLXApiProc::PtzGetCaps              },
    {"PtzSetProtocolConfig",    18, &CQLXApiProc::PtzSetProtocolConfig    },
    {"PtzGetPresets",           19, &CQLXApiProc::PtzGetPresets           },
    {"PtzAddPreset",            20, &CQLXApiProc::PtzAddPreset            },
    {"PtzDeletePreset",         21, &CQLXApiProc::PtzDeletePreset         },
    {"PtzModifyPresetPosition", 22, &CQLXApiProc::PtzModifyPresetPosition },
    {"PtzModifyPresetName",     23, &CQLXApiProc::PtzModifyPresetName     },
    {"PtzGotoPreset",           24, &CQLXApiProc::PtzGotoPreset           },
    {"PtzGetCruises",           25, &CQLXApiProc::PtzGetCruises           },
    {"PtzGetCruise",            26, &CQLXApiProc::PtzGetCruise            },
    {"PtzAddCruise",            27, &CQLXApiProc::PtzAddCruise            },
    {"PtzDeleteCruise",         28, &CQLXApiProc::PtzDeleteCruise         },
    {"PtzModifyCruise",         29, &CQLXApiProc::PtzModifyCruise         },
    {"PtzRunCruise",            30, &CQLXApiProc::PtzRunCruise            },
    {"PtzStopCruise",           31, &CQLXApiProc::PtzStopCruise           },
    {"PtzControl",              32, &CQLXApiProc::PtzControl              },
    {"GetMotionConfig",         33, &CQLXApiProc::GetMotionConfig         },
    {"SetMotionConfig",         34, &CQLXApiProc::SetMotionConfig         },
    {"GetAlarmInConfig",        35, &CQLXApiProc::GetAlarmInConfig        },
    {"SetAlarmInConfig",        36, &CQLXApiProc::SetAlarmInConfig        },
    {"GetAlarmOutConfig",       37, &CQLXApiProc::GetAlarmOutConfig       },
    {"SetAlarmOutConfig",       38, &CQLXApiProc::SetAlarmOutConfig       },
    {"GetAlarmStatus",          39, &CQLXApiProc::GetAlarmStauts          },
    {"ManualAlarmOut",          40, &CQLXApiProc::ManualAlarmOut          },
    {"GetPortConfig",           41, &CQLXApiProc::GetPortConfig           },
    {"SetPortConfig",           42, &CQLXApiProc::SetPortConfig           },
    {"GetNetBasicConfig",       43, &CQLXApiProc::GetNetBasicConfig       },
    {"SetNetBasicConfig",       44, &CQLXApiProc::SetNetBasicConfig       },
    {"GetNetPppoeConfig",       45, &CQLXApiProc::GetNetPppoeConfig       },
    {"SetNetPppoeConfig",       46, &CQLXApiProc::SetNetPppoeConfig       },
    {"GetDdnsConfig",           47, &CQLXApiProc::GetDdnsConfig           },
    {"SetDdnsConfig",           48, &CQLXApiProc::SetDdnsConfig           },
    {"ModifyPassword",          49, &CQLXApiProc::ModifyPassword          },
    {"RequestKeyFrame",         50, &CQLXApiProc::RequestKeyFrame         },
    {"GetAlarmServerConfig",    51, &CQLXApiProc::GetAlarmServerConfig    },
    {"SetAlarmServerConfig",    52, &CQLXApiProc::SetAlarmServerConfig    },
    {"GetSnapshot",             53, &CQLXApiProc::GetSnapShot             },
    {"GetChannelList",          55, &CQLXApiProc::GetChnList              },   // 54 has no word
    {"GetAlarmInList",          56, &CQLXApiProc::GetAlarmInList          },
    {"GetAlarmOutList",         57, &CQLXApiProc::GetAlarmOutList         },
    {"SearchRecordDate",        58, &CQLXApiProc::SearchRecordDate        },
    {"SearchByTime",            59, &CQLXApiProc::SearchByTime            },
}};
// clang-format on

} // namespace

const QLX_API_COMMAND_TABLE& QlxApiCommands()
{
    return COMMANDS;
}
