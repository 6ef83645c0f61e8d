// nvr-events: prints when motion or an alarm input of ONVIF cameras begins and ends.
//
// usage: nvr-events USER PASSWORD ADDRESS[:PORT]...
#include <AlarmStateObserver.h>
#include <OnvifSDK.h>
#include <ShareSDK.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <signal.h>

namespace
{

constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;
constexpr int RETRY_SECONDS = 10;

/// Called on the library's check thread while the main thread logs in to further cameras.
class CPrinter : public CONVIFAlarmStateObserver
{
public:
    void Name(unsigned int token, const std::string& camera)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_cameras[token] = camera;
    }
    void OnMotionState(unsigned int token, bool state) override { Print(token, "motion", state); }
    void OnAlarmInState(unsigned int token, unsigned int, bool state) override { Print(token, "alarm input", state); }

private:
    void Print(unsigned int token, const char* what, bool state)
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        std::printf("%s: %s %s\n", m_cameras[token].c_str(), what, state ? "on" : "off");
        std::fflush(stdout);
    }

    std::mutex m_lock;
    std::map<unsigned int, std::string> m_cameras; // names by token
};

struct Login
{
    std::string camera; // ADDRESS[:PORT]
    unsigned int token = NEW_LOGIN;
};

/// Logs in and listens. Does nothing for a camera that it is logged in to already.
void Connect(Login& login, const char* user, const char* password, CPrinter& printer)
{
    if (login.token != NEW_LOGIN)
        return;
    const std::size_t colon = login.camera.find(':');
    const std::string address = login.camera.substr(0, colon);
    const int port = colon == std::string::npos ? 80 : std::atoi(login.camera.c_str() + colon + 1);
    unsigned int error = 0;
    const unsigned int token =
        ONVIF_CLIENT_Login(NEW_LOGIN, address.c_str(), static_cast<unsigned short>(port), user, password, &error);
    if (error != 0)
    {
        std::fprintf(stderr, "%s: login failed with code %u; trying again in %d seconds\n", login.camera.c_str(), error,
                     RETRY_SECONDS);
        return;
    }
    login.token = token;
    printer.Name(token, login.camera);
    ONVIF_CLIENT_AddAlarmStateObserver(token, &printer);
    std::fprintf(stderr, "%s: watching\n", login.camera.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4)
    {
        std::fprintf(stderr, "usage: nvr-events USER PASSWORD ADDRESS[:PORT]...\n");
        return 2;
    }
    // Blocked in the library's threads too, so that the wait below gets them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);

    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    ONVIF_CLIENT_Initial();
    CPrinter printer;
    std::vector<Login> logins(static_cast<std::size_t>(argc) - 3);
    for (std::size_t i = 0; i < logins.size(); ++i)
        logins[i].camera = argv[i + 3];

    const timespec pause = {RETRY_SECONDS, 0};
    do
    {
        for (Login& login : logins)
            Connect(login, argv[1], argv[2], printer);
    } while (sigtimedwait(&signals, nullptr, &pause) < 0);

    for (const Login& login : logins)
    {
        if (login.token == NEW_LOGIN)
            continue;
        ONVIF_CLIENT_DelAlarmStateObserver(login.token);
        ONVIF_CLIENT_Logout(login.token);
    }
    ONVIF_CLIENT_Quit();
}
