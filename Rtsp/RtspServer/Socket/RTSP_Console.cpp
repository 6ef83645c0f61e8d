#include "RTSP_Console.h"

#include "ShareSDK.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

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

    // What a peer sent must not begin a line of its own, nor command a terminal; the line's own break stays. No memory
    // is taken for it: links print while they end.
    char* end = text + std::strlen(text);
    while (end != text && (end[-1] == ' ' || end[-1] == '\n'))
        --end;
    std::replace_if(text, end, IsControl, ' ');
    std::fputs(text, stderr);
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
