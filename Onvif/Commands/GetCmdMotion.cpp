// The requests for motion detection (ONVIF Analytics Service), relay outputs (Device Management Service) and digital
// inputs (Device IO Service).
#include "GetCmd.h"

#include "OnvifHelper.h"
#include "OnvifTemplates.h"
#include "OperationBuilder.h"

#include <vector>

namespace
{

/// The cells of all rows, packed row behind row; empty when the host gives none.
std::string PackCells(const CQLXXMLParse& host, unsigned int area)
{
    std::string cells;
    for (unsigned int row = host.GetFirstItem(area, "item"); row != 0; row = host.GetNextSiblingItemByName(row, "item"))
    {
        std::string text;
        host.GetValueStr(row, text);
        cells += text;
    }
    std::vector<unsigned char> bits((cells.size() + 7) / 8);
    for (std::size_t cell = 0; cell < cells.size(); ++cell)
    {
        const unsigned int bit = cells[cell] == '1' ? 0x80U >> cell % 8 : 0;
        bits[cell / 8] = static_cast<unsigned char>(bits[cell / 8] | bit);
    }
    return COnvifHelper::EncodeMotionArea(bits.data(), static_cast<unsigned int>(bits.size()));
}

void SetParameter(COnvifXmlParse& document, unsigned int parameters, const std::string& name, const std::string& value)
{
    for (unsigned int item = document.GetFirstItem(parameters, "tt:SimpleItem"); item != 0;
         item = document.GetNextSiblingItemByName(item, "tt:SimpleItem"))
    {
        std::string found;
        if (document.GetAttributeStr(item, "Name", found) && found == name)
        {
            document.SetAttribute(item, "Value", value);
        }
    }
}

void AddSensitivity(COperationBuilder& soap, unsigned int module)
{
    std::string sensitivity;
    if (!soap.Request().GetValueStr(soap.Key(), "sensitivity", sensitivity))
    {
        return;
    }
    COnvifXmlParse& document = soap.Soap();
    const unsigned int parameters = soap.FindOrAdd(module, "tt:Parameters");
    const unsigned int item = document.AddValue(parameters, "tt:SimpleItem", "", false);
    document.SetAttribute(item, "Name", "Sensitivity");
    document.SetAttribute(item, "Value", sensitivity);
}

void AddLayout(COperationBuilder& soap, unsigned int module, const char* field, const char* attribute)
{
    std::string count;
    if (!soap.Request().GetValueStr(soap.Key(), field, count))
    {
        return;
    }
    COnvifXmlParse& document = soap.Soap();
    const unsigned int parameters = soap.FindOrAdd(module, "tt:Parameters");
    const unsigned int item = soap.FindOrAdd(parameters, "tt:ElementItem");
    document.SetAttribute(item, "Name", "Layout");
    document.SetAttribute(soap.FindOrAdd(item, "tt:CellLayout"), attribute, count);
}

} // namespace

std::string CGetDefaultCmd::GetAnalyticsModules(const std::string& analyticsToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetAnalyticsModules, "ana:GetAnalyticsModules");
    soap.FillText("ana:ConfigurationToken", analyticsToken);
    return soap.Text();
}

std::string CGetDefaultCmd::GetRules(const std::string& analyticsToken) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::GetRules, "ana:GetRules");
    soap.FillText("ana:ConfigurationToken", analyticsToken);
    return soap.Text();
}

std::string CGetDefaultCmd::SetAnalyticsModules(const std::string& request, const std::string& analyticsToken,
                                                const char* moduleName) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetAnalyticsModules, "ana:ModifyAnalyticsModules", request, "Set/motion");
    if (!soap.Has("name") && !soap.Has("sensitivity") && !soap.Has("columns") && !soap.Has("rows"))
    {
        return {};
    }
    soap.FillText("ana:ConfigurationToken", analyticsToken);
    const unsigned int module = soap.Soap().GetFirstItem(soap.Operation(), "ana:AnalyticsModule");
    std::string name;
    soap.Soap().SetAttribute(module, "Name", soap.Request().GetValueStr(soap.Key(), "name", name) ? name : moduleName);
    AddSensitivity(soap, module);
    AddLayout(soap, module, "columns", "Columns");
    AddLayout(soap, module, "rows", "Rows");
    return soap.Text();
}

// A rule keeps the name under which it was read: unlike a module it is not renamed.
std::string CGetDefaultCmd::SetRules(const std::string& request, const std::string& analyticsToken,
                                     const char* ruleName) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetRules, "ana:ModifyRules", request, "Set/motion/area");
    if (soap.Key() == 0)
    {
        return {};
    }
    soap.FillText("ana:ConfigurationToken", analyticsToken);
    const unsigned int rule = soap.Soap().GetFirstItem(soap.Operation(), "ana:Rule");
    soap.Soap().SetAttribute(rule, "Name", std::string(ruleName));
    const std::string cells = PackCells(soap.Request(), soap.Key());
    if (!cells.empty())
    {
        SetParameter(soap.Soap(), soap.Soap().GetFirstItem(rule, "tt:Parameters"), "ActiveCells", cells);
    }
    return soap.Text();
}

std::string CGetDefaultCmd::GetRelayOutputs() const
{
    return std::string(ONVIF_TEMPLATES::GetRelayOutputs);
}

// A relay that is idle while closed is off; the host's -1, for no delay, goes out as 0 seconds.
std::string CGetDefaultCmd::SetRelayOutputs(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetRelayOutputSettings, "tds:SetRelayOutputSettings", request,
                           "Set/alarmout");
    soap.Fill("token", "tds:RelayOutputToken");
    const unsigned int properties = soap.Soap().GetFirstItem(soap.Operation(), "tds:Properties");
    int delay = 0;
    if (soap.Request().GetValue_i32(soap.Key(), "delayTime", delay))
    {
        soap.Soap().AddValue(properties, "tt:DelayTime", "PT" + std::to_string(delay == -1 ? 0 : delay) + "S", false);
    }
    std::string state;
    if (soap.Request().GetValueStr(soap.Key(), "switch", state))
    {
        soap.Soap().AddValue(properties, "tt:IdleState", state == "on" ? "open" : "closed", false);
    }
    return soap.Text();
}

std::string CGetDefaultCmd::SetRelayOutputState(const std::string& request) const
{
    COperationBuilder soap(ONVIF_TEMPLATES::SetRelayOutputState, "tds:SetRelayOutputState", request,
                           "Set/manualAlarmout");
    soap.Add("token", "tds:RelayOutputToken");
    std::string active;
    if (soap.Request().GetValueStr(soap.Key(), "active", active))
    {
        soap.Soap().AddValue(soap.Operation(), "tds:LogicalState", active == "1" ? "active" : "inactive", false);
    }
    return soap.Text();
}

std::string CGetDefaultCmd::GetDigitalInputs() const
{
    return std::string(ONVIF_TEMPLATES::GetDigitalInputs);
}
