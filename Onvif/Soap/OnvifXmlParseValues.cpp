// The family of paths and typed values: each translates the path and calls the base.
#include "OnvifXmlParse.h"

namespace
{

bool MayHavePrefix(const std::string& value)
{
    return value.find(':') != std::string::npos;
}

} // namespace

unsigned int COnvifXmlParse::GetFirstItem(const std::string& path) const
{
    return CQLXXMLParse::GetFirstItem(Translated(path));
}

unsigned int COnvifXmlParse::GetFirstItem(unsigned int item, const std::string& path) const
{
    return CQLXXMLParse::GetFirstItem(item, Translated(path));
}

unsigned int COnvifXmlParse::GetNextSiblingItemByName(unsigned int item, const std::string& name) const
{
    return CQLXXMLParse::GetNextSiblingItemByName(item, Translated(name));
}

bool COnvifXmlParse::GetItemName(unsigned int item, std::string& name) const
{
    const bool found = CQLXXMLParse::GetItemName(item, name);
    if (found)
    {
        ChangeNamespacesToStandard(name);
    }
    return found;
}

unsigned int COnvifXmlParse::GetChildrenLength(const std::string& path, const std::string& name) const
{
    return CQLXXMLParse::GetChildrenLength(Translated(path), name);
}

unsigned int COnvifXmlParse::AddValue(const std::string& path, const std::string& value, bool cdata)
{
    return CQLXXMLParse::AddValue(Translated(path), value, cdata);
}

unsigned int COnvifXmlParse::AddValue(const std::string& path, unsigned int value)
{
    return CQLXXMLParse::AddValue(Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue(const std::string& path, const _GUID& value)
{
    return CQLXXMLParse::AddValue(Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue_i32(const std::string& path, int value)
{
    return CQLXXMLParse::AddValue_i32(Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue_ui64(const std::string& path, unsigned long long value)
{
    return CQLXXMLParse::AddValue_ui64(Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue(unsigned int item, const std::string& path, const std::string& value, bool cdata)
{
    return CQLXXMLParse::AddValue(item, Translated(path), value, cdata);
}

unsigned int COnvifXmlParse::AddValue(unsigned int item, const std::string& path, unsigned int value)
{
    return CQLXXMLParse::AddValue(item, Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue(unsigned int item, const std::string& path, const _GUID& value)
{
    return CQLXXMLParse::AddValue(item, Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue_i32(unsigned int item, const std::string& path, int value)
{
    return CQLXXMLParse::AddValue_i32(item, Translated(path), value);
}

unsigned int COnvifXmlParse::AddValue_ui64(unsigned int item, const std::string& path, unsigned long long value)
{
    return CQLXXMLParse::AddValue_ui64(item, Translated(path), value);
}

bool COnvifXmlParse::SetValue(const std::string& path, const std::string& value, bool cdata)
{
    return CQLXXMLParse::SetValue(Translated(path), value, cdata);
}

bool COnvifXmlParse::SetValue(const std::string& path, unsigned int value)
{
    return CQLXXMLParse::SetValue(Translated(path), value);
}

bool COnvifXmlParse::SetValue(const std::string& path, const _GUID& value)
{
    return CQLXXMLParse::SetValue(Translated(path), value);
}

bool COnvifXmlParse::SetValue_i32(const std::string& path, int value)
{
    return CQLXXMLParse::SetValue_i32(Translated(path), value);
}

bool COnvifXmlParse::SetValue_ui64(const std::string& path, unsigned long long value)
{
    return CQLXXMLParse::SetValue_ui64(Translated(path), value);
}

bool COnvifXmlParse::SetValue(unsigned int item, const std::string& path, const std::string& value, bool cdata)
{
    return CQLXXMLParse::SetValue(item, Translated(path), value, cdata);
}

bool COnvifXmlParse::SetValue(unsigned int item, const std::string& path, unsigned int value)
{
    return CQLXXMLParse::SetValue(item, Translated(path), value);
}

bool COnvifXmlParse::SetValue(unsigned int item, const std::string& path, const _GUID& value)
{
    return CQLXXMLParse::SetValue(item, Translated(path), value);
}

bool COnvifXmlParse::SetValue_i32(unsigned int item, const std::string& path, int value)
{
    return CQLXXMLParse::SetValue_i32(item, Translated(path), value);
}

bool COnvifXmlParse::SetValue_ui64(unsigned int item, const std::string& path, unsigned long long value)
{
    return CQLXXMLParse::SetValue_ui64(item, Translated(path), value);
}

bool COnvifXmlParse::DeleteValue(const std::string& path)
{
    return CQLXXMLParse::DeleteValue(Translated(path));
}

bool COnvifXmlParse::DeleteChildrenValue(const std::string& path)
{
    return CQLXXMLParse::DeleteChildrenValue(Translated(path));
}

bool COnvifXmlParse::SetAttribute(const std::string& path, const std::string& name, const std::string& value)
{
    return CQLXXMLParse::SetAttribute(Translated(path), name, value);
}

bool COnvifXmlParse::SetAttribute(const std::string& path, const std::string& name, unsigned int value)
{
    return CQLXXMLParse::SetAttribute(Translated(path), name, value);
}

bool COnvifXmlParse::SetAttribute(const std::string& path, const std::string& name, const _GUID& value)
{
    return CQLXXMLParse::SetAttribute(Translated(path), name, value);
}

bool COnvifXmlParse::SetAttribute_i32(const std::string& path, const std::string& name, int value)
{
    return CQLXXMLParse::SetAttribute_i32(Translated(path), name, value);
}

bool COnvifXmlParse::SetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long value)
{
    return CQLXXMLParse::SetAttribute_ui64(Translated(path), name, value);
}

bool COnvifXmlParse::DeleteAttribute(const std::string& path, const std::string& name)
{
    return CQLXXMLParse::DeleteAttribute(Translated(path), name);
}

bool COnvifXmlParse::GetAttributeStr(const std::string& path, const std::string& name, std::string& value) const
{
    return CQLXXMLParse::GetAttributeStr(Translated(path), name, value);
}

bool COnvifXmlParse::GetAttributeDWORD(const std::string& path, const std::string& name, unsigned int& value) const
{
    return CQLXXMLParse::GetAttributeDWORD(Translated(path), name, value);
}

bool COnvifXmlParse::GetAttribute_i32(const std::string& path, const std::string& name, int& value) const
{
    return CQLXXMLParse::GetAttribute_i32(Translated(path), name, value);
}

bool COnvifXmlParse::GetAttribute_ui64(const std::string& path, const std::string& name,
                                       unsigned long long& value) const
{
    return CQLXXMLParse::GetAttribute_ui64(Translated(path), name, value);
}

bool COnvifXmlParse::GetAttributeGUID(const std::string& path, const std::string& name, _GUID& value) const
{
    return CQLXXMLParse::GetAttributeGUID(Translated(path), name, value);
}

bool COnvifXmlParse::GetAttributes(const std::string& path, std::map<std::string, std::string>& attributes) const
{
    return CQLXXMLParse::GetAttributes(Translated(path), attributes);
}

bool COnvifXmlParse::GetValueStr(const std::string& path, std::string& value) const
{
    const bool found = CQLXXMLParse::GetValueStr(Translated(path), value);
    if (found && MayHavePrefix(value))
    {
        ChangeNamespacesToStandard(value);
    }
    return found;
}

bool COnvifXmlParse::GetValueStr(unsigned int item, std::string& value) const
{
    const bool found = CQLXXMLParse::GetValueStr(item, value);
    if (found && MayHavePrefix(value))
    {
        ChangeNamespacesToStandard(value);
    }
    return found;
}

bool COnvifXmlParse::GetValueStr(unsigned int item, const std::string& path, std::string& value) const
{
    const bool found = CQLXXMLParse::GetValueStr(item, Translated(path), value);
    if (found && MayHavePrefix(value))
    {
        ChangeNamespacesToStandard(value);
    }
    return found;
}

bool COnvifXmlParse::GetValueDWORD(const std::string& path, unsigned int& value) const
{
    return CQLXXMLParse::GetValueDWORD(Translated(path), value);
}

bool COnvifXmlParse::GetValue_i32(const std::string& path, int& value) const
{
    return CQLXXMLParse::GetValue_i32(Translated(path), value);
}

bool COnvifXmlParse::GetValue_ui64(const std::string& path, unsigned long long& value) const
{
    return CQLXXMLParse::GetValue_ui64(Translated(path), value);
}

bool COnvifXmlParse::GetValueGUID(const std::string& path, _GUID& value) const
{
    return CQLXXMLParse::GetValueGUID(Translated(path), value);
}

bool COnvifXmlParse::GetValueDWORD(unsigned int item, const std::string& path, unsigned int& value) const
{
    return CQLXXMLParse::GetValueDWORD(item, Translated(path), value);
}

bool COnvifXmlParse::GetValue_i32(unsigned int item, const std::string& path, int& value) const
{
    return CQLXXMLParse::GetValue_i32(item, Translated(path), value);
}

bool COnvifXmlParse::GetValue_ui64(unsigned int item, const std::string& path, unsigned long long& value) const
{
    return CQLXXMLParse::GetValue_ui64(item, Translated(path), value);
}

bool COnvifXmlParse::GetValueGUID(unsigned int item, const std::string& path, _GUID& value) const
{
    return CQLXXMLParse::GetValueGUID(item, Translated(path), value);
}

bool COnvifXmlParse::CloneValue(const std::string& /*path*/, const std::string& /*xml*/)
{
    return false;
}

bool COnvifXmlParse::CloneValue(unsigned int /*item*/, const std::string& /*xml*/)
{
    return false;
}

bool COnvifXmlParse::GetXMLData(const std::string& /*path*/, std::string& /*xml*/) const
{
    return false;
}

bool COnvifXmlParse::GetXMLData(unsigned int /*item*/, std::string& /*xml*/) const
{
    return false;
}

bool COnvifXmlParse::GetChildrenXMLData(const std::string& /*path*/, std::string& /*xml*/) const
{
    return false;
}

bool COnvifXmlParse::GetChildrenXMLData(unsigned int /*item*/, std::string& /*xml*/) const
{
    return false;
}
