// netserver-bench-alarmpush: what a host's report of an alarm costs the host, with the alarm server on loopback.
//
// One thread is the host, one the alarm server, which reads each push to its end.
#include "BenchDevice.h"
#include "BenchTools.h"
#include "NetServerSDK.h"
#include "ShareSDK.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace
{
constexpr unsigned int PUSHES = 2000;
constexpr unsigned int CHANNELS = 4;
constexpr unsigned int SENSORS = 16;

int Listen(int port)
{
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Require(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0, "bind");
    Require(listen(descriptor, 512) == 0, "listen");
    return descriptor;
}

unsigned short PortOf(int descriptor)
{
    sockaddr_in address = {};
    socklen_t length = sizeof(address);
    Require(getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) == 0, "port");
    return ntohs(address.sin_port);
}

/// @return bytes of the push
std::size_t TakePush(int listener)
{
    const int connection = accept(listener, nullptr, nullptr);
    Require(connection != -1, "accept");
    char buffer[4096];
    std::size_t total = 0;
    for (ssize_t count = 1; count > 0;)
    {
        count = recv(connection, buffer, sizeof(buffer), 0);
        total += static_cast<std::size_t>(count > 0 ? count : 0);
    }
    close(connection);
    return total;
}

/// Tells the library where to push to, as a client does.
void Configure(unsigned short httpPort, unsigned short alarmPort)
{
    const std::string body = "<config><alarmServer><serverAddr>127.0.0.1</serverAddr><serverPort>" +
                             std::to_string(alarmPort) + "</serverPort></alarmServer></config>";
    const std::string request =
        "POST /SetAlarmServerConfig HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(httpPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Require(connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0, "connect");
    Require(send(descriptor, request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size()),
            "send");
    char answer[256] = {};
    Require(recv(descriptor, answer, sizeof(answer) - 1, MSG_WAITALL) > 0 && strstr(answer, " 200 ") != nullptr,
            "SetAlarmServerConfig");
    close(descriptor);
}
} // namespace

int main()
{
    char directory[] = "/tmp/netserver-bench-XXXXXX";
    Require(mkdtemp(directory) != nullptr, "directory");
    const std::string config = std::string(directory) + "/config.xml";
    const int reserved = Listen(0);
    const unsigned short httpPort = PortOf(reserved);
    close(reserved);

    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    BenchDevice device;
    NET_SERVER_SetPolicy(NET_POLICY_NO_ANNOUNCE);
    Require(NET_SERVER_Initial(CHANNELS, 2, SENSORS, &device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT) == 1,
            "start");
    NET_SERVER_Start(httpPort, directory, config.c_str());
    const int listener = Listen(0);
    Configure(httpPort, PortOf(listener));

    std::size_t bytes = 0;
    std::thread server(
        [listener, &bytes]
        {
            for (unsigned int i = 0; i < PUSHES; ++i)
                bytes = TakePush(listener);
        });
    std::vector<double> times;
    for (unsigned int i = 0; i < PUSHES; ++i)
    {
        const std::uint64_t begin = NowNs();
        NET_SERVER_SetMotionStatus(i % CHANNELS, true);
        times.push_back(static_cast<double>(NowNs() - begin) / 1e6);
    }
    server.join();
    close(listener);
    NET_SERVER_Stop();
    NET_SERVER_Quit();
    unlink(config.c_str());
    rmdir(directory);
    PrintFigure("pushes", PUSHES);
    PrintFigure("bytes", static_cast<double>(bytes));
    PrintFigure("p50_ms", Percentile(times, 0.50));
    PrintFigure("p99_ms", Percentile(times, 0.99));
    return 0;
}
