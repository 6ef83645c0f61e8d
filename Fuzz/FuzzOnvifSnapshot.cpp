// Any bytes as a web server's answer to the request for a picture, over loopback.
#include "HttpClient.h"
#include "NetSocket.h"
#include "ShareSDK.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

/// A listener on loopback. Lives as long as the process.
class Server
{
public:
    Server()
    {
        NET_SOCKET_Initial(nullptr);
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        m_listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0 ||
            listen(m_listener, 8) != 0 || getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        {
            std::abort();
        }
        m_port = ntohs(address.sin_port);
    }

    unsigned short Port() const { return m_port; }

    /// Takes one connection, gives it the bytes and ends it.
    void Answer(const std::uint8_t* data, std::size_t size) const
    {
        const int connection = accept(m_listener, nullptr, nullptr);
        char request[8192];
        if (recv(connection, request, sizeof(request), 0) > 0)
        {
            send(connection, data, size, MSG_NOSIGNAL);
        }
        close(connection);
    }

private:
    int m_listener = -1;
    unsigned short m_port = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Server server;
    static CHttpClient client("admin", "secret", "127.0.0.1", 1);
    std::thread thread([data, size] { server.Answer(data, size); });
    char* picture = nullptr;
    int length = -1;
    const int result =
        client.GetSnapshotData("http://camera.example:" + std::to_string(server.Port()) + "/a", picture, length);
    thread.join();
    if (result != 0 || length < 0 || (picture == nullptr && length != 0) || static_cast<std::size_t>(length) > size)
    {
        std::abort();
    }
    delete[] picture;
    return 0;
}
