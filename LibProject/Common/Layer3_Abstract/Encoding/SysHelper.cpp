#include "SysHelper.h"

#include "PFAssert.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

// A text fits when one byte is to spare beside its zero byte.
bool CopyText(const char* text, char* dst, int strLen)
{
    const int length = static_cast<int>(std::strlen(text));
    if (length >= strLen - 1)
    {
        return false;
    }
    std::memcpy(dst, text, static_cast<size_t>(length) + 1);
    return true;
}

bool checkIPPart(const char* part, int least, int most)
{
    const size_t length = std::strlen(part);
    if (length > 3 || std::strspn(part, "0123456789") != length)
    {
        return false;
    }
    const long value = std::strtol(part, nullptr, 10);
    return value >= least && value <= most;
}

bool CheckIP(const char* text, int firstLeast, int firstMost)
{
    char parts[4][64];
    if (text == nullptr ||
        std::sscanf(text, "%63[^.].%63[^.].%63[^.].%63[^.]", parts[0], parts[1], parts[2], parts[3]) != 4)
    {
        return false;
    }
    return checkIPPart(parts[0], firstLeast, firstMost) && checkIPPart(parts[1], 0, 255) &&
           checkIPPart(parts[2], 0, 255) && checkIPPart(parts[3], 0, 255);
}

} // namespace

int CSysHelper::GetCPUCount()
{
    return CPFHelper::GetCPUCount();
}

void CSysHelper::CreateGUID(_GUID& guid)
{
    CPFHelper::CreateGUID(guid);
}

bool CSysHelper::GuidToString(const _GUID& guid, char* pGUIDStr)
{
    PF_ASSERT_TEXT(pGUIDStr != nullptr, "pGUIDStr != __null");
    std::snprintf(pGUIDStr, 39, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1, guid.Data2,
                  guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5],
                  guid.Data4[6], guid.Data4[7]);
    return true;
}

_GUID CSysHelper::GetGuidFromString(const char* text)
{
    _GUID guid = {};
    const bool isGuid = ReadGuid(text, guid);
    PF_ASSERT(isGuid);
    return guid;
}

bool CSysHelper::ReadGuid(const char* text, _GUID& guid)
{
    unsigned int fields[11] = {};
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    if (std::sscanf(text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", &fields[0], &fields[1], &fields[2],
                    &fields[3], &fields[4], &fields[5], &fields[6], &fields[7], &fields[8], &fields[9],
                    &fields[10]) != 11)
    {
        return false;
    }
    guid.Data1 = fields[0];
    guid.Data2 = static_cast<std::uint16_t>(fields[1]);
    guid.Data3 = static_cast<std::uint16_t>(fields[2]);
    for (int i = 0; i < 8; ++i)
    {
        guid.Data4[i] = static_cast<std::uint8_t>(fields[3 + i]);
    }
    return true;
}

bool CSysHelper::MACAddressToStr(const unsigned char* mac, char* dst, int strLen)
{
    char text[18];
    std::snprintf(text, sizeof(text), "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return CopyText(text, dst, strLen);
}

bool CSysHelper::StrToMACAddress(const char* text, unsigned char* mac)
{
    unsigned int fields[6];
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    if (std::sscanf(text, "%02X:%02X:%02X:%02X:%02X:%02X", &fields[0], &fields[1], &fields[2], &fields[3], &fields[4],
                    &fields[5]) != 6)
    {
        return false;
    }
    for (int i = 0; i < 6; ++i)
    {
        mac[i] = static_cast<unsigned char>(fields[i]);
    }
    return true;
}

bool CSysHelper::IPAddressToStr(unsigned int address, char* dst, int strLen)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%d.%d.%d.%d", static_cast<int>(address & 0xFF),
                  static_cast<int>((address >> 8) & 0xFF), static_cast<int>((address >> 16) & 0xFF),
                  static_cast<int>((address >> 24) & 0xFF));
    return CopyText(text, dst, strLen);
}

bool CSysHelper::StrToIPAddress(const char* text, unsigned int& address)
{
    int parts[4];
    address = 0;
    // NOLINTNEXTLINE(cert-err34-c): clients rely on how the C library reads numbers
    if (std::sscanf(text, "%d.%d.%d.%d", &parts[0], &parts[1], &parts[2], &parts[3]) != 4)
    {
        return false;
    }
    for (int i = 0; i < 4; ++i)
    {
        address |= static_cast<unsigned int>(parts[i]) << (8 * i);
    }
    return true;
}

bool CSysHelper::ullToString(unsigned long long value, char* text)
{
    for (int bit = 63; bit >= 0; --bit)
    {
        *text++ = ((value >> bit) & 1) != 0 ? '1' : '0';
    }
    *text = '\0';
    return true;
}

bool CSysHelper::stringToUll(const char* text, unsigned long long& value)
{
    value = 0;
    unsigned long long bits = 0;
    for (; *text != '\0'; ++text)
    {
        PF_ASSERT(*text == '0' || *text == '1');
        bits = (bits << 1) | (*text == '1' ? 1 : 0); // what leaves at the top is dropped
    }
    value = bits;
    return true;
}

bool CSysHelper::IsValidIP(const char* text)
{
    return CheckIP(text, 1, 223);
}

bool CSysHelper::IsValidSubnet(const char* text)
{
    return CheckIP(text, 0, 255);
}

unsigned int CSysHelper::GetBuildDate()
{
    return BuildDateOf(__DATE__, __TIME__);
}

unsigned int CSysHelper::BuildDateOf(const char* date, const char* time)
{
    const char MONTHS[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
    const char monthName[4] = {date[0], date[1], date[2], '\0'};
    const unsigned int month = static_cast<unsigned int>(std::strstr(MONTHS, monthName) - MONTHS) / 3 + 1;
    const unsigned int day = static_cast<unsigned int>(std::strtoul(date + 4, nullptr, 10));
    const unsigned int year = static_cast<unsigned int>(std::strtoul(date + 7, nullptr, 10));
    const unsigned int hour = static_cast<unsigned int>(std::strtoul(time, nullptr, 10));
    return (year << 16) | (month << 10) | (day << 5) | hour;
}

void CSysHelper::ParseBuildDate(unsigned int date, int& year, int& month, int& day, int& hour)
{
    year = static_cast<int>(date >> 16);
    month = static_cast<int>((date >> 10) & 0x1F);
    day = static_cast<int>((date >> 5) & 0x1F);
    hour = static_cast<int>(date & 0x1F);
}
