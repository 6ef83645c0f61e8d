// SysHelper.h: numbers, addresses and identifiers as text and back. All operations are static; any thread.
#pragma once

#include "PFHelper.h"

class CSysHelper
{
public:
    CSysHelper() = default;
    ~CSysHelper() = default;

    static int GetCPUCount();
    static void CreateGUID(_GUID& guid);

    /// Writes "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}". @param pGUIDStr  not null, room for 39 bytes. @return true
    static bool GuidToString(const _GUID& guid, char* pGUIDStr);
    /// @param text  a GUID as GuidToString writes it; anything else ends the process
    static _GUID GetGuidFromString(const char* text);
    /// The same for text that nobody vouches for. @return false, with `guid` left alone, when it is no GUID
    static bool ReadGuid(const char* text, _GUID& guid);

    /// Writes "XX:XX:XX:XX:XX:XX". @param strLen  room in `dst`, at least 19
    /// @return false, with nothing written, when the room is smaller
    static bool MACAddressToStr(const unsigned char* mac, char* dst, int strLen);
    /// @return false unless the text has six fields
    static bool StrToMACAddress(const char* text, unsigned char* mac);

    /// Writes an address in network order as dotted text.
    /// @param strLen  room in `dst`: the text, a zero byte and one byte to spare
    /// @return false, with nothing written, when the room is smaller
    static bool IPAddressToStr(unsigned int address, char* dst, int strLen);
    /// Reads dotted text without judging the numbers' range.
    /// @param address  network order; 0 when the text has not four fields
    /// @return false when it has not
    static bool StrToIPAddress(const char* text, unsigned int& address);

    /// Writes 64 characters "0" or "1", the highest bit first. @param text  room for 65 bytes. @return true
    static bool ullToString(unsigned long long value, char* text);
    /// Reads such a text of any length: its last character is bit 0, places above bit 63 are dropped. Any other
    /// character ends the process. @return true
    static bool stringToUll(const char* text, unsigned long long& value);

    /// An address that a host may have: four numbers of up to three digits, the first from 1 to 223. What stands behind
    /// a fourth dot is not looked at.
    static bool IsValidIP(const char* text);
    /// The same with all four numbers from 0 to 255.
    static bool IsValidSubnet(const char* text);

    /// Year, month, day and hour of the build in 16, 6, 5 and 5 bits from the top.
    static unsigned int GetBuildDate();
    /// The same for any build. @param date  as __DATE__ has it: "Jan  2 2026" @param time  as __TIME__: "03:04:05"
    static unsigned int BuildDateOf(const char* date, const char* time);
    static void ParseBuildDate(unsigned int date, int& year, int& month, int& day, int& hour);
};
