#include "RTSP_SessionTexts.h"

#include "PubHelper.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>

namespace
{

/// Addresses are of 127 bytes at most.
constexpr std::size_t MAX_TRANSPORT_BYTES = 512;

} // namespace

std::string DateHeader()
{
    return DateHeader(std::time(nullptr));
}

std::string DateHeader(std::time_t now)
{
    std::tm utc{};
    gmtime_r(&now, &utc);
    char date[160];
    const std::size_t length = std::strftime(
        date, sizeof(date), "Date: %a, %b %d %Y %H:%M:%S GMT\r\nExpires: %a, %b %d %Y %H:%M:%S GMT\r\n", &utc);
    return std::string(date, length);
}

void MakeSessionId(char (&sessionId)[16])
{
    // The generator gives one number all through a millisecond, so most ids are one digit repeated. A session belongs
    // to its connection: the id is echoed by clients and never looked up.
    constexpr int DIGITS = 15;
    for (int i = 0; i < DIGITS; ++i)
        sessionId[i] = static_cast<char>('0' + PUB_Rand() % 10);
    if (sessionId[0] == '0')
        sessionId[0] = '1';
    sessionId[DIGITS] = '\0';
}

std::string TextForLog(const char* text)
{
    constexpr std::size_t SHOWN_BYTES = 240;
    std::string shown(text, strnlen(text, SHOWN_BYTES));
    if (const char* header = strcasestr(shown.c_str(), "authorization:"))
        shown.replace(static_cast<std::size_t>(header - shown.c_str()), std::string::npos, "authorization: ***");
    for (std::size_t scheme = shown.find("://"); scheme != std::string::npos; scheme = shown.find("://", scheme + 1))
    {
        const std::size_t user = scheme + 3;
        const std::size_t end = std::min(shown.find_first_of("/ \r\n", user), shown.size());
        const std::size_t at = shown.rfind('@', end);
        if (at != std::string::npos && at > user)
            shown.replace(user, at - user, "***");
        else if (end == shown.size())
            shown.resize(user); // the cut may have taken the "@"
    }
    return shown;
}

std::string UnicastTransport(const std::string& destination, const std::string& source, unsigned short port1,
                             unsigned short port2, unsigned short rtpPort, unsigned short rtcpPort, std::uint32_t ssrc)
{
    char line[MAX_TRANSPORT_BYTES];
    std::snprintf(line, sizeof(line),
                  "Transport: RTP/AVP;unicast;destination=%s;source=%s;client_port=%hu-%hu;server_port=%hu-%hu;"
                  "ssrc=%" PRIx32 "\r\n",
                  destination.c_str(), source.c_str(), port1, port2, rtpPort, rtcpPort, ssrc);
    return line;
}

std::string MulticastTransport(const std::string& group, const std::string& source, unsigned short port1,
                               unsigned short port2, unsigned short rtpPort, unsigned short rtcpPort, int ttl)
{
    char line[MAX_TRANSPORT_BYTES];
    std::snprintf(line, sizeof(line),
                  "Transport: RTP/AVP;multicast;destination=%s;source=%s;port=%hu-%hu;server_port=%hu-%hu;ttl=%d\r\n",
                  group.c_str(), source.c_str(), port1, port2, rtpPort, rtcpPort, ttl);
    return line;
}

std::string InterleavedTransport(const std::string& destination, const std::string& source, std::uint32_t channel1,
                                 std::uint32_t channel2, std::uint32_t ssrc)
{
    char line[MAX_TRANSPORT_BYTES];
    std::snprintf(line, sizeof(line),
                  "Transport: RTP/AVP/TCP;unicast;destination=%s;source=%s;interleaved=%" PRIu32 "-%" PRIu32
                  ";ssrc=%" PRIx32 "\r\n",
                  destination.c_str(), source.c_str(), channel1, channel2, ssrc);
    return line;
}

void ReadCookies(const char* text, char (&cookie)[51], char (&cookieInPost)[51])
{
    constexpr const char* NAME = "x-sessioncookie: ";
    constexpr std::size_t MAX_COOKIE_BYTES = 50;
    std::memset(cookie, 0, sizeof(cookie));
    std::memset(cookieInPost, 0, sizeof(cookieInPost));
    const char* value = std::strstr(text, NAME);
    if (value == nullptr)
        return;
    value += std::strlen(NAME);
    const std::size_t length = std::min(std::strcspn(value, " \t\r"), MAX_COOKIE_BYTES);
    if (std::strncmp(text, "GET", 3) == 0)
        std::memcpy(cookie, value, length);
    else if (std::strncmp(text, "POST", 4) == 0)
        std::memcpy(cookieInPost, value, length);
}
