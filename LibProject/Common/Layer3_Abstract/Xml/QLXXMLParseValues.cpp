// The typed values and attributes of CQLXXMLParse: each form finds its element, and one function writes or reads it.
#include "QLXXMLParse.h"

#include "PFAssert.h"
#include "SysHelper.h"

#include <cstdint>
#include <sstream>

using tinyxml2::XMLElement;

namespace
{

std::string TextOf(const _GUID& guid)
{
    char text[39];
    CSysHelper::GuidToString(guid, text);
    return text;
}

// Numbers from text: what is no number is 0, a number out of range the nearest one.
template <typename NUMBER>
void Convert(const char* text, NUMBER& value)
{
    value = 0;
    std::istringstream stream(text != nullptr ? text : "");
    stream >> value;
}

// Empty text is the zero GUID.
bool ConvertGuid(const char* text, _GUID& value)
{
    value = _GUID();
    return text == nullptr || *text == '\0' || CSysHelper::ReadGuid(text, value);
}

bool ReadStr(const XMLElement* element, std::string& value)
{
    const char* const text = element != nullptr ? element->GetText() : nullptr;
    value = text != nullptr ? text : "";
    return element != nullptr;
}

// Read at 64 bits and cut: QueryIntText gives another result for a number beyond an int where `long` has 32 bits.
bool ReadI32(const XMLElement* element, int& value)
{
    std::int64_t number = 0;
    if (element != nullptr)
    {
        element->QueryInt64Text(&number); // text that is no number leaves 0
    }
    value = static_cast<int>(number);
    return element != nullptr;
}

template <typename NUMBER>
bool ReadNumber(const XMLElement* element, NUMBER& value)
{
    Convert(element != nullptr ? element->GetText() : nullptr, value);
    return element != nullptr;
}

bool ReadGuid(const XMLElement* element, _GUID& value)
{
    return ConvertGuid(element != nullptr ? element->GetText() : nullptr, value) && element != nullptr;
}

const char* AttributeOf(const XMLElement* element, const std::string& name)
{
    return element != nullptr ? element->Attribute(name.c_str()) : nullptr;
}

bool ReadAttributeStr(const XMLElement* element, const std::string& name, std::string& value)
{
    const char* const text = AttributeOf(element, name);
    value = text != nullptr ? text : "";
    return text != nullptr;
}

bool ReadAttributeI32(const XMLElement* element, const std::string& name, int& value)
{
    std::int64_t number = 0;
    const bool isThere = AttributeOf(element, name) != nullptr;
    if (isThere)
    {
        element->QueryInt64Attribute(name.c_str(), &number);
    }
    value = static_cast<int>(number);
    return isThere;
}

template <typename NUMBER>
bool ReadAttributeNumber(const XMLElement* element, const std::string& name, NUMBER& value)
{
    const char* const text = AttributeOf(element, name);
    Convert(text, value);
    return text != nullptr;
}

bool ReadAttributeGuid(const XMLElement* element, const std::string& name, _GUID& value)
{
    const char* const text = AttributeOf(element, name);
    return ConvertGuid(text, value) && text != nullptr;
}

bool ReadAttributes(const XMLElement* pXMLElement, std::map<std::string, std::string>& attributes)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    attributes.clear();
    for (const tinyxml2::XMLAttribute* one = pXMLElement->FirstAttribute(); one != nullptr; one = one->Next())
    {
        attributes[one->Name()] = one->Value();
    }
    return true;
}

} // namespace

bool CQLXXMLParse::WriteText(XMLElement* pXMLElement, const std::string& value, bool cdata)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    return SetText(pXMLElement, value.c_str(), cdata);
}

bool CQLXXMLParse::WriteBelow(unsigned int item, const std::string& path, const std::string& value, bool cdata)
{
    const XMLElement* const pXMLElement = ElementOf(item);
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    XMLElement* const found = FindElement(path, pXMLElement);
    return found != nullptr && SetText(found, value.c_str(), cdata);
}

bool CQLXXMLParse::WriteAttribute(XMLElement* pXMLElement, const std::string& name, const std::string& value)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    pXMLElement->SetAttribute(name.c_str(), value.c_str());
    return true;
}

bool CQLXXMLParse::RemoveAttribute(XMLElement* pXMLElement, const std::string& name)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    pXMLElement->DeleteAttribute(name.c_str());
    return true;
}

unsigned int CQLXXMLParse::AddValue(const std::string& path, const std::string& value, bool cdata)
{
    return AddElement(path, value, cdata);
}

unsigned int CQLXXMLParse::AddValue(const std::string& path, unsigned int value)
{
    return AddElement(path, std::to_string(value), false);
}

unsigned int CQLXXMLParse::AddValue(const std::string& path, const _GUID& value)
{
    return AddElement(path, TextOf(value), false);
}

unsigned int CQLXXMLParse::AddValue_i32(const std::string& path, int value)
{
    return AddElement(path, std::to_string(value), false);
}

unsigned int CQLXXMLParse::AddValue_ui64(const std::string& path, unsigned long long value)
{
    return AddElement(path, std::to_string(value), false);
}

unsigned int CQLXXMLParse::AddValue(unsigned int item, const std::string& path, const std::string& value, bool cdata)
{
    return AddElement(item, path, value, cdata);
}

unsigned int CQLXXMLParse::AddValue(unsigned int item, const std::string& path, unsigned int value)
{
    return AddElement(item, path, std::to_string(value), false);
}

unsigned int CQLXXMLParse::AddValue(unsigned int item, const std::string& path, const _GUID& value)
{
    return AddElement(item, path, TextOf(value), false);
}

unsigned int CQLXXMLParse::AddValue_i32(unsigned int item, const std::string& path, int value)
{
    return AddElement(item, path, std::to_string(value), false);
}

unsigned int CQLXXMLParse::AddValue_ui64(unsigned int item, const std::string& path, unsigned long long value)
{
    return AddElement(item, path, std::to_string(value), false);
}

bool CQLXXMLParse::SetValue(const std::string& path, const std::string& value, bool cdata)
{
    return WriteText(FindElement(path), value, cdata);
}

bool CQLXXMLParse::SetValue(const std::string& path, unsigned int value)
{
    return WriteText(FindElement(path), std::to_string(value), false);
}

bool CQLXXMLParse::SetValue(const std::string& path, const _GUID& value)
{
    return WriteText(FindElement(path), TextOf(value), false);
}

bool CQLXXMLParse::SetValue_i32(const std::string& path, int value)
{
    return WriteText(FindElement(path), std::to_string(value), false);
}

bool CQLXXMLParse::SetValue_ui64(const std::string& path, unsigned long long value)
{
    return WriteText(FindElement(path), std::to_string(value), false);
}

bool CQLXXMLParse::SetValue(unsigned int item, const std::string& value, bool cdata)
{
    return WriteText(ElementOf(item), value, cdata);
}

bool CQLXXMLParse::SetValue(unsigned int item, unsigned int value)
{
    return WriteText(ElementOf(item), std::to_string(value), false);
}

bool CQLXXMLParse::SetValue(unsigned int item, const _GUID& value)
{
    return WriteText(ElementOf(item), TextOf(value), false);
}

bool CQLXXMLParse::SetValue_i32(unsigned int item, int value)
{
    return WriteText(ElementOf(item), std::to_string(value), false);
}

bool CQLXXMLParse::SetValue_ui64(unsigned int item, unsigned long long value)
{
    return WriteText(ElementOf(item), std::to_string(value), false);
}

bool CQLXXMLParse::SetValue(unsigned int item, const std::string& path, const std::string& value, bool cdata)
{
    return WriteBelow(item, path, value, cdata);
}

bool CQLXXMLParse::SetValue(unsigned int item, const std::string& path, unsigned int value)
{
    return WriteBelow(item, path, std::to_string(value), false);
}

bool CQLXXMLParse::SetValue(unsigned int item, const std::string& path, const _GUID& value)
{
    return WriteBelow(item, path, TextOf(value), false);
}

bool CQLXXMLParse::SetValue_i32(unsigned int item, const std::string& path, int value)
{
    return WriteBelow(item, path, std::to_string(value), false);
}

bool CQLXXMLParse::SetValue_ui64(unsigned int item, const std::string& path, unsigned long long value)
{
    return WriteBelow(item, path, std::to_string(value), false);
}

bool CQLXXMLParse::SetAttribute(const std::string& path, const std::string& name, const std::string& value)
{
    return WriteAttribute(FindElement(path), name, value);
}

bool CQLXXMLParse::SetAttribute(const std::string& path, const std::string& name, unsigned int value)
{
    return WriteAttribute(FindElement(path), name, std::to_string(value));
}

bool CQLXXMLParse::SetAttribute(const std::string& path, const std::string& name, const _GUID& value)
{
    return WriteAttribute(FindElement(path), name, TextOf(value));
}

bool CQLXXMLParse::SetAttribute_i32(const std::string& path, const std::string& name, int value)
{
    return WriteAttribute(FindElement(path), name, std::to_string(value));
}

bool CQLXXMLParse::SetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long value)
{
    return WriteAttribute(FindElement(path), name, std::to_string(value));
}

bool CQLXXMLParse::DeleteAttribute(const std::string& path, const std::string& name)
{
    return RemoveAttribute(FindElement(path), name);
}

bool CQLXXMLParse::SetAttribute(unsigned int item, const std::string& name, const std::string& value)
{
    return WriteAttribute(ElementOf(item), name, value);
}

bool CQLXXMLParse::SetAttribute(unsigned int item, const std::string& name, unsigned int value)
{
    return WriteAttribute(ElementOf(item), name, std::to_string(value));
}

bool CQLXXMLParse::SetAttribute(unsigned int item, const std::string& name, const _GUID& value)
{
    return WriteAttribute(ElementOf(item), name, TextOf(value));
}

bool CQLXXMLParse::SetAttribute_i32(unsigned int item, const std::string& name, int value)
{
    return WriteAttribute(ElementOf(item), name, std::to_string(value));
}

bool CQLXXMLParse::SetAttribute_ui64(unsigned int item, const std::string& name, unsigned long long value)
{
    return WriteAttribute(ElementOf(item), name, std::to_string(value));
}

bool CQLXXMLParse::DeleteAttribute(unsigned int item, const std::string& name)
{
    return RemoveAttribute(ElementOf(item), name);
}

bool CQLXXMLParse::GetAttributeStr(const std::string& path, const std::string& name, std::string& value) const
{
    return ReadAttributeStr(FindElement(path), name, value);
}

bool CQLXXMLParse::GetAttributeDWORD(const std::string& path, const std::string& name, unsigned int& value) const
{
    return ReadAttributeNumber(FindElement(path), name, value);
}

bool CQLXXMLParse::GetAttribute_i32(const std::string& path, const std::string& name, int& value) const
{
    return ReadAttributeI32(FindElement(path), name, value);
}

bool CQLXXMLParse::GetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long& value) const
{
    return ReadAttributeNumber(FindElement(path), name, value);
}

bool CQLXXMLParse::GetAttributeGUID(const std::string& path, const std::string& name, _GUID& value) const
{
    return ReadAttributeGuid(FindElement(path), name, value);
}

bool CQLXXMLParse::GetAttributes(const std::string& path, std::map<std::string, std::string>& attributes) const
{
    return ReadAttributes(FindElement(path), attributes);
}

bool CQLXXMLParse::GetAttributeStr(unsigned int item, const std::string& name, std::string& value) const
{
    return ReadAttributeStr(ElementOf(item), name, value);
}

bool CQLXXMLParse::GetAttributeDWORD(unsigned int item, const std::string& name, unsigned int& value) const
{
    return ReadAttributeNumber(ElementOf(item), name, value);
}

bool CQLXXMLParse::GetAttribute_i32(unsigned int item, const std::string& name, int& value) const
{
    return ReadAttributeI32(ElementOf(item), name, value);
}

bool CQLXXMLParse::GetAttribute_ui64(unsigned int item, const std::string& name, unsigned long long& value) const
{
    return ReadAttributeNumber(ElementOf(item), name, value);
}

bool CQLXXMLParse::GetAttributeGUID(unsigned int item, const std::string& name, _GUID& value) const
{
    return ReadAttributeGuid(ElementOf(item), name, value);
}

bool CQLXXMLParse::GetAttributes(unsigned int item, std::map<std::string, std::string>& attributes) const
{
    return ReadAttributes(ElementOf(item), attributes);
}

bool CQLXXMLParse::GetValueStr(const std::string& path, std::string& value) const
{
    return ReadStr(FindElement(path), value);
}

bool CQLXXMLParse::GetValueDWORD(const std::string& path, unsigned int& value) const
{
    return ReadNumber(FindElement(path), value);
}

bool CQLXXMLParse::GetValue_i32(const std::string& path, int& value) const
{
    return ReadI32(FindElement(path), value);
}

bool CQLXXMLParse::GetValue_ui64(const std::string& path, unsigned long long& value) const
{
    return ReadNumber(FindElement(path), value);
}

bool CQLXXMLParse::GetValueGUID(const std::string& path, _GUID& value) const
{
    return ReadGuid(FindElement(path), value);
}

bool CQLXXMLParse::GetValueStr(unsigned int item, std::string& value) const
{
    return ReadStr(ElementOf(item), value);
}

bool CQLXXMLParse::GetValueDWORD(unsigned int item, unsigned int& value) const
{
    return ReadNumber(ElementOf(item), value);
}

bool CQLXXMLParse::GetValue_i32(unsigned int item, int& value) const
{
    return ReadI32(ElementOf(item), value);
}

bool CQLXXMLParse::GetValue_ui64(unsigned int item, unsigned long long& value) const
{
    return ReadNumber(ElementOf(item), value);
}

bool CQLXXMLParse::GetValueGUID(unsigned int item, _GUID& value) const
{
    return ReadGuid(ElementOf(item), value);
}

bool CQLXXMLParse::GetValueStr(unsigned int item, const std::string& path, std::string& value) const
{
    return ReadStr(Below(item, path), value);
}

bool CQLXXMLParse::GetValueDWORD(unsigned int item, const std::string& path, unsigned int& value) const
{
    return ReadNumber(Below(item, path), value);
}

bool CQLXXMLParse::GetValue_i32(unsigned int item, const std::string& path, int& value) const
{
    return ReadI32(Below(item, path), value);
}

bool CQLXXMLParse::GetValue_ui64(unsigned int item, const std::string& path, unsigned long long& value) const
{
    return ReadNumber(Below(item, path), value);
}

bool CQLXXMLParse::GetValueGUID(unsigned int item, const std::string& path, _GUID& value) const
{
    return ReadGuid(Below(item, path), value);
}
