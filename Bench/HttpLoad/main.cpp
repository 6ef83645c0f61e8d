// netserver-bench-httpload: HTTP clients in one thread, one request per connection.
#include "BenchOptions.h"
#include "BenchTools.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace
{
const char USAGE[] = "usage: netserver-bench-httpload --port N (--path PATH | --mix) [--clients N] [--seconds N]\n"
                     "                                [--server-pid PID] [--basic BASE64]\n"
                     "  --mix  reads and writes of the XML API in turn, in place of one path\n";

struct Options
{
    unsigned short port = 0;
    std::string path; // empty: the mix
    bool mix = false;
    std::string basic; // credentials, empty: none
    unsigned int clients = 8;
    unsigned int seconds = 5;
    pid_t serverPid = 0;
};

// Reads and writes of a client that shows a camera's pages and changes its settings.
const struct
{
    const char* path;
    const char* body; // null: a GET
} MIX[] = {
    {"/GetImageConfig", nullptr},
    {"/SetImageConfig", "<config><image><bright>60</bright><flipSwitch>true</flipSwitch></image></config>"},
    {"/GetAlarmStatus", nullptr},
    {"/GetStreamCaps", nullptr},
    {"/GetVideoStreamConfig", nullptr},
    {"/SetVideoStreamConfig", "<config><streams><item id=\"0\"><frameRate>20</frameRate></item></streams></config>"},
    {"/GetDeviceInfo", nullptr},
    {"/GetMotionConfig", nullptr},
    {"/SetMotionConfig", "<config><motion><switch>true</switch><sensitivity>5</sensitivity></motion></config>"},
    {"/GetNetBasicConfig", nullptr},
    {"/SetNetBasicConfig", "<config><tcpIp><dnsServer1>10.0.0.1</dnsServer1></tcpIp></config>"},
    {"/GetAlarmServerConfig", nullptr},
};

struct Connection
{
    int fd = -1;
    std::uint64_t startNs = 0;
    const std::string* request = nullptr; // of the load's own
    bool requested = false;
    std::size_t received = 0;
    char status[13] = ""; // "HTTP/1.x 200"
};

// Keeps N connections going: a new one for each that ended.
class Load
{
public:
    explicit Load(const Options& options) : m_options(options), m_epoll(epoll_create1(EPOLL_CLOEXEC))
    {
        Require(m_epoll != -1, "epoll");
        if (!options.mix)
            m_requests.push_back(Request(options.path, nullptr));
        for (const auto& row : MIX)
        {
            if (options.mix)
                m_requests.push_back(Request(row.path, row.body));
        }
    }

    void Run(unsigned int seconds)
    {
        m_times.clear();
        m_failed = 0;
        const std::uint64_t endNs = NowNs() + seconds * std::uint64_t{1000000000u};
        while (NowNs() < endNs)
        {
            while (m_open < m_options.clients)
                Open();
            epoll_event events[256];
            const int count = epoll_wait(m_epoll, events, 256, 100);
            for (int i = 0; i < count; ++i)
                Serve(*static_cast<Connection*>(events[i].data.ptr));
        }
    }

    std::vector<double>& TimesMs() { return m_times; }
    unsigned int Failed() const { return m_failed; }
    std::size_t AnswerBytes() const { return m_answerBytes; }

private:
    std::string Request(const std::string& path, const char* body) const
    {
        std::string request = (body == nullptr ? "GET " : "POST ") + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n";
        if (!m_options.basic.empty())
            request += "Authorization: Basic " + m_options.basic + "\r\n";
        if (body != nullptr)
            request += "Content-Length: " + std::to_string(strlen(body)) + "\r\n";
        return request + "\r\n" + (body != nullptr ? body : "");
    }

    void Open()
    {
        auto* connection = new Connection();
        connection->request = &m_requests[m_opened++ % m_requests.size()];
        connection->startNs = NowNs();
        connection->fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        Require(connection->fd != -1, "socket");
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(m_options.port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const int result = connect(connection->fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
        Require(result == 0 || errno == EINPROGRESS, "connect");
        epoll_event event = {};
        event.events = EPOLLOUT;
        event.data.ptr = connection;
        Require(epoll_ctl(m_epoll, EPOLL_CTL_ADD, connection->fd, &event) == 0, "epoll");
        ++m_open;
    }

    void Serve(Connection& connection)
    {
        if (!connection.requested)
        {
            const std::string& request = *connection.request;
            if (send(connection.fd, request.data(), request.size(), MSG_NOSIGNAL) !=
                static_cast<ssize_t>(request.size()))
                return Close(connection);
            connection.requested = true;
            epoll_event event = {};
            event.events = EPOLLIN;
            event.data.ptr = &connection;
            epoll_ctl(m_epoll, EPOLL_CTL_MOD, connection.fd, &event);
            return;
        }
        static char buffer[65536];
        const ssize_t got = recv(connection.fd, buffer, sizeof(buffer), 0);
        if (got <= 0)
        {
            if (got == 0 || errno != EAGAIN)
                Close(connection);
            return;
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(got) && connection.received + i < 12; ++i)
            connection.status[connection.received + i] = buffer[i];
        connection.received += static_cast<std::size_t>(got);
    }

    void Close(Connection& connection)
    {
        if (strcmp(connection.status + 8, " 200") == 0)
            m_times.push_back(static_cast<double>(NowNs() - connection.startNs) / 1e6);
        else
            ++m_failed;
        m_answerBytes = connection.received;
        close(connection.fd);
        delete &connection;
        --m_open;
    }

    const Options& m_options;
    const int m_epoll;
    std::vector<std::string> m_requests; // taken in turn
    std::size_t m_opened = 0;
    unsigned int m_open = 0;
    unsigned int m_failed = 0;
    std::size_t m_answerBytes = 0;
    std::vector<double> m_times; // of requests answered 200, in ms from connect to end
};

Options ReadOptions(int argc, char** argv)
{
    Options options;
    BenchOptions line(USAGE);
    line.Number("port", options.port)
        .Text("path", options.path)
        .Switch("mix", options.mix)
        .Number("clients", options.clients)
        .Number("seconds", options.seconds)
        .Text("basic", options.basic)
        .Number("server-pid", options.serverPid)
        .Read(argc, argv);
    line.Require(options.port != 0 && options.path.empty() == options.mix && options.clients != 0);
    return options;
}
} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    RaiseDescriptorLimit();
    Load load(options);
    load.Run(1);
    const std::uint64_t memoryBefore = ResidentKb(options.serverPid);
    const std::uint64_t cpuBefore = CpuOfProcessUs(options.serverPid);
    load.Run(options.seconds);
    const auto cpuUs = static_cast<double>(CpuOfProcessUs(options.serverPid) - cpuBefore);

    const auto answered = static_cast<double>(load.TimesMs().size());
    PrintFigure("requests", answered);
    PrintFigure("failed", load.Failed());
    PrintFigure("answer_bytes", static_cast<double>(load.AnswerBytes()));
    PrintFigure("requests_per_second", answered / options.seconds);
    PrintFigure("requests_per_cpu_second", cpuUs == 0 ? 0 : answered * 1e6 / cpuUs);
    PrintFigure("p50_ms", Percentile(load.TimesMs(), 0.50));
    PrintFigure("p99_ms", Percentile(load.TimesMs(), 0.99));
    PrintFigure("server_kb", static_cast<double>(ResidentKb(options.serverPid)));
    PrintFigure("server_grown_kb",
                static_cast<double>(ResidentKb(options.serverPid)) - static_cast<double>(memoryBefore));
    return 0;
}
