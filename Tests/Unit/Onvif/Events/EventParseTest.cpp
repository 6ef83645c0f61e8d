#include "EventParse.h"

#include "FakeClock.h"
#include "OnvifEventObserver.h"
#include "ShareSDK.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace
{

std::string Item(const std::string& topic, const std::string& value)
{
    return "<wsnt:NotificationMessage>" + (topic.empty() ? "" : "<wsnt:Topic>" + topic + "</wsnt:Topic>") +
           "<wsnt:Message><tt:Message>" +
           (value.empty() ? "" : "<tt:Data><tt:SimpleItem Name=\"State\" Value=\"" + value + "\"/></tt:Data>") +
           "</tt:Message></wsnt:Message></wsnt:NotificationMessage>";
}

std::string Soap(const std::string& items)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\""
           " xmlns:tev=\"http://www.onvif.org/ver10/events/wsdl\" xmlns:wsnt=\"http://docs.oasis-open.org/wsn/b-2\""
           " xmlns:tt=\"http://www.onvif.org/ver10/schema\"><s:Body><tev:PullMessagesResponse>" +
           items + "</tev:PullMessagesResponse></s:Body></s:Envelope>";
}

std::string Http(const std::string& body, const std::string& lengthWord = "Content-Length:")
{
    return "HTTP/1.1 200 OK\r\n" + lengthWord + " " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

class EventParse : public testing::Test
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        m_record.pulling = true;
        const CMySingleLock lock(m_record.eventLock);
        m_record.events = std::make_unique<std::list<OnvifEvent>>();
    }

    bool Check(const std::string& bytes)
    {
        return m_parser.CheckMsgPacketCompleted(bytes.data(), static_cast<unsigned int>(bytes.size()));
    }
    int Receive(const std::string& bytes)
    {
        return m_parser.OnSocketRecvData(1, bytes.data(), static_cast<unsigned int>(bytes.size()), &m_parser);
    }
    /// The waiting events as "1+" or "2-", type and state.
    std::string Events()
    {
        const CMySingleLock lock(m_record.eventLock);
        std::string text;
        for (const OnvifEvent& event : *m_record.events)
        {
            text += std::to_string(event.type) + (event.state ? "+" : "-");
            EXPECT_STREQ("", event.source);
        }
        return text;
    }

    OnvifEventObserver m_record;
    CEventParse m_parser{&m_record};
};

TEST_F(EventParse, NoBytesAreNoAnswer)
{
    EXPECT_FALSE(m_parser.CheckMsgPacketCompleted(nullptr, 5));
    EXPECT_FALSE(m_parser.CheckMsgPacketCompleted("x", 0));
}

TEST_F(EventParse, AnswerIsWholeWithItsLastByte)
{
    EXPECT_FALSE(Check("HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\nabc"));
    EXPECT_TRUE(Check("d"));
}

TEST_F(EventParse, LengthZeroIsWholeWithTheHeader)
{
    EXPECT_FALSE(Check("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r"));
    EXPECT_TRUE(Check("\n"));
}

TEST_F(EventParse, LengthMayBeSpelledInTwoWays)
{
    EXPECT_TRUE(Check("HTTP/1.1 200 OK\r\nContent-length: 1\r\n\r\na"));
}

TEST_F(EventParse, OtherSpellingsThrowTheAnswerAway)
{
    EXPECT_FALSE(Check("HTTP/1.1 200 OK\r\ncontent-length: 1\r\n\r\na"));
    EXPECT_TRUE(Check("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\na")); // nothing of the first is left
}

TEST_F(EventParse, NegativeLengthNeverBecomesWhole)
{
    EXPECT_FALSE(Check("HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\nabc"));
    EXPECT_FALSE(Check("def"));
}

TEST_F(EventParse, BufferTakes32768BytesAndNotOneMore)
{
    const std::string header = "HTTP/1.1 200 OK\r\nContent-Length: 32000\r\n\r\n";
    EXPECT_TRUE(Check(header + std::string(32768 - header.size(), 'x')));
}

TEST_F(EventParse, OversizedAnswerIsThrownAwayWhole)
{
    EXPECT_FALSE(Check(std::string(32768, 'x')));
    EXPECT_FALSE(Check("y"));
    EXPECT_TRUE(Check("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\na"));
}

TEST_F(EventParse, ThreePiecesGiveNothingNothingAndTheLastOnesLength)
{
    const std::string answer = Http(Soap(Item("tns1:VideoSource/MotionAlarm", "true")));
    EXPECT_EQ(0, Receive(answer.substr(0, 10)));
    EXPECT_EQ(0, Receive(answer.substr(10, 90)));
    EXPECT_EQ(static_cast<int>(answer.size()) - 100, Receive(answer.substr(100)));
    EXPECT_EQ("1+", Events());
    EXPECT_TRUE(m_record.responseReady);
}

TEST_F(EventParse, AnswerMayComeByteByByte)
{
    const std::string answer = Http(Soap(Item("tns1:VideoSource/MotionAlarm", "true")));
    for (std::size_t i = 0; i + 1 < answer.size(); ++i)
    {
        ASSERT_EQ(0, Receive(answer.substr(i, 1))) << i;
    }
    EXPECT_EQ(1, Receive(answer.substr(answer.size() - 1)));
    EXPECT_EQ("1+", Events());
}

TEST_F(EventParse, WithoutPullModeBytesAreIgnored)
{
    m_record.pulling = false;
    EXPECT_EQ(3, Receive("abc"));
    EXPECT_FALSE(m_record.responseReady);
    m_record.pulling = true;
    EXPECT_TRUE(Check("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"));
}

TEST_F(EventParse, EndOfTheConnectionIsNoAnswer)
{
    EXPECT_EQ(0, m_parser.OnSocketRecvData(1, "", 0, &m_parser));
    EXPECT_FALSE(m_record.responseReady);
}

TEST_F(EventParse, FirstEventEndsTheOtherMode)
{
    FakeClock clock;
    clock.Advance(77);
    m_record.subscribed = true;
    Receive(Http(Soap(Item("tns1:VideoSource/MotionAlarm", "true"))));
    EXPECT_TRUE(m_record.eventSeen);
    EXPECT_FALSE(m_record.subscribed);
    EXPECT_EQ(clock.Now(), m_record.lastRenew);
}

TEST_F(EventParse, UnreadableAnswerCountsAsOneWithoutEvents)
{
    FakeClock clock;
    clock.Advance(77);
    Receive(Http("<html>no</html>"));
    EXPECT_EQ("", Events());
    EXPECT_TRUE(m_record.responseReady);
    EXPECT_EQ(clock.Now(), m_record.lastRenew);
    EXPECT_FALSE(m_record.eventSeen);
}

TEST_F(EventParse, FaultHasNoEvents)
{
    Receive(Http("<?xml version=\"1.0\"?><s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\"><s:Body>"
                 "<s:Fault><s:Reason><s:Text>no</s:Text></s:Reason></s:Fault></s:Body></s:Envelope>"));
    EXPECT_EQ("", Events());
    EXPECT_TRUE(m_record.responseReady);
}

// An item without a topic or a value has those of the item before it.
TEST_F(EventParse, ItemsInheritWhatTheyLack)
{
    Receive(Http(Soap(Item("", "") + Item("tns1:VideoSource/MotionAlarm", "true") + Item("", "false") +
                      Item("tns1:Device/Trigger/Relay", "") + Item("", "1") + Item("tns1:Other", ""))));
    EXPECT_EQ("0-1+1-2-2+0+", Events());
}

TEST_F(EventParse, NextAnswerStartsFromNothing)
{
    Receive(Http(Soap(Item("tns1:VideoSource/MotionAlarm", "true"))));
    Receive(Http(Soap(Item("", ""))));
    EXPECT_EQ("1+0-", Events());
}

TEST_F(EventParse, RemovedRecordTakesNoEvents)
{
    {
        const CMySingleLock lock(m_record.eventLock);
        m_record.events.reset();
    }
    Receive(Http(Soap(Item("tns1:VideoSource/MotionAlarm", "true"))));
    EXPECT_TRUE(m_record.responseReady);
}

TEST_F(EventParse, FloodOfEventsIsBounded)
{
    for (int i = 0; i < 5000; ++i)
    {
        m_record.Push(OnvifEvent());
    }
    const CMySingleLock lock(m_record.eventLock);
    EXPECT_EQ(4096u, m_record.events->size());
}

TEST_F(EventParse, ClearKeepsTheRemainsInFrontOfTheNextAnswer)
{
    m_record.responseReady = true;
    EXPECT_EQ(0, Receive("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nab"));
    m_parser.Clear();
    EXPECT_FALSE(m_record.responseReady);
    EXPECT_EQ(3, Receive("cde"));
    EXPECT_TRUE(m_record.responseReady);
}

struct TopicCase
{
    const char* name;
    const char* topic;
    const char* events;
};

class EventParseTopic : public EventParse, public testing::WithParamInterface<TopicCase>
{
};

TEST_P(EventParseTopic, IsClassified)
{
    Receive(Http(Soap(Item(GetParam().topic, "true"))));
    EXPECT_EQ(GetParam().events, Events());
}

// clang-format off
const TopicCase TOPIC_CASES[] = {
    {"CellMotion",           "tns1:RuleEngine/CellMotionDetector/Motion",  "1+"},
    {"MotionAlarm",          "tns1:VideoSource/MotionAlarm",               "1+"},
    {"AnalyticsMotion",      "tns1:VideoAnalytics/MotionDetection",        "1+"},
    {"RuleMotionDetection",  "tns1:RuleEngine/MotionDetection",            "0+"},
    {"DigitalInput",         "tns1:Device/Trigger/DigitalInput",           "2+"},
    {"Relay",                "tns1:Device/Trigger/Relay",                  "2+"},
    {"AlarmIn",              "tnsx:Vendor/AlarmIn",                        "2+"},
    {"MotionInFrontOfInput", "tnsx:AlarmIn/MotionAlarm",                   "1+"},
    {"Unknown",              "tns1:Device/HardwareFailure/FanFailure",     "0+"},
    {"OtherCase",            "tns1:videosource/motionalarm",               "0+"},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(All, EventParseTopic, testing::ValuesIn(TOPIC_CASES),
                         [](const auto& one) { return std::string(one.param.name); });

struct StateCase
{
    const char* name;
    const char* value;
    const char* events;
};

class EventParseState : public EventParse, public testing::WithParamInterface<StateCase>
{
};

TEST_P(EventParseState, IsTrueInThreeSpellings)
{
    Receive(Http(Soap(Item("MotionAlarm", GetParam().value))));
    EXPECT_EQ(GetParam().events, Events());
}

// clang-format off
const StateCase STATE_CASES[] = {
    {"Lower",   "true",  "1+"},
    {"Upper",   "TRUE",  "1+"},
    {"Digit",   "1",     "1+"},
    {"Mixed",   "True",  "1-"},
    {"Two",     "2",     "1-"},
    {"Padded",  "true ", "1-"},
    {"False",   "false", "1-"},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(All, EventParseState, testing::ValuesIn(STATE_CASES),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
