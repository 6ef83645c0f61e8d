#include "RtspProtocol.h"

#include "NetServerSDK.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{
// A message in memory of its own, with a zero byte behind it.
class Message
{
public:
    explicit Message(const std::string& text, unsigned int policy = 0)
        : m_text(text.begin(), text.end()), m_length(static_cast<unsigned int>(text.size()))
    {
        m_text.push_back('\0');
        m_protocol = std::make_unique<CRtspProtocol>(m_text.data(), m_length, CPolicy(policy));
    }

    CRtspProtocol& operator*() { return *m_protocol; }
    CRtspProtocol* operator->() { return m_protocol.get(); }

    std::string Method()
    {
        std::string method;
        EXPECT_EQ(1, m_protocol->GetMethod(method));
        return method;
    }

    std::string Url()
    {
        std::string url;
        EXPECT_EQ(1, m_protocol->GetURL(url));
        return url;
    }

private:
    std::vector<char> m_text;
    unsigned int m_length;
    std::unique_ptr<CRtspProtocol> m_protocol;
};

std::string Repeat(char c, std::size_t count)
{
    return std::string(count, c);
}
} // namespace

TEST(RtspProtocol, ReadsMethodUrlCSeqAgentAndLength)
{
    Message message("SETUP rtsp://10.0.0.1/live/trackID=0 RTSP/1.0\r\n"
                    "CSeq: 3\r\n"
                    "User-Agent: player 1.2\r\n"
                    "Content-Length: 17\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("SETUP", message.Method());
    EXPECT_EQ("rtsp://10.0.0.1/live/trackID=0", message.Url());
    EXPECT_EQ(3u, message->GetCSeq());
    EXPECT_EQ(" player 1.2", message->GetUserAgent());
    EXPECT_EQ(17u, message->GetContentLen());
}

TEST(RtspProtocol, StarIsAUrl)
{
    Message message("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("OPTIONS", message.Method());
    EXPECT_EQ("*", message.Url());
}

TEST(RtspProtocol, BlanksAndTabsInFrontAreSkipped)
{
    Message message(" \t PLAY \t rtsp://10.0.0.1/a RTSP/1.0\r\nCSeq: 4\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("PLAY", message.Method());
    EXPECT_EQ("rtsp://10.0.0.1/a", message.Url());
    EXPECT_STREQ("PLAY \t rtsp://10.0.0.1/a RTSP/1.0\r\nCSeq: 4\r\n\r\n", message->GetProtocolContent());
}

TEST(RtspProtocol, OneSlashAtTheUrlsEndIsRemoved)
{
    Message one("PLAY rtsp://10.0.0.1/a/ RTSP/1.0\r\nCSeq: 4\r\n\r\n");
    ASSERT_TRUE(one->Parse());
    EXPECT_EQ("rtsp://10.0.0.1/a", one.Url());

    Message two("PLAY rtsp://10.0.0.1/a// RTSP/1.0\r\nCSeq: 4\r\n\r\n");
    ASSERT_TRUE(two->Parse());
    EXPECT_EQ("rtsp://10.0.0.1/a/", two.Url());
}

TEST(RtspProtocol, MessageWithoutCSeqFails)
{
    EXPECT_FALSE(Message("OPTIONS * RTSP/1.0\r\n\r\n")->Parse());
}

TEST(RtspProtocol, CSeqWithoutNumberFails)
{
    EXPECT_FALSE(Message("OPTIONS * RTSP/1.0\r\nCSeq: x\r\n\r\n")->Parse());
    EXPECT_FALSE(Message("OPTIONS * RTSP/1.0\r\nCSeq:")->Parse());
}

// Header names count as they are spelled.
TEST(RtspProtocol, LowerCaseCSeqIsNoCSeq)
{
    EXPECT_FALSE(Message("OPTIONS * RTSP/1.0\r\ncseq: 1\r\n\r\n")->Parse());
}

struct NumberCase
{
    const char* text;
    unsigned int value;
};

const NumberCase CSEQ_CASES[] = {
    {"0", 0},
    {" 7", 7},
    {"\r\n 8", 8},
    {"+9", 9},
    {"12abc", 12},
    {"4294967295", 4294967295u},
    {"4294967296", 4294967295u},
    {"99999999999", 4294967295u},
    {"-1", 4294967295u},
};

TEST(RtspProtocol, CSeqIsReadAsAnUnsignedNumberOf32Bits)
{
    for (const NumberCase& row : CSEQ_CASES)
    {
        Message message(std::string("OPTIONS * RTSP/1.0\r\nCSeq:") + row.text + "\r\n\r\n");
        ASSERT_TRUE(message->Parse()) << row.text;
        EXPECT_EQ(row.value, message->GetCSeq()) << row.text;
    }
}

TEST(RtspProtocol, NothingIsReadOfAGetOrPostButItsMethod)
{
    Message get("GET /live HTTP/1.0\r\nCSeq: 5\r\nContent-Length: 9\r\n\r\n");
    ASSERT_TRUE(get->Parse());
    EXPECT_EQ("GET", get.Method());
    EXPECT_EQ("", get.Url());
    EXPECT_EQ(0u, get->GetCSeq());

    Message post("POST /live HTTP/1.0\r\nContent-Length: 32767\r\n\r\n");
    ASSERT_TRUE(post->Parse());
    EXPECT_EQ("POST", post.Method());
    EXPECT_EQ(0u, post->GetContentLen());
}

TEST(RtspProtocol, GetWithoutUrlParses)
{
    EXPECT_TRUE(Message("GET")->Parse());
}

// Only the first letters of the method word are compared, so the client's CSeq is not read.
TEST(RtspProtocol, GetParameterCountsAsGet)
{
    Message message("GET_PARAMETER rtsp://10.0.0.1/a RTSP/1.0\r\nCSeq: 6\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("GET_PARAMETER", message.Method());
    EXPECT_EQ(0u, message->GetCSeq());
    EXPECT_EQ("", message.Url());
}

TEST(RtspProtocol, SetParameterIsReadWhole)
{
    Message message("SET_PARAMETER rtsp://10.0.0.1/a RTSP/1.0\r\nCSeq: 6\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ(6u, message->GetCSeq());
}

TEST(RtspProtocol, StandardRtspComparesMethodWordsWhole)
{
    Message message("GET_PARAMETER rtsp://10.0.0.1/a RTSP/1.0\r\nCSeq: 6\r\n\r\n", NET_POLICY_STANDARD_RTSP);
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ(6u, message->GetCSeq());
    EXPECT_EQ("rtsp://10.0.0.1/a", message.Url());

    Message get("GET /live HTTP/1.0\r\n\r\n", NET_POLICY_STANDARD_RTSP);
    EXPECT_TRUE(get->Parse());
}

TEST(RtspProtocol, HttpMethodTestFollowsThePolicy)
{
    const CPolicy compat;
    const CPolicy standard(NET_POLICY_STANDARD_RTSP);
    EXPECT_TRUE(RtspIsHttpMethod("GET", compat));
    EXPECT_TRUE(RtspIsHttpMethod("GETX", compat));
    EXPECT_TRUE(RtspIsHttpMethod("POSTMAN", compat));
    EXPECT_FALSE(RtspIsHttpMethod("GE", compat));
    EXPECT_FALSE(RtspIsHttpMethod("get", compat));
    EXPECT_TRUE(RtspIsHttpMethod("GET", standard));
    EXPECT_TRUE(RtspIsHttpMethod("POST", standard));
    EXPECT_FALSE(RtspIsHttpMethod("GETX", standard));
    EXPECT_FALSE(RtspIsHttpMethod("POSTMAN", standard));
}

// A refused probe comes back as a status line.
TEST(RtspProtocol, StatusLineParsesWithTheProtocolAsMethod)
{
    Message message("RTSP/1.0 501 Not Implemented\r\nCSeq: 2\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("RTSP/1.0", message.Method());
    EXPECT_EQ("501", message.Url());
    EXPECT_EQ(2u, message->GetCSeq());
}

TEST(RtspProtocol, StatusLineWithoutCSeqFails)
{
    EXPECT_FALSE(Message("RTSP/1.0 501 Not Implemented\r\n\r\n")->Parse());
}

TEST(RtspProtocol, EmptyMessageFails)
{
    EXPECT_FALSE(Message("")->Parse());
    EXPECT_FALSE(Message(" \t")->Parse());
}

TEST(RtspProtocol, MethodWithoutUrlFails)
{
    EXPECT_FALSE(Message("OPTIONS")->Parse());
    EXPECT_FALSE(Message("OPTIONS ")->Parse());
}

TEST(RtspProtocol, WordsOf159BytesParseAndLongerOnesFail)
{
    const std::string rest = " RTSP/1.0\r\nCSeq: 1\r\n\r\n";
    Message method(Repeat('M', 159) + " *" + rest);
    ASSERT_TRUE(method->Parse());
    EXPECT_EQ(Repeat('M', 159), method.Method());
    EXPECT_FALSE(Message(Repeat('M', 160) + " *" + rest)->Parse());

    Message url("PLAY " + Repeat('u', 159) + rest);
    ASSERT_TRUE(url->Parse());
    EXPECT_EQ(Repeat('u', 159), url.Url());
    EXPECT_FALSE(Message("PLAY " + Repeat('u', 160) + rest)->Parse());
    EXPECT_FALSE(Message("GET " + Repeat('u', 160) + rest)->Parse());
}

TEST(RtspProtocol, LongUserAgentIsCutAt159Bytes)
{
    const std::string start = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nUser-Agent:";
    Message whole(start + Repeat('a', 159) + "\r\n\r\n");
    ASSERT_TRUE(whole->Parse());
    EXPECT_EQ(Repeat('a', 159), whole->GetUserAgent());

    Message cut(start + Repeat('a', 160) + "\r\n\r\n");
    ASSERT_TRUE(cut->Parse());
    EXPECT_EQ(Repeat('a', 159), cut->GetUserAgent());
}

TEST(RtspProtocol, EmptyUserAgentFails)
{
    EXPECT_FALSE(Message("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nUser-Agent:\r\n\r\n")->Parse());
}

TEST(RtspProtocol, ContentLengthWithoutNumberFails)
{
    EXPECT_FALSE(Message("OPTIONS * RTSP/1.0\r\nCSeq: 1\r\nContent-Length: x\r\n\r\n")->Parse());
}

// The search for CSeq begins behind method and URL.
TEST(RtspProtocol, CSeqInTheUrlDoesNotCount)
{
    Message message("PLAY rtsp://10.0.0.1/CSeq:77/live RTSP/1.0\r\nCSeq: 4\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ(4u, message->GetCSeq());
}

TEST(RtspProtocol, ParsingEndsAtAZeroByte)
{
    EXPECT_FALSE(Message(std::string("OPTIONS * RTSP/1.0\r\n\0CSeq: 1\r\n\r\n", 33))->Parse());
}

TEST(RtspProtocol, CutAnywhereItNeverReadsBeyondItsEnd)
{
    const std::string whole = "SETUP rtsp://10.0.0.1/live/trackID=0/ RTSP/1.0\r\nCSeq: 3\r\nUser-Agent: p\r\n"
                              "Transport: RTP/AVP;unicast;client_port=4-5\r\nContent-Length: 17\r\n\r\n";
    const std::size_t needed = whole.find("CSeq: 3") + 7;
    for (std::size_t length = 0; length < needed; ++length)
        EXPECT_FALSE(Message(whole.substr(0, length))->Parse()) << length;
    EXPECT_TRUE(Message(whole.substr(0, needed))->Parse());
}

struct TrackCase
{
    const char* url;
    int track;
};

const TrackCase TRACK_CASES[] = {
    {"rtsp://a/live", -1},
    {"rtsp://a/live/trackID=0", 0},
    {"rtsp://a/live/trackID=1", 1},
    {"rtsp://a/live/trackID=1/", 1},
    {"rtsp://a/live/trackID=2/x", 2},
    {"rtsp://a/live/trackID=", 0},
    {"rtsp://a/live/trackID=-4", -4},
    {"rtsp://a/live/trackID=9999999999", 2147483647},
    {"rtsp://a/live/trackid=1", -1},
};

TEST(RtspProtocol, TrackIsTheNumberBehindTrackIdInTheUrl)
{
    for (const TrackCase& row : TRACK_CASES)
    {
        Message message(std::string("SETUP ") + row.url + " RTSP/1.0\r\nCSeq: 1\r\n\r\n");
        ASSERT_TRUE(message->Parse()) << row.url;
        EXPECT_EQ(row.track, message->GetTrackID()) << row.url;
    }
}

TEST(RtspProtocol, TransportHeaderOverUdp)
{
    Message message("SETUP a RTSP/1.0\r\nCSeq: 1\r\nTransport: RTP/AVP;unicast;client_port=5000-5001\r\n\r\n");
    ASSERT_TRUE(message->ParseTransportHeader());
    EXPECT_EQ(STREAMING_UDP, message->GetStreamMode());
    EXPECT_EQ(CRtspProtocol::TRANSPORT_UNICAST, message->GetTransportType());
    EXPECT_EQ(5000, message->GetClientRtpPort());
    EXPECT_EQ(5001, message->GetClientRtcpPort());
    EXPECT_EQ(0, message->GetRtpChnID());
    EXPECT_EQ(0, message->GetRtcpChnID());
}

TEST(RtspProtocol, TransportHeaderOverTcp)
{
    Message message("SETUP a RTSP/1.0\r\nCSeq: 1\r\nTransport: RTP/AVP/TCP;unicast;interleaved=2-3\r\n\r\n");
    ASSERT_TRUE(message->ParseTransportHeader());
    EXPECT_EQ(STREAMING_TCP, message->GetStreamMode());
    EXPECT_EQ(2, message->GetRtpChnID());
    EXPECT_EQ(3, message->GetRtcpChnID());
}

TEST(RtspProtocol, TransportHeaderOfMulticast)
{
    Message message("SETUP a RTSP/1.0\r\nCSeq: 1\r\nTransport: RTP/AVP/UDP;multicast;port=6000-6001\r\n\r\n");
    ASSERT_TRUE(message->ParseTransportHeader());
    EXPECT_EQ(STREAMING_UDP, message->GetStreamMode());
    EXPECT_EQ(CRtspProtocol::TRANSPORT_MULTICAST, message->GetTransportType());
    EXPECT_EQ(6000, message->GetClientRtpPort());
    EXPECT_EQ(6001, message->GetClientRtcpPort());
}

TEST(RtspProtocol, TransportHeaderIsRefused)
{
    EXPECT_FALSE(Message("SETUP a RTSP/1.0\r\nCSeq: 1\r\n\r\n")->ParseTransportHeader());
    EXPECT_FALSE(Message("SETUP a RTSP/1.0\r\nTransport: unicast\r\n\r\n")->ParseTransportHeader());
    EXPECT_FALSE(Message("SETUP a RTSP/1.0\r\nTransport: RTP/AVP;client_port=5000\r\n\r\n")->ParseTransportHeader());
}

TEST(RtspProtocol, OddTransportParametersAreLogged)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(
        Message("SETUP a RTSP/1.0\r\nTransport: RTP/AVP;mode=play;client_port=x\r\n\r\n")->ParseTransportHeader());
    const std::string lines = testing::internal::GetCapturedStderr();
    const std::size_t unknown = lines.find(" not parse transport para:mode=play\n");
    EXPECT_NE(std::string::npos, unknown) << lines;
    EXPECT_NE(std::string::npos, lines.find(" Transport param error!\n", unknown)) << lines;
}

TEST(RtspProtocol, TransportPortsOfTheClassAreCutTo16Bits)
{
    Message message("SETUP a RTSP/1.0\r\nTRANSPORT: RTP/AVP;CLIENT_PORT=70000-5001\r\n\r\n");
    ASSERT_TRUE(message->ParseTransportHeader());
    EXPECT_EQ(4464, message->GetClientRtpPort());
    EXPECT_EQ(5001, message->GetClientRtcpPort());
}

TEST(RtspProtocol, AUrlEndsAtABlankAlone)
{
    Message message("PLAY a\tb RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("a\tb", message.Url());
}

TEST(RtspProtocol, AMethodEndsAtATab)
{
    Message message("PLAY\ta RTSP/1.0\r\nCSeq: 1\r\n\r\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ("PLAY", message.Method());
    EXPECT_EQ("a", message.Url());
}

TEST(RtspProtocol, AUserAgentEndsAtALineFeed)
{
    Message message("OPTIONS * RTSP/1.0\nCSeq: 1\nUser-Agent: p\nX: y\n\n");
    ASSERT_TRUE(message->Parse());
    EXPECT_EQ(" p", message->GetUserAgent());
}
