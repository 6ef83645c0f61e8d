#include "RTSP_SessionTexts.h"

#include "PubHelper.h"

#include <algorithm>
#include <cstring>

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
