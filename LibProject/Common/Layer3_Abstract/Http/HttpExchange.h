// HttpExchange.h: reading one HTTP message from a connection of the socket service, and sending the answer to it.
//
// What the HTTP port, the port for notifications and the port of the device description have in common. Any thread; a
// call works on its caller's and waits there.
#pragma once

#include "HttpProtocolAnalyse.h"

#include <optional>

class CHttpDataPacket;

/// How patient a port is, and in what pieces it reads.
struct HTTP_READ_LIMITS
{
    int readBytes;          ///< bytes that one read takes at most, up to HTTP_READ_BYTES_MAX
    unsigned int silenceMs; ///< silence that a whole message may hold, in all
};

constexpr int HTTP_READ_BYTES_MAX = 4095;

/// Reads one message. A wait ends as soon as bytes come; only the time without any counts.
/// @param packet  receives the bytes; complete when the result is true
/// @return false when the peer closes, falls silent or never ends its header; the connection stays the caller's
bool ReadHttpMessage(int handle, const HTTP_READ_LIMITS& limits, CHttpDataPacket& packet);

/// Takes the message that was read. An answer where a request is expected is logged, and taken like one.
/// @return nothing, which is logged, when no message is complete
std::optional<CHttpProtocolAnalyse> TakeHttpRequest(CHttpDataPacket& packet);

/// Sends a message, for as long as the peer takes to read it, and ends the connection. An empty message is logged and
/// ends it too.
void SendHttpMessageAndEnd(int handle, const CHttpProtocolAnalyse& message);
