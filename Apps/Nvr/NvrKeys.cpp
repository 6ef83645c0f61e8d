#include "NvrKeys.h"

#include <tinyxml2.h>

#include <algorithm>

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

namespace
{

constexpr std::size_t NAME_WIDTH = 28;

std::string UnknownKey(const std::string& kind, const std::string& key, const std::vector<NvrKey>& keys)
{
    std::string text = "'" + key + "' is no key of a " + kind + " document; known are";
    for (const NvrKey& known : keys)
    {
        text += std::string(&known != &keys.front() ? "," : "") + " " + known.name;
    }
    return text;
}

void AddText(XMLElement* parent, const std::string& name, const std::string& text)
{
    parent->InsertNewChildElement(name.c_str())->SetText(text.c_str());
}

void AddIndexes(XMLElement* key, NvrNeed need, std::vector<int> indexes)
{
    if (indexes.empty())
    {
        indexes.push_back(0);
    }
    if (need == NvrNeed::Index)
    {
        indexes.resize(1);
    }
    for (const int index : indexes)
    {
        AddText(key, "index", std::to_string(index));
    }
}

} // namespace

const std::vector<NvrKey>& NvrGetKeys()
{
    // clang-format off
    static const std::vector<NvrKey> keys = {
        {"ipv4",                NvrNeed::Nothing, "addresses and gateway"                             },
        {"dns",                 NvrNeed::Nothing, "name servers"                                      },
        {"networkProtocols",    NvrNeed::Nothing, "ports of HTTP, HTTPS and RTSP"                     },
        {"dateAndTime",         NvrNeed::Nothing, "clock and time zone"                               },
        {"streamURI",           NvrNeed::Index,   "address of a profile's stream"                     },
        {"snapshotURI",         NvrNeed::Index,   "a picture: use the command 'snapshot'"             },
        {"profiles",            NvrNeed::Nothing, "all profiles with a video encoder"                 },
        {"profile",             NvrNeed::Indexes, "one profile"                                       },
        {"videoEncoderCfgOpts", NvrNeed::Indexes, "what a profile's encoder can be set to"            },
        {"videoEncoderCfg",     NvrNeed::Indexes, "how a profile's encoder is set"                    },
        {"imageOpts",           NvrNeed::Profile, "what the picture can be set to"                    },
        {"imageSettings",       NvrNeed::Profile, "brightness, white balance and the like"            },
        {"pullMessages",        NvrNeed::Nothing, "an HTTP request that pulls events; it is not sent" },
        {"devInfo",             NvrNeed::Nothing, "maker and model"                                   },
        {"alarmout",            NvrNeed::Nothing, "relay outputs"                                     },
        {"alarmin",             NvrNeed::Nothing, "digital inputs"                                    },
        {"streamCount",         NvrNeed::Nothing, "number of profiles"                                },
        {"serviceUrl",          NvrNeed::Nothing, "paths of the services"                             },
        {"motion",              NvrNeed::Nothing, "motion detection with its grid"                    },
        {"presets",             NvrNeed::Profile, "PTZ presets"                                       },
        {"cruises",             NvrNeed::Profile, "PTZ tours"                                         },
    };
    // clang-format on
    return keys;
}

const std::vector<NvrKey>& NvrSetKeys()
{
    // clang-format off
    static const std::vector<NvrKey> keys = {
        {"ipv4",                        NvrNeed::Nothing, "address, mask and gateway"           },
        {"dns",                         NvrNeed::Nothing, "name servers"                        },
        {"networkProtocols",            NvrNeed::Nothing, "ports of HTTP and RTSP"              },
        {"dateAndTime",                 NvrNeed::Nothing, "clock and time zone"                 },
        {"videoEncodeCfg",              NvrNeed::Nothing, "encoders; note the name without 'r'" },
        {"imageSettings",               NvrNeed::Profile, "brightness, white balance and so on" },
        {"createPullPointSubscription", NvrNeed::Nothing, "events to be pulled"                 },
        {"subscribe",                   NvrNeed::Nothing, "events to be pushed"                 },
        {"unsubscribe",                 NvrNeed::Nothing, "no more events"                      },
        {"renew",                       NvrNeed::Nothing, "events for longer"                   },
        {"continuousMove",              NvrNeed::Profile, "a PTZ move that goes on"             },
        {"ptzStop",                     NvrNeed::Profile, "its end"                             },
        {"addPreset",                   NvrNeed::Profile, "a preset where the camera looks"     },
        {"modifyPresetName",            NvrNeed::Profile, "another name for a preset"           },
        {"removePreset",                NvrNeed::Profile, "a preset less"                       },
        {"gotoPreset",                  NvrNeed::Profile, "a move to a preset"                  },
        {"imageStop",                   NvrNeed::Nothing, "the end of a focus move"             },
        {"alarmout",                    NvrNeed::Nothing, "settings of a relay output"          },
        {"manualAlarmout",              NvrNeed::Nothing, "a relay output switched"             },
        {"motion",                      NvrNeed::Nothing, "motion detection with its grid"      },
        {"continuousFocus",             NvrNeed::Profile, "a focus move that goes on"           },
        {"addCruise",                   NvrNeed::Profile, "a PTZ tour"                          },
        {"modifyCruise",                NvrNeed::Profile, "name and spots of a tour"            },
        {"delCruise",                   NvrNeed::Profile, "a tour less"                         },
        {"startCruise",                 NvrNeed::Profile, "a tour begun"                        },
        {"stopCruise",                  NvrNeed::Profile, "a tour ended"                        },
        {"pauseCruise",                 NvrNeed::Profile, "a tour held"                         },
    };
    // clang-format on
    return keys;
}

const NvrKey* FindNvrKey(const std::vector<NvrKey>& keys, const std::string& name)
{
    const auto found = std::find_if(keys.begin(), keys.end(), [&name](const NvrKey& key) { return name == key.name; });
    return found != keys.end() ? &*found : nullptr;
}

std::string DescribeNvrKeys(const std::vector<NvrKey>& keys)
{
    std::string text;
    for (const NvrKey& key : keys)
    {
        std::string name = key.name;
        name.resize(std::max(name.size() + 1, NAME_WIDTH), ' ');
        text += "  " + name + key.what + "\n";
    }
    return text;
}

std::string GetKeysProblem(const std::vector<std::string>& keys)
{
    for (const std::string& key : keys)
    {
        if (FindNvrKey(NvrGetKeys(), key) == nullptr)
        {
            return UnknownKey("Get", key, NvrGetKeys());
        }
        if (key == "snapshotURI")
        {
            return "'snapshotURI' answers with a picture: use the command 'snapshot INDEX FILE'";
        }
        if (key == "pullMessages" && keys.size() > 1)
        {
            return "'pullMessages' answers with no document: ask for it alone";
        }
    }
    return {};
}

std::string MakeGetDocument(const std::vector<std::string>& keys, const std::vector<int>& indexes,
                            const std::vector<std::pair<std::string, std::string>>& fields)
{
    XMLDocument document;
    XMLElement* const root = document.NewElement("Get");
    document.InsertEndChild(root);
    root->SetAttribute("version", "1.0");
    root->SetAttribute("systemType", "ipc");
    for (const std::string& name : keys)
    {
        XMLElement* const key = root->InsertNewChildElement(name.c_str());
        const NvrKey* const known = FindNvrKey(NvrGetKeys(), name);
        if (known != nullptr && (known->need == NvrNeed::Index || known->need == NvrNeed::Indexes))
        {
            AddIndexes(key, known->need, indexes);
        }
        for (const auto& [field, text] : fields)
        {
            AddText(key, field, text);
        }
    }
    tinyxml2::XMLPrinter printer;
    document.Print(&printer);
    return printer.CStr();
}

std::string SetDocumentProblem(const std::string& document)
{
    XMLDocument parsed;
    if (parsed.Parse(document.data(), document.size()) != tinyxml2::XML_SUCCESS)
    {
        return "line " + std::to_string(parsed.ErrorLineNum()) + ": not well-formed XML";
    }
    const XMLElement* const root = parsed.RootElement();
    if (root == nullptr || std::string("Set") != root->Name())
    {
        return "the root element must be 'Set', with a key in each child";
    }
    if (root->FirstChildElement() == nullptr)
    {
        return "there is no key in it: nothing to set";
    }
    for (const XMLElement* key = root->FirstChildElement(); key != nullptr; key = key->NextSiblingElement())
    {
        if (FindNvrKey(NvrSetKeys(), key->Name()) == nullptr)
        {
            return "line " + std::to_string(key->GetLineNum()) + ": " + UnknownKey("Set", key->Name(), NvrSetKeys());
        }
    }
    return {};
}

std::vector<std::string> SetDocumentKeys(const std::string& document)
{
    XMLDocument parsed;
    parsed.Parse(document.data(), document.size());
    std::vector<std::string> keys;
    const XMLElement* const root = parsed.RootElement();
    const XMLElement* key = root != nullptr ? root->FirstChildElement() : nullptr;
    for (; key != nullptr; key = key->NextSiblingElement())
    {
        keys.emplace_back(key->Name());
    }
    return keys;
}

bool AnyNeedsProfile(const std::vector<NvrKey>& keys, const std::vector<std::string>& names)
{
    return std::any_of(names.begin(), names.end(),
                       [&keys](const std::string& name)
                       {
                           const NvrKey* const key = FindNvrKey(keys, name);
                           return key != nullptr && key->need != NvrNeed::Nothing;
                       });
}
