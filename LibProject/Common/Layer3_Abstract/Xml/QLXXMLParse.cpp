// The document, its items, and the making and removing of elements. Typed values and attributes are in
// QLXXMLParseValues.cpp.
#include "QLXXMLParse.h"

#include "PFAssert.h"
#include "XmlBounds.h"

#include <cstdint>
#include <cstring>
#include <memory>

using tinyxml2::XMLElement;
using tinyxml2::XMLNode;

namespace
{

const char PATH_SEPARATOR = '/';

// Takes the first piece off a path. A run of separators counts once; a leading run gives an empty first piece, and a
// trailing one nothing.
std::string_view TakeComponent(std::string_view& path)
{
    const size_t end = path.find(PATH_SEPARATOR);
    const std::string_view component = path.substr(0, end);
    const size_t next = end == std::string_view::npos ? end : path.find_first_not_of(PATH_SEPARATOR, end);
    path = next == std::string_view::npos ? std::string_view() : path.substr(next);
    return component;
}

bool HasName(const XMLElement* element, std::string_view name)
{
    return name == element->Name();
}

const XMLElement* FirstOfName(const XMLElement* element, std::string_view name)
{
    while (element != nullptr && !HasName(element, name))
    {
        element = element->NextSiblingElement();
    }
    return element;
}

unsigned int CountChildren(const XMLElement* element, const std::string& name)
{
    unsigned int count = 0;
    const XMLElement* child = element != nullptr ? element->FirstChildElement() : nullptr;
    for (; child != nullptr; child = child->NextSiblingElement())
    {
        count += name.empty() || HasName(child, name) ? 1 : 0;
    }
    return count;
}

bool Print(const XMLNode* node, std::string& xml)
{
    xml.clear();
    if (node == nullptr)
    {
        return false;
    }
    tinyxml2::XMLPrinter printer;
    node->Accept(&printer);
    xml = printer.CStr();
    return true;
}

bool PrintChildren(const XMLNode* node, std::string& xml)
{
    xml.clear();
    if (node == nullptr)
    {
        return false;
    }
    tinyxml2::XMLPrinter printer;
    for (const XMLNode* child = node->FirstChild(); child != nullptr; child = child->NextSibling())
    {
        child->Accept(&printer);
    }
    xml = printer.CStr();
    return true;
}

} // namespace

CQLXXMLParse::CQLXXMLParse()
{
    EnsureDeclaration();
}

CQLXXMLParse::CQLXXMLParse(const std::string& xml)
{
    Parse(xml.data(), xml.size());
    EnsureDeclaration();
}

CQLXXMLParse::CQLXXMLParse(const char* xml, unsigned int length)
{
    Parse(xml, length);
    EnsureDeclaration();
}

bool CQLXXMLParse::Parse(const char* xml, size_t length)
{
    ForgetItems();
    m_XMLDocument.Clear();
    if (xml == nullptr || length == 0 || !XmlIsWithin(XML_DOCUMENT_BOUNDS, std::string_view(xml, length)))
    {
        return false;
    }
    return m_XMLDocument.Parse(xml, length) == tinyxml2::XML_SUCCESS;
}

void CQLXXMLParse::EnsureDeclaration()
{
    const XMLNode* first = m_XMLDocument.FirstChild();
    if (first == nullptr || first->ToDeclaration() == nullptr)
    {
        m_XMLDocument.InsertFirstChild(m_XMLDocument.NewDeclaration()); // version 1.0, encoding UTF-8
    }
}

bool CQLXXMLParse::LoadXML(const std::string& xml)
{
    PF_ASSERT(!xml.empty());
    return Parse(xml.data(), xml.size());
}

bool CQLXXMLParse::LoadFile(const std::string& path)
{
    PF_ASSERT(!path.empty());
    m_path = path;
    std::string text;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rbe"), &std::fclose);
    char part[4096];
    for (size_t count = 1; file && count > 0;)
    {
        count = std::fread(part, 1, sizeof(part), file.get());
        text.append(part, count);
    }
    const bool loaded = Parse(text.data(), text.size());
    EnsureDeclaration();
    return loaded;
}

bool CQLXXMLParse::SaveFile(const std::string& path)
{
    const std::string& target = path.empty() ? m_path : path;
    PF_ASSERT(!target.empty());
    return m_XMLDocument.SaveFile(target.c_str()) == tinyxml2::XML_SUCCESS;
}

const std::string* CQLXXMLParse::GetDoc()
{
    tinyxml2::XMLPrinter printer;
    m_XMLDocument.Print(&printer);
    m_doc.assign(printer.CStr(), static_cast<size_t>(printer.CStrSize() - 1));
    return &m_doc;
}

XMLElement* CQLXXMLParse::FindElement(std::string_view path, const XMLElement* start) const
{
    const XMLElement* current = start != nullptr ? start : m_XMLDocument.RootElement();
    while (!path.empty() && current != nullptr)
    {
        // A component that names the current element stays there, so the inner one of "a/a" is never reached.
        const std::string_view component = TakeComponent(path);
        if (!HasName(current, component))
        {
            current = FirstOfName(current->FirstChildElement(), component);
        }
    }
    return const_cast<XMLElement*>(current); // of this document, which the caller may change
}

XMLElement* CQLXXMLParse::Below(unsigned int item, const std::string& path) const
{
    const XMLElement* start = ElementOf(item);
    return start != nullptr ? FindElement(path, start) : nullptr;
}

XMLElement* CQLXXMLParse::ElementOf(unsigned int item) const
{
    return item < m_firstItem || item - m_firstItem >= m_items.size() ? nullptr : m_items[item - m_firstItem];
}

unsigned int CQLXXMLParse::ItemOf(const XMLElement* element) const
{
    if (element == nullptr)
    {
        return 0;
    }
    XMLElement* const own = const_cast<XMLElement*>(element);
    if (own->GetUserData() == nullptr)
    {
        m_items.push_back(own);
        const std::uintptr_t item = m_firstItem + m_items.size() - 1;
        own->SetUserData(reinterpret_cast<void*>(item)); // NOLINT(performance-no-int-to-ptr): never followed
    }
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(own->GetUserData()));
}

// The items of a document that is about to go are never given out again.
void CQLXXMLParse::ForgetItems()
{
    m_firstItem += static_cast<unsigned int>(m_items.size());
    m_items.clear();
}

// Drops the items of a node and of all that is in it.
void CQLXXMLParse::ForgetItems(XMLNode* node)
{
    XMLNode* current = node;
    while (current != nullptr)
    {
        if (current->GetUserData() != nullptr)
        {
            m_items[reinterpret_cast<std::uintptr_t>(current->GetUserData()) - m_firstItem] = nullptr;
            current->SetUserData(nullptr);
        }
        if (current->FirstChild() != nullptr)
        {
            current = current->FirstChild();
            continue;
        }
        while (current != node && current->NextSibling() == nullptr)
        {
            current = current->Parent();
        }
        current = current == node ? nullptr : current->NextSibling();
    }
}

unsigned int CQLXXMLParse::GetRootItem() const
{
    return ItemOf(m_XMLDocument.RootElement());
}

unsigned int CQLXXMLParse::GetFirstItem(const std::string& path) const
{
    return ItemOf(FindElement(path));
}

unsigned int CQLXXMLParse::GetFirstItem(unsigned int item, const std::string& path) const
{
    return ItemOf(Below(item, path));
}

unsigned int CQLXXMLParse::GetChildItem(unsigned int item) const
{
    const XMLElement* element = ElementOf(item);
    return element != nullptr ? ItemOf(element->FirstChildElement()) : 0;
}

unsigned int CQLXXMLParse::GetNextSiblingItem(unsigned int item) const
{
    const XMLElement* element = ElementOf(item);
    return element != nullptr ? ItemOf(element->NextSiblingElement()) : 0;
}

unsigned int CQLXXMLParse::GetNextSiblingItemByName(unsigned int item, const std::string& name) const
{
    const XMLElement* element = ElementOf(item);
    return element != nullptr ? ItemOf(FirstOfName(element->NextSiblingElement(), name)) : 0;
}

bool CQLXXMLParse::GetItemName(unsigned int item, std::string& name) const
{
    const XMLElement* element = ElementOf(item);
    name = element != nullptr ? element->Name() : "";
    return element != nullptr;
}

unsigned int CQLXXMLParse::GetChildrenLength(const std::string& path, const std::string& name) const
{
    return CountChildren(FindElement(path), name);
}

unsigned int CQLXXMLParse::GetChildrenLength(unsigned int item, const std::string& name) const
{
    return CountChildren(ElementOf(item), name);
}

XMLElement* CQLXXMLParse::NewElement(const std::string& path, const std::string& value, XMLNode* parent, bool cdata)
{
    std::string_view rest = path;
    XMLElement* first = nullptr;
    XMLElement* innermost = nullptr;
    while (!rest.empty())
    {
        XMLElement* const element = m_XMLDocument.NewElement(std::string(TakeComponent(rest)).c_str());
        if (innermost != nullptr)
        {
            innermost->InsertEndChild(element);
        }
        first = first != nullptr ? first : element;
        innermost = element;
    }
    if (innermost == nullptr)
    {
        return nullptr;
    }
    tinyxml2::XMLText* const text = m_XMLDocument.NewText(value.c_str());
    text->SetCData(cdata);
    innermost->InsertFirstChild(text);
    parent->InsertEndChild(first);
    return innermost;
}

unsigned int CQLXXMLParse::AddElement(const std::string& path, const std::string& value, bool cdata)
{
    XMLNode* const root = m_XMLDocument.RootElement();
    return ItemOf(NewElement(path, value, root != nullptr ? root : &m_XMLDocument, cdata));
}

unsigned int CQLXXMLParse::AddElement(unsigned int item, const std::string& path, const std::string& value, bool cdata)
{
    XMLElement* const pXMLElement = ElementOf(item);
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    return ItemOf(NewElement(path, value, pXMLElement, cdata));
}

bool CQLXXMLParse::SetText(XMLNode* node, const char* text, bool cdata)
{
    if (node == nullptr || text == nullptr)
    {
        return false;
    }
    tinyxml2::XMLText* first = node->FirstChild() != nullptr ? node->FirstChild()->ToText() : nullptr;
    if (first != nullptr)
    {
        first->SetValue(text);
    }
    else
    {
        first = m_XMLDocument.NewText(text);
        node->InsertFirstChild(first);
    }
    first->SetCData(cdata);
    return true;
}

bool CQLXXMLParse::RemoveElement(XMLElement* pXMLElement)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    ForgetItems(pXMLElement);
    m_XMLDocument.DeleteNode(pXMLElement);
    return true;
}

bool CQLXXMLParse::RemoveChildren(XMLElement* pXMLElement)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    for (XMLNode* child = pXMLElement->FirstChild(); child != nullptr; child = child->NextSibling())
    {
        ForgetItems(child);
    }
    pXMLElement->DeleteChildren();
    return true;
}

bool CQLXXMLParse::DeleteValue(const std::string& path)
{
    return RemoveElement(FindElement(path));
}

bool CQLXXMLParse::DeleteValue(unsigned int item)
{
    return RemoveElement(ElementOf(item));
}

bool CQLXXMLParse::DeleteChildrenValue(const std::string& path)
{
    return RemoveChildren(FindElement(path));
}

bool CQLXXMLParse::DeleteChildrenValue(unsigned int item)
{
    return RemoveChildren(ElementOf(item));
}

bool CQLXXMLParse::GetXMLData(const std::string& path, std::string& xml) const
{
    return Print(FindElement(path), xml);
}

bool CQLXXMLParse::GetXMLData(unsigned int item, std::string& xml) const
{
    return Print(ElementOf(item), xml);
}

bool CQLXXMLParse::GetChildrenXMLData(const std::string& path, std::string& xml) const
{
    return PrintChildren(FindElement(path), xml);
}

bool CQLXXMLParse::GetChildrenXMLData(unsigned int item, std::string& xml) const
{
    return PrintChildren(ElementOf(item), xml);
}

bool CQLXXMLParse::Clone(XMLElement* pXMLElement, const std::string& xml)
{
    PF_ASSERT_TEXT(pXMLElement != nullptr, "pXMLElement != 0");
    CQLXXMLParse other;
    if (!other.Parse(xml.data(), xml.size()))
    {
        return false;
    }
    for (const XMLNode* node = other.m_XMLDocument.FirstChild(); node != nullptr; node = node->NextSibling())
    {
        if (node->ToDeclaration() == nullptr) // which stands in front of a document only
        {
            pXMLElement->InsertEndChild(node->DeepClone(&m_XMLDocument));
        }
    }
    return true;
}

bool CQLXXMLParse::CloneValue(const std::string& path, const std::string& xml)
{
    return Clone(FindElement(path), xml);
}

bool CQLXXMLParse::CloneValue(unsigned int item, const std::string& xml)
{
    return Clone(ElementOf(item), xml);
}
