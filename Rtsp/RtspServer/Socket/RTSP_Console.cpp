#include "RTSP_Console.h"

#include "ShareSDK.h"

#include <cstdarg>
#include <cstdio>

void RTSP_ConsoleLine(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
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
