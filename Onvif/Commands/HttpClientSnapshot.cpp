// The snapshot receiver: one HTTP GET that looks like a browser's, with Basic authentication. It is the one command
// that is no SOAP.
//
// The device is reached at the address of the login, so that one behind address translation answers; of the picture's
// URL only port and path count. Its status line is not looked at: an error page is handed over like a picture.
#include "HttpClient.h"

#include "Limits.h"
#include "NetSocket.h"
#include "OnvifTrace.h"
#include "PFHelper.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace
{

constexpr int REQUEST_BYTES = 8192; // with the zero byte
constexpr int HEAD_BYTES = 8191;
constexpr unsigned int UNKNOWN_LENGTH = 1048576; // room for a picture whose length the device does not tell
constexpr unsigned int CONNECT_POLLS = 15;
constexpr unsigned int CONNECT_POLL_MS = 50;
constexpr unsigned int RECEIVE_POLL_MS = 250;
constexpr unsigned int RECEIVE_MS = 5001; // for the whole answer; data that comes does not prolong it

struct PictureUrl
{
    std::string host; // with its port, if the URL has one
    unsigned short port = 80;
    std::string path; // without leading "/"
};

PictureUrl Split(std::string url)
{
    const char* const BLANKS = " \t\r\n"; // cameras that indent their documents have them around a URL
    url.erase(url.find_last_not_of(BLANKS) + 1);
    url.erase(0, url.find_first_not_of(BLANKS));
    const std::size_t scheme = url.find('/');
    if (scheme != std::string::npos)
    {
        url.erase(0, scheme + 2);
    }
    PictureUrl parts;
    const std::size_t slash = url.find('/');
    parts.host = url.substr(0, slash);
    parts.path = slash != std::string::npos ? url.substr(slash + 1) : "";
    const std::size_t colon = parts.host.find(':');
    if (colon != std::string::npos)
    {
        const unsigned long port = std::strtoul(parts.host.c_str() + colon + 1, nullptr, 10);
        parts.port = static_cast<unsigned short>(port <= 65535 ? port : 0);
    }
    return parts;
}

/// A connection that ends with its scope.
class CPictureConnection
{
public:
    CPictureConnection(const char* address, unsigned short port) : m_handle(NET_SOCKET_AddConnect(0, address, port))
    {
        if (m_handle < 1)
        {
            SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        }
    }
    ~CPictureConnection()
    {
        NET_SOCKET_DelConnect(m_handle);
        NET_SOCKET_DestroyHNetCommunication(m_handle);
    }
    CPictureConnection(const CPictureConnection&) = delete;
    CPictureConnection& operator=(const CPictureConnection&) = delete;

    void WaitConnected() const
    {
        int outcome = 0;
        for (unsigned int poll = 0; poll < CONNECT_POLLS && outcome == 0; ++poll)
        {
            NET_SOCKET_PopConnectResult(m_handle, outcome, CONNECT_POLL_MS);
        }
    }

    void Send(const char* bytes, int length) const
    {
        const unsigned int start = CPFHelper::GetTickCount();
        bool broken = false;
        for (int sent = 0; sent < length && !broken && CPFHelper::GetTickCount() - start < RECEIVE_MS;)
        {
            sent += std::max(0, NET_SOCKET_Send_Immediate(m_handle, bytes + sent, length - sent, broken));
        }
    }

    void StartReceiving() { m_start = CPFHelper::GetTickCount(); }

    /// @return bytes read; 0 when the connection or the time has ended
    int Receive(char* buffer, int room) const
    {
        bool broken = false;
        while (!broken)
        {
            const unsigned int passed = CPFHelper::GetTickCount() - m_start;
            if (passed >= RECEIVE_MS)
            {
                return 0;
            }
            const int got = NET_SOCKET_Recv_Immediate(m_handle, buffer, room, &broken);
            if (got > 0)
            {
                return got;
            }
            if (!broken)
            {
                NET_SOCKET_WaitRecv(m_handle, std::min(RECEIVE_POLL_MS, RECEIVE_MS - passed));
            }
        }
        return 0;
    }

private:
    const int m_handle;
    unsigned int m_start = 0;
};

/// Where the body begins; 0 when the head has not ended yet.
std::size_t FindBody(const std::string& head)
{
    const std::size_t lines = head.find("\r\n\r\n");
    if (lines != std::string::npos)
    {
        return lines + 4;
    }
    const std::size_t bare = head.find("\n\n");
    return bare != std::string::npos ? bare + 2 : 0;
}

/// Reads until the head has ended. @return where the body begins; 0 when the head's end did not come
std::size_t ReceiveHead(const CPictureConnection& connection, std::string& head)
{
    char piece[HEAD_BYTES];
    std::size_t body = 0;
    while (body == 0 && head.size() < HEAD_BYTES)
    {
        const int got = connection.Receive(piece, HEAD_BYTES - static_cast<int>(head.size()));
        if (got == 0)
        {
            return 0;
        }
        head.append(piece, static_cast<std::size_t>(got));
        body = FindBody(head);
    }
    return body;
}

unsigned long long ReadLength(const std::string& head)
{
    const char* const NAME = "Content-Length:";
    const std::size_t at = head.find(NAME);
    if (at == std::string::npos)
    {
        return UNKNOWN_LENGTH;
    }
    const std::size_t digits = head.find_first_not_of(" \t", at + std::strlen(NAME));
    const bool isNumber = digits != std::string::npos && head[digits] >= '0' && head[digits] <= '9';
    const unsigned long long length = isNumber ? std::strtoull(head.c_str() + digits, nullptr, 10) : 0;
    return length != 0 ? length : UNKNOWN_LENGTH;
}

/// @return zeroed bytes; null when there are too many
char* AllocatePicture(unsigned long long length)
{
    char* const data =
        length <= LIMIT_SNAPSHOT_BYTES ? new (std::nothrow) char[static_cast<std::size_t>(length)]() : nullptr;
    if (data == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    return data;
}

} // namespace

int CHttpClient::GetSnapshotData(std::string url, char*& data, int& size)
{
    if (url.empty())
    {
        return ONVIF_NOTHING_DONE;
    }
    data = nullptr;
    size = 0;
    const PictureUrl picture = Split(std::move(url));
    char request[REQUEST_BYTES];
    const int length = std::snprintf(request, sizeof(request),
                                     "GET /%s HTTP/1.1\r\nHost: %s\r\nAuthorization: Basic %s\r\n"
                                     "Accept: text/html, application/xhtml+xml, */*\r\n"
                                     "Accept-Language: zh-CN,ja;q=0.8,zh;q=0.6,en-US;q=0.4,en;q=0.2\r\n"
                                     "Accept-Encoding: gzip, deflate\r\nUser-Agent: ApiTool\r\n\r\n",
                                     picture.path.c_str(), picture.host.c_str(), m_basicAuth);

    const COnvifTrace trace;
    std::string head;
    ReceivePicture(picture.port, std::string(request, static_cast<std::size_t>(std::min(length, REQUEST_BYTES - 1))),
                   head, data, size);
    trace.Tell(m_serverIp, picture.port, request, head.c_str(), head.size() + static_cast<std::size_t>(size));
    return ONVIF_OK;
}

// What has arrived when the time ends is the picture.
void CHttpClient::ReceivePicture(unsigned short port, const std::string& request, std::string& head, char*& data,
                                 int& size) const
{
    CPictureConnection connection(m_serverIp, port);
    connection.WaitConnected();
    connection.Send(request.data(), static_cast<int>(request.size()));
    connection.StartReceiving();
    const std::size_t body = ReceiveHead(connection, head);
    if (body == 0)
    {
        return;
    }
    const std::string begin = head.substr(body);
    head.resize(body);
    const unsigned long long expected = ReadLength(head);
    data = AllocatePicture(expected);
    if (data == nullptr)
    {
        return;
    }
    const int room = static_cast<int>(expected);
    size = std::min(room, static_cast<int>(begin.size()));
    std::memcpy(data, begin.data(), static_cast<std::size_t>(size));
    for (int got = 1; size < room && got > 0; size += got)
    {
        got = connection.Receive(data + size, std::min(room - size, HEAD_BYTES));
    }
}
