// The host's documents: "Get" and "Set" with a key in each child, and the table of keys.
//
// A key is a row here, a builder of CGetDefaultCmd, a method of CHttpClient and a transform of CXmlTransform.
#include "HttpClient.h"

#include "PFAssert.h"
#include "QLXXMLParse.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace
{

/// One key of a host's document while it is carried out.
struct KeyCall
{
    CHttpClient& client;
    CQLXXMLParse& document; // a copy of the host's, to which tokens are added
    unsigned int key;
    std::string& answer;
    bool leavesWalk = false; // the keys behind this one are not reached
    char* picture = nullptr; // the answer of "snapshotURI", from new[]
    int pictureBytes = 0;

    std::string Request() const { return *document.GetDoc(); }
    bool Has(const std::string& child) const { return document.GetFirstItem(key, child) != 0; }
};

using KeyOperation = int (*)(KeyCall& call);
using TokenField = char (ONVIF_PROFILE_TOKEN::*)[64];

/// What a key needs before its operation.
enum NEED
{
    NOTHING,
    INDEX,         // the profile that the child `index` names
    FIRST_PROFILE, // there must be one
};

struct KeyRow
{
    const char* key;
    NEED need;
    const char* child; // added to the key with the profile's token; each builder reads exactly this spelling
    TokenField token;
    KeyOperation operation;
};

/// A method of the client as an operation, with or without the request.
template <auto METHOD>
int Call(KeyCall& call)
{
    if constexpr (std::is_invocable_v<decltype(METHOD), CHttpClient&, std::string&>)
    {
        return (call.client.*METHOD)(call.answer);
    }
    else
    {
        return (call.client.*METHOD)(call.Request(), call.answer);
    }
}

bool GoesOn(int result)
{
    return result == ONVIF_OK || result == ONVIF_UNREADABLE;
}

int ReadNetwork(KeyCall& call)
{
    const int result = call.client.GetNetwork(call.answer);
    return GoesOn(result) ? call.client.GetGateway(call.answer) : result;
}

// What becomes of the gateway does not count.
int WriteNetwork(KeyCall& call)
{
    const std::string request = call.Request();
    if (call.Has("gateway"))
    {
        call.client.SetGateway(request, call.answer);
    }
    return call.client.SetNerwork(request, call.answer);
}

int ReadProfiles(KeyCall& call)
{
    std::vector<ONVIF_PROFILE_TOKEN> profiles;
    const int result = call.client.GetProfiles(call.answer, profiles);
    call.client.SetProfileList(profiles);
    return result;
}

int ReadStreamUri(KeyCall& call)
{
    call.document.AddValue(call.key, "multicast", "false", false);
    call.document.AddValue(call.key, "transport", "tcp", false);
    return call.client.GetStreamUri(call.Request(), call.answer);
}

int ReadSnapshot(KeyCall& call)
{
    call.leavesWalk = true;
    return call.client.GetSnapshotFile(call.Request(), call.picture, call.pictureBytes);
}

int ReadMotion(KeyCall& call)
{
    const int result = call.client.GetMotionCfg(call.answer);
    return result == ONVIF_OK ? call.client.GetMotionArea(call.answer) : result;
}

int WriteMotion(KeyCall& call)
{
    const std::string request = call.Request();
    const int result = call.client.SetMotionCfg(request, call.answer);
    return result == ONVIF_OK ? call.client.SetMotionArea(request, call.answer) : result;
}

constexpr TokenField PROFILE = &ONVIF_PROFILE_TOKEN::profileToken;
constexpr TokenField SOURCE = &ONVIF_PROFILE_TOKEN::videoSourceToken;

// clang-format off
const KeyRow GET_KEYS[] = {
    {"ipv4",                NOTHING,       nullptr,            nullptr, &ReadNetwork                                            },
    {"dns",                 NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetDNS>                             },
    {"networkProtocols",    NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetNetworkProtocols>                },
    {"dateAndTime",         NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetSystemDateAndTime>               },
    {"streamURI",           INDEX,         "profiletoken",     PROFILE, &ReadStreamUri                                          },
    {"snapshotURI",         INDEX,         "profiletoken",     PROFILE, &ReadSnapshot                                           },
    {"profiles",            NOTHING,       nullptr,            nullptr, &ReadProfiles                                           },
    {"profile",             INDEX,         "profiletoken",     PROFILE, &Call<&CHttpClient::GetProfile>                         },
    {"videoEncoderCfgOpts", NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetVideoEncoderConfigurationOption> },
    {"videoEncoderCfg",     NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetVideoEncoderConfiguration>       },
    {"imageOpts",           FIRST_PROFILE, "videoSourceToken", SOURCE,  &Call<&CHttpClient::GetImgOptions>                      },
    {"imageSettings",       FIRST_PROFILE, "videoSourceToken", SOURCE,  &Call<&CHttpClient::GetImgSettings>                     },
    {"pullMessages",        NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::PullMessages>                       },
    {"devInfo",             NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetDeviceInformation>               },
    {"alarmout",            NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetAlarmout>                        },
    {"alarmin",             NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetAlarmin>                         },
    {"streamCount",         NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetStreamCount>                     },
    {"serviceUrl",          NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::GetServiceUrl>                      },
    {"motion",              NOTHING,       nullptr,            nullptr, &ReadMotion                                             },
    {"presets",             FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::GetPresets>                         },
    {"cruises",             FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::GetCruises>                         },
};

// The encoder's key is "videoEncoderCfg" when it is read and "videoEncodeCfg" when it is written.
const KeyRow SET_KEYS[] = {
    {"ipv4",                        NOTHING,       nullptr,            nullptr, &WriteNetwork                                     },
    {"dns",                         NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::SetDNS>                       },
    {"networkProtocols",            NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::SetNetworkProtocols>          },
    {"dateAndTime",                 NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::SetSystemDateAndTime>         },
    {"videoEncodeCfg",              NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::SetVideoEncoderConfiguration> },
    {"imageSettings",               FIRST_PROFILE, "videoSourceToken", SOURCE,  &Call<&CHttpClient::SetImgSettings>               },
    {"createPullPointSubscription", NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::CreatePullPointSubscription>  },
    {"subscribe",                   NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::Subscribe>                    },
    {"unsubscribe",                 NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::Unsubscribe>                  },
    {"renew",                       NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::Renew>                        },
    {"continuousMove",              FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::ContinuousMove>               },
    {"ptzStop",                     FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::PTZStop>                      },
    {"addPreset",                   FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::AddPreset>                    },
    {"modifyPresetName",            FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::ModifyPresetName>             },
    {"removePreset",                FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::RemovePreset>                 },
    {"gotoPreset",                  FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::GotoPreset>                   },
    {"imageStop",                   NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::ImgStop>                      },
    {"alarmout",                    NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::SetAlarmout>                  },
    {"manualAlarmout",              NOTHING,       nullptr,            nullptr, &Call<&CHttpClient::ManualAlarmout>               },
    {"motion",                      NOTHING,       nullptr,            nullptr, &WriteMotion                                      },
    {"continuousFocus",             FIRST_PROFILE, "videoSourcetoken", SOURCE,  &Call<&CHttpClient::ContinuousFocus>              },
    {"addCruise",                   FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::AddCruise>                    },
    {"modifyCruise",                FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::ModifyCruise>                 },
    {"delCruise",                   FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::DelCruise>                    },
    {"startCruise",                 FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::StartCruise>                  },
    {"stopCruise",                  FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::StopCruise>                   },
    {"pauseCruise",                 FIRST_PROFILE, "profileToken",     PROFILE, &Call<&CHttpClient::PauseCruise>                  },
};
// clang-format on

/// Finds the profile that a key works on, and adds its token to the key.
/// @return false when there is no such profile: the key is skipped
bool Prepare(const KeyRow& row, KeyCall& call)
{
    if (row.need == NOTHING)
    {
        return true;
    }
    int index = 0;
    if (row.need == INDEX && !call.document.GetValue_i32(call.key, "index", index))
    {
        return false;
    }
    ONVIF_PROFILE_TOKEN profile{};
    if (!call.client.GetProfileAt(index, profile))
    {
        return false;
    }
    call.document.AddValue(call.key, row.child, profile.*row.token, false);
    return true;
}

/// Copies an answer for the host, with a zero byte behind it.
void HandOver(const std::string& answer, char*& response, int* length)
{
    response = new char[answer.size() + 1]();
    std::memcpy(response, answer.data(), answer.size());
    if (length != nullptr)
    {
        *length = static_cast<int>(answer.size() + 1);
    }
}

/// The picture goes to the host as it is, instead of an answer. @return whether there is one
bool HandOverPicture(int result, const KeyCall& call, char*& response, int* length)
{
    if (result != ONVIF_OK)
    {
        return false;
    }
    response = call.picture;
    if (length != nullptr)
    {
        *length = call.pictureBytes;
    }
    return true;
}

template <std::size_t COUNT>
const KeyRow* FindKey(const KeyRow (&rows)[COUNT], const CQLXXMLParse& document, unsigned int key)
{
    std::string name;
    document.GetItemName(key, name);
    const KeyRow* const row =
        std::find_if(std::begin(rows), std::end(rows), [&name](const KeyRow& one) { return name == one.key; });
    return row != std::end(rows) ? row : nullptr;
}

} // namespace

// A key that is skipped leaves the result as it stood, so that as the first one it ends the walk.
bool CHttpClient::GetCfg(const std::string& request, char*& response, int* length)
{
    CQLXXMLParse document(request);
    std::string answer;
    int result = ONVIF_NOTHING_DONE;
    unsigned int key = document.GetChildItem(document.GetFirstItem("Get"));
    for (; key != 0; key = document.GetNextSiblingItem(key))
    {
        const KeyRow* const row = FindKey(GET_KEYS, document, key);
        if (row == nullptr)
        {
            PF_AssertFail("false", __FILE__, __LINE__, __PRETTY_FUNCTION__); // the host's mistake
        }
        KeyCall call{*this, document, key, answer};
        result = Prepare(*row, call) ? row->operation(call) : result;
        if (call.leavesWalk)
        {
            return HandOverPicture(result, call, response, length);
        }
        if (!GoesOn(result))
        {
            return false;
        }
    }
    if (!answer.empty())
    {
        HandOver(answer, response, length);
    }
    return result == ONVIF_OK;
}

bool CHttpClient::SetCfg(const std::string& request, std::string& response)
{
    CQLXXMLParse document(request);
    const unsigned int set = document.GetFirstItem("Set");
    if (set == 0)
    {
        return false;
    }
    std::string answer;
    for (unsigned int key = document.GetChildItem(set); key != 0; key = document.GetNextSiblingItem(key))
    {
        const KeyRow* const row = FindKey(SET_KEYS, document, key);
        if (row == nullptr)
        {
            PF_AssertFail("false", __FILE__, __LINE__, __PRETTY_FUNCTION__); // the host's mistake
        }
        KeyCall call{*this, document, key, answer};
        if (Prepare(*row, call) && !GoesOn(row->operation(call)))
        {
            return false;
        }
    }
    response = answer;
    return true;
}
