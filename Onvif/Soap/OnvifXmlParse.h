// OnvifXmlParse.h: a SOAP document that is addressed with one fixed set of namespace prefixes, whatever prefixes the
// device at the other end has chosen.
//
// Paths are written with the standard prefixes (see the table in OnvifXmlParse.cpp) and translated on their way in;
// names of elements, and values that look like qualified names, are translated back on their way out. The document
// itself stays as it is. Only namespaces that the root element declares are known; a plain `xmlns` on the root is not
// supported.
//
// An object belongs to one thread.
#pragma once

#include "QLXXMLParse.h"

class COnvifXmlParse : public CQLXXMLParse
{
public:
    /// An empty document.
    COnvifXmlParse();
    /// Parses at once. What cannot be parsed leaves an empty document.
    explicit COnvifXmlParse(const std::string& xml);

    /// As in the base, and then learns the document's prefixes. Prefixes of an earlier document that the new one does
    /// not declare stay known.
    bool LoadXML(const std::string& xml);
    bool LoadFile(const std::string& path);

    // Everything below is as in the base, with translated paths.

    unsigned int GetFirstItem(const std::string& path) const;
    unsigned int GetFirstItem(unsigned int item, const std::string& path) const;
    unsigned int GetNextSiblingItemByName(unsigned int item, const std::string& name) const;
    /// The name has standard prefixes.
    bool GetItemName(unsigned int item, std::string& name) const;
    unsigned int GetChildrenLength(const std::string& path, const std::string& name) const;
    using CQLXXMLParse::GetChildrenLength;

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

    bool SetValue(const std::string& path, const std::string& value, bool cdata);
    bool SetValue(const std::string& path, unsigned int value);
    bool SetValue(const std::string& path, const _GUID& value);
    bool SetValue_i32(const std::string& path, int value);
    bool SetValue_ui64(const std::string& path, unsigned long long value);
    bool SetValue(unsigned int item, const std::string& path, const std::string& value, bool cdata);
    bool SetValue(unsigned int item, const std::string& path, unsigned int value);
    bool SetValue(unsigned int item, const std::string& path, const _GUID& value);
    bool SetValue_i32(unsigned int item, const std::string& path, int value);
    bool SetValue_ui64(unsigned int item, const std::string& path, unsigned long long value);
    using CQLXXMLParse::SetValue;
    using CQLXXMLParse::SetValue_i32;
    using CQLXXMLParse::SetValue_ui64;

    bool DeleteValue(const std::string& path);
    bool DeleteChildrenValue(const std::string& path);
    using CQLXXMLParse::DeleteChildrenValue;
    using CQLXXMLParse::DeleteValue;

    // Attribute names are not translated.
    bool SetAttribute(const std::string& path, const std::string& name, const std::string& value);
    bool SetAttribute(const std::string& path, const std::string& name, unsigned int value);
    bool SetAttribute(const std::string& path, const std::string& name, const _GUID& value);
    bool SetAttribute_i32(const std::string& path, const std::string& name, int value);
    bool SetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long value);
    bool DeleteAttribute(const std::string& path, const std::string& name);
    bool GetAttributeStr(const std::string& path, const std::string& name, std::string& value) const;
    bool GetAttributeDWORD(const std::string& path, const std::string& name, unsigned int& value) const;
    bool GetAttribute_i32(const std::string& path, const std::string& name, int& value) const;
    bool GetAttribute_ui64(const std::string& path, const std::string& name, unsigned long long& value) const;
    bool GetAttributeGUID(const std::string& path, const std::string& name, _GUID& value) const;
    bool GetAttributes(const std::string& path, std::map<std::string, std::string>& attributes) const;
    using CQLXXMLParse::DeleteAttribute;
    using CQLXXMLParse::GetAttribute_i32;
    using CQLXXMLParse::GetAttribute_ui64;
    using CQLXXMLParse::GetAttributeDWORD;
    using CQLXXMLParse::GetAttributeGUID;
    using CQLXXMLParse::GetAttributes;
    using CQLXXMLParse::GetAttributeStr;
    using CQLXXMLParse::SetAttribute;
    using CQLXXMLParse::SetAttribute_i32;
    using CQLXXMLParse::SetAttribute_ui64;

    /// A value that holds a ":" has standard prefixes.
    bool GetValueStr(const std::string& path, std::string& value) const;
    bool GetValueStr(unsigned int item, std::string& value) const;
    bool GetValueStr(unsigned int item, const std::string& path, std::string& value) const;
    bool GetValueDWORD(const std::string& path, unsigned int& value) const;
    bool GetValue_i32(const std::string& path, int& value) const;
    bool GetValue_ui64(const std::string& path, unsigned long long& value) const;
    bool GetValueGUID(const std::string& path, _GUID& value) const;
    bool GetValueDWORD(unsigned int item, const std::string& path, unsigned int& value) const;
    bool GetValue_i32(unsigned int item, const std::string& path, int& value) const;
    bool GetValue_ui64(unsigned int item, const std::string& path, unsigned long long& value) const;
    bool GetValueGUID(unsigned int item, const std::string& path, _GUID& value) const;
    using CQLXXMLParse::GetValue_i32;
    using CQLXXMLParse::GetValue_ui64;
    using CQLXXMLParse::GetValueDWORD;
    using CQLXXMLParse::GetValueGUID;

    /// Not for SOAP documents: these return false and touch nothing.
    bool CloneValue(const std::string& path, const std::string& xml);
    bool CloneValue(unsigned int item, const std::string& xml);
    bool GetXMLData(const std::string& path, std::string& xml) const;
    bool GetXMLData(unsigned int item, std::string& xml) const;
    bool GetChildrenXMLData(const std::string& path, std::string& xml) const;
    bool GetChildrenXMLData(unsigned int item, std::string& xml) const;

    /// Replace the prefix of each component of a path; one that is not known stays.
    void ChangeNamespaces(std::string& path) const;
    void ChangeNamespacesToStandard(std::string& path) const;

    /// Search a lowered copy of `haystack`. @param needle  lower case. @return the position, -1 for none
    static int InsensitiveFind(const std::string& haystack, const std::string& needle, int pos);
    static int InsensitiveRightFind(const std::string& haystack, const std::string& needle);
    /// Whether a URI ends in `suffix`. @param suffix  lower case; that of the URI does not matter
    static bool CheckNamespace(const std::string& uri, const std::string& suffix);

private:
    void InitNamespaceMap();
    void RefreshNamespaceMap();
    std::string Translated(const std::string& path) const;

    std::map<std::string, std::string> m_namespaceMap; // the document's prefix by standard prefix
};
