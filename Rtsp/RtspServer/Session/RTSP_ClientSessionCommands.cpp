// RTSP_ClientSessionCommands.cpp: which request does what, and the answers (RFC 2326, 10).

#include "RTSP_ClientSession.h"

#include "AuthorizationCheck.h"
#include "Limits.h"
#include "MD5.h"
#include "PFAssert.h"
#include "PFHelper.h"
#include "RTSP_Console.h"
#include "RTSP_DataManager.h"
#include "RTSP_ManagerKey.h"
#include "RTSP_RTPLink.h"
#include "RTSP_Server.h"
#include "RTSP_SessionTexts.h"
#include "RTSP_SockScheduler.h"
#include "RtspProtocol.h"

#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace
{

constexpr const char* PROBE_REFUSED = "RTSP/1.0 501";

/// The server word of this one answer is a number; clients see it so.
constexpr unsigned int NOT_FOUND_SERVER_NUMBER = 0;

/// Requests that wait behind a DESCRIBE, in bytes of memory; more end the session.
constexpr std::size_t BEHIND_LIMIT = 65536;

constexpr std::size_t USER_TEXT_BYTES = 256;

bool BeginsWith(const char* text, const char* prefix)
{
    return std::strncmp(text, prefix, std::strlen(prefix)) == 0;
}

bool ReadDate(const std::string& text, NETNS::DEV_DATE& date)
{
    return std::sscanf(text.c_str(), "%" SCNu16 "-%" SCNu16 "-%" SCNu16, &date.year, &date.month, &date.day) == 3;
}

bool ReadTime(const std::string& text, NETNS::DEV_TIME& time)
{
    return std::sscanf(text.c_str(), "%" SCNu16 ":%" SCNu16 ":%" SCNu16, &time.hour, &time.minute, &time.second) == 3;
}

/// The channel is the number behind the first "/" of the path: "rtsp://host/3?date=...". All ones without one.
unsigned int PlaybackChannel(const std::string& url)
{
    constexpr std::size_t BEHIND_SCHEME = 7;
    constexpr unsigned int NO_CHANNEL = 0xFFFFFFFFu;
    const std::size_t slash = url.find('/', BEHIND_SCHEME);
    if (slash == std::string::npos)
        return NO_CHANNEL;
    const char* number = url.c_str() + slash + 1;
    char* end = nullptr;
    std::strtol(number, &end, 10);
    return end == number ? NO_CHANNEL : static_cast<unsigned int>(RtspParseInt(number));
}

} // namespace

struct CRTSP_ClientSession::COMMAND
{
    const char* method;
    bool needsLogin;
    ANSWER_NOW (CRTSP_ClientSession::*operation)(REQUEST&);
};

// clang-format off
const CRTSP_ClientSession::COMMAND CRTSP_ClientSession::COMMANDS[] = {
    {"OPTIONS",       false, &CRTSP_ClientSession::handleCmd_OPTIONS},
    {"DESCRIBE",      true,  &CRTSP_ClientSession::handleCmd_DESCRIBE},
    {"SETUP",         true,  &CRTSP_ClientSession::handleCmd_SETUP},
    {"PLAY",          true,  &CRTSP_ClientSession::handleCmd_PLAY},
    {"TEARDOWN",      true,  &CRTSP_ClientSession::handleCmd_TEARDOWN},
    {"GET_PARAMETER", true,  &CRTSP_ClientSession::handleCmd_GET_PARAMETER},
    {"SET_PARAMETER", true,  &CRTSP_ClientSession::handleCmd_GET_PARAMETER},
};
// clang-format on

int CRTSP_ClientSession::HandRTSPCmdData(char* msg, int len, int headerEnd)
{
    if (!m_describeWait)
        return ServeMessage(msg, len, headerEnd);

    // A DESCRIBE waits for its stream: this request is served behind it.
    m_describeWait->behind.push_back({msg, len, headerEnd});
    m_describeWait->behindBytes += sizeof(REQ_CMD_INFO) + m_describeWait->behind.back().text.size();
    ResetRequest();
    if (m_describeWait->behindBytes <= BEHIND_LIMIT)
        return 0;
    Destroy();
    return HANDLER_GONE;
}

int CRTSP_ClientSession::ServeMessage(char* msg, int len, int headerEnd)
{
    CRtspProtocol protocol(msg, static_cast<unsigned int>(len), m_policy);
    if (!protocol.Parse())
    {
        RTSP_LogLine(__FILE__, __LINE__, " rtsp cmd parse error, take care!!!!!");
        RTSP_LogLine(__FILE__, __LINE__, " rtsp cmd len:%d, ----%s----.", len, TextForLog(msg).c_str());
        handleCmd_bad(0);
        return SendAnswer();
    }

    REQUEST request{protocol, {}, {}, protocol.GetCSeq(), protocol.GetProtocolContent()};
    protocol.GetMethod(request.method);
    protocol.GetURL(request.url);
    if (IsProbeAnswer(request.text))
    {
        m_probeAnswerTick = CPFHelper::GetTickCount();
        handleCmd_SETUP(&protocol);
        return SendAnswer();
    }
    const bool isHttp = request.method == "GET" || request.method == "POST";
    if (isHttp)
        ReadCookies(request.text, m_cookie, m_CookieInPost);
    if (protocol.GetContentLen() != 0)
    {
        // The body of a plain message is not waited for; a Base64 one counts its encoded bytes and is.
        const int need = len - headerEnd - 4;
        if (need > 0)
        {
            m_iNeedMoreContentData = need;
            return 0;
        }
    }
    return isHttp ? ServeHttp(request.method) : ServeCommand(request, msg);
}

/// @param msg  the whole message, as the login is looked for in it
int CRTSP_ClientSession::ServeCommand(REQUEST& request, const char* msg)
{
    for (const COMMAND& command : COMMANDS)
    {
        if (request.method != command.method)
            continue;
        const bool allowed = !command.needsLogin || AuthenticationOK(request.method, request.cseq, msg);
        if (allowed && (this->*command.operation)(request) == ANSWER_LATER)
        {
            ResetRequest();
            return 0;
        }
        return SendAnswer();
    }
    RTSP_ConsoleLine("########### %s %d handleCmd_notSupported\n", __func__, __LINE__);
    handleCmd_notSupported(request.cseq);
    return SendAnswer();
}

bool CRTSP_ClientSession::IsProbeAnswer(const char* text) const
{
    return m_dynamicRate == DYNAMIC_RATE_ASKED && BeginsWith(text, PROBE_REFUSED);
}

/// The two connections of a tunnel: the GET carries answers and media, the POST brings requests in Base64.
int CRTSP_ClientSession::ServeHttp(const std::string& method)
{
    RTSP_ConsoleLine("cookie: %s  cookie in post: %s\n", m_cookie, m_CookieInPost);
    if (method == "GET")
    {
        Answer(0,
               "HTTP/1.0 200 OK\r\nConnection: close\r\n%sCache-Control: no-store\r\nPragma: no-cache\r\n"
               "Content-Type: application/x-rtsp-tunnelled\r\n\r\n",
               DateHeader().c_str());
        return SendAnswer();
    }
    m_cs = m_server.GetClientSession(m_CookieInPost, this);
    if (m_cs == nullptr)
    {
        RTSP_LogLine(__FILE__, __LINE__, "get cliensession err");
        Destroy();
        return HANDLER_GONE;
    }
    ResetRequest();
    return 0;
}

/// @return 0; HANDLER_GONE when this was the session's last answer
int CRTSP_ClientSession::SendAnswer()
{
    SendCmdData(m_answer.data(), static_cast<int>(m_answer.size()));
    m_answer.clear();
    ResetRequest();
    if (m_alive && m_commandBytes <= LIMIT_RTSP_QUEUED_ANSWER_BYTES)
        return 0;
    Destroy();
    return HANDLER_GONE;
}

bool CRTSP_ClientSession::AuthenticationOK(const std::string& method, unsigned int cseq, const char* request)
{
    if (!CRTSP_DataManager::Instance().NeedAuthorization())
        return true;
    std::vector<NETNS::DEV_USER_INFO> users;
    CRTSP_DataManager::Instance().GetRtspUserInfo(users);
    CAuthorizationCheck check(users, QLX_RTSP_REALM, m_nonce, method, request);
    if (check.IsCheckOk())
    {
        m_userName = check.GetUserName();
        m_password = check.GetPassword();
        return true;
    }
    if (check.GetAuthorizatoinType() == CAuthorizationCheck::AUTHORIZATION_BASIC)
    {
        Answer(cseq, "RTSP/1.0 401 Unauthorized\r\nCSeq: %u\r\n%sWWW-Authenticate: Basic realm=\"%s\"\r\n\r\n", cseq,
               DateHeader().c_str(), QLX_RTSP_REALM);
        return false;
    }
    CreateNonce();
    Answer(cseq,
           "RTSP/1.0 401 Unauthorized\r\nCSeq: %u\r\n%sWWW-Authenticate: Digest realm=\"%s\", nonce=\"%s\"\r\n\r\n",
           cseq, DateHeader().c_str(), QLX_RTSP_REALM, m_nonce);
    return false;
}

void CRTSP_ClientSession::CreateNonce()
{
    static unsigned int counter = 0;
    const std::uint32_t value = CPFHelper::GetTickCount() + ++counter;
    PUB_MD5Encrypt(&value, sizeof(value), m_nonce, false);
}

const char* CRTSP_ClientSession::GetSetupSessionID()
{
    if (m_sessionId[0] == '\0')
        MakeSessionId(m_sessionId);
    return m_sessionId;
}

void CRTSP_ClientSession::Answer(unsigned int cseq, const char* format, ...)
{
    char text[ANSWER_LIMIT];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, sizeof(text), format, arguments);
    va_end(arguments);
    if (length >= 0 && length < ANSWER_LIMIT)
        m_answer.assign(text, static_cast<std::size_t>(length));
    else
        handleCmd_unknownError(cseq);
}

void CRTSP_ClientSession::handleCmd_bad(unsigned int cseq)
{
    Answer(cseq, "RTSP/1.0 400 Bad Request\r\nServer: %s\r\nCSeq: %u\r\n%sAllow: %s\r\n\r\n", RTSP_SERVER_NAME, cseq,
           DateHeader().c_str(), m_pAllowedCommandNames);
}

void CRTSP_ClientSession::handleCmd_notSupported(unsigned int cseq)
{
    Answer(cseq, "RTSP/1.0 405 Method Not Allowed\r\nServer: %s\r\nCSeq: %u\r\n%sAllow: %s\r\n\r\n", RTSP_SERVER_NAME,
           cseq, DateHeader().c_str(), m_pAllowedCommandNames);
}

void CRTSP_ClientSession::handleCmd_incorrectFormat(unsigned int cseq)
{
    Answer(cseq, "RTSP/1.0 404 File Not Found, Or In Incorrect Format\r\nServer: %s\r\nCSeq: %u\r\n%s\r\n",
           RTSP_SERVER_NAME, cseq, DateHeader().c_str());
    m_alive = false;
}

void CRTSP_ClientSession::handleCmd_unknownError(unsigned int cseq)
{
    Answer(cseq, "RTSP/1.0 404 Unknown Error!\r\nServer: %s\r\nCSeq: %u\r\n%s\r\n", RTSP_SERVER_NAME, cseq,
           DateHeader().c_str());
    m_alive = false;
}

void CRTSP_ClientSession::handleCmd_notFound(unsigned int cseq)
{
    Answer(cseq, "RTSP/1.0 404 Stream Not Found\r\nServer: %u\r\nCSeq: %u\r\n%s\r\n", NOT_FOUND_SERVER_NUMBER, cseq,
           DateHeader().c_str());
    m_alive = false;
}

void CRTSP_ClientSession::handleCmd_unsupportedTransport(unsigned int cseq)
{
    Answer(cseq, "RTSP/1.0 461 Unsupported Transport\r\nServer: %s\r\nCSeq: %u\r\n%s\r\n", RTSP_SERVER_NAME, cseq,
           DateHeader().c_str());
    m_alive = false;
}

CRTSP_ClientSession::ANSWER_NOW CRTSP_ClientSession::handleCmd_OPTIONS(REQUEST& request)
{
    Answer(request.cseq, "RTSP/1.0 200 OK\r\nServer: %s\r\nCSeq: %u\r\nPublic: %s\r\n\r\n", RTSP_SERVER_NAME,
           request.cseq, m_pAllowedCommandNames);
    return ANSWER_READY;
}

CRTSP_ClientSession::ANSWER_NOW CRTSP_ClientSession::handleCmd_DESCRIBE(REQUEST& request)
{
    if (!OpenDescribed(request.url))
    {
        handleCmd_notFound(request.cseq);
        return ANSWER_READY;
    }
    m_describeWait = std::make_unique<DESCRIBE_WAIT>();
    m_describeWait->cseq = request.cseq;
    m_describeWait->url = request.url;
    if (TryDescribe())
    {
        m_describeWait.reset();
        return ANSWER_READY;
    }
    m_describeWait->tests = 1;
    m_describeWait->dueTick = CPFHelper::GetTickCount() + DESCRIBE_RETRY_MS;
    m_scheduler.AddWaiter(this, m_describeWait->dueTick);
    return ANSWER_LATER;
}

/// Finds what a URL names and opens it at the host. @return false when it names nothing
bool CRTSP_ClientSession::OpenDescribed(const std::string& url)
{
    CRTSP_DataManager& data = CRTSP_DataManager::Instance();
    char userText[USER_TEXT_BYTES];
    std::snprintf(userText, sizeof(userText),
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username>%s</username><password>%s</password>"
                  "<ip>%s</ip></userinfo>",
                  m_userName.c_str(), m_password.c_str(), m_peerAddress);

    if (data.FindRtspUrl(url.c_str(), m_id, m_streamIndex))
    {
        unsigned int unused = 0;
        m_streamHandle = data.OpenLiveStream(userText, m_id, m_streamIndex, unused);
        return true;
    }
    const auto holds = [&url](const char* word)
    {
        return url.find(word) != std::string::npos;
    };
    if (holds("date=") && holds("time=") && holds("timelen="))
        return OpenPlayback(url, userText);
    if (!holds("talk"))
        return false;
    m_talkbackHandle = data.OpenTalkBackStream(userText);
    m_talkback = true;
    m_streamHandle = RTSP_STREAM_TALKBACK;
    m_id = RTSP_STREAM_TALKBACK;
    m_streamIndex = RTSP_STREAM_TALKBACK;
    return true;
}

bool CRTSP_ClientSession::OpenPlayback(const std::string& url, const char* userText)
{
    std::string dateText;
    std::string timeText;
    std::string lengthText;
    GetURLFieldValue(url, "date", dateText);
    GetURLFieldValue(url, "time", timeText);
    GetURLFieldValue(url, "timelen", lengthText);
    NETNS::DEV_DATE date{};
    NETNS::DEV_TIME time{};
    if (!ReadDate(dateText, date) || !ReadTime(timeText, time))
        return false;
    const unsigned int timeLen = static_cast<unsigned int>(RtspParseInt(lengthText.c_str()));
    unsigned int unused = 0;
    m_streamHandle =
        CRTSP_DataManager::Instance().OpenRecStream(userText, PlaybackChannel(url), date, time, timeLen, unused);
    m_id = m_streamHandle;
    m_streamIndex = RTSP_STREAM_PLAYBACK;
    return true;
}

/// Answers the DESCRIBE that waits when its stream has begun. @return false when it has not
bool CRTSP_ClientSession::TryDescribe()
{
    std::string sdp;
    if (!CRTSP_DataManager::Instance().GetSDPInfo(m_id, m_streamIndex, sdp, m_profile, m_policy))
        return false;
    Answer(m_describeWait->cseq,
           "RTSP/1.0 200 OK\r\nServer: %s\r\nCSeq: %u\r\nLast-Modified: %s\r\nCache-Control: must-revalidate\r\n"
           "%sContent-Type: application/sdp\r\nx-Accept-Retransmit: our-retransmit\r\nx-Accept-Dynamic-Rate: 1\r\n"
           "Content-Length: %d\r\nContent-Base: %s/\r\n\r\n%s",
           RTSP_SERVER_NAME, m_describeWait->cseq, RTSP_LAST_MODIFIED, DateHeader().c_str(),
           static_cast<int>(sdp.size()), m_describeWait->url.c_str(), sdp.c_str());
    return true;
}

/// Tests again every 80 ms, 50 times in all, and between the tests as soon as a frame has made the stream known.
int CRTSP_ClientSession::HandleWait(unsigned int now)
{
    const bool due = static_cast<int>(now - m_describeWait->dueTick) >= 0;
    if (!due && !CRTSP_DataManager::Instance().IsDescribable(m_id, m_streamIndex))
        return HANDLER_NOTHING;
    if (m_describeWait->tests >= DESCRIBE_TESTS && due)
    {
        handleCmd_notFound(m_describeWait->cseq);
        return EndDescribeWait();
    }
    if (TryDescribe())
        return EndDescribeWait();
    ++m_describeWait->tests;
    m_describeWait->dueTick += DESCRIBE_RETRY_MS;
    m_scheduler.AddWaiter(this, m_describeWait->dueTick);
    return HANDLER_NOTHING;
}

/// Sends the answer that was waited for, and serves the requests behind it.
int CRTSP_ClientSession::EndDescribeWait()
{
    m_scheduler.DelWaiter(this);
    std::list<REQ_CMD_INFO> behind = std::move(m_describeWait->behind);
    m_describeWait.reset();
    if (SendAnswer() == HANDLER_GONE)
        return HANDLER_GONE;
    for (REQ_CMD_INFO& message : behind)
    {
        if (HandRTSPCmdData(message.text.data(), message.length, message.headerEnd) == HANDLER_GONE)
            return HANDLER_GONE;
    }
    return HANDLER_PROGRESS;
}

CRTSP_ClientSession::ANSWER_NOW CRTSP_ClientSession::handleCmd_SETUP(REQUEST& request)
{
    return handleCmd_SETUP(&request.protocol) == 1 ? ANSWER_LATER : ANSWER_READY;
}

CRTSP_ClientSession::ANSWER_NOW CRTSP_ClientSession::handleCmd_PLAY(REQUEST& request)
{
    if (m_state != STATE_READY)
    {
        if (m_state == STATE_PLAYING)
            handleCmd_notSupported(request.cseq);
        else
            handleCmd_incorrectFormat(request.cseq);
        return ANSWER_READY;
    }
    PF_ASSERT(!m_subSessionStreamMap.empty());
    std::string rtpInfo;
    for (auto& [type, track] : m_subSessionStreamMap)
    {
        if (type > NETNS::RTSP_FRAME_AUDIO)
        {
            RTSP_LogLine(__FILE__, __LINE__, " play unkown stream , take care!!!!!");
            continue;
        }
        const bool udp = track->mode == STREAMING_UDP;
        const unsigned int sequence = udp ? track->rtpLink->GetCurrentSeqNo() : track->tcp.packUp->GetCurrentSeqNo();
        const unsigned int timestamp = udp ? track->rtpLink->GetNextTimestamp() : track->tcp.packUp->GetNextTimestamp();
        rtpInfo += rtpInfo.empty() ? "url=" : ",url=";
        rtpInfo += request.url + "/" + std::to_string(type) + ";seq=" + std::to_string(sequence) +
                   ";rtptime=" + std::to_string(timestamp);
        RTP_RTCP_Start(*track);
    }
    Answer(request.cseq,
           "RTSP/1.0 200 OK\r\nServer: %s\r\nCSeq: %u\r\nSession: %s\r\nRange: npt=0.000- \r\nRTP-Info: %s\r\n\r\n",
           RTSP_SERVER_NAME, request.cseq, GetSetupSessionID(), rtpInfo.c_str());
    m_state = STATE_PLAYING;
    return ANSWER_READY;
}

CRTSP_ClientSession::ANSWER_NOW CRTSP_ClientSession::handleCmd_TEARDOWN(REQUEST& request)
{
    RTSP_ConsoleLine("rtsp teardown, sock = %d\n", m_sock);
    if (m_state == STATE_INIT)
    {
        handleCmd_notFound(request.cseq);
        return ANSWER_READY;
    }
    StopTracks();
    if (m_streamIndex == RTSP_STREAM_PLAYBACK)
        CRTSP_DataManager::Instance().ClosePlayStream(m_streamHandle);
    else
        CRTSP_DataManager::Instance().CloseLiveStream(m_streamHandle);
    Answer(request.cseq, "RTSP/1.0 200 OK\r\nServer: %s\r\nCSeq: %u\r\nSession:%s\r\nConnection: Close\r\n\r\n",
           RTSP_SERVER_NAME, request.cseq, GetSetupSessionID());
    m_alive = false;
    m_state = STATE_INIT;
    return ANSWER_READY;
}

CRTSP_ClientSession::ANSWER_NOW CRTSP_ClientSession::handleCmd_GET_PARAMETER(REQUEST& request)
{
    if (m_state == STATE_INIT)
        handleCmd_notFound(request.cseq);
    else
        Answer(request.cseq, "RTSP/1.0 200 OK\r\nServer: %s\r\nCSeq: %u\r\nSession: %s\r\n\r\n", RTSP_SERVER_NAME,
               request.cseq, GetSetupSessionID());
    return ANSWER_READY;
}
