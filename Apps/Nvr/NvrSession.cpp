#include "NvrSession.h"

#include "NvrKeys.h"
#include "OnvifSDK.h"

#include <tinyxml2.h>

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>

namespace
{

constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;
constexpr unsigned int NO_LOGIN = 0xFFFFFFFF;

struct ErrorRow
{
    unsigned int code;
    const char* words;
};

// clang-format off
const ErrorRow LOGIN_ERRORS[] = {
    {4,   "no answer that can be read: check --host and --port, and that the camera has ONVIF switched on"},
    {5,   "the camera reports a fault when asked for its profiles: it may want a user with more rights, or its clock "
          "differs from this machine's"},
    {6,   "what answers does not speak ONVIF: check --port; some cameras also answer like this to a wrong password"},
    {401, "the camera refuses the user name or the password; a clock that differs from this machine's has the same "
          "effect"},
};
// clang-format on

} // namespace

CNvrSession::CNvrSession() : m_token(NO_LOGIN)
{
    ONVIF_CLIENT_Initial();
}

CNvrSession::~CNvrSession()
{
    if (m_token != NO_LOGIN)
    {
        ONVIF_CLIENT_Logout(m_token);
    }
    ONVIF_CLIENT_Quit();
}

unsigned int CNvrSession::Login(const NvrOptions& options, const std::string& address)
{
    unsigned int error = 0;
    m_token = ONVIF_CLIENT_Login(NEW_LOGIN, address.c_str(), options.port, options.user.c_str(),
                                 options.password.c_str(), &error);
    return error;
}

bool CNvrSession::Get(const std::string& request, std::string& answer) const
{
    char* response = nullptr;
    int length = 0;
    const bool good = ONVIF_CLIENT_GetCfg(m_token, request.c_str(), response, &length);
    answer.assign(response != nullptr ? response : "", response != nullptr ? static_cast<std::size_t>(length) : 0);
    ONVIF_CLIENT_DelResponseBuff(response);
    return good;
}

bool CNvrSession::Set(const std::string& request, std::string& answer) const
{
    char* response = nullptr;
    const bool good = ONVIF_CLIENT_SetCfg(m_token, request.c_str(), response);
    answer = response != nullptr ? response : "";
    ONVIF_CLIENT_DelResponseBuff(response);
    return good;
}

int CNvrSession::CountProfiles() const
{
    std::string answer;
    Get(MakeGetDocument({"streamCount"}, {}, {}), answer);
    tinyxml2::XMLDocument document;
    document.Parse(answer.c_str());
    const tinyxml2::XMLElement* const root = document.RootElement();
    const tinyxml2::XMLElement* const count = root != nullptr ? root->FirstChildElement("streamCount") : nullptr;
    return count != nullptr ? count->IntText(0) : 0;
}

std::string DescribeLoginError(unsigned int error)
{
    for (const ErrorRow& row : LOGIN_ERRORS)
    {
        if (row.code == error)
        {
            return row.words;
        }
    }
    return "the camera could not be asked for its profiles";
}

std::string ResolveHost(const std::string& host)
{
    addrinfo wanted = {};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0 || found == nullptr)
    {
        return {};
    }
    char text[INET_ADDRSTRLEN] = {};
    const auto* const address = reinterpret_cast<const sockaddr_in*>(found->ai_addr);
    inet_ntop(AF_INET, &address->sin_addr, text, sizeof(text));
    freeaddrinfo(found);
    return text;
}
