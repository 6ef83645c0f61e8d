#include "QlxApiWorld.h"

#include "TempDirectory.h"

namespace
{

using testing::HasSubstr;
using testing::Not;

class QlxApiRecordCommands : public QlxApiWorld
{
protected:
    void SetUp() override
    {
        QlxApiWorld::SetUp();
        ASSERT_TRUE(SHARESDK_LogToFile(m_logDirectory.Path("log").c_str(), 1000000, 1));
        SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    }
    void TearDown() override
    {
        SHARESDK_LogToConsole();
        QlxApiWorld::TearDown();
    }
    std::string Log() const { return m_logDirectory.Read("log"); }

    CTempDirectory m_logDirectory;
};

std::string Search(const std::string& elements)
{
    return "<config><search>" + elements + "</search></config>";
}

} // namespace

TEST_F(QlxApiRecordCommands, DatesHaveNoLeadingZerosAndTimesDo)
{
    m_device.recordDates = {{2016, 1, 2}};
    m_device.records = {{{{2016, 1, 2}, {8, 30, 0}}, 60}};
    EXPECT_EQ("2016-1-2", Value(Ask("SearchRecordDate"), "dateList/item"));
    EXPECT_EQ("2016-01-02 08:30:00", Value(Ask("SearchByTime", Search("")), "timesectionList/item/starttime"));
    EXPECT_EQ("60", Value(Ask("SearchByTime", Search("")), "timesectionList/item/seconds"));
}

TEST_F(QlxApiRecordCommands, NoRecordingsAreAnEmptyList)
{
    const std::string answer = Ask("SearchRecordDate");
    EXPECT_EQ("0", Attribute(answer, "dateList", "count"));
    EXPECT_EQ(0u, Count(answer, "dateList"));
}

// The host's search counts channels from 0, as nothing else does.
TEST_F(QlxApiRecordCommands, SearchCountsChannelsFromNought)
{
    Ask("SearchByTime/2", Search(""));
    EXPECT_EQ("SearchRecord {0 0 0 0 0 0} {0 0 0 0 0 0} 1", LastCall());
    Ask("SearchByTime", Search(""));
    EXPECT_EQ("SearchRecord {0 0 0 0 0 0} {0 0 0 0 0 0} 0", LastCall());
    Ask("SearchByTime/0", Search(""));
    EXPECT_EQ("SearchRecord {0 0 0 0 0 0} {0 0 0 0 0 0} -1", LastCall());
}

TEST_F(QlxApiRecordCommands, WhatATimeLeavesOutIsNought)
{
    Ask("SearchByTime", Search("<starttime>2016-1-2 3:4:5</starttime><endtime>2017-11</endtime>"));
    EXPECT_EQ("SearchRecord {2016 1 2 3 4 5} {2017 11 0 0 0 0} 0", LastCall());
    EXPECT_THAT(Log(), HasSubstr(" read para error!"));
    for (const char* body : {"<config/>", "no xml", "<config><search><starttime/></search></config>"})
    {
        Ask("SearchByTime", body);
        EXPECT_EQ("SearchRecord {0 0 0 0 0 0} {0 0 0 0 0 0} 0", LastCall()) << body;
    }
}

TEST_F(QlxApiRecordCommands, RefusalsAreAnswered)
{
    EXPECT_EQ(3, Code("SearchByTime"));
    EXPECT_TRUE(m_device.CallLog().empty());
    EXPECT_EQ(CHALLENGED, Code("SearchRecordDate", "", UNAUTHORIZED));
    EXPECT_EQ(CHALLENGED, Code("SearchByTime", Search(""), UNAUTHORIZED));
    m_device.results = {{"SearchRecordDate", NETNS::DEV_RET_FAILED}, {"SearchRecord", NETNS::DEV_RET_NOT_SUPPORTED}};
    EXPECT_EQ(4, Code("SearchRecordDate"));
    EXPECT_EQ(1, Code("SearchByTime", Search("")));
}

TEST_F(QlxApiRecordCommands, MoreRowsThan256AreClippedAndLogged)
{
    m_device.counts = {{"SearchRecordDate", 256}, {"SearchRecord", 256}};
    EXPECT_EQ(256u, Count(Ask("SearchRecordDate"), "dateList"));
    EXPECT_EQ(256u, Count(Ask("SearchByTime", Search("")), "timesectionList"));
    EXPECT_THAT(Log(), Not(HasSubstr("size is small!")));
    m_device.counts = {{"SearchRecordDate", 257}, {"SearchRecord", 2000000000}};
    EXPECT_EQ("256", Attribute(Ask("SearchRecordDate"), "dateList", "count"));
    EXPECT_THAT(Log(), HasSubstr(" search list size is small!"));
    EXPECT_EQ("256", Attribute(Ask("SearchByTime", Search("")), "timesectionList", "count"));
    EXPECT_THAT(Log(), HasSubstr(" chn size is small!"));
    m_device.counts = {{"SearchRecordDate", -1}, {"SearchRecord", -1}};
    EXPECT_EQ("0", Attribute(Ask("SearchRecordDate"), "dateList", "count"));
    EXPECT_EQ("0", Attribute(Ask("SearchByTime", Search("")), "timesectionList", "count"));
}
