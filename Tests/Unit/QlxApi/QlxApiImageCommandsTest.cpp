#include "QlxApiWorld.h"

#include <cstring>

namespace
{

using QlxApiImageCommands = QlxApiWorld;
using testing::ElementsAre;

std::string Image(const std::string& elements)
{
    return "<config><image>" + elements + "</image></config>";
}

std::string Masks(const std::string& count, const std::string& items)
{
    return "<config><privacyMask count=\"" + count + "\"><itemType/>" + items + "</privacyMask></config>";
}

std::string Repeat(int count, const std::string& text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
    {
        all += text;
    }
    return all;
}

} // namespace

TEST_F(QlxApiImageCommands, ChannelComesFromTheUrl)
{
    Ask("GetImageConfig");
    EXPECT_EQ(1u, m_device.LastChannel());
    Ask("GetImageConfig/3");
    EXPECT_EQ(3u, m_device.LastChannel());
    Ask("GetImageConfig/x");
    EXPECT_EQ(1u, m_device.LastChannel());
    Ask("GetImageConfig/4000000000");
    EXPECT_EQ(4000000000u, m_device.LastChannel());
}

// A write to a place that the document lacks ends the process: a host must not report this default.
TEST_F(QlxApiImageCommands, DefaultOfWideDynamicRangeHasNoPlace)
{
    m_device.imageCaps.wdrSwitchDefault = 1;
    EXPECT_DEATH(Ask("GetImageConfig"), "Assertion .pXMLElement != 0. failed");
}

// One default shows at its own place and at no other; that of the iris as an empty attribute of another name.
TEST_F(QlxApiImageCommands, DefaultsOfTheSwitches)
{
    const struct
    {
        std::uint8_t NETNS::DEV_IMAGE_CAPS::*byDefault;
        const char* path;
    } ROWS[] = {
        {&NETNS::DEV_IMAGE_CAPS::mirrorDefault, "image/mirrorSwitch"},
        {&NETNS::DEV_IMAGE_CAPS::flipDefault, "image/flipSwitch"},
        {&NETNS::DEV_IMAGE_CAPS::denoiseSwitchDefault, "image/denoise/switch"},
        {&NETNS::DEV_IMAGE_CAPS::irisDefault, "image/irisSwitch"},
        {&NETNS::DEV_IMAGE_CAPS::sharpenSwitchDefault, "image/sharpen/switch"},
    };
    for (const auto& on : ROWS)
    {
        m_device.imageCaps = {};
        m_device.imageCaps.*on.byDefault = 1;
        const CQLXXMLParse document(BodyOf(Ask("GetImageConfig")));
        for (const auto& row : ROWS)
        {
            std::string word;
            const bool isIris = std::string(row.path) == "image/irisSwitch";
            EXPECT_TRUE(document.GetAttributeStr(row.path, "default", word));
            EXPECT_EQ(row.path == on.path && !isIris ? "true" : "false", word) << row.path << " with " << on.path;
            EXPECT_EQ(row.path == on.path && isIris, document.GetAttributeStr(row.path, "true", word)) << row.path;
            EXPECT_TRUE(!isIris || word.empty());
        }
    }
}

TEST_F(QlxApiImageCommands, EveryWordOfTheModes)
{
    const char* const WHITE_BALANCE[] = {"auto", "manual", "outdoor", "indoor", "atw", "nalamp"};
    const char* const IR_CUT[] = {"auto", "day", "night", "timer"};
    for (std::uint32_t mode = 0; mode < 6; ++mode)
    {
        const std::string word = WHITE_BALANCE[mode];
        EXPECT_EQ(DONE, Code("SetImageConfig", Image("<whiteBalance><mode>" + word + "</mode></whiteBalance>")));
        EXPECT_EQ(mode, m_device.imageParam.whiteBalanceMode);
        EXPECT_EQ(word, Value(Ask("GetImageConfig"), "image/whiteBalance/mode"));
        m_device.imageCaps.whiteBalanceModeDefault = mode;
        EXPECT_EQ(word, Attribute(Ask("GetImageConfig"), "image/whiteBalance/mode", "default"));
    }
    for (std::uint32_t mode = 0; mode < 4; ++mode)
    {
        const std::string word = IR_CUT[mode];
        EXPECT_EQ(DONE, Code("SetImageConfig", Image("<IRCutMode>" + word + "</IRCutMode>")));
        EXPECT_EQ(mode, m_device.imageParam.irCutMode);
        EXPECT_EQ(word, Value(Ask("GetImageConfig"), "image/IRCutMode"));
        m_device.imageCaps.irCutDefault = mode;
        EXPECT_EQ(word, Attribute(Ask("GetImageConfig"), "image/IRCutMode", "default"));
    }
}

TEST_F(QlxApiImageCommands, BrightnessOf300PassesAs44)
{
    EXPECT_EQ(DONE, Code("SetImageConfig", Image("<bright>300</bright>")));
    EXPECT_EQ(44, m_device.imageParam.bright);
}

TEST_F(QlxApiImageCommands, WhatTheRequestLeavesOutStays)
{
    m_device.imageParam = {1, 2, 3, 4, 5, 1, 1, 1, 1, 6, 7, 1, 1, 8, 9, 1, 10, 1};
    EXPECT_EQ(DONE, Code("SetImageConfig", Image("")));
    EXPECT_EQ("SetImageParam 1 {1 2 3 4 5 1 1 1 1 6 7 1 1 8 9 1 10 1}", LastCall());
}

// The limits are read only to see that the host has some: no value is held against them.
TEST_F(QlxApiImageCommands, RefusalOfTheLimitsEndsTheChange)
{
    m_device.results["GetImageCaps"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code("SetImageConfig", Image("<bright>1</bright>")));
    EXPECT_THAT(m_device.CallLog(), ElementsAre("GetImageCaps 1"));
    EXPECT_EQ(4, Code("GetImageConfig"));
    m_device.results.clear();
    m_device.results["GetImageParam"] = NETNS::DEV_RET_NOT_SUPPORTED;
    EXPECT_EQ(1, Code("SetImageConfig", Image("<bright>1</bright>")));
    EXPECT_EQ(1, Code("GetImageConfig"));
    EXPECT_EQ(0, m_device.Calls("SetImageParam"));
}

TEST_F(QlxApiImageCommands, TextsInThePictureNeedBothHostCalls)
{
    m_device.results["GetTimeOsd"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code("GetImageOsdConfig"));
    EXPECT_EQ(0, m_device.Calls("GetChannelNameOsd"));
    m_device.results["SetTimeOsd"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code("SetImageOsdConfig", "<config/>"));
    EXPECT_EQ(0, m_device.Calls("SetChannelNameOsd"));
    m_device.results.clear();
    m_device.results["SetChannelNameOsd"] = NETNS::DEV_RET_BAD_PARAM;
    EXPECT_EQ(3, Code("SetImageOsdConfig", "<config/>"));
    EXPECT_EQ(2, m_device.Calls("SetTimeOsd"));
}

TEST_F(QlxApiImageCommands, ChannelNameIsCutAt63Characters)
{
    const std::string fits(63, 'n');
    for (const std::string& name : {fits, fits + "x"})
    {
        EXPECT_EQ(DONE, Code("SetImageOsdConfig", "<config><imageOsd><channelName><name>" + name +
                                                      "</name></channelName></imageOsd></config>"));
        EXPECT_STREQ(fits.c_str(), m_device.channelNameOsd.name);
    }
    std::memset(m_device.channelNameOsd.name, 'n', 64); // without a zero byte
    EXPECT_EQ(fits + "n", Value(Ask("GetImageOsdConfig"), "imageOsd/channelName/name"));
}

TEST_F(QlxApiImageCommands, DateFormatsHaveThreeWords)
{
    const char* const WORDS[] = {"", "year-month-day", "month-day-year", "day-month-year", ""};
    for (std::uint32_t format = 0; format < 5; ++format)
    {
        m_device.timeOsd.dateFormat = format;
        EXPECT_EQ(WORDS[format], Value(Ask("GetImageOsdConfig"), "imageOsd/time/dateFormat"));
    }
}

TEST_F(QlxApiImageCommands, UpToEightMasksAreShown)
{
    m_device.privacyMasks.assign(8, {1, 2, 3, 4, 5, 1});
    EXPECT_EQ("8", Attribute(Ask("GetPrivacyMaskConfig"), "privacyMask", "count"));
    EXPECT_EQ(8u, Count(Ask("GetPrivacyMaskConfig"), "privacyMask"));
    m_device.counts["GetPrivacyMask"] = -1;
    EXPECT_EQ("0", Attribute(Ask("GetPrivacyMaskConfig"), "privacyMask", "count"));
    m_device.counts["GetPrivacyMask"] = 9; // the bare success document
    EXPECT_EQ("success", Attribute(Ask("GetPrivacyMaskConfig"), "config", "status"));
    m_device.results["GetPrivacyMask"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code("GetPrivacyMaskConfig"));
}

struct MaskCase
{
    const char* name;
    std::string count;
    int items;
    size_t taken;
};

const MaskCase MASK_CASES[] = {
    {"AsManyAsCounted", "3", 3, 3},     {"FewerThanCounted", "3", 2, 2},      {"MoreThanCounted", "1", 3, 1},
    {"CountOfNothing", "", 3, 0},       {"CountThatIsNoNumber", "two", 2, 0}, {"NoItems", "4", 0, 0},
    {"AsManyAsMayBe", "256", 300, 256},
};

class MaskCounts : public QlxApiWorld, public testing::WithParamInterface<MaskCase>
{
};

TEST_P(MaskCounts, TakeTheItemsThatAreThere)
{
    const std::string item = "<item><switch>true</switch></item>";
    EXPECT_EQ(DONE, Code("SetPrivacyMaskConfig", Masks(GetParam().count, Repeat(GetParam().items, item))));
    EXPECT_EQ(1, m_device.Calls("SetPrivacyMask"));
    EXPECT_EQ(GetParam().taken, m_device.privacyMasks.size());
}

INSTANTIATE_TEST_SUITE_P(QlxApiImageCommands, MaskCounts, testing::ValuesIn(MASK_CASES),
                         [](const auto& row) { return row.param.name; });

TEST_F(QlxApiImageCommands, MoreMasksThan256AreRefused)
{
    for (const char* count : {"257", "4294967295", "-1", "99999999999999999999"})
    {
        EXPECT_EQ(3, Code("SetPrivacyMaskConfig", Masks(count, "<item/>"))) << count;
    }
    EXPECT_TRUE(m_device.CallLog().empty());
}

// The masks stand behind "itemType", whatever their elements are called; without it there are none.
TEST_F(QlxApiImageCommands, MasksAreTheSiblingsOfTheItemType)
{
    EXPECT_EQ(DONE, Code("SetPrivacyMaskConfig", Masks("2", "<mask><rectangle><X>7</X></rectangle></mask><item/>")));
    EXPECT_EQ("SetPrivacyMask 1 [{0 7 0 0 0 0}{0 0 0 0 0 0}]", LastCall());
    EXPECT_EQ(DONE, Code("SetPrivacyMaskConfig", "<config><privacyMask count=\"2\"><item/></privacyMask></config>"));
    EXPECT_EQ("SetPrivacyMask 1 []", LastCall());
}

TEST_F(QlxApiImageCommands, MaskColorsHaveThreeWords)
{
    EXPECT_EQ(DONE, Code("SetPrivacyMaskConfig", Masks("3", "<item><color>black</color></item>"
                                                            "<item><color>white</color></item>"
                                                            "<item><color>gray</color></item>")));
    EXPECT_EQ("SetPrivacyMask 1 [{0 0 0 0 0 0}{0 0 0 0 0 1}{0 0 0 0 0 2}]", LastCall());
    EXPECT_EQ(3, Code("SetPrivacyMaskConfig", Masks("1", "<item><color>red</color></item>")));
    EXPECT_EQ(1, m_device.Calls("SetPrivacyMask"));
}
