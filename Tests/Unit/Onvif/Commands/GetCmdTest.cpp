// What the builders make of numbers at their limits, and of requests that lack something.
#include "GetCmd.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string Set(const std::string& key)
{
    return "<Set>" + key + "</Set>";
}

/// The value of an attribute or the text of an element, behind `begin`.
std::string Behind(const std::string& soap, const std::string& begin)
{
    const std::size_t at = soap.find(begin);
    return at != std::string::npos
               ? soap.substr(at + begin.size(), soap.find_first_of("\"<", at + begin.size()) - at - begin.size())
               : "none";
}

struct SpeedCase
{
    int percent;
    int min;
    int max;
    const char* speed;
};

} // namespace

class GetCmdVelocity : public testing::TestWithParam<SpeedCase>
{
};

TEST_P(GetCmdVelocity, IsTheShareOfTheRangeOnThatSide)
{
    const SpeedCase& one = GetParam();
    const std::string percent = std::to_string(one.percent);
    const ONVIF_PTZ_VELOCITY range = {one.min, one.max, one.min, one.max, one.min, one.max};
    const std::string soap = CGetDefaultCmd::Instance().ContinuousMove(
        Set("<continuousMove><ptz><velocity><x>" + percent + "</x><y>" + percent + "</y><zoom>" + percent +
            "</zoom></velocity></ptz></continuousMove>"),
        &range);
    EXPECT_EQ(one.speed, Behind(soap, "<tt:PanTilt x=\""));
    EXPECT_EQ(one.speed, Behind(soap, " y=\""));
    EXPECT_EQ(one.speed, Behind(soap, "<tt:Zoom x=\""));
}

// clang-format off
const SpeedCase VELOCITY_CASES[] = {
    {50,   -1,   1,  "0.50000000"  },
    {-100, -1,   1,  "-1.00000000" },
    {0,    -1,   1,  "0.00000000"  },
    {50,   -2,   4,  "2.00000000"  },
    {-50,  -2,   4,  "-1.00000000" },
    {1,    -1,   1,  "0.01000000"  },
    {50,   0,    0,  "0.00000000"  }, // a range that was read from fractions
    {-50,  0,    0,  "0.00000000"  },
    {50,   2,    -4, "2.00000000"  }, // the sign is that of the percentage
    {-50,  2,    -4, "-1.00000000" },
    {100,  0,    180, "180.00000000"},
    {-1,   -2147483647 - 1, 1, "-21474836.48000000"},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Speeds, GetCmdVelocity, testing::ValuesIn(VELOCITY_CASES));

class GetCmdFocus : public testing::TestWithParam<SpeedCase>
{
};

TEST_P(GetCmdFocus, IsTheShareOfTheRangeOnThatSide)
{
    const SpeedCase& one = GetParam();
    const ONVIF_RANGE range = {one.min, one.max};
    EXPECT_EQ(one.speed,
              Behind(CGetDefaultCmd::Instance().ContinuousFocus(
                         Set("<continuousFocus><speed>" + std::to_string(one.percent) + "</speed></continuousFocus>"),
                         &range),
                     "<tt:Speed>"));
}

// clang-format off
const SpeedCase FOCUS_CASES[] = {
    {100,  -7, 7,  "7.00000000"  },
    {-100, -7, 7,  "-7.00000000" },
    {50,   -1, 3,  "1.50000000"  },
    {-50,  -1, 3,  "-0.50000000" },
    {0,    -1, 3,  "0.00000000"  },
    {-50,  0,  0,  "0.00000000"  },
    {50,   -1, -3, "-1.50000000" }, // the upper bound counts with its sign
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Speeds, GetCmdFocus, testing::ValuesIn(FOCUS_CASES));

// A device that did not tell its ranges has -1 to 1 on every axis.
TEST(GetCmd, TakesOneForEachBoundThatIsNotKnown)
{
    for (const auto& [percent, speed] :
         {std::pair<std::string, std::string>{"100", "1.00000000"}, {"-100", "-1.00000000"}})
    {
        const std::string soap = CGetDefaultCmd::Instance().ContinuousMove(
            Set("<continuousMove><ptz><velocity><x>" + percent + "</x><y>" + percent + "</y><zoom>" + percent +
                "</zoom></velocity></ptz></continuousMove>"),
            nullptr);
        EXPECT_EQ(speed, Behind(soap, "<tt:PanTilt x=\""));
        EXPECT_EQ(speed, Behind(soap, " y=\""));
        EXPECT_EQ(speed, Behind(soap, "<tt:Zoom x=\""));
        EXPECT_EQ(speed, Behind(CGetDefaultCmd::Instance().ContinuousFocus(
                                    Set("<continuousFocus><speed>" + percent + "</speed></continuousFocus>"), nullptr),
                                "<tt:Speed>"));
    }
}

TEST(GetCmd, ReadsTextAsNoSpeed)
{
    const std::string soap = CGetDefaultCmd::Instance().ContinuousMove(
        Set("<continuousMove><ptz><velocity><x>fast</x></velocity></ptz></continuousMove>"), nullptr);
    EXPECT_EQ("0.00000000", Behind(soap, "<tt:PanTilt x=\""));
    EXPECT_EQ("0.00000000", Behind(soap, " y=\""));
    EXPECT_EQ("0.00000000", Behind(soap, "<tt:Zoom x=\""));
    EXPECT_EQ("none", Behind(soap, "<ptzw:ProfileToken>"));
}

TEST(GetCmd, MakesNoRequestForACruiseThatIsNotNamed)
{
    const CGetDefaultCmd& builder = CGetDefaultCmd::Instance();
    for (const std::string& fields :
         {std::string(), std::string("<profileToken>P1</profileToken>"), std::string("<token>T1</token>")})
    {
        EXPECT_EQ("", builder.DelCruise(Set("<delCruise>" + fields + "</delCruise>")));
        EXPECT_EQ(
            "", builder.OperateCruise(Set("<startCruise>" + fields + "</startCruise>"), CGetDefaultCmd::CRUISE_START));
    }
    EXPECT_EQ("", builder.DelCruise(Set("")));
    EXPECT_EQ("",
              builder.OperateCruise(Set("<startCruise><profileToken>P1</profileToken><token>T1</token></startCruise>"),
                                    CGetDefaultCmd::CRUISE_STOP));
}

TEST(GetCmd, MakesNoRequestForMotionWithoutFields)
{
    const CGetDefaultCmd& builder = CGetDefaultCmd::Instance();
    EXPECT_EQ("", builder.SetAnalyticsModules(Set("<motion/>"), "A1", "Cells"));
    EXPECT_EQ("", builder.SetAnalyticsModules(Set("<motion><area/></motion>"), "A1", "Cells"));
    EXPECT_EQ("", builder.SetRules(Set("<motion><sensitivity>1</sensitivity></motion>"), "A1", "Motion"));
    EXPECT_EQ("", builder.SetRules("no document", "A1", "Motion"));
}

TEST(GetCmd, PacksTheCellsOfAllRowsWithoutGaps)
{
    std::string rows;
    for (int row = 0; row < 15; ++row)
    {
        rows += "<item>1111111111111111111111</item>";
    }
    EXPECT_EQ("2P8AwA==", Behind(CGetDefaultCmd::Instance().SetRules(Set("<motion><area>" + rows + "</area></motion>"),
                                                                     "A1", "Motion"),
                                 "Name=\"ActiveCells\" Value=\""));
    EXPECT_EQ("AKA=", Behind(CGetDefaultCmd::Instance().SetRules(Set("<motion><area><item>1x1</item></area></motion>"),
                                                                 "A1", "Motion"),
                             "Name=\"ActiveCells\" Value=\""));
}

TEST(GetCmd, TakesAnyStateButOnAsClosedAndAnyButOneAsInactive)
{
    const CGetDefaultCmd& builder = CGetDefaultCmd::Instance();
    EXPECT_EQ("closed",
              Behind(builder.SetRelayOutputs(Set("<alarmout><switch>ON</switch></alarmout>")), "<tt:IdleState>"));
    EXPECT_EQ("none", Behind(builder.SetRelayOutputs(Set("<alarmout/>")), "<tt:IdleState>"));
    EXPECT_EQ("inactive",
              Behind(builder.SetRelayOutputState(Set("<manualAlarmout><active>true</active></manualAlarmout>")),
                     "<tds:LogicalState>"));
}

// Whatever the host's document is, the request is one that can be sent.
TEST(GetCmd, SurvivesRequestsThatAreNone)
{
    const CGetDefaultCmd& builder = CGetDefaultCmd::Instance();
    for (const std::string& request : {std::string(), std::string("<Set>"), std::string("text"), std::string("<Get/>")})
    {
        for (const std::string& soap :
             {builder.GetStreamUri(request), builder.GetSnapshotUri(request), builder.GetImgOptions(request),
              builder.GetImgSettings(request), builder.SetImgSettings(request), builder.ImgStop(request),
              builder.ContinuousFocus(request, nullptr), builder.ContinuousMove(request, nullptr),
              builder.PTZStop(request), builder.GetPresets(request), builder.AddPreset(request),
              builder.ModifyPresetName(request), builder.RemovePreset(request), builder.GotoPreset(request),
              builder.GetCruises(request), builder.AddPresetTour(request), builder.ModifyCruise(request),
              builder.SetRelayOutputs(request), builder.SetRelayOutputState(request)})
        {
            EXPECT_NE(std::string::npos, soap.find("</s:Envelope>"));
        }
    }
}
