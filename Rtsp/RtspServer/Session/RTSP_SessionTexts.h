// RTSP_SessionTexts.h: the texts that a session's answers share. Scheduler thread only.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>

constexpr const char* RTSP_SERVER_NAME = "QLX RTSP Server/1.0.0";
constexpr const char* RTSP_LAST_MODIFIED = "Tue Dec 22 15:13:46 2015 GMT";

/// The Date and Expires lines, both the present time.
std::string DateHeader();

/// The same for a given time, seconds since 1970.
std::string DateHeader(std::time_t now);

/// Writes 15 random decimal digits, the first not 0, and a zero byte.
void MakeSessionId(char (&sessionId)[16]);

/// A message as the log may show it: cut, and without the credentials of its header and of its URLs.
std::string TextForLog(const char* text);

// The Transport line of an answer to SETUP.

/// @param port1, port2  the client's, as it sent them
std::string UnicastTransport(const std::string& destination, const std::string& source, unsigned short port1,
                             unsigned short port2, unsigned short rtpPort, unsigned short rtcpPort, std::uint32_t ssrc);
std::string MulticastTransport(const std::string& group, const std::string& source, unsigned short port1,
                               unsigned short port2, unsigned short rtpPort, unsigned short rtcpPort, int ttl);
/// @param channel1, channel2  as the client sent them, or as they were given to it
std::string InterleavedTransport(const std::string& destination, const std::string& source, std::uint32_t channel1,
                                 std::uint32_t channel2, std::uint32_t ssrc);

/// Takes the "x-sessioncookie: " of a tunnel's GET or POST: at most 50 bytes, up to a blank, a tab or CR. Both cookies
/// are cleared first.
void ReadCookies(const char* text, char (&cookie)[51], char (&cookieInPost)[51]);
