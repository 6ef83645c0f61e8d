#include "RTSP_Console.h"

#include "ShareSDK.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace
{

bool IsControl(char c)
{
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte < ' ' || byte == 0x7F;
}

} // namespace

void RTSP_ConsoleLine(const char* format, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);

    // What a peer sent must not begin a line of its own, nor command a terminal; the line's own break stays.
    std::string line(text);
    const std::size_t end = line.find_last_not_of(" \n") + 1; // 0 when there is nothing else
    std::replace_if(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(end), IsControl, ' ');
    std::fputs(line.c_str(), stderr);
}

void RTSP_LogLine(const char* file, unsigned int line, const char* format, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    SHARESDK_NormalOutput(text, file, line);
}
