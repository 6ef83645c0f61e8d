// The simulated camera: subscriptions and a pull point.
#include "OnvifSimulatorTables.h"

namespace
{

const std::string TIMES = "<wsn:CurrentTime>2026-11-21T13:30:00Z</wsn:CurrentTime>"
                          "<wsn:TerminationTime>2026-11-21T13:31:00Z</wsn:TerminationTime>";

OnvifAnswer CreatePullPointSubscription(OnvifCall& call)
{
    call.values["pull.term"] = call.request.Text("InitialTerminationTime");
    return OnvifBody("<ew:CreatePullPointSubscriptionResponse><ew:SubscriptionReference><ad:Address>" + call.address +
                     "onvif/pull_1</ad:Address></ew:SubscriptionReference>" + TIMES +
                     "</ew:CreatePullPointSubscriptionResponse>");
}

OnvifAnswer Subscribe(OnvifCall& call)
{
    call.values["subscribe.consumer"] = call.request.Text("ConsumerReference/Address");
    call.values["subscribe.term"] = call.request.Text("InitialTerminationTime");
    return OnvifBody("<wsn:SubscribeResponse><wsn:SubscriptionReference><ad:Address>" + call.address +
                     "onvif/subscription_1</ad:Address></wsn:SubscriptionReference>" + TIMES +
                     "</wsn:SubscribeResponse>");
}

OnvifAnswer Renew(OnvifCall& call)
{
    call.values["renew.term"] = call.request.Text("TerminationTime");
    return OnvifBody("<wsn:RenewResponse>" + TIMES + "</wsn:RenewResponse>");
}

OnvifAnswer Unsubscribe(OnvifCall& call)
{
    call.values["subscribe.consumer"].clear();
    return OnvifBody("<wsn:UnsubscribeResponse/>");
}

OnvifAnswer PullMessages(OnvifCall& call)
{
    const std::string moving = call.values["motion"];
    return OnvifBody("<ew:PullMessagesResponse><wsn:NotificationMessage>"
                     "<wsn:Topic>tns1:RuleEngine/CellMotionDetector/Motion</wsn:Topic><wsn:Message>"
                     "<tt:Message UtcTime=\"2026-11-21T13:30:00Z\" PropertyOperation=\"Changed\"><tt:Source>"
                     "<tt:SimpleItem Name=\"VideoSourceConfigurationToken\" Value=\"VSC_1\"/></tt:Source><tt:Data>"
                     "<tt:SimpleItem Name=\"IsMotion\" Value=\"" +
                     moving +
                     "\"/></tt:Data></tt:Message></wsn:Message></wsn:NotificationMessage></ew:PullMessagesResponse>");
}

} // namespace

OnvifFamily OnvifEventFamily()
{
    // clang-format off
    return {{
        {"CreatePullPointSubscription", "ew", &CreatePullPointSubscription},
        {"Subscribe",                   "ew", &Subscribe                  },
        {"Renew",                       "",   &Renew                      },
        {"Unsubscribe",                 "",   &Unsubscribe                },
        {"PullMessages",                "",   &PullMessages               },
    }, {
        {"motion", "true"},
    }};
    // clang-format on
}
