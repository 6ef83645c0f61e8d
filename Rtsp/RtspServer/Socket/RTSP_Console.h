// RTSP_Console.h: the console lines of the RTSP server. Any thread.
//
// They go to standard error, so that a host keeps its standard output to itself.
#pragma once

/// Prints one formatted line of at most 511 bytes; the caller's format ends it with its own line break. Control
/// characters in it become blanks.
void RTSP_ConsoleLine(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Writes one formatted line of at most 255 bytes to the log.
void RTSP_LogLine(const char* file, unsigned int line, const char* format, ...) __attribute__((format(printf, 3, 4)));
