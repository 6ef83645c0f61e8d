#include "PullExchange.h"

#include "HttpClientManager.h"
#include "NetSocket.h"
#include "QLXXMLParse.h"
#include "ShareSDK.h"

namespace
{

constexpr int ATTEMPTS = 3;
constexpr unsigned int POLL_MS = 50;

/// @return whether the connection came about
bool AwaitConnect(int id, int polls)
{
    int result = 0;
    for (int i = 0; i < polls && result == 0; ++i)
    {
        NET_SOCKET_PopConnectResult(id, result, POLL_MS);
    }
    return result > 0;
}

} // namespace

bool MakePullRequest(unsigned int token, const std::string& document, PULL_REQUEST& request)
{
    CHttpClientManager& manager = CHttpClientManager::Instance();
    CHttpClient* const client = manager.GetClient(token);
    if (client == nullptr)
    {
        return false;
    }
    client->PullMessages(document, request.text);
    request.ip = client->GetIP();
    request.port = client->GetPort();
    manager.ReleaseClient(token);
    return !request.text.empty();
}

bool ConnectForPull(const PULL_REQUEST& request, int polls, const std::function<bool()>& mayGoOn, int& id)
{
    for (int attempt = 0; attempt < ATTEMPTS && mayGoOn(); ++attempt)
    {
        id = NET_SOCKET_AddConnect(0, request.ip.c_str(), request.port);
        if (id <= 0)
        {
            SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        }
        else if (AwaitConnect(id, polls))
        {
            return true;
        }
        NET_SOCKET_DelConnect(id);
        NET_SOCKET_DestroyHNetCommunication(id);
    }
    return false;
}

bool SendPull(int id, const PULL_REQUEST& request)
{
    const char* cursor = request.text.data();
    int remaining = static_cast<int>(request.text.size());
    bool broken = false;
    while (remaining > 0 && !broken)
    {
        const int sent = NET_SOCKET_Send_Immediate(id, cursor, remaining, broken);
        if (sent > 0)
        {
            cursor += sent;
            remaining -= sent;
        }
    }
    return !broken;
}

void ReadPullAnswer(const std::string& answer, const ONVIF_TOPIC* topics,
                    const std::function<void(const OnvifEvent&)>& found)
{
    const CQLXXMLParse document(answer);
    OnvifEvent event;
    unsigned int item = document.GetFirstItem("GetResponse/pullMessages/notifyMessage");
    for (; item != 0; item = document.GetNextSiblingItemByName(item, "notifyMessage"))
    {
        std::string text;
        if (document.GetValueStr(item, "topic", text))
        {
            event.type = ClassifyTopic(topics, text);
        }
        if (document.GetValueStr(item, "message/key/item/val", text))
        {
            event.state = IsTrueText(text);
        }
        found(event);
    }
}
