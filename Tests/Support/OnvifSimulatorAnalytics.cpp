// The simulated camera: motion detection, two relays and two digital inputs.
//
// It keeps "motion.NAME" for the module and its rule, and "relay.TOKEN.NAME" for a relay.
#include "OnvifSimulatorTables.h"

namespace
{

OnvifAnswer NoSuch(const std::string& what)
{
    return OnvifAnswer::Fault("ter:InvalidArgVal", "No such " + what);
}

bool IsConfiguration(const OnvifCall& call)
{
    return call.request.Text("ConfigurationToken") == "Analytics_1";
}

/// The item with that name among the parameters of a module or a rule.
const tinyxml2::XMLElement* FindItem(const OnvifCall& call, const std::string& path, const std::string& name)
{
    for (const tinyxml2::XMLElement* item : call.request.All(path))
    {
        if (item->Attribute("Name", name.c_str()) != nullptr)
        {
            return item;
        }
    }
    return nullptr;
}

void Keep(OnvifValues& values, const std::string& name, const tinyxml2::XMLElement* element, const char* attribute)
{
    if (element != nullptr && element->Attribute(attribute) != nullptr)
    {
        values[name] = element->Attribute(attribute);
    }
}

OnvifAnswer GetAnalyticsModules(OnvifCall& call)
{
    OnvifValues& values = call.values;
    if (!IsConfiguration(call))
    {
        return NoSuch("configuration");
    }
    return OnvifBody("<ana:GetAnalyticsModulesResponse><ana:AnalyticsModule Name=\"" + values["motion.module"] +
                     "\" Type=\"tt:CellMotionEngine\"><tt:Parameters><tt:SimpleItem Name=\"Sensitivity\" Value=\"" +
                     values["motion.sensitivity"] + "\"/><tt:ElementItem Name=\"Layout\"><tt:CellLayout Columns=\"" +
                     values["motion.columns"] + "\" Rows=\"" + values["motion.rows"] +
                     "\"/></tt:ElementItem></tt:Parameters></ana:AnalyticsModule></ana:GetAnalyticsModulesResponse>");
}

OnvifAnswer ModifyAnalyticsModules(OnvifCall& call)
{
    const std::string module = call.request.Attribute("AnalyticsModule", "Name");
    if (!IsConfiguration(call) || module != call.values["motion.module"])
    {
        return NoSuch("module");
    }
    const std::string parameters = "AnalyticsModule/Parameters/";
    Keep(call.values, "motion.sensitivity", FindItem(call, parameters + "SimpleItem", "Sensitivity"), "Value");
    const tinyxml2::XMLElement* const layout =
        OnvifSoapRequest::Find(FindItem(call, parameters + "ElementItem", "Layout"), "CellLayout");
    Keep(call.values, "motion.columns", layout, "Columns");
    Keep(call.values, "motion.rows", layout, "Rows");
    return OnvifBody("<ana:ModifyAnalyticsModulesResponse/>");
}

OnvifAnswer GetRules(OnvifCall& call)
{
    if (!IsConfiguration(call))
    {
        return NoSuch("configuration");
    }
    return OnvifBody("<ana:GetRulesResponse><ana:Rule Name=\"" + call.values["motion.rule"] +
                     "\" Type=\"tt:CellMotionDetector\"><tt:Parameters><tt:SimpleItem Name=\"MinCount\" Value=\"4\"/>"
                     "<tt:SimpleItem Name=\"ActiveCells\" Value=\"" +
                     call.values["motion.cells"] + "\"/></tt:Parameters></ana:Rule></ana:GetRulesResponse>");
}

OnvifAnswer ModifyRules(OnvifCall& call)
{
    if (!IsConfiguration(call) || call.request.Attribute("Rule", "Name") != call.values["motion.rule"])
    {
        return NoSuch("rule");
    }
    Keep(call.values, "motion.cells", FindItem(call, "Rule/Parameters/SimpleItem", "ActiveCells"), "Value");
    return OnvifBody("<ana:ModifyRulesResponse/>");
}

OnvifAnswer GetRelayOutputs(OnvifCall& call)
{
    std::string body = "<tds:GetRelayOutputsResponse>";
    for (const std::string token : {"Alarm1", "Alarm2"})
    {
        const std::string own = "relay." + token + ".";
        body += "<tds:RelayOutputs token=\"" + token + "\"><tt:Properties><tt:Mode>Monostable</tt:Mode><tt:DelayTime>" +
                call.values[own + "delay"] + "</tt:DelayTime><tt:IdleState>" + call.values[own + "idle"] +
                "</tt:IdleState></tt:Properties></tds:RelayOutputs>";
    }
    return OnvifBody(body + "</tds:GetRelayOutputsResponse>");
}

OnvifAnswer SetRelayOutputSettings(OnvifCall& call)
{
    const std::string own = "relay." + call.request.Text("RelayOutputToken") + ".";
    if (call.values.count(own + "idle") == 0)
    {
        return NoSuch("relay");
    }
    call.values[own + "delay"] = call.request.Text("Properties/DelayTime");
    call.values[own + "idle"] = call.request.Text("Properties/IdleState");
    return OnvifBody("<tds:SetRelayOutputSettingsResponse/>");
}

OnvifAnswer SetRelayOutputState(OnvifCall& call)
{
    const std::string own = "relay." + call.request.Text("RelayOutputToken") + ".";
    if (call.values.count(own + "idle") == 0)
    {
        return NoSuch("relay");
    }
    call.values[own + "state"] = call.request.Text("LogicalState");
    return OnvifBody("<tds:SetRelayOutputStateResponse/>");
}

OnvifAnswer GetDigitalInputs(OnvifCall& /*call*/)
{
    return OnvifBody("<dio:GetDigitalInputsResponse><dio:DigitalInputs token=\"Input1\"/>"
                     "<dio:DigitalInputs token=\"Input2\"/></dio:GetDigitalInputsResponse>");
}

} // namespace

OnvifFamily OnvifAnalyticsFamily()
{
    // clang-format off
    return {{
        {"GetAnalyticsModules",    "ana", &GetAnalyticsModules   },
        {"ModifyAnalyticsModules", "ana", &ModifyAnalyticsModules},
        {"GetRules",               "ana", &GetRules              },
        {"ModifyRules",            "ana", &ModifyRules           },
        {"GetRelayOutputs",        "tds", &GetRelayOutputs       },
        {"SetRelayOutputSettings", "tds", &SetRelayOutputSettings},
        {"SetRelayOutputState",    "dio", &SetRelayOutputState   },
        {"GetDigitalInputs",       "dio", &GetDigitalInputs      },
    }, {
        {"motion.module",      "Cells"   },
        {"motion.sensitivity", "60"      },
        {"motion.columns",     "22"      },
        {"motion.rows",        "18"      },
        {"motion.rule",        "Motion"  },
        {"motion.cells",       "0P8A8A=="}, // all
        {"relay.Alarm1.delay", "PT10S"   },
        {"relay.Alarm1.idle",  "closed"  },
        {"relay.Alarm1.state", ""        },
        {"relay.Alarm2.delay", "PT0S"    },
        {"relay.Alarm2.idle",  "open"    },
        {"relay.Alarm2.state", ""        },
    }};
    // clang-format on
}
