// OnvifHelper.h: masks, durations and motion grids as ONVIF writes them. All operations are static; any thread.
#pragma once

#include <string>

class COnvifHelper
{
public:
    /// "255.255.240.0" is 20. @return -1 for an empty text
    static int SubmaskStringToLength(const std::string& mask);
    /// 20 is "255.255.240.0". @return an empty text for a length below 0 or above 32
    static std::string SubmaskLengthToString(int length);

    COnvifHelper() = delete;
};
