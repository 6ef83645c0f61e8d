#include "NvrWatch.h"

#include "NvrSession.h"
#include "OnvifSDK.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <ostream>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;
constexpr int CONNECT_MS = 2000;

/// "2026-11-21T13:30:00.123Z"
std::string TimeText(long long unixMs)
{
    const std::time_t seconds = static_cast<std::time_t>(unixMs / 1000);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char date[32];
    std::strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%S", &utc);
    char text[48];
    std::snprintf(text, sizeof(text), "%s.%03dZ", date, static_cast<int>(unixMs % 1000));
    return text;
}

long long NowMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string NameOf(const NvrCamera& camera)
{
    return camera.host + ":" + std::to_string(camera.port);
}

bool CanConnect(const std::string& address, unsigned short port)
{
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(port);
    inet_pton(AF_INET, address.c_str(), &to.sin_addr);
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    pollfd writable = {connection, POLLOUT, 0};
    int error = 0;
    socklen_t length = sizeof(error);
    const bool isUnderWay =
        connect(connection, reinterpret_cast<const sockaddr*>(&to), sizeof(to)) == 0 || errno == EINPROGRESS;
    const bool isConnected = isUnderWay && poll(&writable, 1, CONNECT_MS) == 1 &&
                             getsockopt(connection, SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
    close(connection);
    return isConnected;
}

} // namespace

// The name of a camera is a host that was resolved, so nothing in it needs an escape.
std::string NvrEventLine(long long unixMs, const std::string& camera, const std::string& event, bool state, bool isJson)
{
    const std::string word = state ? "on" : "off";
    return isJson ? "{\"time\":\"" + TimeText(unixMs) + "\",\"camera\":\"" + camera + "\",\"event\":\"" + event +
                        "\",\"state\":\"" + word + "\"}"
                  : TimeText(unixMs) + " " + camera + " " + event + " " + word;
}

CNvrWatch::CNvrWatch(std::ostream& out, bool isJson) : m_out(out), m_isJson(isJson) {}

CNvrWatch::~CNvrWatch()
{
    for (const Camera& camera : m_cameras)
    {
        if (camera.state == State::Watched)
        {
            LogOut(camera);
        }
    }
}

unsigned int CNvrWatch::Add(const NvrCamera& camera, const std::string& address)
{
    m_cameras.push_back({camera, address, State::Away, NEW_LOGIN});
    return LogIn(m_cameras.back());
}

/// @return 0, or the library's result code
unsigned int CNvrWatch::LogIn(Camera& camera)
{
    unsigned int error = 0;
    const unsigned int token = ONVIF_CLIENT_Login(NEW_LOGIN, camera.address.c_str(), camera.camera.port,
                                                  camera.camera.user.c_str(), camera.camera.password.c_str(), &error);
    if (error != 0)
    {
        camera.state = error == LOGIN_NO_ANSWER ? State::Away : State::Refused;
        return error;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_names[token] = NameOf(camera.camera);
    }
    camera.state = State::Watched;
    camera.token = token;
    ONVIF_CLIENT_AddAlarmStateObserver(token, this);
    return 0;
}

void CNvrWatch::LogOut(const Camera& camera)
{
    ONVIF_CLIENT_DelAlarmStateObserver(camera.token);
    ONVIF_CLIENT_Logout(camera.token);
}

std::string CNvrWatch::CheckNext()
{
    Camera& camera = m_cameras[m_next];
    m_next = (m_next + 1) % m_cameras.size();
    const std::string name = NameOf(camera.camera);
    if (!CanConnect(camera.address, camera.camera.port))
    {
        const bool wasWatched = camera.state == State::Watched;
        if (wasWatched)
        {
            LogOut(camera);
            Forget(camera.token);
        }
        camera.state = State::Away;
        return wasWatched ? name + " does not answer; waiting for it" : "";
    }
    if (camera.state != State::Away)
    {
        return "";
    }
    const unsigned int error = LogIn(camera);
    if (error == 0)
    {
        return name + " is watched again";
    }
    return error == LOGIN_NO_ANSWER
               ? ""
               : name + ": login failed with code " + std::to_string(error) + ": " + DescribeLoginError(error);
}

void CNvrWatch::OnMotionState(unsigned int token, bool state)
{
    Print(token, "motion", state);
}

void CNvrWatch::OnAlarmInState(unsigned int token, unsigned int /*index*/, bool state)
{
    Print(token, "alarm-in", state);
}

/// What is on is over when its camera is away: nobody else would tell its end.
void CNvrWatch::Forget(unsigned int token)
{
    std::set<std::string> ongoing;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ongoing = m_ongoing[token];
    }
    for (const std::string& event : ongoing)
    {
        Print(token, event, false);
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_names.erase(token);
    m_ongoing.erase(token);
}

/// At once, so that a reader behind a pipe sees each line when it happens.
void CNvrWatch::Print(unsigned int token, const std::string& event, bool state)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (state)
    {
        m_ongoing[token].insert(event);
    }
    else
    {
        m_ongoing[token].erase(event);
    }
    m_out << NvrEventLine(NowMs(), m_names[token], event, state, m_isJson) << std::endl;
}
