#include "QlxApiProtocolProc.h"

#include "Base64Coder.h"
#include "QLXXMLParse.h"
#include "QlxApiXmlFmt.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace
{

const int STATUS_OK = 200;
const int STATUS_BAD_REQUEST = 400;
const int STATUS_UNAUTHORIZED = 401;

const size_t CREDENTIALS_MAX = 64; // decoded bytes of a Basic header; what is longer is cut at 63
const size_t CREDENTIAL_MAX = 31;  // characters of the name and of the password

struct RESULT_ROW
{
    NETNS::DEV_RET result;
    QLX_API_ERR code;
};

const RESULT_ROW RESULTS[] = {
    {NETNS::DEV_RET_OK, QLX_API_ERR_OK},
    {NETNS::DEV_RET_FAILED, QLX_API_ERR_DEV_FAILED},
    {NETNS::DEV_RET_NO_RIGHT, QLX_API_ERR_NO_RIGHT},
    {NETNS::DEV_RET_BAD_PARAM, QLX_API_ERR_BAD_PARAM},
    {NETNS::DEV_RET_NOT_SUPPORTED, QLX_API_ERR_NOT_SUPPORT},
};

QLX_API_ERR CodeOf(NETNS::DEV_RET result)
{
    for (const RESULT_ROW& row : RESULTS)
    {
        if (row.result == result)
        {
            return row.code;
        }
    }
    return QLX_API_ERR_NOT_SUPPORT;
}

bool IsSpace(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// "name:password" into its halves. The name has at least one character; white space in front of the password is skipped
// and the next one ends it.
void SplitCredentials(const char* text, std::string& user, std::string& password)
{
    user.clear();
    password.clear();
    const char* const colon = text + std::strcspn(text, ":");
    user.assign(text, std::min<size_t>(static_cast<size_t>(colon - text), CREDENTIAL_MAX));
    if (colon == text || *colon == '\0')
    {
        return;
    }
    const char* begin = colon + 1;
    while (IsSpace(*begin))
    {
        ++begin;
    }
    const char* end = begin;
    while (*end != '\0' && !IsSpace(*end))
    {
        ++end;
    }
    password.assign(begin, std::min<size_t>(static_cast<size_t>(end - begin), CREDENTIAL_MAX));
}

} // namespace

CQLXApiProc& CQLXApiProc::Instance()
{
    static CQLXApiProc proc;
    return proc;
}

int CQLXApiProc::Init(unsigned int channels, CDevInterface* dev)
{
    if (dev == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    m_channels = channels;
    m_dev = dev;
    return 1;
}

int CQLXApiProc::ProcCmd(const std::string& ip, QLX_API_CMD cmd, const CHttpProtocolAnalyse& request,
                         CHttpProtocolAnalyse& response)
{
    for (const QLX_API_COMMAND& row : QlxApiCommands())
    {
        if (row.value == cmd && row.operation != nullptr && m_dev != nullptr)
        {
            (this->*row.operation)(ip, request, response);
            return 0;
        }
    }
    CommonResp(response, QLX_API_ERR_NOT_SUPPORT);
    return 0;
}

void CQLXApiProc::CommonResp(CHttpProtocolAnalyse& response, QLX_API_ERR code)
{
    if (code == QLX_API_ERR_OK)
    {
        const std::string body = CQlxApiXmlFmt::CorrectResponse();
        response.SetResPackage(STATUS_OK, body.c_str(), static_cast<int>(body.size()), "");
        return;
    }
    if (code == QLX_API_ERR_NO_RIGHT)
    {
        response.SetResPackage(STATUS_UNAUTHORIZED, nullptr, 0, "");
        response.SetHeaderLine("WWW-Authenticate: Basic realm=\"Web Service\"");
        return;
    }
    CQLXXMLParse document(CQlxApiXmlFmt::ErrorResponse());
    document.SetAttribute_i32("config", "errorCode", code);
    const std::string& body = *document.GetDoc();
    response.SetResPackage(STATUS_BAD_REQUEST, body.c_str(), static_cast<int>(body.size()), "");
}

void CQLXApiProc::CommonResp(CHttpProtocolAnalyse& response, NETNS::DEV_RET result)
{
    CommonResp(response, CodeOf(result));
}

bool CQLXApiProc::GetUserInfo(const CHttpProtocolAnalyse& request, std::string& user, std::string& password)
{
    std::string encoded;
    const bool found = request.GetVerifyInfo(encoded);
    unsigned char text[CREDENTIALS_MAX + 1] = {};
    unsigned long room = CREDENTIALS_MAX;
    CBase64Coder::Decode(encoded, text, &room); // what was decoded before the room ended stands
    SplitCredentials(reinterpret_cast<const char*>(text), user, password);
    return found;
}

// Nothing is escaped: the host gets a "<" of a password as it stands.
void CQLXApiProc::GetUserVerifyXml(std::string ip, const CHttpProtocolAnalyse& request, char* out)
{
    if (out == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return;
    }
    std::string user;
    std::string password;
    GetUserInfo(request, user, password);

    const char PLACE[] = "%s";
    std::string text = CQlxApiXmlFmt::GetVerifyXml();
    size_t from = 0;
    for (const std::string* value : {&user, &password, &ip})
    {
        const size_t place = text.find(PLACE, from);
        text.replace(place, std::strlen(PLACE), *value);
        from = place + value->size();
    }
    std::snprintf(out, VERIFY_SIZE, "%s", text.c_str());
}

unsigned int CQLXApiProc::GetChnIDFromUrl(const std::string& url)
{
    unsigned int channel = 1;
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    std::sscanf(url.c_str(), "%*[^/]/%u", &channel);
    return channel;
}

bool CQLXApiProc::GetActionFromUrl(const std::string& url, std::string& action)
{
    const size_t first = url.find('/');
    const size_t second = first != std::string::npos ? url.find('/', first + 1) : first;
    if (second == std::string::npos)
    {
        return false;
    }
    action = url.substr(second + 1);
    return true;
}

void CQLXApiProc::Time2Str(std::time_t seconds, char* out)
{
    tm fields = {};
    localtime_r(&seconds, &fields);
    std::snprintf(out, TIME_SIZE, "%04d-%02d-%02d %02d:%02d:%02d", fields.tm_year + 1900, fields.tm_mon + 1,
                  fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec);
}

void CQLXApiProc::str2Datetime(const std::string& text, NETNS::DEV_DATETIME& time)
{
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    const int count = std::sscanf(text.c_str(), "%hu-%hu-%hu %hu:%hu:%hu", &time.date.year, &time.date.month,
                                  &time.date.day, &time.time.hour, &time.time.minute, &time.time.second);
    if (count < 6)
    {
        SHARESDK_NormalOutput(" read para error!", __FILE__, __LINE__);
    }
}

void CQLXApiProc::Datetime2str(const NETNS::DEV_DATETIME& time, std::string& text)
{
    char out[64];
    std::snprintf(out, sizeof(out), "%04d-%02d-%02d %02d:%02d:%02d", time.date.year, time.date.month, time.date.day,
                  time.time.hour, time.time.minute, time.time.second);
    text = out;
}

bool CQLXApiProc::SupportPtz()
{
    bool integrated = false;
    bool rs485 = false;
    m_dev->GetIntegratedPtz(integrated);
    m_dev->GetSupportRS485Ptz(rs485);
    return integrated && rs485;
}
