#include "TransformAnswer.h"

#include "XmlTransform.h"

CTransformAnswer::CTransformAnswer(const std::string& soap, std::string& answer, const std::string& root,
                                   const std::string& key)
    : m_soap(soap), m_text(answer), m_answer(answer), m_key(FindOrAdd(m_answer, FindOrAdd(m_answer, 0, root), key))
{
}

CTransformAnswer::~CTransformAnswer()
{
    m_text = *m_answer.GetDoc();
}

unsigned int CTransformAnswer::FindOrAdd(CQLXXMLParse& document, unsigned int parent, const std::string& name)
{
    const unsigned int found = parent != 0 ? document.GetFirstItem(parent, name) : document.GetFirstItem(name);
    if (found != 0)
    {
        return found;
    }
    return parent != 0 ? document.AddValue(parent, name, "", false) : document.AddValue(name, "", false);
}

bool CTransformAnswer::AddStatus(unsigned int item)
{
    return CXmlTransform::TransResponseBase(m_soap, m_answer, item);
}

unsigned int CTransformAnswer::FindFirst(std::initializer_list<const char*> paths) const
{
    unsigned int found = 0;
    for (const char* const* path = paths.begin(); path != paths.end() && found == 0; ++path)
    {
        found = m_soap.GetFirstItem(*path);
    }
    return found;
}

bool CTransformAnswer::Copy(unsigned int from, const std::string& path, unsigned int to, const std::string& name)
{
    std::string value;
    const bool there = m_soap.GetValueStr(from, path, value);
    if (there)
    {
        m_answer.AddValue(to, name, value, false);
    }
    return there;
}

bool CTransformAnswer::CopyAttribute(unsigned int from, const std::string& attribute, unsigned int to,
                                     const std::string& name)
{
    std::string value;
    const bool there = m_soap.GetAttributeStr(from, attribute, value);
    if (there)
    {
        m_answer.AddValue(to, name, value, false);
    }
    return there;
}
