// OnvifNotification.h: what a camera that pushes sends (Web Services Base Notification 1.3), for tests. Any thread.
#pragma once

#include <string>
#include <vector>

struct OnvifNotification
{
    struct Message
    {
        std::string topic;
        std::string value;     ///< of the first item of its data
        std::string reference; ///< address of the subscription; empty: not told
        const char* topicElement = "wsnt:Topic";
    };
    std::vector<Message> messages;
    std::string to;                            ///< address in the header; empty: none
    std::string lengthName = "Content-Length"; ///< header that tells the length; empty: none
    std::size_t pieceBytes = 0;                ///< sent in pieces of so many bytes; 0: at one go
};

inline constexpr const char* ONVIF_MOTION_TOPIC = "tns1:RuleEngine/CellMotionDetector/Motion";
inline constexpr const char* ONVIF_INPUT_TOPIC = "tns1:Device/Trigger/DigitalInput";

/// The SOAP document.
std::string OnvifNotifyDocument(const OnvifNotification& notification);

/// Posts it to a port of loopback, on a connection of its own.
/// @return what is answered until the connection ends; empty when none came about
std::string PostOnvifNotification(unsigned short port, const OnvifNotification& notification);
