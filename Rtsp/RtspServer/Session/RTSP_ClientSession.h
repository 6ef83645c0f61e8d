// RTSP_ClientSession.h: one client's TCP connection: its requests, its answers, its interleaved packets, its tunnel.
//
// RFC 2326. By topic: RTSP_ClientSession.cpp life and death, ...Commands.cpp requests and answers, ...Setup.cpp the
// SETUP request, ...Receive.cpp bytes in, ...Send.cpp bytes out. Scheduler thread only.
#pragma once

#include "Policy.h"
#include "RTSP_SockHandler.h"
#include "RTSP_StreamCfg.h"
#include "RtspTransport.h"
#include "SendingCommonData.h"
#include "SubSessionStreamInfo.h"

#include <list>
#include <map>
#include <memory>
#include <string>

class CRTSP_Server;
class CRtspProtocol;

/// One whole message taken from the received text.
struct REQ_CMD_INFO
{
    std::string text;
    int length = 0;    ///< as announced to the content-length rule: a Base64 message counts its encoded bytes
    int headerEnd = 0; ///< index of the blank line's "\r\n\r\n"
};

class CRTSP_ClientSession : public CRTSP_SockHandler
{
public:
    static constexpr int RECV_TIMEOUT_MS = 1300000;
    static constexpr int SEND_TIMEOUT_MS = 25000;
    static constexpr int REQUEST_LIMIT = 16384; ///< bytes of request text; reaching it ends the session
    static constexpr int ANSWER_LIMIT = 16384;  ///< an answer that does not fit becomes 404 Unknown Error
    static constexpr unsigned int DESCRIBE_RETRY_MS = 80;
    static constexpr int DESCRIBE_TESTS = 50;

    /// @param sock          the accepted connection, owned by the session
    /// @param localAddress  not used
    static CRTSP_ClientSession* Create_RTSP_ClientSession(CRTSP_SockScheduler& scheduler, CRTSP_Server& server,
                                                          int sock, const char* localAddress);

    void Destroy() override;
    int HandleAccept() override;
    int HandleRecv() override;
    bool HasDataToSend() override;
    int HandleSend() override;
    int HandleConnected() override;
    int HandleTimeOut(int iTypeMask) override;
    void CloseSocket() override;
    int HandleWait(unsigned int now) override; ///< a DESCRIBE waits for its stream

    const char* GetCookie() const { return m_cookie; }           ///< of this connection's GET, or empty
    const char* GetPostCookie() const { return m_CookieInPost; } ///< of this connection's POST, or empty
    const CRTSP_ClientSession* GetMcs() const { return m_cs; }   ///< the session that this POST connection feeds
    void SetMcsNull() { m_cs = nullptr; }

    /// Serves one whole message. Also called by the POST connection of a tunnel.
    /// @param msg  with a zero byte behind it
    /// @return 0; HANDLER_GONE when this session is gone
    int HandRTSPCmdData(char* msg, int len, int headerEnd);

private:
    enum STATE : unsigned char
    {
        STATE_INIT = 0,
        STATE_READY = 1, ///< a track is set up
        STATE_PLAYING = 2,
    };

    /// The probe of a client's connection that an "x-Dynamic-Rate: 1" starts.
    enum DYNAMIC_RATE : unsigned char
    {
        DYNAMIC_RATE_NONE = 0,
        DYNAMIC_RATE_ASKED = 1,
        DYNAMIC_RATE_DONE = 2,
    };

    CRTSP_ClientSession(CRTSP_SockScheduler& scheduler, CRTSP_Server& server, int sock, const char* localAddress);
    ~CRTSP_ClientSession() override;

    // Requests and answers.
    enum ANSWER_NOW
    {
        ANSWER_READY,
        ANSWER_LATER, ///< a DESCRIBE waits, or SETUP has sent something of its own
    };
    struct REQUEST
    {
        CRtspProtocol& protocol;
        std::string method;
        std::string url;
        unsigned int cseq;
        char* text;
    };
    struct COMMAND;
    static const COMMAND COMMANDS[];
    static constexpr const char* m_pAllowedCommandNames =
        "OPTIONS, DESCRIBE, SETUP, TEARDOWN, PLAY, GET_PARAMETER, SET_PARAMETER";

    int ServeMessage(char* msg, int len, int headerEnd);
    int ServeHttp(const std::string& method);
    int ServeCommand(REQUEST& request, const char* msg);
    int SendAnswer();
    bool IsProbeAnswer(const char* text) const;
    bool AuthenticationOK(const std::string& method, unsigned int cseq, const char* request);
    void CreateNonce();
    const char* GetSetupSessionID();

    ANSWER_NOW handleCmd_OPTIONS(REQUEST& request);
    ANSWER_NOW handleCmd_DESCRIBE(REQUEST& request);
    ANSWER_NOW handleCmd_SETUP(REQUEST& request);
    ANSWER_NOW handleCmd_PLAY(REQUEST& request);
    ANSWER_NOW handleCmd_TEARDOWN(REQUEST& request);
    ANSWER_NOW handleCmd_GET_PARAMETER(REQUEST& request);

    void handleCmd_bad(unsigned int cseq);
    void handleCmd_notSupported(unsigned int cseq);
    void handleCmd_incorrectFormat(unsigned int cseq);
    void handleCmd_unknownError(unsigned int cseq);
    void handleCmd_notFound(unsigned int cseq);
    void handleCmd_unsupportedTransport(unsigned int cseq);

    bool OpenDescribed(const std::string& url);
    bool OpenPlayback(const std::string& url, const char* userText);
    bool TryDescribe();
    int EndDescribeWait();

    int handleCmd_SETUP(CRtspProtocol* protocol);
    bool SetUpTrack(const RTSP_STREAM_CFG& config, const RTSP_TRANSPORT& transport, unsigned int cseq,
                    const char* request);
    void SendProbe();
    bool SetUpUdp(SUB_SESSION_STREAM_INFO& track, const RTSP_TRANSPORT& transport, unsigned int cseq,
                  const std::string& source);
    void SetUpTcp(SUB_SESSION_STREAM_INFO& track, const RTSP_TRANSPORT& transport, unsigned int cseq,
                  const std::string& source);
    void AnswerSetup(unsigned int cseq, const std::string& beforeDate, const std::string& transport,
                     const std::string& behindTransport);
    std::string SourceAddress(const char* request) const;

    void RTP_RTCP_Start(SUB_SESSION_STREAM_INFO& track);
    void RTP_RTCP_Stop(SUB_SESSION_STREAM_INFO& track);
    void StopTracks();

    /// Formats the answer; one that does not fit becomes 404 Unknown Error.
    void Answer(unsigned int cseq, const char* format, ...) __attribute__((format(printf, 3, 4)));

    // Bytes in.
    int RecvRequest(int* count);
    int RecvText(int* count);
    int RecvDollarData();
    int HandleDollarData();
    void HandleTalkData();
    void ResetDollar();
    void ResetRequest();
    int RevcAllData(const char* text, int len);
    void TakePlainMessages(const char* text, const char* headerEnd);
    void TakeBase64Messages(const char* text, int len);
    int ServeMessages();
    int ServeOneMessage(REQ_CMD_INFO& message);

    // Bytes out.
    int SendCmdData(const char* text, int len);
    int SendPending();
    int SendCommonData(SENDING_COMMON_DATA* data);
    int SendCmdListData();
    int SendRTPDataOverTCP();
    int SendPackets(std::list<SENDING_COMMON_DATA>& packets);
    int ConsumeSent(std::list<SENDING_COMMON_DATA>& packets, int sent);
    void QueueCommand(const char* text, int len);

    CRTSP_Server& m_server;
    const CPolicy m_policy; ///< as it was when the connection was made

    bool m_alive = true; ///< cleared: the session ends behind this answer
    STATE m_state = STATE_INIT;
    char m_nonce[36] = {};
    char m_sessionId[16] = {}; ///< 15 digits once made
    char m_peerAddress[64] = {};
    DYNAMIC_RATE m_dynamicRate = DYNAMIC_RATE_NONE;
    unsigned int m_probeSendTick = 0;
    unsigned int m_probeAnswerTick = 0;
    bool m_tcpData = false;                                                                  ///< a track is interleaved
    std::map<unsigned char, std::unique_ptr<SUB_SESSION_STREAM_INFO>> m_subSessionStreamMap; ///< by frame type
    unsigned int m_streamHandle = 0;
    unsigned int m_id = 0;
    int m_streamIndex = 0;
    RTSP_PROFILE_CFG m_profile;
    unsigned int m_nextChannel = 0; ///< for clients that name no interleaved channels
    std::string m_userName;         ///< of the last passed Digest check
    std::string m_password;
    bool m_talkback = false;
    unsigned int m_talkbackHandle = 0;
    std::string m_answer;

    /// A DESCRIBE whose stream has not begun yet, and the requests behind it.
    struct DESCRIBE_WAIT
    {
        unsigned int cseq = 0;
        std::string url;
        int tests = 0;
        unsigned int dueTick = 0;
        std::list<REQ_CMD_INFO> behind;
        std::size_t behindBytes = 0;
    };
    std::unique_ptr<DESCRIBE_WAIT> m_describeWait;

    // Bytes in. The packet itself lies in a buffer that all sessions share, since none outlives a call.
    bool m_inDollar = false;
    unsigned char m_dollarHead[3] = {}; ///< channel, length big-endian
    int m_ucRecvedHead = 0;
    int m_dollarLength = 0;
    int m_dollarReceived = 0;
    std::string m_request; ///< text received and not yet served
    int m_iNeedMoreContentData = 0;
    std::list<REQ_CMD_INFO> m_messages;
    char m_cookie[51] = {};
    char m_CookieInPost[51] = {};
    CRTSP_ClientSession* m_cs = nullptr; ///< a POST connection: the GET session that it feeds

    // Bytes out: the pending send, then the commands, then the packets of the tracks.
    SENDING_COMMON_DATA m_pending{};
    bool m_hasPending = false;
    std::list<SENDING_COMMON_DATA> m_commands;
    std::size_t m_commandBytes = 0; ///< of m_commands
};
