#include "RtspTransport.h"

#include "RTSP_Console.h"
#include "ShareSDK.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace
{
constexpr std::size_t MAX_HOST = 127;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool AtLineEnd(const char* text)
{
    return text[0] == '\r' && text[1] == '\n';
}

bool ReadUnicast(const char*, RTSP_TRANSPORT& out)
{
    out.multicast = false;
    return true;
}

bool ReadMulticast(const char*, RTSP_TRANSPORT& out)
{
    out.multicast = true;
    return true;
}

bool ReadMode(const char* parameter, RTSP_TRANSPORT& out)
{
    out.mode = strcmp(parameter, "RTP/AVP/TCP") == 0 ? STREAMING_TCP : STREAMING_UDP;
    snprintf(out.transport, sizeof(out.transport), "%s", parameter);
    return true;
}

bool ReadDestination(const char* parameter, RTSP_TRANSPORT& out)
{
    snprintf(out.destination, sizeof(out.destination), "%s", parameter);
    return true;
}

// The number is read right behind the name: "ttl16" is accepted and "ttl=16" is refused. Clients see it so.
bool ReadTtl(const char* parameter, RTSP_TRANSPORT& out)
{
    const char* number = parameter + strlen("ttl");
    if (!IsDigit(*number))
        return false;
    out.ttl = RtspParseInt(number);
    return true;
}

bool ReadPorts(const char* pair, RTSP_TRANSPORT& out)
{
    unsigned int first = 0;
    unsigned int second = 0;
    if (!RtspParsePair(pair, first, second))
        return false;
    out.port1 = static_cast<unsigned short>(first);
    out.port2 = static_cast<unsigned short>(second);
    return true;
}

bool ReadClientPort(const char* parameter, RTSP_TRANSPORT& out)
{
    return ReadPorts(parameter + strlen("client_port="), out);
}

bool ReadPort(const char* parameter, RTSP_TRANSPORT& out)
{
    const char* pair = parameter + strlen("port=");
    char line[64];
    snprintf(line, sizeof(line), "rtsp %d.", *pair);
    SHARESDK_NormalOutput(line, __FILE__, __LINE__);
    return ReadPorts(pair, out);
}

bool ReadInterleaved(const char* parameter, RTSP_TRANSPORT& out)
{
    return RtspParsePair(parameter + strlen("interleaved="), out.chn1, out.chn2);
}

enum Match
{
    WHOLE,  // every byte as it is spelled
    PREFIX, // the first letters, in any case
};

struct ParameterRow
{
    const char* name;
    Match match;
    bool (*read)(const char* parameter, RTSP_TRANSPORT& out); // false: the header is refused
};

// First match wins.
const ParameterRow PARAMETERS[] = {
    {"unicast", WHOLE, ReadUnicast},  {"multicast", WHOLE, ReadMulticast},
    {"RTP/AVP/TCP", WHOLE, ReadMode}, {"RTP/AVP", WHOLE, ReadMode},
    {"RTP/AVP/UDP", WHOLE, ReadMode}, {"destination=", PREFIX, ReadDestination},
    {"ttl", PREFIX, ReadTtl},         {"client_port=", PREFIX, ReadClientPort},
    {"port=", PREFIX, ReadPort},      {"interleaved=", PREFIX, ReadInterleaved},
};

const ParameterRow* FindParameter(const char* parameter)
{
    for (const ParameterRow& row : PARAMETERS)
    {
        const bool found = row.match == WHOLE ? strcmp(parameter, row.name) == 0
                                              : strncasecmp(parameter, row.name, strlen(row.name)) == 0;
        if (found)
            return &row;
    }
    return nullptr;
}

bool ReadParameter(const char* parameter, RTSP_TRANSPORT& out)
{
    const ParameterRow* row = FindParameter(parameter);
    if (row == nullptr)
    {
        RTSP_ConsoleLine("Transport  error para:%s  %s %d\n", parameter, __FILE__, __LINE__);
        return true;
    }
    if (row->read(parameter, out))
        return true;
    RTSP_ConsoleLine("Transport param error %s %d\n", __FILE__, __LINE__);
    return false;
}

// What must hold at the end of the header.
int Complete(unsigned int& nextChannel, RTSP_TRANSPORT& out)
{
    if (out.mode == STREAMING_NONE)
        return -1;
    if (out.mode == STREAMING_UDP)
        return out.port1 != 0 && out.port2 != 0 ? 0 : -1;
    if (out.chn1 == RTSP_CHANNEL_NONE || out.chn2 == RTSP_CHANNEL_NONE)
    {
        out.chn1 = nextChannel;
        out.chn2 = nextChannel + 1;
        nextChannel += 2;
    }
    return 0;
}
} // namespace

int parseTransportHeader(const char* text, unsigned int& nextChannel, RTSP_TRANSPORT& out)
{
    out = RTSP_TRANSPORT();
    out.ttl = 255;
    out.chn1 = RTSP_CHANNEL_NONE;
    out.chn2 = RTSP_CHANNEL_NONE;

    CRtspTransportParameters parameters(text);
    if (!parameters.HasHeader())
        return -1;
    char parameter[128];
    while (parameters.Next(parameter))
    {
        if (!ReadParameter(parameter, out))
            return -1;
    }
    return parameters.IsComplete() ? Complete(nextChannel, out) : 0;
}

bool RtspAsksDynamicRate(const char* text)
{
    return strcasestr(text, "x-Dynamic-Rate: 1") != nullptr;
}

bool GetLocalIPFromRequest(const char* text, std::string& host)
{
    static const char SCHEME[] = "rtsp://";
    // Every other byte only: the URL of a SETUP stands at offset 6 and is found, that of a longer method may not be.
    for (const char* p = text; *p != '\0'; p += 2)
    {
        if (strncasecmp(p, SCHEME, strlen(SCHEME)) == 0)
        {
            p += strlen(SCHEME);
            const std::size_t length = strcspn(p, ":/ \r\n");
            host.assign(p, length < MAX_HOST ? length : MAX_HOST);
            return true;
        }
        if (p[1] == '\0')
            break;
    }
    return false;
}

int parseRangeHeader(const char* text, double& start, double& end)
{
    start = 0;
    end = 0;
    const char* p = strcasestr(text, "Range:");
    if (p == nullptr)
        return -1;
    p += strlen("Range:");
    while (strncasecmp(p, "npt", strlen("npt")) != 0)
    {
        if (*p == '\0' || AtLineEnd(p))
            return 0;
        ++p;
    }
    p += strlen("npt");
    p += strspn(p, "=");
    if (!IsDigit(*p))
        return -1;
    char* next = nullptr;
    start = strtod(p, &next);
    next += strspn(next, " ");
    if (*next != '-')
        return 0;
    ++next;
    next += strspn(next, " ");
    if (IsDigit(*next))
        end = strtod(next, nullptr);
    return 0;
}

bool GetURLFieldValue(const std::string& url, const char* name, std::string& value)
{
    std::string fields = url;
    if (!fields.empty() && fields.back() == '/')
        fields.back() = '&';
    else
        fields += '&';

    const std::size_t found = fields.find(name);
    if (found == std::string::npos)
        return false;
    const std::size_t equals = fields.find('=', found + strlen(name));
    if (equals == std::string::npos)
        return false;
    const std::size_t end = fields.find('&', equals + 1);
    if (end == std::string::npos)
        return false;
    value = fields.substr(equals + 1, end - equals - 1);
    return true;
}

CRtspTransportParameters::CRtspTransportParameters(const char* text) : m_next(strcasestr(text, "Transport:"))
{
    if (m_next == nullptr)
        return;
    m_next += strlen("Transport:");
    // One character counts as the blank behind the colon, so that a value without a blank loses its first letter.
    if (*m_next != '\0')
        ++m_next;
    m_next += strspn(m_next, " ");
}

bool CRtspTransportParameters::Next(char (&parameter)[128])
{
    std::size_t length = 0;
    while (m_next != nullptr && m_end == END_NOT_YET)
    {
        const char c = *m_next;
        if (c == '\0')
        {
            m_end = END_OF_TEXT; // what stands there may be half a parameter
            return false;
        }
        if (c == ';')
        {
            parameter[length] = '\0';
            ++m_next;
            m_next += strspn(m_next, " ");
            return true;
        }
        if (AtLineEnd(m_next))
        {
            parameter[length] = '\0';
            m_end = END_OF_HEADER;
            return true;
        }
        if (length < sizeof(parameter) - 1)
            parameter[length++] = c;
        ++m_next;
    }
    return false;
}

int RtspParseInt(const char* text)
{
    const long number = strtol(text, nullptr, 10);
    if (number > INT_MAX)
        return INT_MAX;
    return number < INT_MIN ? INT_MIN : static_cast<int>(number);
}

bool RtspParsePair(const char* text, unsigned int& first, unsigned int& second)
{
    const std::size_t digits = strspn(text, "0123456789");
    if (digits == 0 || text[digits] != '-' || !IsDigit(text[digits + 1]))
        return false;
    first = static_cast<unsigned int>(RtspParseInt(text));
    second = static_cast<unsigned int>(RtspParseInt(text + digits + 1));
    return true;
}
