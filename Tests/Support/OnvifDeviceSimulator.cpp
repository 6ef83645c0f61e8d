#include "OnvifDeviceSimulator.h"

#include "OnvifSimulatorTables.h"

#include <nettle/base64.h>
#include <nettle/sha1.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

constexpr int THREADS = 4;
constexpr int READ_LIMIT_MS = 5000;
const std::string TOKEN = "Security/UsernameToken/";
const std::string DIGEST_TYPE =
    "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-username-token-profile-1.0#PasswordDigest";

using Bytes = std::vector<unsigned char>;

Bytes Decoded(const std::string& text)
{
    Bytes bytes(BASE64_DECODE_LENGTH(text.size()));
    base64_decode_ctx context;
    base64_decode_init(&context);
    std::size_t length = 0;
    const bool good = base64_decode_update(&context, &length, bytes.data(), text.size(), text.data()) != 0 &&
                      base64_decode_final(&context) != 0;
    bytes.resize(good ? length : 0);
    return bytes;
}

std::string Encoded(const unsigned char* bytes, std::size_t length)
{
    std::string text(BASE64_ENCODE_RAW_LENGTH(length), '\0');
    base64_encode_raw(text.data(), length, bytes);
    return text;
}

std::string Digest(const Bytes& nonce, const std::string& created, const std::string& password)
{
    sha1_ctx context;
    nettle_sha1_init(&context);
    nettle_sha1_update(&context, nonce.size(), nonce.data());
    nettle_sha1_update(&context, created.size(), reinterpret_cast<const unsigned char*>(created.data()));
    nettle_sha1_update(&context, password.size(), reinterpret_cast<const unsigned char*>(password.data()));
    unsigned char digest[SHA1_DIGEST_SIZE];
    nettle_sha1_digest(&context, sizeof(digest), digest);
    return Encoded(digest, sizeof(digest));
}

/// Seconds since 1970 of "2026-11-21T13:30:00Z"; -1 for anything else.
long long SecondsOf(const std::string& created)
{
    tm fields{};
    const char* const end = strptime(created.c_str(), "%Y-%m-%dT%H:%M:%SZ", &fields);
    return end != nullptr && *end == '\0' ? static_cast<long long>(timegm(&fields)) : -1;
}

const char* StatusWord(int status)
{
    switch (status)
    {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 404:
        return "Not Found";
    default:
        return "Internal Server Error";
    }
}

std::string HexLength(std::size_t length)
{
    char text[24];
    std::snprintf(text, sizeof(text), "%zx", length);
    return text;
}

std::size_t ContentLengthOf(const std::string& http)
{
    const std::size_t field = http.find("Content-Length: ");
    return field == std::string::npos ? 0 : std::strtoul(http.c_str() + field + 16, nullptr, 10);
}

/// Every family's table in one.
/// Two services may have an operation of the same name.
const std::multimap<std::string, OnvifOperationRow>& AllOperations()
{
    static const std::multimap<std::string, OnvifOperationRow> all = []
    {
        std::multimap<std::string, OnvifOperationRow> rows;
        for (const OnvifFamily& family : {OnvifDeviceFamily(), OnvifEventFamily(), OnvifMediaFamily(),
                                          OnvifImagingFamily(), OnvifPtzFamily(), OnvifAnalyticsFamily()})
        {
            for (const OnvifOperationRow& row : family.operations)
            {
                rows.emplace(row.operation, row);
            }
        }
        return rows;
    }();
    return all;
}

OnvifValues FirstValues()
{
    OnvifValues values;
    for (const OnvifFamily& family : {OnvifDeviceFamily(), OnvifEventFamily(), OnvifMediaFamily(), OnvifImagingFamily(),
                                      OnvifPtzFamily(), OnvifAnalyticsFamily()})
    {
        values.insert(family.values.begin(), family.values.end());
    }
    return values;
}

} // namespace

OnvifDeviceSimulator::OnvifDeviceSimulator(OnvifSimulatorOptions options, unsigned short port)
    : m_options(std::move(options)), m_values(FirstValues())
{
    m_quit = eventfd(0, EFD_CLOEXEC);
    m_listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(port);
    socklen_t length = sizeof(address);
    if (bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
        listen(m_listener, 128) == 0 && getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length) == 0)
    {
        m_port = ntohs(address.sin_port);
    }
    for (int i = 0; i < THREADS; ++i)
    {
        m_threads.emplace_back([this] { Run(); });
    }
}

OnvifDeviceSimulator::~OnvifDeviceSimulator()
{
    eventfd_write(m_quit, 1);
    for (std::thread& thread : m_threads)
    {
        thread.join();
    }
    close(m_listener);
    close(m_quit);
}

void OnvifDeviceSimulator::Run()
{
    for (;;)
    {
        pollfd waiting[] = {{m_listener, POLLIN, 0}, {m_quit, POLLIN, 0}};
        poll(waiting, 2, -1);
        if (waiting[1].revents != 0)
        {
            return;
        }
        const int connection = accept4(m_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (connection >= 0)
        {
            Serve(connection);
            close(connection);
        }
    }
}

OnvifDeviceSimulator::Request OnvifDeviceSimulator::ReadRequest(int connection) const
{
    Request request;
    std::string& http = request.http;
    std::size_t head = std::string::npos;
    char part[4096];
    pollfd waiting[] = {{connection, POLLIN, 0}, {m_quit, POLLIN, 0}};
    while (head == std::string::npos || http.size() < head + 4 + ContentLengthOf(http))
    {
        if (poll(waiting, 2, READ_LIMIT_MS) <= 0 || waiting[1].revents != 0)
        {
            break;
        }
        const ssize_t count = recv(connection, part, sizeof(part), 0);
        if (count <= 0)
        {
            break;
        }
        http.append(part, static_cast<std::size_t>(count));
        head = http.find("\r\n\r\n");
    }
    const std::size_t slash = http.find('/');
    if (head != std::string::npos && slash < head)
    {
        request.path = http.substr(slash + 1, http.find(' ', slash) - slash - 1);
        request.soap = http.substr(head + 4);
    }
    return request;
}

void OnvifDeviceSimulator::Serve(int connection)
{
    Request request = ReadRequest(connection);
    const OnvifSoapRequest soap(request.soap);
    request.operation = soap.Operation();
    OnvifAnswer answer;
    OnvifManners manners;
    bool refused = false;
    std::function<void(const Request&)> hook;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_requests.push_back(request);
        refused = !MayPass(request, soap);
        answer = refused ? OnvifAnswer::Fault("ter:NotAuthorized", "Sender not Authorized") : Answer(request, soap);
        const auto own = m_mannersByOperation.find(request.operation);
        manners = own != m_mannersByOperation.end() ? own->second : m_manners;
        if (IsPicture(request))
        {
            manners.delivery = OnvifManners::RAW;
            manners.raw = PictureAnswer(request);
        }
        hook = m_hook;
    }
    if (hook)
    {
        hook(request);
    }
    if (answer.IsFault() && manners.status == 200)
    {
        manners.status = refused ? m_options.refusalStatus : m_options.faultStatus;
    }
    Deliver(connection, answer, manners, refused);
}

bool OnvifDeviceSimulator::HasBasic(const Request& request) const
{
    const std::string pair = m_options.user + ":" + m_options.password;
    const std::string basic = "\r\nAuthorization: Basic " +
                              Encoded(reinterpret_cast<const unsigned char*>(pair.data()), pair.size()) + "\r\n";
    return request.http.find(basic) != std::string::npos;
}

bool OnvifDeviceSimulator::IsPicture(const Request& request) const
{
    return request.http.rfind("GET ", 0) == 0 && request.path == m_values.at("snapshot.path");
}

std::string OnvifDeviceSimulator::PictureAnswer(const Request& request) const
{
    const bool isOpen = m_options.user.empty() && m_options.password.empty();
    if (!isOpen && !HasBasic(request))
    {
        return "HTTP/1.1 401 Unauthorized\r\nContent-Length: 6\r\n\r\n<html>";
    }
    const std::string& picture = m_values.at("snapshot.picture");
    return "HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(picture.size()) +
           "\r\n\r\n" + picture;
}

bool OnvifDeviceSimulator::MayPass(const Request& request, const OnvifSoapRequest& soap)
{
    if (m_options.user.empty() && m_options.password.empty())
    {
        return true;
    }
    if (m_options.requiresBasic && !HasBasic(request))
    {
        return false;
    }
    return !m_options.digestIsChecked || DigestIsRight(soap);
}

bool OnvifDeviceSimulator::DigestIsRight(const OnvifSoapRequest& soap)
{
    const std::string created = soap.HeaderText(TOKEN + "Created");
    const Bytes nonce = Decoded(soap.HeaderText(TOKEN + "Nonce"));
    const long long age = static_cast<long long>(time(nullptr)) + m_options.clockOffsetSeconds - SecondsOf(created);
    return soap.HeaderText(TOKEN + "Username") == m_options.user && !nonce.empty() &&
           soap.HeaderAttribute(TOKEN + "Password", "Type") == DIGEST_TYPE &&
           soap.HeaderText(TOKEN + "Password") == Digest(nonce, created, m_options.password) &&
           std::llabs(age) <= m_options.createdWindowSeconds &&
           m_nonces.insert(std::string(nonce.begin(), nonce.end())).second;
}

OnvifAnswer OnvifDeviceSimulator::Answer(const Request& request, const OnvifSoapRequest& soap)
{
    const auto own = m_answers.find(request.operation);
    return own != m_answers.end() ? own->second : AnswerByTable(request, soap);
}

/// The operation's row of the service that has this path; null for none.
const OnvifOperationRow* OnvifDeviceSimulator::FindRow(const Request& request) const
{
    const auto rows = AllOperations().equal_range(request.operation);
    for (auto row = rows.first; row != rows.second; ++row)
    {
        const std::string service = row->second.service;
        const auto path = m_options.services.find(service);
        if (service.empty() || (path != m_options.services.end() && path->second == request.path))
        {
            return &row->second;
        }
    }
    return nullptr;
}

OnvifAnswer OnvifDeviceSimulator::AnswerByTable(const Request& request, const OnvifSoapRequest& soap)
{
    const OnvifOperationRow* const row = FindRow(request);
    if (row == nullptr)
    {
        return OnvifAnswer::Fault("ter:ActionNotSupported", "Optional Action Not Implemented", "Receiver");
    }
    const std::string host =
        m_options.announcedHost.empty() ? "127.0.0.1:" + std::to_string(m_port) : m_options.announcedHost;
    OnvifCall call{soap, m_options, m_values, "http://" + host + "/"};
    return row->answer(call);
}

void OnvifDeviceSimulator::Deliver(int connection, const OnvifAnswer& answer, const OnvifManners& manners, bool refused)
{
    std::string body = refused && !m_options.refusalHtml.empty() ? m_options.refusalHtml
                       : !manners.html.empty()                   ? manners.html
                                                                 : RenderOnvifAnswer(answer, m_options.dialect);
    if (manners.padBytes > 0)
    {
        const std::size_t end = body.rfind("</", body.rfind("</") - 1); // in front of the end of the body
        body.insert(end, manners.padBytes, ' ');
    }
    std::string head = "HTTP/1.1 " + std::to_string(manners.status) + " " + StatusWord(manners.status) +
                       "\r\nContent-Type: application/soap+xml; charset=utf-8\r\nConnection: close\r\n";
    if (manners.delivery == OnvifManners::CHUNKED)
    {
        head += "Transfer-Encoding: chunked\r\n";
        body = HexLength(body.size()) + "\r\n" + body + "\r\n0\r\n\r\n";
    }
    else if (manners.announcesLength)
    {
        const std::string length =
            manners.contentLength >= 0 ? std::to_string(manners.contentLength) : std::to_string(body.size());
        head += "Content-Length: " + length + "\r\n";
    }
    std::string bytes = head + "\r\n" + body;
    Pause(manners.delayMs);
    switch (manners.delivery)
    {
    case OnvifManners::SILENT:
        WaitForClose(connection);
        return;
    case OnvifManners::TRICKLE:
        Trickle(connection, head + "\r\n");
        return;
    case OnvifManners::CLOSED:
        return;
    case OnvifManners::RAW:
        bytes = manners.raw;
        break;
    case OnvifManners::TRUNCATED:
        bytes.resize(head.size() + 2 + body.size() / 2);
        break;
    default:
        break;
    }
    const std::size_t step = manners.delivery == OnvifManners::PIECES ? manners.pieceBytes : bytes.size() + 1;
    for (std::size_t sent = 0; sent < bytes.size() && SendBytes(connection, bytes.substr(sent, step)); sent += step)
    {
    }
    shutdown(connection, SHUT_WR);
    WaitForClose(connection);
}

bool OnvifDeviceSimulator::SendBytes(int connection, const std::string& bytes) const
{
    std::size_t sent = 0;
    while (sent < bytes.size())
    {
        const ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        pollfd waiting[] = {{connection, POLLOUT, 0}, {m_quit, POLLIN, 0}};
        if (count > 0)
        {
            sent += static_cast<std::size_t>(count);
        }
        else if (poll(waiting, 2, READ_LIMIT_MS) <= 0 || waiting[1].revents != 0 ||
                 (waiting[0].revents & (POLLERR | POLLHUP)) != 0)
        {
            return false;
        }
    }
    return true;
}

void OnvifDeviceSimulator::WaitForClose(int connection) const
{
    char part[1024];
    pollfd waiting[] = {{connection, POLLIN, 0}, {m_quit, POLLIN, 0}};
    while (poll(waiting, 2, 2 * READ_LIMIT_MS) > 0 && waiting[1].revents == 0 &&
           recv(connection, part, sizeof(part), 0) > 0)
    {
    }
}

void OnvifDeviceSimulator::Trickle(int connection, const std::string& head) const
{
    pollfd waiting{m_quit, POLLIN, 0};
    bool open = SendBytes(connection, head);
    while (open && poll(&waiting, 1, 10) == 0)
    {
        open = SendBytes(connection, " ");
    }
}

void OnvifDeviceSimulator::Pause(unsigned int ms) const
{
    pollfd waiting{m_quit, POLLIN, 0};
    if (ms > 0)
    {
        poll(&waiting, 1, static_cast<int>(ms));
    }
}

std::vector<OnvifDeviceSimulator::Request> OnvifDeviceSimulator::Requests() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_requests;
}

std::vector<std::string> OnvifDeviceSimulator::Operations() const
{
    std::vector<std::string> operations;
    for (const Request& request : Requests())
    {
        operations.push_back(request.operation);
    }
    return operations;
}

OnvifDeviceSimulator::Request OnvifDeviceSimulator::LastRequest() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_requests.empty() ? Request{} : m_requests.back();
}

void OnvifDeviceSimulator::Forget()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_requests.clear();
}

void OnvifDeviceSimulator::SetManners(const OnvifManners& manners)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_manners = manners;
}

void OnvifDeviceSimulator::SetManners(const std::string& operation, const OnvifManners& manners)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_mannersByOperation[operation] = manners;
}

void OnvifDeviceSimulator::SetAnswer(const std::string& operation, const OnvifAnswer& answer)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_answers[operation] = answer;
}

void OnvifDeviceSimulator::Refuse(const std::string& operation, const std::string& subcode, const std::string& reason)
{
    SetAnswer(operation, OnvifAnswer::Fault(subcode, reason));
}

void OnvifDeviceSimulator::SetHook(std::function<void(const Request&)> hook)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_hook = std::move(hook);
}

std::string OnvifDeviceSimulator::Value(const std::string& name) const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    const auto value = m_values.find(name);
    return value != m_values.end() ? value->second : "";
}

void OnvifDeviceSimulator::SetValue(const std::string& name, const std::string& value)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_values[name] = value;
}
