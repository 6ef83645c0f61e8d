// QlxApiCall.h: one command at work: who asks for which channel, what the body says, and the answer.
//
// The shape of all commands: a call is made, its steps run until one answers for good, and the operation's result is
// that of the last step. Local to one worker; borrows the request and the response.
#pragma once

#include "QLXXMLParse.h"
#include "QlxApiProtocolProc.h"

#include <cstring>
#include <memory>
#include <string>

class CQlxApiCall
{
public:
    CQlxApiCall(const std::string& ip, const CHttpProtocolAnalyse& request, CHttpProtocolAnalyse& response);
    CQlxApiCall(const CQlxApiCall&) = delete;
    CQlxApiCall& operator=(const CQlxApiCall&) = delete;

    /// The number in the URL: a channel, an alarm input or an alarm output.
    unsigned int Channel() const { return m_channel; }
    /// The same as host operations of alarms take it.
    int Id() const { return static_cast<int>(m_channel); }
    /// The user verification text, for host operations; stands as long as the call.
    const char* Verify() const { return m_verify; }

    bool HasBody() const;
    /// Whether there is a body; answers error 3 when there is none.
    bool RequireBody();
    /// The body as XML; what cannot be parsed is an empty document. Only with a body.
    const CQLXXMLParse& Body();

    /// Whether the host did it; answers the mapped error when it did not.
    bool Succeeded(NETNS::DEV_RET result);

    /// Answers for good. @return what the operation returns: 0 on success, -1 on failure
    int Answer(NETNS::DEV_RET result);
    int Answer(QLX_API_ERR code);
    int Answer(CQLXXMLParse& document);
    int Refuse() { return Answer(QLX_API_ERR_BAD_PARAM); }
    /// The same for commands whose clients get error 3 whatever the host says against it.
    int AnswerOrRefuse(NETNS::DEV_RET result);
    /// Leaves the response empty: the connection closes with an empty reply.
    static int StaySilent() { return -1; }

private:
    const CHttpProtocolAnalyse& m_request;
    CHttpProtocolAnalyse& m_response;
    const unsigned int m_channel;
    std::unique_ptr<CQLXXMLParse> m_body;
    char m_verify[CQLXApiProc::VERIFY_SIZE] = {};
};

/// The root of a document that is built in code. @return its item
unsigned int AddConfigRoot(CQLXXMLParse& document);
/// An element without text. @return its item
unsigned int AddEmpty(CQLXXMLParse& document, unsigned int parent, const char* name);
/// A list with its attributes "type" and "count". @return its item
unsigned int AddList(CQLXXMLParse& document, unsigned int parent, const char* name, unsigned int count);

/// A text of the host's, which ends within its field.
template <size_t SIZE>
std::string QlxApiTextOf(const char (&field)[SIZE])
{
    return std::string(field, strnlen(field, SIZE));
}
