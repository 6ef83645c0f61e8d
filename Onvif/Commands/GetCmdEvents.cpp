// The requests: subscriptions and pull points.
#include "GetCmd.h"

#include "OnvifTemplates.h"
#include "RequestBuilder.h"

namespace
{

const std::string BODY = "s:Envelope/s:Body/";
const char* const ADDRESSEE = "s:Envelope/s:Header/ad:To";

} // namespace

std::string CGetDefaultCmd::CreatePullPointSubscription(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::CreatePullPointSubscription);
    builder.Fill(BODY + "ew:CreatePullPointSubscription/ew:InitialTerminationTime",
                 "Set/createPullPointSubscription/timeout");
    return builder.Text();
}

std::string CGetDefaultCmd::Subscribe(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::Subscribe);
    builder.Fill(BODY + "wsn:Subscribe/wsn:ConsumerReference/ad:Address", "Set/subscribe/clientAddr");
    builder.Fill(BODY + "wsn:Subscribe/wsn:InitialTerminationTime", "Set/subscribe/timeout");
    return builder.Text();
}

std::string CGetDefaultCmd::Renew(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::Renew);
    builder.Fill(BODY + "wsn:Renew/wsn:TerminationTime", "Set/renew/timeout");
    builder.Fill(ADDRESSEE, "Set/renew/serverAddr");
    return builder.Text();
}

std::string CGetDefaultCmd::Unsubscribe() const
{
    return std::string(ONVIF_TEMPLATES::Unsubscribe);
}

std::string CGetDefaultCmd::PullMessages(const std::string& request) const
{
    CRequestBuilder builder(request, ONVIF_TEMPLATES::PullMessages);
    builder.Fill(BODY + "ew:PullMessages/ew:Timeout", "Get/pullMessages/timeout");
    builder.Fill(BODY + "ew:PullMessages/ew:MessageLimit", "Get/pullMessages/messageLimit");
    builder.Fill(ADDRESSEE, "Get/pullMessages/token");
    return builder.Text();
}
