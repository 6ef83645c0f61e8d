#include "QlxApiCall.h"

#include "QlxApiXmlFmt.h"

namespace
{

const int STATUS_OK = 200;

} // namespace

CQlxApiCall::CQlxApiCall(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response)
    : m_request(request), m_response(response), m_channel(CQLXApiProc::GetChnIDFromUrl(request.GetUrl()))
{
    CQLXApiProc::GetUserVerifyXml(ip, request, m_verify);
}

bool CQlxApiCall::HasBody() const
{
    int length = 0;
    m_request.GetPayLoad(length);
    return length > 0;
}

bool CQlxApiCall::RequireBody()
{
    if (!HasBody())
    {
        Refuse();
        return false;
    }
    return true;
}

const CQLXXMLParse& CQlxApiCall::Body()
{
    if (m_body == nullptr)
    {
        int length = 0;
        const char* const payload = m_request.GetPayLoad(length);
        m_body = std::make_unique<CQLXXMLParse>(payload, static_cast<unsigned int>(length));
    }
    return *m_body;
}

bool CQlxApiCall::Succeeded(NETNS::DEV_RET result)
{
    if (result != NETNS::DEV_RET_OK)
    {
        Answer(result);
        return false;
    }
    return true;
}

int CQlxApiCall::Answer(NETNS::DEV_RET result)
{
    CQLXApiProc::CommonResp(m_response, result);
    return result == NETNS::DEV_RET_OK ? 0 : -1;
}

int CQlxApiCall::Answer(QLX_API_ERR code)
{
    CQLXApiProc::CommonResp(m_response, code);
    return code == QLX_API_ERR_OK ? 0 : -1;
}

int CQlxApiCall::AnswerOrRefuse(NETNS::DEV_RET result)
{
    return Answer(result == NETNS::DEV_RET_OK ? QLX_API_ERR_OK : QLX_API_ERR_BAD_PARAM);
}

int CQlxApiCall::Answer(CQLXXMLParse& document)
{
    const std::string& body = *document.GetDoc();
    m_response.SetResPackage(STATUS_OK, body.c_str(), static_cast<int>(body.size()), "");
    return 0;
}

unsigned int AddConfigRoot(CQLXXMLParse& document)
{
    const unsigned int root = document.AddElement("config", "", false);
    document.SetAttribute(root, "version", std::string("1.0"));
    document.SetAttribute(root, "xmlns", std::string(QLX_API_NAMESPACE));
    return root;
}

unsigned int AddEmpty(CQLXXMLParse& document, unsigned int parent, const char* name)
{
    return document.AddElement(parent, name, "", false);
}

unsigned int AddList(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int count)
{
    const unsigned int list = AddEmpty(document, parent, name);
    document.SetAttribute(list, "type", std::string("list"));
    document.SetAttribute(list, "count", count);
    return list;
}
