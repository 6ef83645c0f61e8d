#include "OnvifNotification.h"

#include <algorithm>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

std::string MessageElement(const OnvifNotification::Message& message)
{
    const std::string topic = message.topicElement;
    return "<wsnt:NotificationMessage>" +
           (message.reference.empty() ? ""
                                      : "<wsnt:SubscriptionReference><wsa:Address>" + message.reference +
                                            "</wsa:Address></wsnt:SubscriptionReference>") +
           "<" + topic + ">" + message.topic + "</" + topic +
           "><wsnt:Message><tt:Message><tt:Source><tt:SimpleItem Name=\"Token\" Value=\"S1\"/></tt:Source>"
           "<tt:Data><tt:SimpleItem Name=\"State\" Value=\"" +
           message.value + "\"/></tt:Data></tt:Message></wsnt:Message></wsnt:NotificationMessage>";
}

std::string HttpRequest(const OnvifNotification& notification)
{
    const std::string body = OnvifNotifyDocument(notification);
    return "POST / HTTP/1.1\r\n" +
           (notification.lengthName.empty() ? ""
                                            : notification.lengthName + ": " + std::to_string(body.size()) + "\r\n") +
           "\r\n" + body;
}

bool SendAll(int connection, const std::string& text, std::size_t pieceBytes)
{
    const std::size_t piece = pieceBytes == 0 ? text.size() : pieceBytes;
    for (std::size_t done = 0; done < text.size();)
    {
        const ssize_t count = send(connection, text.data() + done, std::min(piece, text.size() - done), MSG_NOSIGNAL);
        if (count <= 0)
        {
            return false;
        }
        done += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

std::string OnvifNotifyDocument(const OnvifNotification& notification)
{
    std::string messages;
    for (const OnvifNotification::Message& message : notification.messages)
    {
        messages += MessageElement(message);
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"
           "<SOAP-ENV:Envelope xmlns:SOAP-ENV=\"http://www.w3.org/2003/05/soap-envelope\""
           " xmlns:wsa=\"http://www.w3.org/2005/08/addressing\" xmlns:wsnt=\"http://docs.oasis-open.org/wsn/b-2\""
           " xmlns:tt=\"http://www.onvif.org/ver10/schema\"><SOAP-ENV:Header>" +
           (notification.to.empty() ? "" : "<wsa:To>" + notification.to + "</wsa:To>") +
           "</SOAP-ENV:Header><SOAP-ENV:Body><wsnt:Notify>" + messages +
           "</wsnt:Notify></SOAP-ENV:Body></SOAP-ENV:Envelope>";
}

std::string PostOnvifNotification(unsigned short port, const OnvifNotification& notification)
{
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    const timeval limit = {20, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    std::string answer;
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
        SendAll(connection, HttpRequest(notification), notification.pieceBytes))
    {
        char bytes[512];
        ssize_t count = 0;
        while ((count = recv(connection, bytes, sizeof(bytes), 0)) > 0)
        {
            answer.append(bytes, static_cast<std::size_t>(count));
        }
    }
    close(connection);
    return answer;
}
