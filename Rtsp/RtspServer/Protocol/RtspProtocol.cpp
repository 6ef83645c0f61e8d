#include "RtspProtocol.h"

#include "RtspTransport.h"
#include "ShareSDK.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace
{
constexpr std::size_t MAX_WORD = 159;       // bytes of a method or a URL
constexpr std::size_t MAX_USER_AGENT = 159; // what is longer is cut

constexpr unsigned int UNSIGNED_MAX = 0xFFFFFFFFu;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// A number as scanf's %u reads it, the same on 32 and 64 bits: blanks and line ends in front, a sign, digits. What is
// too large counts as the largest.
bool ReadUnsigned(const char* text, unsigned int& value)
{
    text += strspn(text, " \t\n\v\f\r");
    const bool negative = *text == '-';
    if (*text == '-' || *text == '+')
        ++text;
    if (!IsDigit(*text))
        return false;
    unsigned long long number = 0;
    for (; IsDigit(*text); ++text)
    {
        number = number * 10 + static_cast<unsigned int>(*text - '0');
        if (number > UNSIGNED_MAX)
            number = UNSIGNED_MAX;
    }
    value = static_cast<unsigned int>(number);
    if (negative && value != UNSIGNED_MAX)
        value = 0u - value;
    return true;
}

// Copies the bytes up to one of `delimiters`; the text moves behind them. False when there are more than MAX_WORD.
bool TakeWord(const char*& text, const char* delimiters, std::string& word)
{
    const std::size_t length = strcspn(text, delimiters);
    if (length > MAX_WORD)
        return false;
    word.assign(text, length);
    text += length;
    return true;
}
} // namespace

bool RtspIsHttpMethod(const std::string& method, CPolicy policy)
{
    if (policy.StandardRtsp())
        return method == "GET" || method == "POST";
    return method.compare(0, 3, "GET") == 0 || method.compare(0, 4, "POST") == 0;
}

CRtspProtocol::CRtspProtocol(char* text, unsigned int len, CPolicy policy)
    : m_text(text), m_length(len), m_policy(policy)
{
}

bool CRtspProtocol::Parse()
{
    std::string url;
    if (!ReadRequestLine(m_method, url))
        return false;
    if (RtspIsHttpMethod(m_method, m_policy))
        return true;
    if (url.empty())
        return false;
    if (url.back() == '/')
        url.pop_back();
    m_url = url;
    return ReadHeaders();
}

bool CRtspProtocol::ReadRequestLine(std::string& method, std::string& url)
{
    const std::size_t blanks = strspn(m_text, " \t");
    m_text += blanks;
    m_length -= blanks < m_length ? static_cast<unsigned int>(blanks) : m_length;

    const char* next = m_text;
    if (!TakeWord(next, " \t", method) || method.empty())
        return false;
    next += strspn(next, " \t");
    return TakeWord(next, " ", url);
}

bool CRtspProtocol::ReadHeaders()
{
    const char* cseq = strstr(m_text + m_method.size() + m_url.size(), "CSeq:");
    if (cseq == nullptr || !ReadUnsigned(cseq + strlen("CSeq:"), m_cseq))
        return false;

    if (const char* agent = strstr(m_text, "User-Agent:"))
    {
        agent += strlen("User-Agent:");
        const std::size_t length = strcspn(agent, "\r\n");
        if (length == 0)
            return false;
        m_userAgent.assign(agent, length < MAX_USER_AGENT ? length : MAX_USER_AGENT);
    }

    const char* contentLength = strstr(m_text, "Content-Length:");
    return contentLength == nullptr || ReadUnsigned(contentLength + strlen("Content-Length:"), m_contentLength);
}

int CRtspProtocol::GetMethod(std::string& method) const
{
    method = m_method;
    return 1;
}

int CRtspProtocol::GetURL(std::string& url) const
{
    url = m_url;
    return 1;
}

int CRtspProtocol::GetTrackID() const
{
    const std::size_t found = m_url.find("trackID=");
    if (found == std::string::npos)
        return -1;
    return RtspParseInt(m_url.c_str() + found + strlen("trackID="));
}

bool CRtspProtocol::ParseTransportHeader()
{
    CRtspTransportParameters parameters(m_text);
    if (!parameters.HasHeader())
        return false;
    char parameter[128];
    while (parameters.Next(parameter))
    {
        if (!ReadTransportParameter(parameter))
        {
            SHARESDK_NormalOutput("Transport param error!", __FILE__, __LINE__);
            return false;
        }
    }
    return m_streamMode != STREAMING_NONE;
}

bool CRtspProtocol::ReadTransportParameter(const char* parameter)
{
    struct PairRow
    {
        const char* prefix;
        unsigned short CRtspProtocol::*first;
        unsigned short CRtspProtocol::*second;
    };
    static const PairRow PAIRS[] = {
        {"client_port=", &CRtspProtocol::m_clientRtpPort, &CRtspProtocol::m_clientRtcpPort},
        {"port=", &CRtspProtocol::m_clientRtpPort, &CRtspProtocol::m_clientRtcpPort},
        {"interleaved=", &CRtspProtocol::m_rtpChannel, &CRtspProtocol::m_rtcpChannel},
    };
    for (const PairRow& row : PAIRS)
    {
        const std::size_t length = strlen(row.prefix);
        if (strncasecmp(parameter, row.prefix, length) != 0)
            continue;
        unsigned int first = 0;
        unsigned int second = 0;
        if (!RtspParsePair(parameter + length, first, second))
            return false;
        this->*row.first = static_cast<unsigned short>(first);
        this->*row.second = static_cast<unsigned short>(second);
        return true;
    }

    if (strcmp(parameter, "unicast") == 0)
        m_transportType = TRANSPORT_UNICAST;
    else if (strcmp(parameter, "multicast") == 0)
        m_transportType = TRANSPORT_MULTICAST;
    else if (strcmp(parameter, "RTP/AVP/TCP") == 0)
        m_streamMode = STREAMING_TCP;
    else if (strcmp(parameter, "RTP/AVP") == 0 || strcmp(parameter, "RTP/AVP/UDP") == 0)
        m_streamMode = STREAMING_UDP;
    else
    {
        char line[256];
        snprintf(line, sizeof(line), "not parse transport para:%s", parameter);
        SHARESDK_NormalOutput(line, __FILE__, __LINE__);
    }
    return true;
}
