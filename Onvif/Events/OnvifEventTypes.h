// OnvifEventTypes.h: what a camera reports, as both event engines know it.
#pragma once

#include <string>

enum ONVIF_EVENT_TYPE : int
{
    ONVIF_EVENT_UNKNOWN = 0,
    ONVIF_EVENT_MOTION = 1,
    ONVIF_EVENT_ALARM_IN = 2,
};

struct OnvifEvent
{
    ONVIF_EVENT_TYPE type = ONVIF_EVENT_UNKNOWN;
    bool state = false;
    char source[64] = {}; ///< value of the camera's source item, cut at 63 bytes; kept and not used further
};

/// A part of a topic (ONVIF Core, 9.5) and what an event of such a topic tells.
struct ONVIF_TOPIC
{
    const char* part; ///< null ends a table
    ONVIF_EVENT_TYPE type;
};

/// @param topics  first match wins. @return the type of the first row whose part the topic holds
inline ONVIF_EVENT_TYPE ClassifyTopic(const ONVIF_TOPIC* topics, const std::string& topic)
{
    for (; topics->part != nullptr; ++topics)
    {
        if (topic.find(topics->part) != std::string::npos)
        {
            return topics->type;
        }
    }
    return ONVIF_EVENT_UNKNOWN;
}

/// Cameras spell a state in these ways; any other text, "True" too, is false.
inline bool IsTrueText(const std::string& text)
{
    return text == "true" || text == "TRUE" || text == "1";
}
