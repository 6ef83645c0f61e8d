// FuzzRtspProtocol.cpp: whatever a client sends where a request should be.
//
// The first byte chooses the policy, the rest is the message.
#include "AuthorizationCheck.h"
#include "NetServerSDK.h"
#include "RtspProtocol.h"
#include "RtspTransport.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{
void Require(bool condition)
{
    if (!condition)
        abort();
}

void ParseRequest(std::vector<char> text, CPolicy policy)
{
    CRtspProtocol protocol(text.data(), static_cast<unsigned int>(text.size() - 1), policy);
    const bool parsed = protocol.Parse();
    std::string method;
    std::string url;
    protocol.GetMethod(method);
    protocol.GetURL(url);
    Require(method.size() <= 159 && url.size() <= 159 && protocol.GetUserAgent().size() <= 159);
    Require(!parsed || !method.empty());
    Require(!parsed || !url.empty() || RtspIsHttpMethod(method, policy) || method.size() < text.size());
    protocol.GetTrackID();
    protocol.ParseTransportHeader();

    std::string value;
    for (const char* name : {"date", "time", "timelen"})
        GetURLFieldValue(url, name, value);
}

void ParseHeaders(const std::vector<char>& text)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT transport;
    const int result = parseTransportHeader(text.data(), nextChannel, transport);
    Require(result == 0 || result == -1);
    Require(memchr(transport.transport, 0, sizeof(transport.transport)) != nullptr);
    Require(memchr(transport.destination, 0, sizeof(transport.destination)) != nullptr);
    Require(nextChannel == 0 || nextChannel == 2);

    std::string host;
    GetLocalIPFromRequest(text.data(), host);
    Require(host.size() <= 127);
    RtspAsksDynamicRate(text.data());
    double start = 0;
    double end = 0;
    parseRangeHeader(text.data(), start, end);
}

void CheckAuthorization(const std::vector<char>& text)
{
    NETNS::DEV_USER_INFO user = {};
    memset(user.userName, 'u', sizeof(user.userName));
    memset(user.password, 'p', sizeof(user.password));
    const std::vector<NETNS::DEV_USER_INFO> users = {user};
    CAuthorizationCheck check(users, QLX_RTSP_REALM, "nonce", "DESCRIBE", text.data());
    Require(!check.IsCheckOk() || check.GetAuthorizatoinType() != CAuthorizationCheck::AUTHORIZATION_NONE);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    std::vector<char> text(data + 1, data + size);
    text.push_back('\0');
    ParseRequest(text, CPolicy((data[0] & 1) != 0 ? NET_POLICY_STANDARD_RTSP : 0));
    ParseHeaders(text);
    CheckAuthorization(text);
    return 0;
}
