#include "SubscriptionRequests.h"

#include "HttpClientManager.h"
#include "QLXXMLParse.h"

#include <cstring>

namespace
{

constexpr const char* HEAD = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";

/// A camera chooses its addresses: they must not become elements of our documents.
std::string Escaped(const char* text)
{
    std::string escaped;
    for (; *text != '\0'; ++text)
    {
        switch (*text)
        {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        default:
            escaped += *text;
        }
    }
    return escaped;
}

std::string Element(const std::string& name, const std::string& content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

/// A duration of ISO 8601.
std::string Timeout(unsigned int seconds)
{
    return Element("timeout", "PT" + std::to_string(seconds) + "S");
}

bool Send(unsigned int token, const std::string& content, std::string& response)
{
    const std::string document = HEAD + ("<Set version=\"1.0\" systemType=\"ipc\">" + content) + "</Set>";
    return CHttpClientManager::Instance().SetCfg(token, document, response);
}

/// @return false, with `address` untouched, when none came or it is too long
bool TakeAddress(const std::string& response, const char* path, char* address)
{
    std::string text;
    CQLXXMLParse(response).GetValueStr(path, text);
    if (text.empty() || text.size() >= static_cast<std::size_t>(ONVIF_ADDRESS_BYTES))
    {
        return false;
    }
    std::memcpy(address, text.c_str(), std::strlen(text.c_str()) + 1);
    return true;
}

} // namespace

bool PullPoint(unsigned int token, unsigned int timeoutSeconds, char* address)
{
    std::string response;
    return Send(token, Element("createPullPointSubscription", Timeout(timeoutSeconds)), response) &&
           TakeAddress(response, "SetResponse/createPullPointSubscription/address", address);
}

bool Subscribe(unsigned int token, unsigned int timeoutSeconds, const char* clientAddr, char* address)
{
    std::string response;
    return Send(token, Element("subscribe", Element("clientAddr", Escaped(clientAddr)) + Timeout(timeoutSeconds)),
                response) &&
           TakeAddress(response, "SetResponse/subscribe/address", address);
}

bool Unsubscribe(unsigned int token, const char* address)
{
    std::string response;
    return Send(token, Element("subscribe", Element("serverAddr", Escaped(address))), response);
}

bool Renew(unsigned int token, const char* address, unsigned int timeoutSeconds)
{
    std::string response;
    return Send(token, Element("renew", Element("serverAddr", Escaped(address)) + Timeout(timeoutSeconds)), response);
}

std::string PullMessagesDocument(const char* pullAddress, unsigned int timeoutSeconds, unsigned int messageLimit)
{
    const std::string key = Element("token", Escaped(pullAddress)) + Timeout(timeoutSeconds) +
                            Element("messageLimit", std::to_string(messageLimit));
    return HEAD + ("<Get version=\"1.0\" systemType=\"ipc\">" + Element("pullMessages", key)) + "</Get>";
}
