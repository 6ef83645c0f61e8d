#include "DevSearchBase.h"

#include "PFAssert.h"
#include "QLXXMLParse.h"

namespace
{

/// The product series that a result may name.
constexpr const char* PRODUCT_SERIES[] = {"QLX_IPC", "QLX_DVR", "ONVIF", "HK", "DH"};

} // namespace

CDevSearchBase::CDevSearchBase() : m_searches(0) {}

int CDevSearchBase::Initial(SearchCallback callback, void* user)
{
    m_callback = callback;
    m_user = user;
    return 1;
}

void CDevSearchBase::Search_Manual()
{
    if (!m_isAutomatic)
    {
        Op8();
    }
}

void CDevSearchBase::Search_StartAuto(int interval)
{
    PF_ASSERT(!m_isAutomatic);
    PF_ASSERT(m_callback != nullptr);
    Op8();
    m_isAutomatic = true;
    m_interval = interval;
    m_counter = 0;
    m_searches.SetValue(0);
}

void CDevSearchBase::Search_StopAuto()
{
    m_isAutomatic = false;
}

void CDevSearchBase::Quit()
{
    if (m_isAutomatic)
    {
        Op5();
    }
    Op8();
    m_callback = nullptr;
}

void CDevSearchBase::InitSearchResultXML(CQLXXMLParse& document)
{
    const unsigned int result = document.AddElement("multicastSearchResult", "", false);
    const unsigned int series = document.AddElement(result, "types/productSeries", "", false);
    for (const char* name : PRODUCT_SERIES)
    {
        document.AddElement(series, "enum", name, false);
    }
    const unsigned int address = document.AddElement(result, "tcpIp/ipAddr", "", false);
    document.SetAttribute(address, "type", "list");
    document.AddElement(result, "port", "", false);
    document.AddElement(result, "productInfo", "", false);
}
