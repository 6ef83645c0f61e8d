// QLXXMLParse.h: an XML document whose elements are addressed by path or by item.
//
// A path is text such as "config/time/timeZone"; it may begin with the root's own name or leave it out, and it leads to
// the first of several siblings of one name. An item is a number that stands for an element of this document; 0 is
// none. Items come from a table of the document and are never used twice: one whose element was deleted is an unknown
// one, which counts as 0.
//
// Reading what is not there gives false and a cleared output. Writing to what is not there is a mistake of the caller's
// and ends the process.
//
// An object belongs to one thread.
#pragma once

#include "PFHelper.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <tinyxml2.h>

class CQLXXMLParse
{
public:
    /// An empty document with an XML declaration.
    CQLXXMLParse();
    /// Parses at once, and puts a declaration in front when there is none. What cannot be parsed leaves an empty
    /// document.
    explicit CQLXXMLParse(const std::string& xml);
    CQLXXMLParse(const char* xml, unsigned int length);
    virtual ~CQLXXMLParse() = default;
    CQLXXMLParse(const CQLXXMLParse&) = delete;
    CQLXXMLParse& operator=(const CQLXXMLParse&) = delete;

    /// Replaces the document; adds no declaration. @param xml  not empty. @return false when it cannot be parsed
    bool LoadXML(const std::string& xml);
    /// The same from a file, whose name SaveFile takes later; adds a declaration. @param path  not empty
    bool LoadFile(const std::string& path);
    /// @param path  empty: the file that was loaded; there must be one
    bool SaveFile(const std::string& path);
    /// The whole document, indented. @return text that stands until the next GetDoc
    const std::string* GetDoc();

    unsigned int GetRootItem() const;
    unsigned int GetFirstItem(const std::string& path) const;
    unsigned int GetFirstItem(unsigned int item, const std::string& path) const;
    unsigned int GetChildItem(unsigned int item) const;
    unsigned int GetNextSiblingItem(unsigned int item) const;
    unsigned int GetNextSiblingItemByName(unsigned int item, const std::string& name) const;
    bool GetItemName(unsigned int item, std::string& name) const;
    /// Counts child elements. @param name  empty: all of them
    unsigned int GetChildrenLength(const std::string& path, const std::string& name) const;
    unsigned int GetChildrenLength(unsigned int item, const std::string& name) const;

    /// Appends one new element for each component of the path, below the root, the document when it has no root, or the
    /// item, and gives the innermost one the value. An element that is there is never used again.
    /// @param cdata  the text stands in a CDATA section
    /// @return the innermost element; 0 for an empty path
    unsigned int AddElement(const std::string& path, const std::string& value, bool cdata);
    unsigned int AddElement(unsigned int item, const std::string& path, const std::string& value, bool cdata);
    unsigned int AddValue(const std::string& path, const std::string& value, bool cdata);
    unsigned int AddValue(const std::string& path, unsigned int value);
    unsigned int AddValue(const std::string& path, const _GUID& value);
    unsigned int AddValue_i32(const std::string& path, int value);
    unsigned int AddValue_ui64(const std::string& path, unsigned long long value);
    unsigned int AddValue(unsigned int item, const std::string& path, const std::string& value, bool cdata);
    unsigned int AddValue(unsigned int item, const std::string& path, unsigned int value);
    unsigned int AddValue(unsigned int item, const std::string& path, const _GUID& value);
    unsigned int AddValue_i32(unsigned int item, const std::string& path, int value);
    unsigned int AddValue_ui64(unsigned int item, const std::string& path, unsigned long long value);

    /// Writes an element's text. A CDATA section goes when `cdata` is false, and with every number.
    bool SetValue(const std::string& path, const std::string& value, bool cdata);
    bool SetValue(const std::string& path, unsigned int value);
    bool SetValue(const std::string& path, const _GUID& value);
    bool SetValue_i32(const std::string& path, int value);
    bool SetValue_ui64(const std::string& path, unsigned long long value);
    bool SetValue(unsigned int item, const std::string& value, bool cdata);
    bool SetValue(unsigned int item, unsigned int value);
    bool SetValue(unsigned int item, const _GUID& value);
    bool SetValue_i32(unsigned int item, int value);
    bool SetValue_ui64(unsigned int item, unsigned long long value);
    /// Below an item. @return false when nothing is there
    bool SetValue(unsigned int item, const std::string& path, const std::string& value, bool cdata);
    bool SetValue(unsigned int item, const std::string& path, unsigned int value);
    bool SetValue(unsigned int item, const std::string& path, const _GUID& value);
    bool SetValue_i32(unsigned int item, const std::string& path, int value);
    bool SetValue_ui64(unsigned int item, const std::string& path, unsigned long long value);

    /// Removes the element, or all that is in it.
    bool DeleteValue(const std::string& path);
    bool DeleteValue(unsigned int item);
    bool DeleteChildrenValue(const std::string& path);
    bool DeleteChildrenValue(unsigned int item);

    bool SetAttribute(const std::string& path, const std::string& name, const std::string& value);
    bool SetAttribute(const std::string& path, const std::string& name, unsigned int value);
    bool SetAttribute(const std::string& path, const std::string& name, const _GUID& value);
    bool SetAttribute_i32(const std::string& path, const std::string& name, int value);
    bool SetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long value);
    bool SetAttribute(unsigned int item, const std::string& name, const std::string& value);
    bool SetAttribute(unsigned int item, const std::string& name, unsigned int value);
    bool SetAttribute(unsigned int item, const std::string& name, const _GUID& value);
    bool SetAttribute_i32(unsigned int item, const std::string& name, int value);
    bool SetAttribute_ui64(unsigned int item, const std::string& name, unsigned long long value);
    bool DeleteAttribute(const std::string& path, const std::string& name);
    bool DeleteAttribute(unsigned int item, const std::string& name);

    /// @return false when the element or the attribute is missing
    bool GetAttributeStr(const std::string& path, const std::string& name, std::string& value) const;
    bool GetAttributeDWORD(const std::string& path, const std::string& name, unsigned int& value) const;
    bool GetAttribute_i32(const std::string& path, const std::string& name, int& value) const;
    bool GetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long& value) const;
    bool GetAttributeGUID(const std::string& path, const std::string& name, _GUID& value) const;
    bool GetAttributeStr(unsigned int item, const std::string& name, std::string& value) const;
    bool GetAttributeDWORD(unsigned int item, const std::string& name, unsigned int& value) const;
    bool GetAttribute_i32(unsigned int item, const std::string& name, int& value) const;
    bool GetAttribute_ui64(unsigned int item, const std::string& name, unsigned long long& value) const;
    bool GetAttributeGUID(unsigned int item, const std::string& name, _GUID& value) const;
    /// @param attributes  receives all of them by name. An element that is not there ends the process.
    bool GetAttributes(const std::string& path, std::map<std::string, std::string>& attributes) const;
    bool GetAttributes(unsigned int item, std::map<std::string, std::string>& attributes) const;

    /// @return false when the element is missing. No text is an empty text, and text that is no number is 0.
    bool GetValueStr(const std::string& path, std::string& value) const;
    bool GetValueDWORD(const std::string& path, unsigned int& value) const;
    bool GetValue_i32(const std::string& path, int& value) const;
    bool GetValue_ui64(const std::string& path, unsigned long long& value) const;
    /// No text is the zero GUID. @return false also for text that is no GUID
    bool GetValueGUID(const std::string& path, _GUID& value) const;
    bool GetValueStr(unsigned int item, std::string& value) const;
    bool GetValueDWORD(unsigned int item, unsigned int& value) const;
    bool GetValue_i32(unsigned int item, int& value) const;
    bool GetValue_ui64(unsigned int item, unsigned long long& value) const;
    bool GetValueGUID(unsigned int item, _GUID& value) const;
    bool GetValueStr(unsigned int item, const std::string& path, std::string& value) const;
    bool GetValueDWORD(unsigned int item, const std::string& path, unsigned int& value) const;
    bool GetValue_i32(unsigned int item, const std::string& path, int& value) const;
    bool GetValue_ui64(unsigned int item, const std::string& path, unsigned long long& value) const;
    bool GetValueGUID(unsigned int item, const std::string& path, _GUID& value) const;

    /// The element with all that is in it, printed by itself.
    bool GetXMLData(const std::string& path, std::string& xml) const;
    bool GetXMLData(unsigned int item, std::string& xml) const;
    /// What is in the element, printed without it.
    bool GetChildrenXMLData(const std::string& path, std::string& xml) const;
    bool GetChildrenXMLData(unsigned int item, std::string& xml) const;
    /// Parses a document of its own and appends a copy of its nodes to the element's children.
    /// @return false, with nothing changed, when it cannot be parsed
    bool CloneValue(const std::string& path, const std::string& xml);
    bool CloneValue(unsigned int item, const std::string& xml);

private:
    bool Parse(const char* xml, size_t length);
    void EnsureDeclaration();

    tinyxml2::XMLElement* FindElement(std::string_view path, const tinyxml2::XMLElement* start = nullptr) const;
    tinyxml2::XMLElement* Below(unsigned int item, const std::string& path) const;
    tinyxml2::XMLElement* ElementOf(unsigned int item) const;
    unsigned int ItemOf(const tinyxml2::XMLElement* element) const;
    void ForgetItems();
    void ForgetItems(tinyxml2::XMLNode* node);

    tinyxml2::XMLElement* NewElement(const std::string& path, const std::string& value, tinyxml2::XMLNode* parent,
                                     bool cdata);
    bool SetText(tinyxml2::XMLNode* node, const char* text, bool cdata);
    bool WriteText(tinyxml2::XMLElement* pXMLElement, const std::string& value, bool cdata);
    bool WriteBelow(unsigned int item, const std::string& path, const std::string& value, bool cdata);
    bool WriteAttribute(tinyxml2::XMLElement* pXMLElement, const std::string& name, const std::string& value);
    bool RemoveElement(tinyxml2::XMLElement* pXMLElement);
    bool RemoveChildren(tinyxml2::XMLElement* pXMLElement);
    bool RemoveAttribute(tinyxml2::XMLElement* pXMLElement, const std::string& name);
    bool Clone(tinyxml2::XMLElement* pXMLElement, const std::string& xml);

    tinyxml2::XMLDocument m_XMLDocument;
    std::string m_path; // of LoadFile
    std::string m_doc;  // of GetDoc

    // Item n stands for m_items[n - m_firstItem]. Each element that has an item keeps its number as user data.
    mutable std::vector<tinyxml2::XMLElement*> m_items;
    unsigned int m_firstItem = 1;
};
