// The exchange: the security header (WS-Security UsernameToken Profile 1.0), the HTTP frame, and what counts as an
// answer.
#include "HttpClient.h"

#include "Base64Coder.h"
#include "MD5.h"
#include "NetSocket.h"
#include "OnvifTrace.h"
#include "OnvifXmlParse.h"
#include "PFHelper.h"
#include "SHA1.h"
#include "XmlTransform.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace
{

// The tail of the closing tag, which any prefix leaves alike: the answer's length need not be known.
const char* const END_MARK = ":Envelope>";

constexpr std::size_t FRAME_BYTES = 8192; // its zero byte included
constexpr unsigned int GENERAL_BUFFER = 30720;

const char* const SECURITY = "s:Envelope/s:Header/wsse:Security";
const std::string USERNAME_TOKEN = "s:Envelope/s:Header/wsse:Security/wsse:UsernameToken/";

bool Fill(COnvifXmlParse& doc, const std::string& path, const char* value)
{
    const unsigned int item = doc.GetFirstItem(path);
    return item != 0 && doc.SetValue(item, value, false);
}

/// Anywhere, so that a process does not repeat the nonces of one that ran a moment ago: devices refuse those.
unsigned int FirstCount()
{
    _GUID guid;
    CPFHelper::CreateGUID(guid);
    return guid.Data1;
}

} // namespace

int CHttpClient::Authentication(COnvifXmlParse& doc) const
{
    if (m_hasCredentials != 1)
    {
        if (doc.GetFirstItem(SECURITY) != 0)
        {
            doc.DeleteValue(SECURITY);
        }
        return 1;
    }
    char nonce[64] = {};
    char created[64] = {};
    char digest[64] = {};
    CreateNonce(nonce);
    CreateUtcTime(created, sizeof(created));
    SHA1(nonce, created, digest);
    char nonceText[64] = {};
    Base64Encode(nonce, nonceText);
    const bool filled = Fill(doc, USERNAME_TOKEN + "wsse:Username", m_username) &&
                        Fill(doc, USERNAME_TOKEN + "wsse:Password", digest) &&
                        Fill(doc, USERNAME_TOKEN + "wsse:Nonce", nonceText) &&
                        Fill(doc, USERNAME_TOKEN + "wsu:Created", created);
    return filled ? 1 : 0;
}

// The counter and the tick are read together and neither falls, so no nonce comes twice.
void CHttpClient::CreateNonce(char* out)
{
    static CLock lock(false);
    static unsigned int counter = FirstCount();
    CMySingleLock guard(lock);
    const unsigned int sum = ++counter + CPFHelper::GetTickCount();
    PUB_MD5Encrypt(&sum, sizeof(sum), out, false);
}

// The clock of this machine. A device whose own clock is too far away refuses the request.
void CHttpClient::CreateUtcTime(char* out, int size)
{
    const time_t now = time(nullptr);
    tm utc{};
    gmtime_r(&now, &utc);
    std::strftime(out, static_cast<std::size_t>(size), "%Y-%m-%dT%H:%M:%SZ", &utc);
}

void CHttpClient::SHA1(char* nonce, char* created, char* out) const
{
    SHA1_CONTEXT context{};
    sha1_init(&context);
    for (const char* part : {static_cast<const char*>(nonce), static_cast<const char*>(created), &m_password[0]})
    {
        std::string bytes = part;
        sha1_write(&context, reinterpret_cast<unsigned char*>(bytes.data()), static_cast<unsigned int>(bytes.size()));
    }
    sha1_final(&context);
    unsigned long room = 29; // 20 bytes in Base64 and a zero byte
    CBase64Coder::Encode(context.buf, 20, reinterpret_cast<unsigned char*>(out), &room);
}

void CHttpClient::Base64Encode(const char* in, char* out)
{
    const unsigned long length = std::strlen(in);
    unsigned long room = (length + 2) / 3 * 4 + 1;
    CBase64Coder::Encode(reinterpret_cast<const unsigned char*>(in), length, reinterpret_cast<unsigned char*>(out),
                         &room);
}

// Basic authentication stands beside the security header, for devices that guard the HTTP layer.
void CHttpClient::MakeupHttpProtocol(const char* url, const char* body, unsigned int bodyLen, std::string& out) const
{
    std::string frame(FRAME_BYTES, '\0');
    int length = 0;
    if (bodyLen != 0)
    {
        length = std::snprintf(frame.data(), frame.size(),
                               "POST /%s HTTP/1.1\r\nAuthorization: Basic %s\r\nUser-Agent: ApiTool\r\nHost: %s\r\n"
                               "Content-Length: %u\r\nContent-Type: application/soap+xml; charset=utf-8\r\n\r\n%s",
                               url, m_basicAuth, m_serverIp, bodyLen, body);
    }
    else
    {
        length =
            std::snprintf(frame.data(), frame.size(),
                          "POST /%s HTTP/1.1\r\nAuthorization: Basic %s\r\nUser-Agent: ApiTool\r\nHost: %s\r\n\r\n",
                          url, m_basicAuth, m_serverIp);
    }
    frame.resize(std::min(static_cast<std::size_t>(std::max(length, 0)), FRAME_BYTES - 1));
    out = frame;
}

int CHttpClient::SendHttpReq(const char* url, const char* body, unsigned int bodyLen, char* recvBuf,
                             unsigned int recvSize, int timeoutMs) const
{
    if (url == nullptr || recvBuf == nullptr)
    {
        return -1;
    }
    std::string text(body != nullptr ? body : "", body != nullptr ? bodyLen : 0);
    text.erase(std::remove(text.begin(), text.end(), '\t'), text.end());
    std::string frame;
    MakeupHttpProtocol(url, text.c_str(), static_cast<unsigned int>(text.size()), frame);
    const COnvifTrace trace;
    const int received =
        NET_SOCKET_SimpleClientComm(m_serverIp, m_serverPort, frame.data(), static_cast<unsigned int>(frame.size()),
                                    recvBuf, recvSize, END_MARK, static_cast<unsigned int>(timeoutMs));
    trace.Tell(m_serverIp, m_serverPort, frame.c_str(), recvBuf, static_cast<std::size_t>(std::max(received, 0)));
    return received;
}

std::string CHttpClient::PathOf(const std::string& service)
{
    CMySingleLock guard(m_lock);
    const auto known = m_serviceUrls.find(service);
    if (known != m_serviceUrls.end())
    {
        return known->second;
    }
    const auto device = m_serviceUrls.find(SERVICE_DEVICE);
    std::string path = device != m_serviceUrls.end() ? device->second : DEFAULT_DEVICE_SERVICE;
    m_serviceUrls[service] = path;
    return path;
}

int CHttpClient::SendCommand(const std::string& service, const std::string& body, char* recvBuf, unsigned int recvSize,
                             int timeoutMs)
{
    return SendHttpReq(PathOf(service).c_str(), body.c_str(), static_cast<unsigned int>(body.size()), recvBuf, recvSize,
                       timeoutMs);
}

// The status line is never looked at: a fault with status 500 is an answer, an error page of any status is none.
int CHttpClient::HttpRespCheck(const char* reply, std::string& xml)
{
    if (reply == nullptr || *reply == '\0')
    {
        return ONVIF_NO_XML;
    }
    if (std::strstr(reply, ":Envelope") == nullptr)
    {
        return ONVIF_NO_ENVELOPE;
    }
    if (std::strstr(reply, "401 Unauthorized") != nullptr)
    {
        return ONVIF_UNAUTHORIZED;
    }
    const char* const declaration = std::strstr(reply, "<?xml");
    if (declaration == nullptr)
    {
        return ONVIF_NO_XML;
    }
    xml = declaration;
    return ONVIF_OK;
}

std::string CHttpClient::Stamp(const std::string& request) const
{
    COnvifXmlParse doc(request);
    Authentication(doc);
    return *doc.GetDoc();
}

int CHttpClient::Exchange(const char* service, const std::string& request, std::string& xml, unsigned int recvSize,
                          int timeoutMs)
{
    std::string reply(recvSize + 1, '\0'); // an answer of `recvSize` bytes and the zero byte behind it
    SendCommand(service, Stamp(request), reply.data(), recvSize + 1, timeoutMs);
    return HttpRespCheck(reply.c_str(), xml);
}

int CHttpClient::ExchangeAt(const std::string& url, const std::string& request, std::string& xml, unsigned int recvSize,
                            int timeoutMs) const
{
    const std::string body = Stamp(request);
    std::string reply(recvSize + 1, '\0');
    SendHttpReq(url.c_str(), body.c_str(), static_cast<unsigned int>(body.size()), reply.data(), recvSize + 1,
                timeoutMs);
    return HttpRespCheck(reply.c_str(), xml);
}

int CHttpClient::MakeUpSend(const std::string& url, std::string& request, std::string& response, int timeoutMs)
{
    return ExchangeAt(url, request, response, GENERAL_BUFFER, timeoutMs);
}

int CHttpClient::Run(const char* service, const std::string& request, Transform transform, std::string& answer,
                     unsigned int recvSize)
{
    std::string soap;
    const int result = Exchange(service, request, soap, recvSize);
    if (result == ONVIF_OK)
    {
        transform(soap, answer);
    }
    return result;
}

int CHttpClient::RunSet(const char* service, const std::string& request, const char* key, std::string& answer)
{
    std::string soap;
    const int result = Exchange(service, request, soap);
    if (result == ONVIF_OK)
    {
        CXmlTransform::TransSetBaseResponse(soap, answer, key);
    }
    return result;
}
