// OnvifHelper.h: masks, durations, decimals and motion grids as ONVIF writes them. All operations are static; any
// thread.
#pragma once

#include <string>

class COnvifHelper
{
public:
    /// "255.255.240.0" is 20: 8 for each part that is 255, else the one bits in the part's low 8 bits.
    /// @param mask  a part that cannot be read counts as 0
    /// @return -1 for an empty text
    static int SubmaskStringToLength(const std::string& mask);
    /// 20 is "255.255.240.0". @return an empty text for a length below 0 or above 32
    static std::string SubmaskLengthToString(int length);

    /// Whether the text is of a device of this system's own family. @param text  null: false
    static bool IsQLXDevice(const char* text);
    static bool IsHKDevice(const char* text); ///< no such document is told apart: false
    static bool IsDHDevice(const char* text); ///< no such document is told apart: false

    /// Seconds of an ISO 8601 duration of days, hours, minutes and whole seconds. Years and months are not read: an "M"
    /// in a date without a time counts as minutes.
    /// @param text  null: -1; text that does not begin with "P": 0
    static long long ParseXmlTime(const char* text);
    /// An ISO 8601 duration of days, hours and minutes; what is left below a minute is not written, so that 45 seconds
    /// read "PT". @return empty for a negative number
    static std::string ChangeToXmlTime(long long seconds);

    /// A number with eight digits behind its point, in any locale of the host, and without a "-" in front of zero.
    static std::string DecimalText(double number);
    /// The number at the start of a text, in any locale of the host; 0 when there is none.
    static double ReadDecimal(const std::string& text);

    /// The ActiveCells text of a cell motion detector (ONVIF Analytics Service): the cells as bits, the first in the
    /// highest bit, compressed by PackBits, in Base64.
    /// @return empty when there are no bytes
    static std::string EncodeMotionArea(const unsigned char* data, unsigned int size);
    /// Reads such a text. It comes from a device: whatever it holds, nothing behind `size` is written.
    /// @param size  room in `out`, and the most that the text may hold in packed form
    /// @return bytes written
    static unsigned int DecodeMotionArea(const char* text, unsigned char* out, unsigned int size);

    COnvifHelper() = delete;
};
