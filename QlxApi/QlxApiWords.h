// QlxApiWords.h: the words of the API's enumerations and the values that hosts know them by. Constants; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

struct QLX_API_WORD
{
    const char* word; ///< matched exactly
    std::uint32_t value;
};

// clang-format off
inline constexpr QLX_API_WORD BOOLEAN_WORDS[]        = {{"false", 0}, {"true", 1}};
inline constexpr QLX_API_WORD SYNCHRONIZE_WORDS[]    = {{"manually", 0}, {"NTP", 1}};
inline constexpr QLX_API_WORD WHITE_BALANCE_WORDS[]  = {{"auto", 0}, {"manual", 1}, {"outdoor", 2}, {"indoor", 3}, {"atw", 4}, {"nalamp", 5}};
inline constexpr QLX_API_WORD IR_CUT_WORDS[]         = {{"auto", 0}, {"day", 1}, {"night", 2}, {"timer", 3}};
inline constexpr QLX_API_WORD ENCODE_TYPE_WORDS[]    = {{"mjpeg", 0}, {"mpeg4", 1}, {"h264", 2}};
inline constexpr QLX_API_WORD ENCODE_LEVEL_WORDS[]   = {{"baseLine", 1}, {"mainProfile", 2}, {"extendedProfile", 3}, {"highProfile", 4}};
inline constexpr QLX_API_WORD QUALITY_WORDS[]        = {{"lowest", 1}, {"lower", 2}, {"medium", 3}, {"higher", 4}, {"highest", 5}};
inline constexpr QLX_API_WORD AUDIO_ENCODE_WORDS[]   = {{"G711a", 0}, {"G711u", 1}};
inline constexpr QLX_API_WORD DATE_FORMAT_WORDS[]    = {{"year-month-day", 1}, {"month-day-year", 2}, {"day-month-year", 3}};
inline constexpr QLX_API_WORD MASK_COLOR_WORDS[]     = {{"black", 0}, {"white", 1}, {"gray", 2}};
inline constexpr QLX_API_WORD VOLTAGE_WORDS[]        = {{"NO", 0}, {"NC", 1}};
inline constexpr QLX_API_WORD PTZ_PROTOCOL_WORDS[]   = {{"PELCOP", 0}, {"PELCOD", 1}, {"LILIN", 2}, {"MINKING", 3}, {"NEON", 4}, {"STAR", 5}, {"VIDO", 6}, {"DSCP", 7}, {"VISCA", 8}};
inline constexpr QLX_API_WORD PTZ_ACTION_WORDS[]     = {{"up", 0}, {"down", 1}, {"left", 2}, {"right", 3}, {"leftup", 4}, {"leftdown", 5}, {"rightup", 6}, {"rightdown", 7},
                                                        {"near", 8}, {"far", 9}, {"zoomin", 10}, {"zoomout", 11}, {"irisopen", 12}, {"irisclose", 13}, {"stop", 14}};
inline constexpr QLX_API_WORD IP_SETTING_MODE_WORDS[] = {{"staticIp", 0}, {"dhcp", 1}};
// clang-format on

inline const char* BooleanWord(bool on)
{
    return on ? "true" : "false";
}

/// @return null for a value without a word
template <std::size_t COUNT>
const char* WordOf(const QLX_API_WORD (&words)[COUNT], std::uint32_t value)
{
    for (const QLX_API_WORD& row : words)
    {
        if (row.value == value)
        {
            return row.word;
        }
    }
    return nullptr;
}

/// @return false, with `value` left alone, for any other word
template <std::size_t COUNT>
bool ValueOf(const QLX_API_WORD (&words)[COUNT], const std::string& word, std::uint32_t& value)
{
    for (const QLX_API_WORD& row : words)
    {
        if (word == row.word)
        {
            value = row.value;
            return true;
        }
    }
    return false;
}
