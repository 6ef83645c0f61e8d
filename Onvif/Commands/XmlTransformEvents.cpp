// The answers: subscriptions, and the messages of a pull point.
#include "XmlTransform.h"

#include "TransformAnswer.h"

namespace
{

const std::string MESSAGE = "wsn:NotificationMessage";

/// Adds the name and the value of a device's item.
void CopyItem(CTransformAnswer& out, unsigned int simpleItem, unsigned int item)
{
    out.CopyAttribute(simpleItem, "Name", item, "name");
    out.CopyAttribute(simpleItem, "Value", item, "val");
}

/// Adds a group of items.
/// @param path         the first item of the group, below the device's message
/// @param emptyItems   items without values in front of each one
void CopyGroup(CTransformAnswer& out, unsigned int device, const std::string& path, unsigned int message,
               const std::string& name, unsigned int emptyItems)
{
    unsigned int simpleItem = out.Soap().GetFirstItem(device, path);
    if (simpleItem == 0)
    {
        return;
    }
    const unsigned int group = out.Answer().AddValue(message, name, "", false);
    for (; simpleItem != 0; simpleItem = out.Soap().GetNextSiblingItemByName(simpleItem, "tt:SimpleItem"))
    {
        for (unsigned int i = 0; i < emptyItems; ++i)
        {
            out.Answer().AddValue(group, "item", "", false);
        }
        CopyItem(out, simpleItem, out.Answer().AddValue(group, "item", "", false));
    }
}

// What a host reads as a message: the data of the device stands in a second `key`, and each item of the device's own
// key has an empty one in front of it.
void AddMessage(CTransformAnswer& out, unsigned int device, unsigned int notify)
{
    const unsigned int message = out.Answer().AddValue(notify, "message", "", false);
    out.CopyAttribute(device, "UtcTime", message, "utcTime");
    out.CopyAttribute(device, "PropertyOperation", notify, "propertyOper");
    CopyGroup(out, device, "tt:Source/tt:SimpleItem", message, "source", 0);
    CopyGroup(out, device, "tt:Key/tt:SimpleItem", message, "key", 1);
    CopyGroup(out, device, "tt:Data/tt:SimpleItem", message, "key", 0);
}

/// @param reference  the element with the address of the subscription
void AddSubscription(CTransformAnswer& out, const char* response, const char* reference)
{
    if (out.AddStatus())
    {
        const unsigned int device = out.Soap().GetFirstItem(response);
        out.Copy(device, reference, out.Key(), "address");
        out.Copy(device, "wsn:CurrentTime", out.Key(), "currentTime");
        out.Copy(device, "wsn:TerminationTime", out.Key(), "terminationTime");
    }
}

} // namespace

void CXmlTransform::TransCreatePullPointSubscription(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "SetResponse", "createPullPointSubscription");
    AddSubscription(out, "s:Envelope/s:Body/ew:CreatePullPointSubscriptionResponse",
                    "ew:SubscriptionReference/ad:Address");
}

void CXmlTransform::TransSubscribe(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "SetResponse", "subscribe");
    AddSubscription(out, "s:Envelope/s:Body/wsn:SubscribeResponse", "wsn:SubscriptionReference/ad:Address");
}

// Under "GetResponse", though it answers a "Set".
void CXmlTransform::TransRenew(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "renew");
    if (out.AddStatus())
    {
        const unsigned int device = out.Soap().GetFirstItem("s:Envelope/s:Body/wsn:RenewResponse/");
        out.Copy(device, "wsn:TerminationTime", out.Key(), "terminationTime");
        out.Copy(device, "wsn:CurrentTime", out.Key(), "currentTime");
    }
}

void CXmlTransform::TransPullMessages(const std::string& soap, std::string& answer)
{
    CTransformAnswer out(soap, answer, "GetResponse", "pullMessages");
    if (!out.AddStatus())
    {
        return;
    }
    unsigned int device = out.Soap().GetFirstItem("s:Envelope/s:Body/ew:PullMessagesResponse/" + MESSAGE);
    for (; device != 0; device = out.Soap().GetNextSiblingItemByName(device, MESSAGE))
    {
        const unsigned int notify = out.Answer().AddValue(out.Key(), "notifyMessage", "", false);
        out.Copy(device, "wsn:Topic", notify, "topic");
        const unsigned int message = out.Soap().GetFirstItem(device, MESSAGE + "/wsn:Message/tt:Message");
        if (message != 0)
        {
            AddMessage(out, message, notify);
        }
    }
}
