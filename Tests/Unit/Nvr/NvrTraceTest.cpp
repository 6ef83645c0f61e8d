#include "NvrTrace.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

const char* const REQUEST = "POST /onvif/device_service HTTP/1.1\r\n\r\n<s:Envelope><s:Header/><s:Body>\n"
                            "<tds:GetDNS/></s:Body></s:Envelope>";

ONVIF_TRACE Exchange(const char* reply, unsigned int replyBytes, unsigned int durationMs)
{
    return {"10.0.0.1", 80, REQUEST, reply, replyBytes, durationMs};
}

} // namespace

TEST(NvrTrace, NamesTheOperation)
{
    EXPECT_EQ("GetDNS", CNvrTrace::OperationOf(REQUEST));
    EXPECT_EQ("SetDNS", CNvrTrace::OperationOf("<a:Body><SetDNS b=\"c\">"));
    EXPECT_EQ("\"GET /a.jpg HTTP/1.1\"", CNvrTrace::OperationOf("GET /a.jpg HTTP/1.1\r\nHost: a\r\n\r\n"));
    EXPECT_EQ("\"\"", CNvrTrace::OperationOf(""));
}

TEST(NvrTrace, TellsThatNoAnswerCame)
{
    std::ostringstream messages;
    CNvrTrace trace(messages);
    trace.OnExchange(Exchange("", 0, 999));
    EXPECT_EQ("", messages.str());
    EXPECT_EQ("10.0.0.1:80 gave no answer to GetDNS within 0.9 s", trace.LastOutcome());
    trace.OnExchange(Exchange("", 0, 2550));
    EXPECT_EQ("netserver-nvr: 10.0.0.1:80 gave no answer to GetDNS within 2.5 s\n", messages.str());
    EXPECT_EQ("10.0.0.1:80 gave no answer to GetDNS within 2.5 s", trace.LastOutcome());
}

TEST(NvrTrace, TellsThatAnAnswerTookLong)
{
    std::ostringstream messages;
    CNvrTrace trace(messages);
    trace.OnExchange(Exchange("HTTP/1.1 200 OK\r\n", 17, 999));
    EXPECT_EQ("", messages.str());
    trace.OnExchange(Exchange("HTTP/1.1 200 OK\r\n", 17, 1000));
    EXPECT_EQ("netserver-nvr: GetDNS took 1.0 s\n", messages.str());
    EXPECT_EQ("10.0.0.1:80 answered GetDNS with \"HTTP/1.1 200 OK\"", trace.LastOutcome());
}

TEST(NvrTrace, WritesExchangesToAFileAndAStream)
{
    const CTempDirectory directory;
    std::ostringstream messages;
    std::ostringstream out;
    CNvrTrace trace(messages);
    ASSERT_TRUE(trace.OpenFile(directory.Path("trace.txt")));
    trace.ShowOn(&out);
    trace.OnExchange(Exchange("HTTP/1.1 200 OK", 15, 3));
    trace.ShowOn(nullptr);
    const std::string expected =
        std::string("--- to 10.0.0.1:80\n") + REQUEST + "\n--- 15 bytes after 3 ms\nHTTP/1.1 200 OK\n";
    EXPECT_EQ(expected, out.str());
    EXPECT_EQ(expected, directory.Read("trace.txt"));
}

TEST(NvrTrace, TellsThatAFileCannotBeWritten)
{
    std::ostringstream messages;
    EXPECT_FALSE(CNvrTrace(messages).OpenFile("/no such directory/trace.txt"));
}
