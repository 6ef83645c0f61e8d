// OnvifTrace.h: shows exchanges to the host's observer, if it has set one, without credentials.
//
// Any thread.
#pragma once

#include <string>

class CONVIFTraceObserver;

/// One exchange under way: made in front of it, told behind it. Costs nothing without an observer.
class COnvifTrace
{
public:
    COnvifTrace();

    /// @param reply       what came, as text
    /// @param replyBytes  how much came in all
    void Tell(const char* ip, unsigned short port, const char* request, const char* reply,
              std::size_t replyBytes) const;

    /// @param observer  null: none
    static void SetObserver(CONVIFTraceObserver* observer);

    /// A text with "***" in place of the Basic token, of the text of each element Password, and of what a URL has in
    /// front of its "@".
    static std::string Mask(const std::string& text);

private:
    CONVIFTraceObserver* const m_observer;
    const unsigned int m_start;
};
