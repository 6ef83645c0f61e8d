#include "RtspTransport.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
// The header in a SETUP of its own, read with the channel counter at `nextChannel`.
struct Transport
{
    explicit Transport(const std::string& value, unsigned int first = 0) : nextChannel(first)
    {
        const std::string text = "SETUP rtsp://a/trackID=0 RTSP/1.0\r\nCSeq: 1\r\nTransport: " + value + "\r\n\r\n";
        result = parseTransportHeader(text.c_str(), nextChannel, out);
    }

    unsigned int nextChannel;
    RTSP_TRANSPORT out;
    int result;
};
} // namespace

TEST(RtspTransport, UdpWithPorts)
{
    const Transport header("RTP/AVP;unicast;client_port=5000-5001");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(STREAMING_UDP, header.out.mode);
    EXPECT_FALSE(header.out.multicast);
    EXPECT_STREQ("RTP/AVP", header.out.transport);
    EXPECT_STREQ("", header.out.destination);
    EXPECT_EQ(255, header.out.ttl);
    EXPECT_EQ(5000, header.out.port1);
    EXPECT_EQ(5001, header.out.port2);
    EXPECT_EQ(0xFFFFFFFFu, header.out.chn1);
    EXPECT_EQ(0xFFFFFFFFu, header.out.chn2);
    EXPECT_EQ(0u, header.nextChannel);
}

TEST(RtspTransport, UdpBySuffix)
{
    const Transport header("RTP/AVP/UDP;unicast;client_port=1-2");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(STREAMING_UDP, header.out.mode);
    EXPECT_STREQ("RTP/AVP/UDP", header.out.transport);
}

TEST(RtspTransport, TcpKeepsTheClientsChannelsAndLeavesTheCounter)
{
    const Transport header("RTP/AVP/TCP;unicast;interleaved=2-3");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(STREAMING_TCP, header.out.mode);
    EXPECT_STREQ("RTP/AVP/TCP", header.out.transport);
    EXPECT_EQ(2u, header.out.chn1);
    EXPECT_EQ(3u, header.out.chn2);
    EXPECT_EQ(0u, header.nextChannel);
}

TEST(RtspTransport, TcpWithoutChannelsTakesTheNextTwo)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT out;
    const char* text = "Transport: RTP/AVP/TCP;unicast\r\n";
    EXPECT_EQ(0, parseTransportHeader(text, nextChannel, out));
    EXPECT_EQ(0u, out.chn1);
    EXPECT_EQ(1u, out.chn2);
    EXPECT_EQ(0, parseTransportHeader(text, nextChannel, out));
    EXPECT_EQ(2u, out.chn1);
    EXPECT_EQ(3u, out.chn2);
    EXPECT_EQ(4u, nextChannel);
}

// Channels are kept as numbers; a packet carries their low byte.
TEST(RtspTransport, ChannelsAbove255AreKept)
{
    const Transport header("RTP/AVP/TCP;interleaved=300-301");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(300u, header.out.chn1);
    EXPECT_EQ(301u, header.out.chn2);
}

TEST(RtspTransport, MulticastWithPortAndTtl)
{
    const Transport header("RTP/AVP;multicast;destination=224.1.2.3;port=6000-6001;ttl16");
    EXPECT_EQ(0, header.result);
    EXPECT_TRUE(header.out.multicast);
    EXPECT_STREQ("destination=224.1.2.3", header.out.destination);
    EXPECT_EQ(6000, header.out.port1);
    EXPECT_EQ(6001, header.out.port2);
    EXPECT_EQ(16, header.out.ttl);
}

struct ResultCase
{
    const char* name;
    const char* value;
    int result;
};

void PrintTo(const ResultCase& row, std::ostream* out)
{
    *out << row.name;
}

class RtspTransportResult : public testing::TestWithParam<ResultCase>
{
};

TEST_P(RtspTransportResult, IsAsStated)
{
    EXPECT_EQ(GetParam().result, Transport(GetParam().value).result);
}

const ResultCase RESULT_CASES[] = {
    {"NoMode", "unicast;client_port=5000-5001", -1},
    {"Empty", "", -1},
    {"UdpWithoutPorts", "RTP/AVP;unicast", -1},
    {"UdpFirstPortZero", "RTP/AVP;client_port=0-5001", -1},
    {"UdpSecondPortZero", "RTP/AVP;client_port=5000-0", -1},
    {"UdpPortZeroBy16Bits", "RTP/AVP;client_port=65536-5001", -1},
    {"PortWithoutDigit", "RTP/AVP;client_port=x-5001", -1},
    {"PortWithBlankInFront", "RTP/AVP;client_port= 5000-5001", -1},
    {"PortWithoutDash", "RTP/AVP;client_port=5000", -1},
    {"PortWithOtherSeparator", "RTP/AVP;client_port=5000:5001", -1},
    {"PortWithoutSecondDigit", "RTP/AVP;client_port=5000-x", -1},
    {"PortWithNothingBehindDash", "RTP/AVP;client_port=5000-", -1},
    {"PlainPortMalformed", "RTP/AVP;port=5000", -1},
    {"InterleavedMalformed", "RTP/AVP/TCP;interleaved=1", -1},
    {"TtlWithEquals", "RTP/AVP;client_port=5000-5001;ttl=16", -1},
    {"TtlWithoutNumber", "RTP/AVP;client_port=5000-5001;ttl", -1},
    {"TtlWithDigits", "RTP/AVP;client_port=5000-5001;ttl16", 0},
    {"UpperCasePort", "RTP/AVP;CLIENT_PORT=5000-5001", 0},
    {"UpperCaseTtl", "RTP/AVP;client_port=5000-5001;TTL1", 0},
    {"LowerCaseMode", "rtp/avp;client_port=5000-5001", -1},
    {"ModeWithSuffix", "RTP/AVPF;client_port=5000-5001", -1},
    {"UnknownParameter", "RTP/AVP;unicast;mode=\"PLAY\";client_port=5000-5001", 0},
    {"EmptyParameter", "RTP/AVP;;client_port=5000-5001;", 0},
    {"BlanksBehindSemicolon", "RTP/AVP;  unicast;  client_port=5000-5001", 0},
    {"BlanksInFront", "   RTP/AVP;client_port=5000-5001", 0},
    {"TextBehindThePair", "RTP/AVP;client_port=5000-5001x", 0},
};

INSTANTIATE_TEST_SUITE_P(Headers, RtspTransportResult, testing::ValuesIn(RESULT_CASES),
                         [](const testing::TestParamInfo<ResultCase>& row) { return std::string(row.param.name); });

TEST(RtspTransport, WhatIsOddIsToldOnTheConsoleAndInTheLog)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(-1, Transport("RTP/AVP;mode=play;client_port=x-1").result);
    const std::string lines = testing::internal::GetCapturedStderr();
    const std::size_t unknown = lines.find("Transport  error para:mode=play  ");
    EXPECT_NE(std::string::npos, unknown) << lines;
    EXPECT_NE(std::string::npos, lines.find("\nTransport param error ", unknown)) << lines;

    testing::internal::CaptureStderr();
    EXPECT_EQ(0, Transport("RTP/AVP;port=6000-6001").result);
    EXPECT_NE(std::string::npos, testing::internal::GetCapturedStderr().find(" rtsp 54.\n")); // '6'
}

TEST(RtspTransport, PortsAreCutTo16Bits)
{
    const Transport header("RTP/AVP;client_port=70000-131073");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(4464, header.out.port1);
    EXPECT_EQ(1, header.out.port2);
}

TEST(RtspTransport, ChannelsTooLargeCountAsTheLargest)
{
    const Transport header("RTP/AVP/TCP;interleaved=99999999999999999999-1");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(2147483647u, header.out.chn1);
    EXPECT_EQ(1u, header.out.chn2);
}

TEST(RtspTransport, UnicastBehindMulticastWins)
{
    EXPECT_FALSE(Transport("RTP/AVP;multicast;unicast;client_port=1-2").out.multicast);
}

TEST(RtspTransport, MessageWithoutTheHeaderIsRefused)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT out;
    EXPECT_EQ(-1, parseTransportHeader("SETUP a RTSP/1.0\r\nCSeq: 1\r\n\r\n", nextChannel, out));
    EXPECT_EQ(-1, parseTransportHeader("", nextChannel, out));
}

TEST(RtspTransport, HeaderNameIsFoundInAnyCase)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT out;
    EXPECT_EQ(0, parseTransportHeader("tRANSPORT: RTP/AVP/TCP\r\n", nextChannel, out));
    EXPECT_EQ(STREAMING_TCP, out.mode);
}

// The character behind the colon counts as the blank, whatever it is.
TEST(RtspTransport, ValueRightBehindTheColonLosesItsFirstLetter)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT out;
    EXPECT_EQ(-1, parseTransportHeader("Transport:RTP/AVP/TCP\r\n", nextChannel, out));
    EXPECT_EQ(0, parseTransportHeader("Transport:XRTP/AVP/TCP\r\n", nextChannel, out));
}

TEST(RtspTransport, TextThatEndsInsideTheHeaderGivesWhatWasGathered)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT out;
    EXPECT_EQ(0, parseTransportHeader("Transport: RTP/AVP;unicast;client_port=5000-50", nextChannel, out));
    EXPECT_EQ(STREAMING_UDP, out.mode);
    EXPECT_EQ(0, out.port1);

    EXPECT_EQ(0, parseTransportHeader("Transport:", nextChannel, out));
    EXPECT_EQ(STREAMING_NONE, out.mode);
    EXPECT_EQ(0, parseTransportHeader("Transport: ", nextChannel, out));
    EXPECT_EQ(STREAMING_NONE, out.mode);
    EXPECT_EQ(0u, nextChannel);
}

TEST(RtspTransport, ALineFeedAloneDoesNotEndTheHeader)
{
    unsigned int nextChannel = 0;
    RTSP_TRANSPORT out;
    EXPECT_EQ(0, parseTransportHeader("Transport: RTP/AVP/TCP\n\n", nextChannel, out));
    EXPECT_EQ(STREAMING_NONE, out.mode);
}

TEST(RtspTransport, DestinationOf127BytesIsKeptAndALongerOneIsCut)
{
    const std::string longest = "destination=" + std::string(115, 'd');
    EXPECT_EQ(longest, Transport("RTP/AVP/TCP;" + longest).out.destination);
    EXPECT_EQ(longest, Transport("RTP/AVP/TCP;" + longest + "x").out.destination);
}

TEST(RtspTransport, ALongParameterIsNoKnownOne)
{
    const Transport header("RTP/AVP/TCP;unicast" + std::string(300, 'x') + ";interleaved=4-5");
    EXPECT_EQ(0, header.result);
    EXPECT_EQ(4u, header.out.chn1);
}

TEST(RtspTransport, ALongPairIsReadFromItsFirst127Bytes)
{
    const std::string zeros(111, '0'); // "client_port=" and zeros: 123 bytes
    EXPECT_EQ(5, Transport("RTP/AVP;client_port=" + zeros + "7-56").out.port1 - 2);
    EXPECT_EQ(56, Transport("RTP/AVP;client_port=" + zeros + "7-56").out.port2);
    EXPECT_EQ(56, Transport("RTP/AVP;client_port=" + zeros + "7-567").out.port2);
}

TEST(RtspTransport, DynamicRateIsFoundInAnyCaseAnywhere)
{
    EXPECT_TRUE(RtspAsksDynamicRate("SETUP a RTSP/1.0\r\nx-Dynamic-Rate: 1\r\n\r\n"));
    EXPECT_TRUE(RtspAsksDynamicRate("x-dynamic-rate: 10"));
    EXPECT_FALSE(RtspAsksDynamicRate("x-Dynamic-Rate: 0"));
    EXPECT_FALSE(RtspAsksDynamicRate("x-Dynamic-Rate:1"));
    EXPECT_FALSE(RtspAsksDynamicRate("x-Dynamic-Rate:"));
}

TEST(RtspTransport, LocalIpIsFoundBehindASetup)
{
    std::string host;
    EXPECT_TRUE(GetLocalIPFromRequest("SETUP rtsp://10.0.0.1:554/live RTSP/1.0\r\n", host));
    EXPECT_EQ("10.0.0.1", host);
}

// Every other byte is looked at, so a method of odd length hides the URL.
TEST(RtspTransport, LocalIpAtAnOddOffsetIsNotFound)
{
    std::string host;
    EXPECT_FALSE(GetLocalIPFromRequest("PLAY rtsp://10.0.0.1/live RTSP/1.0\r\n", host));
    EXPECT_TRUE(GetLocalIPFromRequest("PLAY  rtsp://10.0.0.1/live RTSP/1.0\r\n", host));
}

struct HostCase
{
    const char* text;
    const char* host;
};

const HostCase HOST_CASES[] = {
    {"rtsp://a:1", "a"}, {"rtsp://b/x", "b"}, {"rtsp://c d", "c"}, {"rtsp://d\re", "d"}, {"rtsp://e\nf", "e"},
    {"rtsp://f", "f"},   {"RTSP://g", "g"},   {"rtsp:///h", ""},   {"rtsp://", ""},      {"xxrtsp://ij/k", "ij"},
};

TEST(RtspTransport, LocalIpEndsAtColonSlashBlankOrLineEnd)
{
    for (const HostCase& row : HOST_CASES)
    {
        std::string host = "unset";
        EXPECT_TRUE(GetLocalIPFromRequest(row.text, host)) << row.text;
        EXPECT_EQ(row.host, host) << row.text;
    }
}

TEST(RtspTransport, LocalIpIsMissing)
{
    std::string host;
    EXPECT_FALSE(GetLocalIPFromRequest("", host));
    EXPECT_FALSE(GetLocalIPFromRequest("r", host));
    EXPECT_FALSE(GetLocalIPFromRequest("OPTIONS * RTSP/1.0\r\n\r\n", host));
    EXPECT_FALSE(GetLocalIPFromRequest("rtsp:/", host));
}

TEST(RtspTransport, LocalIpIsCutAt127Characters)
{
    std::string host;
    EXPECT_TRUE(GetLocalIPFromRequest(("rtsp://" + std::string(128, 'h') + "/").c_str(), host));
    EXPECT_EQ(std::string(127, 'h'), host);
}

struct RangeCase
{
    const char* text;
    int result;
    double start;
    double end;
};

const RangeCase RANGE_CASES[] = {
    {"Range: npt=0.000-\r\n", 0, 0, 0},
    {"Range: npt=1.5-20.25\r\n", 0, 1.5, 20.25},
    {"rANGE: npt==2 - 3\r\n", 0, 2, 3},
    {"Range: npt=4\r\n", 0, 4, 0},
    {"Range: npt5-6\r\n", 0, 5, 6},
    {"Range: npt=now-\r\n", -1, 0, 0},
    {"Range: npt=", -1, 0, 0},
    {"Range: clock=1\r\nnpt=9\r\n", 0, 0, 0},
    {"Range: ", 0, 0, 0},
    {"Range: npt=7-x\r\n", 0, 7, 0},
    {"PLAY a RTSP/1.0\r\n\r\n", -1, 0, 0},
};

TEST(RtspTransport, RangeIsReadInSeconds)
{
    for (const RangeCase& row : RANGE_CASES)
    {
        double start = -1;
        double end = -1;
        EXPECT_EQ(row.result, parseRangeHeader(row.text, start, end)) << row.text;
        EXPECT_DOUBLE_EQ(row.start, start) << row.text;
        EXPECT_DOUBLE_EQ(row.end, end) << row.text;
    }
}

struct FieldCase
{
    const char* url;
    const char* name;
    bool found;
    const char* value;
};

const FieldCase FIELD_CASES[] = {
    {"/3?date=2016-1-2&time=8:30:0&timelen=600", "date", true, "2016-1-2"},
    {"/3?date=2016-1-2&time=8:30:0&timelen=600", "timelen", true, "600"},
    {"/3?date=2016-1-2&time=8:30:0&timelen=600/", "timelen", true, "600"},
    {"/3?time=8:30:0&timelen=600", "time", true, "8:30:0"},
    {"/3?date", "date", false, ""},
    {"/3?date=", "date", true, ""},
    {"/3?date&x=1", "date", true, "1"},
    {"/3", "date", false, ""},
    {"", "date", false, ""},
};

TEST(RtspTransport, UrlFieldIsBoundedByEqualsAndAmpersand)
{
    for (const FieldCase& row : FIELD_CASES)
    {
        std::string value;
        EXPECT_EQ(row.found, GetURLFieldValue(row.url, row.name, value)) << row.url << " " << row.name;
        EXPECT_EQ(row.value, value) << row.url << " " << row.name;
    }
}
