// OnvifTraceObserver.h: what a host implements to see what the ONVIF client and a camera say to each other.
#pragma once

/// One exchange, as text. Credentials are masked by "***": the Basic token, the password digest, and what stands in
/// front of the "@" of a URL. All texts are borrowed for the call.
struct ONVIF_TRACE
{
    const char* ip;          ///< of the camera, as the host gave it
    unsigned short port;     ///< of the exchange; a picture may come from another port than documents
    const char* request;     ///< the HTTP request
    const char* reply;       ///< what came, possibly cut; of a picture only the HTTP head; empty when nothing came
    unsigned int replyBytes; ///< bytes that came, those of a picture included
    unsigned int durationMs; ///< from the connect to the last byte
};

/// Sees what the ONVIF client exchanges with cameras, see ONVIF_CLIENT_SetTraceObserver.
class CONVIFTraceObserver
{
public:
    virtual ~CONVIFTraceObserver() = default;

    /// An exchange is over. Runs on the thread that made it, also on several at the same time, and must return quickly.
    /// @param trace  the exchange; borrowed for the call
    virtual void OnExchange(const ONVIF_TRACE& trace) = 0;
};
