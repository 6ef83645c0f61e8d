// TransformAnswer.h: what a transform works on: the device's document, and the host's answer with one key's element.
//
// The answer text is parsed at the beginning and written back at the end, so that each transform adds to what stands
// there. Local to one transform.
#pragma once

#include "OnvifXmlParse.h"
#include "QLXXMLParse.h"

#include <initializer_list>
#include <string>

class CTransformAnswer
{
public:
    /// Finds the root and the key's element in the answer, or adds them.
    /// @param answer  borrowed; written back by the destructor
    /// @param root    "GetResponse" or "SetResponse"
    CTransformAnswer(const std::string& soap, std::string& answer, const std::string& root, const std::string& key);
    ~CTransformAnswer();
    CTransformAnswer(const CTransformAnswer&) = delete;
    CTransformAnswer& operator=(const CTransformAnswer&) = delete;

    /// Adds the key's `status`. @return false for a fault: the key holds just that
    bool AddStatus() { return AddStatus(m_key); }
    /// The same below another element of the answer.
    bool AddStatus(unsigned int item);

    const COnvifXmlParse& Soap() const { return m_soap; }
    CQLXXMLParse& Answer() { return m_answer; }
    unsigned int Key() const { return m_key; }

    /// The first element that one of the paths leads to; 0 for none.
    unsigned int FindFirst(std::initializer_list<const char*> paths) const;
    /// Adds the text of a device's element to the host's answer; nothing when the device's element is missing.
    /// @param from, path   where it stands in the device's document
    /// @param to, name     where it goes in the answer
    /// @return whether it was there
    bool Copy(unsigned int from, const std::string& path, unsigned int to, const std::string& name);
    /// The same for an attribute of `from`.
    bool CopyAttribute(unsigned int from, const std::string& attribute, unsigned int to, const std::string& name);

    /// Finds the child of that name below `parent` (0: the document itself) in a host's document, or adds it empty.
    static unsigned int FindOrAdd(CQLXXMLParse& document, unsigned int parent, const std::string& name);

private:
    COnvifXmlParse m_soap;
    std::string& m_text;
    CQLXXMLParse m_answer;
    unsigned int m_key;
};
