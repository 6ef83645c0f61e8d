// The answers of motion detection, relay outputs and digital inputs.
#include "XmlTransform.h"

#include "Limits.h"
#include "OnvifHelper.h"
#include "PFAssert.h"
#include "TransformAnswer.h"

#include <algorithm>
#include <cstdio>
#include <vector>

namespace
{

constexpr std::size_t NAME_BYTES = sizeof(ONVIF_PROFILE_TOKEN::motionModuleName);
constexpr unsigned int NO_DELAY = 4294967295U; // the host's -1

/// The sibling of that name whose attribute `Name` is as wanted; 0 for none.
unsigned int FindNamed(const COnvifXmlParse& soap, unsigned int parameters, const char* element, const char* wanted)
{
    for (unsigned int item = soap.GetFirstItem(parameters, element); item != 0;
         item = soap.GetNextSiblingItemByName(item, element))
    {
        std::string name;
        if (soap.GetAttributeStr(item, "Name", name) && name == wanted)
        {
            return item;
        }
    }
    return 0;
}

void CopySensitivity(CTransformAnswer& out, unsigned int parameters)
{
    std::string value;
    if (!out.Soap().GetAttributeStr(FindNamed(out.Soap(), parameters, "tt:SimpleItem", "Sensitivity"), "Value", value))
    {
        return;
    }
    const unsigned int sensitivity = out.Answer().AddValue(out.Key(), "sensitivity", value, false);
    out.Answer().SetAttribute(sensitivity, "min", 0U);
    out.Answer().SetAttribute(sensitivity, "max", 100U);
}

bool IsGridSide(int side)
{
    return side >= 1 && side <= LIMIT_MOTION_GRID_SIDE;
}

/// Cell bits from the highest of the first byte on, row behind row without a gap.
std::string RowText(const std::vector<unsigned char>& bits, std::size_t row, std::size_t columns)
{
    std::string text(columns, '0');
    for (std::size_t column = 0; column < columns; ++column)
    {
        const std::size_t cell = row * columns + column;
        if ((bits[cell / 8] & (0x80U >> cell % 8)) != 0)
        {
            text[column] = '1';
        }
    }
    return text;
}

void AddRows(CTransformAnswer& out, const std::string& activeCells, unsigned int area, int columns, int rows)
{
    // As many bytes as cells, though eight go into one: the packed form may be longer than the bits are.
    std::vector<unsigned char> bits(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    if (COnvifHelper::DecodeMotionArea(activeCells.c_str(), bits.data(), static_cast<unsigned int>(bits.size())) == 0)
    {
        return;
    }
    for (int row = 0; row < rows; ++row)
    {
        const std::string text = RowText(bits, static_cast<std::size_t>(row), static_cast<std::size_t>(columns));
        const unsigned int item = out.Answer().AddValue(area, "item", text, false);
        out.Answer().SetAttribute_i32(item, "index", row);
    }
}

void CopyDelay(CTransformAnswer& out, unsigned int relay, unsigned int alarm)
{
    std::string delay;
    if (!out.Soap().GetValueStr(relay, "tt:Properties/tt:DelayTime", delay))
    {
        return;
    }
    const long long seconds = COnvifHelper::ParseXmlTime(delay.c_str());
    const unsigned int shown =
        seconds <= 0 ? NO_DELAY : static_cast<unsigned int>(std::min<long long>(seconds, NO_DELAY));
    out.Answer().AddValue(alarm, "delayTime", shown);
}

// A relay that is idle while closed is off. There is no third state: a device that tells one is not to be driven.
void CopyIdleState(CTransformAnswer& out, unsigned int relay, unsigned int alarm)
{
    std::string state;
    if (!out.Soap().GetValueStr(relay, "tt:Properties/tt:IdleState", state))
    {
        return;
    }
    PF_ASSERT(state == "closed" || state == "open");
    out.Answer().AddValue(alarm, "switch", state == "closed" ? "off" : "on", false);
}

} // namespace

void CXmlTransform::TransGetAnalyticsModules(const std::string& soap, std::string& answer, char* moduleName)
{
    CTransformAnswer out(soap, answer, "GetResponse", "motion");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int module =
        out.FindFirst({"s:Envelope/s:Body/ana:GetAnalyticsModulesResponse/ana:AnalyticsModule"});
    std::string name;
    if (out.Soap().GetAttributeStr(module, "Name", name))
    {
        out.Answer().AddValue(out.Key(), "name", name, false);
        std::snprintf(moduleName, NAME_BYTES, "%s", name.c_str());
    }
    const unsigned int parameters = out.Soap().GetFirstItem(module, "tt:Parameters");
    CopySensitivity(out, parameters);
    const unsigned int layout =
        out.Soap().GetFirstItem(FindNamed(out.Soap(), parameters, "tt:ElementItem", "Layout"), "tt:CellLayout");
    out.CopyAttribute(layout, "Columns", out.Key(), "columns");
    out.CopyAttribute(layout, "Rows", out.Key(), "rows");
}

// The rule adds to what the module's answer has begun; its success is not told a second time.
void CXmlTransform::TransGetRules(const std::string& soap, std::string& answer, char* ruleName)
{
    if (CQLXXMLParse(answer).GetFirstItem("GetResponse/motion") == 0)
    {
        return;
    }
    CTransformAnswer out(soap, answer, "GetResponse", "motion");
    if (out.Soap().GetFirstItem("s:Envelope/s:Body/s:Fault") != 0)
    {
        out.AddStatus();
        return;
    }
    int columns = 0;
    int rows = 0;
    if (!out.Answer().GetValue_i32(out.Key(), "columns", columns) ||
        !out.Answer().GetValue_i32(out.Key(), "rows", rows))
    {
        return;
    }
    const unsigned int rule = out.FindFirst({"s:Envelope/s:Body/ana:GetRulesResponse/ana:Rule"});
    std::string name;
    if (out.Soap().GetAttributeStr(rule, "Name", name) && !name.empty())
    {
        std::snprintf(ruleName, NAME_BYTES, "%s", name.c_str());
    }
    const unsigned int active =
        FindNamed(out.Soap(), out.Soap().GetFirstItem(rule, "tt:Parameters"), "tt:SimpleItem", "ActiveCells");
    if (active == 0 || !IsGridSide(columns) || !IsGridSide(rows))
    {
        return;
    }
    const unsigned int area = out.Answer().AddValue(out.Key(), "area", "", false);
    if (!name.empty())
    {
        out.Answer().AddValue(area, "name", name, false);
    }
    std::string cells;
    if (out.Soap().GetAttributeStr(active, "Value", cells))
    {
        AddRows(out, cells, area, columns, rows);
    }
}

void CXmlTransform::TransSetAnalyticsModules(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "motion");
}

void CXmlTransform::TransSetRules(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "SetResponse", "motion");
    out.AddStatus(CTransformAnswer::FindOrAdd(out.Answer(), out.Key(), "area"));
}

void CXmlTransform::TransGetRelayOutputs(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "alarmout");
    if (!out.AddStatus())
    {
        return;
    }
    const unsigned int response = out.FindFirst(
        {"s:Envelope/s:Body/tds:GetRelayOutputsResponse", "s:Envelope/s:Body/tmd:GetRelayOutputsResponse"});
    for (unsigned int relay = out.Soap().GetFirstItem(response, "tds:RelayOutputs"); relay != 0;
         relay = out.Soap().GetNextSiblingItemByName(relay, "tds:RelayOutputs"))
    {
        const unsigned int alarm = out.Answer().AddValue(out.Key(), "alarm", "", false);
        out.CopyAttribute(relay, "token", alarm, "token");
        CopyDelay(out, relay, alarm);
        CopyIdleState(out, relay, alarm);
    }
}

void CXmlTransform::TransSetRelayOutputs(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "alarmout");
}

void CXmlTransform::TransSetRelayOutputState(const std::string& soap, std::string& answer)
{
    TransSetBaseResponse(soap, answer, "manualAlarmout");
}

void CXmlTransform::TransGetDigitalInputs(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "alarmin");
    if (!out.AddStatus())
    {
        return;
    }
    for (unsigned int input = out.FindFirst({"s:Envelope/s:Body/dio:GetDigitalInputsResponse/dio:DigitalInputs"});
         input != 0; input = out.Soap().GetNextSiblingItemByName(input, "dio:DigitalInputs"))
    {
        out.CopyAttribute(input, "token", out.Key(), "token");
    }
}
