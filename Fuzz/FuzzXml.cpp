// Any text through the XML document: parsed, walked by item and path, read, changed, copied and printed.
#include "QLXXMLParse.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

void Require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

void Read(const CQLXXMLParse& document, unsigned int item)
{
    std::string name;
    std::string text;
    unsigned int dword = 0;
    int i32 = 0;
    unsigned long long ui64 = 0;
    _GUID guid;
    std::map<std::string, std::string> attributes;
    Require(document.GetItemName(item, name));
    Require(document.GetValueStr(item, text));
    Require(document.GetValueDWORD(item, dword));
    Require(document.GetValue_i32(item, i32));
    Require(document.GetValue_ui64(item, ui64));
    document.GetValueGUID(item, guid);
    Require(document.GetAttributes(item, attributes));
    for (const auto& attribute : attributes)
    {
        document.GetAttribute_i32(item, attribute.first, i32);
        document.GetAttributeGUID(item, attribute.first, guid);
    }
    document.GetFirstItem(name);
    document.GetFirstItem(item, text);
    document.GetChildrenLength(item, name);
    document.GetNextSiblingItemByName(item, name);
    Require(document.GetXMLData(item, text));
    Require(document.GetChildrenXMLData(item, text));
}

// Depth first, over a bounded number of elements.
unsigned int Next(const CQLXXMLParse& document, unsigned int item, std::string& path)
{
    const unsigned int child = document.GetChildItem(item);
    std::string name;
    if (child != 0 && document.GetItemName(child, name))
    {
        path += "/" + name;
        return child;
    }
    return document.GetNextSiblingItem(item);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string xml(reinterpret_cast<const char*>(data), size);
    CQLXXMLParse document(reinterpret_cast<const char*>(data), static_cast<unsigned int>(size));
    const unsigned int root = document.GetRootItem();
    std::string path;
    unsigned int last = 0;
    int count = 0;
    for (unsigned int item = root; item != 0 && count < 100; item = Next(document, item, path), ++count)
    {
        Read(document, item);
        last = item;
    }
    document.GetFirstItem(path);
    if (root != 0)
    {
        Require(document.SetValue(last, xml, (size & 1) != 0));
        document.CloneValue(root, xml);
        Require(document.SetAttribute(last, "a", xml));
        Require(document.DeleteValue(last));
        std::string name;
        Require(!document.GetItemName(last, name));
    }
    document.GetDoc();
    if (!xml.empty())
    {
        document.LoadXML(xml);
        document.GetDoc();
    }
    return 0;
}
