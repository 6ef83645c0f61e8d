// RtspTransport.h: reading the Transport and Range headers and the fields of a request URL (RFC 2326, 12.39 and 12.29).
//
// Pure functions on texts that end in a zero byte. Any thread.
#pragma once

#include "StreamingMode.h"

#include <string>

/// A channel that the client did not name.
constexpr unsigned int RTSP_CHANNEL_NONE = 0xFFFFFFFFu;

/// One Transport header.
struct RTSP_TRANSPORT
{
    StreamingMode mode;
    bool multicast;
    char transport[128];   ///< "RTP/AVP", "RTP/AVP/UDP" or "RTP/AVP/TCP" as sent
    char destination[128]; ///< the whole parameter, "destination=" included; not used
    int ttl;               ///< 255 when not given
    unsigned short port1;  ///< client's RTP port
    unsigned short port2;  ///< client's RTCP port
    unsigned int chn1;     ///< interleaved channels, RTSP_CHANNEL_NONE when not given
    unsigned int chn2;
};

/// Reads the first "Transport:" of a message, in any case of letters, wherever it stands. The character behind the
/// colon is skipped whatever it is. A message that ends inside the header is read as far as it goes: the result is 0
/// and `mode` may be STREAMING_NONE.
/// @param nextChannel  the session's next free channel; goes up by two when TCP is asked for without channels
/// @return 0; -1 without the header, with a malformed number, without a mode, or for UDP with a port of 0
int parseTransportHeader(const char* text, unsigned int& nextChannel, RTSP_TRANSPORT& out);

/// Whether a message asks for the dynamic rate: "x-Dynamic-Rate: 1" anywhere, in any case of letters.
bool RtspAsksDynamicRate(const char* text);

/// The host of the first "rtsp://" that begins at an even offset: the local address by which the client knows us.
/// @param host  receives at most 127 characters
/// @return false when there is none (a method of another length puts the URL at an odd offset)
bool GetLocalIPFromRequest(const char* text, std::string& host);

/// Reads "Range: npt=start-end", seconds.
/// @param end  0 when open
/// @return 0, also when the header has no "npt"; -1 without a Range header or without a digit behind "npt="
int parseRangeHeader(const char* text, double& start, double& end);

/// Value of `name` in a URL such as "/3?date=2016-1-2&time=8:30:0": from the next "=" to the next "&" or the URL's end.
/// A "/" at the URL's end does not count.
/// @return false when the name or the "=" is missing
bool GetURLFieldValue(const std::string& url, const char* name, std::string& value);

/// The parameters of a Transport header one after another, cut at ";" and at the CR LF that ends it.
class CRtspTransportParameters
{
public:
    /// @param text  the message; borrowed
    explicit CRtspTransportParameters(const char* text);

    bool HasHeader() const { return m_next != nullptr; }

    /// @param parameter  receives the first 127 bytes of the next parameter
    /// @return false at the end of the header
    bool Next(char (&parameter)[128]);

    /// Whether the header ended with CR LF, once Next has returned false.
    bool IsComplete() const { return m_end == END_OF_HEADER; }

private:
    enum End
    {
        END_NOT_YET,
        END_OF_HEADER,
        END_OF_TEXT,
    };

    const char* m_next;
    End m_end = END_NOT_YET;
};

/// Reads "first-second" at the start of a text.
/// @return false unless a digit, digits, "-" and a digit stand there; numbers above 2147483647 count as that
bool RtspParsePair(const char* text, unsigned int& first, unsigned int& second);

/// A decimal number as atoi reads it; what does not fit counts as the nearest that does.
int RtspParseInt(const char* text);
