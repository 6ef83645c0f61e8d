#include "OnvifHelper.h"

#include "Base64Coder.h"
#include "PubHelper.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <locale>
#include <sstream>
#include <vector>

namespace
{

// PackBits: a control byte below 128 announces that many literal bytes and one more, one above 128 announces 257 less
// the byte copies of the byte behind it, and 128 ends the data.
constexpr unsigned int PACKBITS_END = 128;
constexpr unsigned int PACKBITS_RUN_BASE = 257;
constexpr unsigned int PACKBITS_LONGEST = 128;
constexpr unsigned int PACKBITS_SHORTEST_RUN = 3;

struct DurationUnit
{
    char designator;
    long long seconds;
};

// In the order of an ISO 8601 duration; what stands in front of the "T" and was not read is passed over with it.
const DurationUnit DURATION_UNITS[] = {{'D', 86400}, {'T', 0}, {'H', 3600}, {'M', 60}, {'S', 1}};

int ReadNumber(const char* text)
{
    return static_cast<int>(std::clamp(std::strtol(text, nullptr, 10), long{INT_MIN}, long{INT_MAX}));
}

bool RunBeginsAt(const unsigned char* data, unsigned int left)
{
    return left >= PACKBITS_SHORTEST_RUN && data[1] == data[0] && data[2] == data[0];
}

unsigned int RunLength(const unsigned char* data, unsigned int left)
{
    const unsigned int limit = std::min(left, PACKBITS_LONGEST);
    unsigned int length = PACKBITS_SHORTEST_RUN;
    while (length < limit && data[length] == data[0])
    {
        ++length;
    }
    return length;
}

unsigned int LiteralLength(const unsigned char* data, unsigned int left)
{
    const unsigned int limit = std::min(left, PACKBITS_LONGEST);
    unsigned int length = 1;
    while (length < limit && !RunBeginsAt(data + length, left - length))
    {
        ++length;
    }
    return length;
}

std::vector<unsigned char> PackBits(const unsigned char* data, unsigned int size)
{
    std::vector<unsigned char> packed;
    packed.reserve(size_t{size} * 2);
    for (unsigned int at = 0; at < size;)
    {
        const unsigned char* const here = data + at;
        if (RunBeginsAt(here, size - at))
        {
            const unsigned int length = RunLength(here, size - at);
            packed.push_back(static_cast<unsigned char>(PACKBITS_RUN_BASE - length));
            packed.push_back(*here);
            at += length;
            continue;
        }
        const unsigned int length = LiteralLength(here, size - at);
        packed.push_back(static_cast<unsigned char>(length - 1));
        packed.insert(packed.end(), here, here + length);
        at += length;
    }
    return packed;
}

unsigned int UnpackBits(const unsigned char* packed, unsigned long packedSize, unsigned char* out, unsigned int size)
{
    unsigned int written = 0;
    for (unsigned long at = 0; at < packedSize && written < size;)
    {
        const unsigned int control = packed[at++];
        if (control == PACKBITS_END)
        {
            break;
        }
        const bool isRun = control > PACKBITS_END;
        const unsigned int count = std::min(isRun ? PACKBITS_RUN_BASE - control : control + 1, size - written);
        const unsigned long needed = isRun ? 1 : count;
        if (packedSize - at < needed)
        {
            break;
        }
        if (isRun)
        {
            std::memset(out + written, packed[at], count);
        }
        else
        {
            std::memcpy(out + written, packed + at, count);
        }
        at += needed;
        written += count;
    }
    return written;
}

} // namespace

int COnvifHelper::SubmaskStringToLength(const std::string& mask)
{
    if (mask.empty())
    {
        return -1;
    }
    int parts[4] = {};
    std::sscanf(mask.c_str(), "%d.%d.%d.%d", &parts[0], &parts[1], &parts[2], &parts[3]);
    int length = 0;
    for (const int part : parts)
    {
        length += static_cast<int>(PUB_GetBitCount(static_cast<unsigned int>(part) & 0xffU));
    }
    return length;
}

std::string COnvifHelper::SubmaskLengthToString(int length)
{
    if (length < 0 || length > 32)
    {
        return {};
    }
    const unsigned int mask = length == 0 ? 0 : 0xffffffffU << (32 - length);
    char text[16];
    std::snprintf(text, sizeof(text), "%u.%u.%u.%u", mask >> 24, (mask >> 16) & 0xff, (mask >> 8) & 0xff, mask & 0xff);
    return text;
}

bool COnvifHelper::IsQLXDevice(const char* text)
{
    return text != nullptr && std::strstr(text, "<tns1:Extension>") != nullptr;
}

bool COnvifHelper::IsHKDevice(const char* /*text*/)
{
    return false;
}

bool COnvifHelper::IsDHDevice(const char* /*text*/)
{
    return false;
}

long long COnvifHelper::ParseXmlTime(const char* text)
{
    if (text == nullptr)
    {
        return -1;
    }
    if (*text != 'P')
    {
        return 0;
    }
    long long seconds = 0;
    const char* at = text + 1;
    for (const DurationUnit& unit : DURATION_UNITS)
    {
        const char* const found = std::strchr(at, unit.designator);
        if (found != nullptr)
        {
            seconds += ReadNumber(at) * unit.seconds;
            at = found + 1;
        }
    }
    return seconds;
}

std::string COnvifHelper::ChangeToXmlTime(long long seconds)
{
    if (seconds < 0)
    {
        return {};
    }
    const long long days = seconds / 86400;
    const long long hours = seconds % 86400 / 3600;
    const long long minutes = seconds % 3600 / 60;
    std::string text = "P";
    if (days != 0)
    {
        text += std::to_string(days) + "D";
    }
    if (seconds % 86400 == 0)
    {
        return text;
    }
    text += "T";
    if (hours != 0)
    {
        text += std::to_string(hours) + "H";
    }
    if (minutes != 0)
    {
        text += std::to_string(minutes) + "M";
    }
    return text;
}

std::string COnvifHelper::DecimalText(double number)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(8) << number + 0.0; // no "-0"
    return text.str();
}

double COnvifHelper::ReadDecimal(const std::string& text)
{
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    double number = 0;
    in >> number;
    return number;
}

std::string COnvifHelper::EncodeMotionArea(const unsigned char* data, unsigned int size)
{
    if (data == nullptr || size == 0)
    {
        return {};
    }
    const std::vector<unsigned char> packed = PackBits(data, size);
    std::string text;
    CBase64Coder::Encode(packed.data(), packed.size(), text);
    return text;
}

unsigned int COnvifHelper::DecodeMotionArea(const char* text, unsigned char* out, unsigned int size)
{
    if (text == nullptr || out == nullptr || size == 0)
    {
        return 0;
    }
    std::vector<unsigned char> packed(size);
    unsigned long packedSize = size;
    if (CBase64Coder::Decode(text, packed.data(), &packedSize) == 0)
    {
        return 0;
    }
    return UnpackBits(packed.data(), packedSize, out, size);
}
