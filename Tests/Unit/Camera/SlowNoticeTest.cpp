#include "SlowNotice.h"

#include <gtest/gtest.h>

#include <future>
#include <vector>

TEST(SlowNotice, TellsOnceWhatTakesLong)
{
    std::promise<std::string> told;
    const CSlowNotice notice(
        "reading", [&told](const std::string& text) { told.set_value(text); }, std::chrono::milliseconds(0));
    EXPECT_EQ("reading", told.get_future().get());
}

TEST(SlowNotice, IsSilentAboutWhatIsQuick)
{
    std::vector<std::string> told;
    {
        const CSlowNotice notice(
            "reading", [&told](const std::string& text) { told.push_back(text); }, std::chrono::hours(1));
    }
    EXPECT_TRUE(told.empty());
}
