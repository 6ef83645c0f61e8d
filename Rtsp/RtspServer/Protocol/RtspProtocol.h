// RtspProtocol.h: one RTSP request, or the HTTP request of a tunnel, taken apart (RFC 2326).
//
// Built for each message and thrown away with it. Header names count as they are spelled. Any thread.
#pragma once

#include "Policy.h"
#include "StreamingMode.h"

#include <string>

class CRtspProtocol
{
public:
    enum TransportType
    {
        TRANSPORT_NONE = 0,
        TRANSPORT_UNICAST = 1,
        TRANSPORT_MULTICAST = 2,
    };

    /// @param text    the message with a zero byte behind it; borrowed for the life of this object
    /// @param len     its length as the caller counts it; parsing ends at the zero byte
    /// @param policy  what the session runs by: StandardRtsp() compares the words GET and POST whole
    CRtspProtocol(char* text, unsigned int len, CPolicy policy = CPolicy());

    /// Reads method, URL, CSeq, User-Agent and Content-Length. A method that begins with "GET" or "POST" is the only
    /// thing read of its message.
    /// @return false when the method is missing or, where they are read, the URL, the CSeq or a number is; also when
    /// the method or the URL is longer than 159 bytes
    bool Parse();

    int GetMethod(std::string& method) const; ///< @return 1
    int GetURL(std::string& url) const;       ///< without one trailing "/". @return 1
    unsigned int GetCSeq() const { return m_cseq; }
    unsigned int GetContentLen() const { return m_contentLength; }
    const std::string& GetUserAgent() const { return m_userAgent; } ///< at most 159 bytes, with its leading blank
    char* GetProtocolContent() const { return m_text; }             ///< the message from its first word on

    /// @return the number behind "trackID=" in the URL, -1 when it has none
    int GetTrackID() const;

    /// Reads the Transport header into the six values below. The session reads it with parseTransportHeader instead,
    /// which also knows which channels are free.
    /// @return false without a Transport header, with a malformed port or channel pair, or without a mode
    bool ParseTransportHeader();
    StreamingMode GetStreamMode() const { return m_streamMode; }
    TransportType GetTransportType() const { return m_transportType; }
    unsigned short GetClientRtpPort() const { return m_clientRtpPort; }
    unsigned short GetClientRtcpPort() const { return m_clientRtcpPort; }
    unsigned short GetRtpChnID() const { return m_rtpChannel; }
    unsigned short GetRtcpChnID() const { return m_rtcpChannel; }

private:
    bool ReadRequestLine(std::string& method, std::string& url);
    bool ReadHeaders();
    bool ReadTransportParameter(const char* parameter);

    char* m_text;
    unsigned int m_length;
    const CPolicy m_policy;

    std::string m_method;
    std::string m_url;
    std::string m_userAgent;
    unsigned int m_cseq = 0;
    unsigned int m_contentLength = 0;

    TransportType m_transportType = TRANSPORT_NONE;
    StreamingMode m_streamMode = STREAMING_NONE;
    unsigned short m_clientRtpPort = 0;
    unsigned short m_clientRtcpPort = 0;
    unsigned short m_rtpChannel = 0;
    unsigned short m_rtcpChannel = 0;
};

/// Whether a method word is taken for the HTTP side of a tunnel: by its first letters ("GET", "POST"), so that
/// GET_PARAMETER counts too, or as a whole word when the policy asks for standard RTSP.
bool RtspIsHttpMethod(const std::string& method, CPolicy policy);
