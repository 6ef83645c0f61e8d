#include "OnvifHelper.h"

#include <cstdio>

int COnvifHelper::SubmaskStringToLength(const std::string& mask)
{
    if (mask.empty())
    {
        return -1;
    }
    int parts[4] = {};
    std::sscanf(mask.c_str(), "%d.%d.%d.%d", &parts[0], &parts[1], &parts[2], &parts[3]); // NOLINT(cert-err34-c)
    int length = 0;
    for (const int part : parts)
    {
        for (unsigned int bit = 1; bit <= 0x80; bit <<= 1)
        {
            length += (static_cast<unsigned int>(part) & bit) != 0 ? 1 : 0;
        }
    }
    return length;
}

std::string COnvifHelper::SubmaskLengthToString(int length)
{
    if (length < 0 || length > 32)
    {
        return "";
    }
    std::string mask;
    for (int left = length, part = 0; part < 4; ++part)
    {
        const int bits = left > 8 ? 8 : left;
        mask += (part == 0 ? "" : ".") + std::to_string(0xFF & (0xFF00 >> bits));
        left -= bits;
    }
    return mask;
}
