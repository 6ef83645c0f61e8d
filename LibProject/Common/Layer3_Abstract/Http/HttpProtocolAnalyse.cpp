#include "HttpProtocolAnalyse.h"

#include "PFAssert.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

const std::string_view HEADER_END = "\r\n\r\n";
const std::string_view LINE_END = "\r\n";
const std::string_view BASIC_AUTHORIZATION = "Authorization: Basic ";

const int HEADER_ROOM = 1025; // for a response's header, with a zero byte
const int AUTH_INFO_MAX = 512;

// The header of a message: everything up to and including the blank line, as text; empty when there is none.
std::string_view GetHttpHeader(const char* text)
{
    const char* const end = text != nullptr ? std::strstr(text, HEADER_END.data()) : nullptr;
    return end != nullptr ? std::string_view(text, static_cast<size_t>(end - text) + HEADER_END.size())
                          : std::string_view();
}

bool Holds(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

} // namespace

CHttpProtocolAnalyse::CHttpProtocolAnalyse(const std::string& message)
{
    AnalyzeHttpPack(message.data(), static_cast<int>(std::min<size_t>(message.size(), INT_MAX - 1)));
}

CHttpProtocolAnalyse::CHttpProtocolAnalyse(const char* message, int length)
{
    AnalyzeHttpPack(message, length);
}

void CHttpProtocolAnalyse::AnalyzeHttpPack(const char* message, int length)
{
    if (message == nullptr || length < 1)
    {
        return;
    }
    m_protocol.Reallocate(length + 1);
    std::memcpy(m_protocol.buffer, message, static_cast<size_t>(length));
    m_protocol.buffer[length] = '\0';

    const std::string_view header = GetHttpHeader(m_protocol.buffer);
    m_protocol.totalLength = length;
    m_protocol.payloadLength = length - static_cast<int>(header.size());

    const size_t end = header.find(" HTTP");
    if (end == std::string_view::npos)
    {
        return;
    }
    const size_t slash = header.find('/');
    m_protocol.url = slash < end ? header.substr(slash + 1, end - slash - 1) : std::string_view();
    FilterURL();
}

std::string_view CHttpProtocolAnalyse::Header() const
{
    return GetHttpHeader(m_protocol.buffer);
}

bool CHttpProtocolAnalyse::IsRequestCmd() const
{
    return !m_protocol.url.empty() && !Holds(m_protocol.url, ".");
}

bool CHttpProtocolAnalyse::IsRequestFile() const
{
    return !IsRequestCmd();
}

bool CHttpProtocolAnalyse::IsResponse() const
{
    return Header().substr(0, 4) == "HTTP";
}

const std::string& CHttpProtocolAnalyse::GetUrl() const
{
    return m_protocol.url;
}

void CHttpProtocolAnalyse::SetURL(const std::string& url)
{
    m_protocol.url = url;
}

const char* CHttpProtocolAnalyse::GetPayLoad(int& len) const
{
    if (m_protocol.buffer == nullptr || m_protocol.payloadLength <= 0)
    {
        len = 0;
        return "";
    }
    len = m_protocol.payloadLength;
    return m_protocol.buffer + (m_protocol.totalLength - m_protocol.payloadLength);
}

const char* CHttpProtocolAnalyse::GetBuf(int& len) const
{
    if (m_protocol.buffer == nullptr || m_protocol.totalLength <= 0)
    {
        len = 0;
        return "";
    }
    len = m_protocol.totalLength;
    return m_protocol.buffer;
}

bool CHttpProtocolAnalyse::GetVerifyInfo(std::string& info) const
{
    const std::string_view header = Header();
    const size_t found = header.find(BASIC_AUTHORIZATION);
    if (found == std::string_view::npos)
    {
        return false;
    }
    const size_t begin = found + BASIC_AUTHORIZATION.size();
    info = header.substr(begin, header.find(LINE_END, begin) - begin);
    return true;
}

// An API answer has an empty URL and with it the extension ".html": clients get XML as "text/html".
const std::string& CHttpProtocolAnalyse::GetMimeType() const
{
    static const std::string UNKNOWN;
    std::string_view extension = ".html";
    const size_t dot = m_protocol.url.rfind('.');
    if (IsRequestCmd())
    {
        extension = ".xml";
    }
    else if (dot != std::string::npos)
    {
        extension = std::string_view(m_protocol.url).substr(dot);
    }
    // First match wins, anywhere in the run of extensions: ".c" is ".cod".
    for (const auto& row : HTTP_DEFINE::g_ContentTypeMap)
    {
        if (Holds(row.first, extension))
        {
            return row.second;
        }
    }
    return UNKNOWN;
}

// @param out  room for HEADER_ROOM bytes. @return the header's length
int CHttpProtocolAnalyse::CreateHttpHeader(HTTP_DEFINE::HttpStatusCode status, char* out, int len,
                                           const std::string& authInfo) const
{
    PF_ASSERT(out != nullptr);
    const auto strIter = HTTP_DEFINE::g_HTTPStatusMap.find(status);
    PF_ASSERT(strIter != HTTP_DEFINE::g_HTTPStatusMap.end());

    const char* contentType = status == 200 ? GetMimeType().c_str() : "text/html";
    if (Holds(m_protocol.url, "queryQRInfo") || Holds(m_protocol.url, "GetSnapshot"))
    {
        contentType = "image/png"; // whatever the status or the picture's format
    }
    return std::snprintf(out, HEADER_ROOM,
                         "HTTP/1.1 %d %s\r\nContent-type: %s\r\nContent-Length: %d\r\nConnection: close\r\n"
                         "AuthInfo: %.*s\r\n\r\n",
                         status, strIter->second.status.c_str(), contentType, len, AUTH_INFO_MAX, authInfo.c_str());
}

int CHttpProtocolAnalyse::SetResPackage(HTTP_DEFINE::HttpStatusCode status, const char* body, int len,
                                        const std::string& authInfo)
{
    const int length = std::clamp(len, 0, INT_MAX - HEADER_ROOM);
    m_protocol.Reallocate(length + HEADER_ROOM);
    const int headerLength = CreateHttpHeader(status, m_protocol.buffer, length, authInfo);
    char* const payload = m_protocol.buffer + headerLength;
    if (body != nullptr && length > 0)
    {
        std::memcpy(payload, body, static_cast<size_t>(length));
        m_protocol.payloadLength = length;
    }
    else
    {
        std::memset(payload, 0, static_cast<size_t>(length));
    }
    payload[length] = '\0';
    m_protocol.totalLength = headerLength + length;
    return 1;
}

void CHttpProtocolAnalyse::SetResponseHeader(HTTP_DEFINE::HttpStatusCode status)
{
    m_protocol.Reallocate(HEADER_ROOM);
    m_protocol.totalLength = CreateHttpHeader(status, m_protocol.buffer, 0, std::string());
}

void CHttpProtocolAnalyse::SetHeaderLine(const char* line)
{
    std::string_view header = Header();
    PF_ASSERT(!header.empty());
    header = header.substr(0, header.find_last_not_of(LINE_END) + 1);

    int payloadLength = 0;
    const char* const payload = GetPayLoad(payloadLength);
    std::string message;
    message.reserve(header.size() + std::strlen(line) + 6 + static_cast<size_t>(payloadLength));
    message.append(header).append(LINE_END).append(line).append(HEADER_END);
    message.append(payload, static_cast<size_t>(payloadLength));

    const int total = static_cast<int>(std::min<size_t>(message.size(), INT_MAX - 1));
    m_protocol.Reallocate(total + 1);
    std::memcpy(m_protocol.buffer, message.c_str(), static_cast<size_t>(total));
    m_protocol.buffer[total] = '\0';
    m_protocol.totalLength = total;
    m_protocol.payloadLength = payloadLength;
}

void CHttpProtocolAnalyse::SetHTTPConfig(const std::string& url, const char* body, int len, const std::string& auth)
{
    const size_t length = body != nullptr && len > 0 ? static_cast<size_t>(len) : 0;
    std::string message = "GET /" + url + " HTTP/1.1\r\n" + "Authorization: Basic " + auth + "\r\n" +
                          "Content-type: text/xml" + "\r\n" + "Content-Length:" + std::to_string(length) + "\r\n\r\n";
    if (length > 0)
    {
        message.append(body, length);
    }
    *this = CHttpProtocolAnalyse(message);
}

int CHttpProtocolAnalyse::GetStatusCode() const
{
    const std::string_view header = Header();
    return header.size() < 12 ? 0
                              : static_cast<int>(std::strtol(std::string(header.substr(9, 3)).c_str(), nullptr, 10));
}

void CHttpProtocolAnalyse::SetHeaderExtra(const char* name, unsigned int value)
{
    SetHeaderLine((std::string(name) + " " + std::to_string(value)).c_str());
}

bool CHttpProtocolAnalyse::GetHeaderExtra(const char* name, unsigned int& value) const
{
    const std::string_view header = Header();
    const size_t found = header.find(name);
    if (found == std::string_view::npos)
    {
        return false;
    }
    const size_t begin = found + std::strlen(name);
    const std::string number(header.substr(begin, header.find(LINE_END, begin) - begin));
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    return std::sscanf(number.c_str(), "%u", &value) == 1;
}

void CHttpProtocolAnalyse::FilterURL()
{
    m_protocol.url = URLDecode(m_protocol.url);
    const size_t query = m_protocol.url.find('?');
    if (query != std::string::npos && !Holds(m_protocol.url, "queryQRInfo"))
    {
        m_protocol.url.resize(query);
    }
}

// Characters missing behind a "%" at the end count as zero bytes.
std::string CHttpProtocolAnalyse::URLDecode(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != '%')
        {
            decoded += text[i] == '+' ? ' ' : text[i];
            continue;
        }
        const char first = i + 1 < text.size() ? text[i + 1] : '\0';
        const char second = i + 2 < text.size() ? text[i + 2] : '\0';
        decoded += static_cast<char>(((fromHex(first) * 16) & 0xFF) | fromHex(second));
        i += 2;
    }
    return decoded;
}

// Made for digits and upper-case letters; any other character gives some byte. So "%4a" is 0x6A and not 0x4A.
unsigned int CHttpProtocolAnalyse::fromHex(const char& digit)
{
    const unsigned int value = (static_cast<unsigned char>(digit) - 0x30u) & 0xFF;
    return value <= 9 ? value : (static_cast<unsigned char>(digit) - 0x37u) & 0xFF;
}
