#include "ControlRequest.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include <strings.h>

namespace
{

constexpr std::string_view MARK = "ORBIT-700";
constexpr std::size_t MAX_BODY = 200;
constexpr std::size_t MAX_LOGIN = 200;
constexpr std::string_view BASE64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// RFC 4648, 4. @return empty when it holds another character
std::string DecodeBase64(std::string_view text)
{
    while (!text.empty() && text.back() == '=')
    {
        text.remove_suffix(1);
    }
    std::string decoded;
    unsigned int bits = 0;
    int count = 0;
    for (const char c : text)
    {
        const std::size_t value = BASE64.find(c);
        if (value == std::string_view::npos)
        {
            return {};
        }
        bits = (bits << 6) | static_cast<unsigned int>(value);
        count += 6;
        if (count >= 8)
        {
            count -= 8;
            decoded += static_cast<char>((bits >> count) & 0xff);
        }
    }
    return decoded;
}

bool StartsWithWord(std::string_view line, std::string_view word)
{
    return line.size() >= word.size() && strncasecmp(line.data(), word.data(), word.size()) == 0;
}

std::string_view Trim(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    const std::size_t end = text.find_last_not_of(" \t\r\n");
    return begin == std::string_view::npos ? std::string_view() : text.substr(begin, end - begin + 1);
}

/// RFC 7617: "Authorization: Basic " and name, colon, password in base64.
void ReadLogin(std::string_view header, ControlRequest& request)
{
    std::size_t at = 0;
    while (at < header.size())
    {
        const std::size_t end = std::min(header.find("\r\n", at), header.size());
        std::string_view line = header.substr(at, end - at);
        at = end + 2;
        if (!StartsWithWord(line, "Authorization:"))
        {
            continue;
        }
        line = Trim(line.substr(std::string_view("Authorization:").size()));
        if (!StartsWithWord(line, "Basic ") || line.size() > MAX_LOGIN)
        {
            return;
        }
        const std::string login = DecodeBase64(Trim(line.substr(std::string_view("Basic ").size())));
        const std::size_t colon = login.find(':');
        if (colon != std::string::npos)
        {
            request.user = login.substr(0, colon);
            request.password = login.substr(colon + 1);
        }
        return;
    }
}

} // namespace

ControlRequest ReadControlRequest(const char* message, std::size_t length)
{
    ControlRequest request;
    const std::string_view all(message, length);
    const std::size_t headerEnd = all.find("\r\n\r\n");
    if (headerEnd == std::string_view::npos || all.substr(0, 5) != "POST ")
    {
        return request;
    }
    const std::string_view body = Trim(all.substr(headerEnd + 4));
    if (body.substr(0, MARK.size()) != MARK || body.size() > MAX_BODY)
    {
        return request;
    }
    request.isControl = true;
    ReadLogin(all.substr(0, headerEnd), request);
    std::istringstream words{std::string(body.substr(MARK.size()))};
    std::string word;
    while (words >> word)
    {
        request.words.push_back(word);
    }
    return request;
}
