#include "NvrWatch.h"

#include "OnvifSDK.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <ostream>

namespace
{

constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;

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
    for (const auto& [token, name] : m_names)
    {
        ONVIF_CLIENT_DelAlarmStateObserver(token);
        ONVIF_CLIENT_Logout(token);
    }
}

unsigned int CNvrWatch::Add(const NvrCamera& camera, const std::string& address)
{
    unsigned int error = 0;
    const unsigned int token = ONVIF_CLIENT_Login(NEW_LOGIN, address.c_str(), camera.port, camera.user.c_str(),
                                                  camera.password.c_str(), &error);
    if (error != 0)
    {
        return error;
    }
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_names[token] = camera.host + ":" + std::to_string(camera.port);
    }
    ONVIF_CLIENT_AddAlarmStateObserver(token, this);
    return 0;
}

void CNvrWatch::OnMotionState(unsigned int token, bool state)
{
    Print(token, "motion", state);
}

void CNvrWatch::OnAlarmInState(unsigned int token, unsigned int /*index*/, bool state)
{
    Print(token, "alarm-in", state);
}

/// At once, so that a reader behind a pipe sees each line when it happens.
void CNvrWatch::Print(unsigned int token, const char* event, bool state)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_out << NvrEventLine(NowMs(), m_names[token], event, state, m_isJson) << std::endl;
}
