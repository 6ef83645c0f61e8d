#include "QlxApiWorld.h"

#include <cstring>

namespace
{

using QlxApiStreamCommands = QlxApiWorld;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string Streams(const std::string& items)
{
    return "<config><streams>" + items + "</streams></config>";
}

} // namespace

TEST_F(QlxApiStreamCommands, StreamsCountFromNoughtAlthoughTheTemplateShowsOne)
{
    const std::string answer = Ask("GetStreamCaps");
    EXPECT_EQ("2", Attribute(answer, "streamList", "count"));
    EXPECT_EQ(2u, Count(answer, "streamList"));
    EXPECT_THAT(answer, HasSubstr("<item id=\"0\">"));
    EXPECT_THAT(answer, HasSubstr("<item id=\"1\">"));
}

TEST_F(QlxApiStreamCommands, ResolutionsOfOneAreaCountOnceInTheEnumeration)
{
    m_device.profileCount = 1;
    m_device.videoCaps[0].resolutions[0] = {400, 100};
    m_device.videoCaps[0].resolutions[1] = {200, 200};
    m_device.videoCaps[0].resolutionCount = 2;
    const std::string answer = Ask("GetStreamCaps");
    EXPECT_EQ(2u, Count(answer, "streamList/item/resolutionCaps"));
    EXPECT_THAT(answer, HasSubstr(">400x100</item>"));
    EXPECT_THAT(answer, HasSubstr(">200x200</item>"));
    const CQLXXMLParse document(BodyOf(answer));
    EXPECT_EQ(1u, document.GetChildrenLength("types/resolution", "enum"));
}

// Counts of the host's are numbers to be judged.
TEST_F(QlxApiStreamCommands, CountsBeyondTheTableAreClipped)
{
    m_device.profileCount = 1;
    NETNS::DEV_VIDEO_ENCODE_CAPS& caps = m_device.videoCaps[0];
    caps.encodeTypeCount = 9;
    caps.resolutionCount = 0xFFFFFFFF;
    caps.encodeLevelCount = 0x80000000;
    const std::string answer = Ask("GetStreamCaps");
    for (const char* list : {"resolutionCaps", "encodeTypeCaps", "encodeLevelCaps"})
    {
        EXPECT_EQ("8", Attribute(answer, std::string("streamList/item/") + list, "count")) << list;
        EXPECT_EQ(8u, Count(answer, std::string("streamList/item/") + list)) << list;
    }
}

TEST_F(QlxApiStreamCommands, EncodersWithoutAWordShowTheTemplates)
{
    m_device.profileCount = 1;
    m_device.videoCaps[0].encodeTypes[0] = 3;
    m_device.videoCaps[0].encodeTypeCount = 1;
    m_device.videoCaps[0].encodeLevels[0] = 0;
    m_device.videoCaps[0].encodeLevelCount = 1;
    const std::string answer = Ask("GetStreamCaps");
    EXPECT_EQ("h264", Value(answer, "streamList/item/encodeTypeCaps/item"));
    EXPECT_EQ("baseLine", Value(answer, "streamList/item/encodeLevelCaps/item"));
    EXPECT_THAT(answer, HasSubstr("<encodeType/>"));
}

TEST_F(QlxApiStreamCommands, UpTo64StreamsAreShown)
{
    m_device.profileCount = 1000000000;
    EXPECT_EQ("64", Attribute(Ask("GetStreamCaps"), "streamList", "count"));
    EXPECT_EQ("64", Attribute(Ask("GetVideoStreamConfig"), "streams", "count"));
    m_device.profileCount = -1;
    EXPECT_EQ(1, Code("GetStreamCaps"));
    EXPECT_EQ(1, Code("GetVideoStreamConfig"));
}

TEST_F(QlxApiStreamCommands, NameIsReadWithinItsField)
{
    m_device.profileNames[0] = std::string(500, 'n'); // cut by the host at the size it is told
    m_device.profileCount = 1;
    EXPECT_EQ(std::string(127, 'n'), Value(Ask("GetStreamCaps"), "streamList/item/streamName"));
}

TEST_F(QlxApiStreamCommands, HostRefusalsAreAnswered)
{
    for (const char* operation : {"GetPortInfo", "GetVideoEncodeCaps", "GetProfileName"})
    {
        m_device.results = {{operation, NETNS::DEV_RET_FAILED}};
        EXPECT_EQ(4, Code("GetStreamCaps")) << operation;
    }
    for (const char* operation : {"GetVideoProfile", "GetVideoEncodeCaps", "GetProfileName"})
    {
        m_device.results = {{operation, NETNS::DEV_RET_FAILED}};
        EXPECT_EQ(4, Code("GetVideoStreamConfig")) << operation;
    }
    m_device.results.clear();
    EXPECT_EQ(CHALLENGED, Code("GetStreamCaps", "", UNAUTHORIZED));
    EXPECT_EQ(CHALLENGED, Code("GetVideoStreamConfig", "", UNAUTHORIZED));
    EXPECT_EQ(CHALLENGED, Code("SetVideoStreamConfig", Streams("<item/>"), UNAUTHORIZED));
    EXPECT_EQ(CHALLENGED, Code("RequestKeyFrame", "", UNAUTHORIZED));
}

// The template's words and numbers stand in every item, whatever the stream does.
TEST_F(QlxApiStreamCommands, MotionJpegStreamIsShownAsH264)
{
    m_device.profileCount = 1;
    m_device.videoProfiles[0] = {640, 480, 10, 1000, 1, 0, 4, 7};
    const std::string answer = Ask("GetVideoStreamConfig");
    EXPECT_EQ("h264", Value(answer, "streams/item/encodeType"));
    EXPECT_EQ("baseLine", Value(answer, "streams/item/encodeLevel"));
    EXPECT_EQ("highest", Value(answer, "streams/item/quality"));
    EXPECT_EQ("100", Value(answer, "streams/item/GOP"));
    EXPECT_EQ("640x480", Value(answer, "streams/item/resolution"));
}

TEST_F(QlxApiStreamCommands, EncoderWithoutAWordIsRefused)
{
    m_device.videoProfiles[1].encodeType = 3;
    EXPECT_EQ(3, Code("GetVideoStreamConfig"));
}

TEST_F(QlxApiStreamCommands, EveryWordOfTheEncoderSettings)
{
    const struct
    {
        const char* element;
        const char* word;
        std::uint32_t NETNS::DEV_VIDEO_PROFILE::*field;
        std::uint32_t value;
    } ROWS[] = {
        {"encodeType", "mjpeg", &NETNS::DEV_VIDEO_PROFILE::encodeType, 0},
        {"encodeType", "mpeg4", &NETNS::DEV_VIDEO_PROFILE::encodeType, 1},
        {"encodeType", "h264", &NETNS::DEV_VIDEO_PROFILE::encodeType, 2},
        {"encodeLevel", "baseLine", &NETNS::DEV_VIDEO_PROFILE::encodeLevel, 1},
        {"encodeLevel", "mainProfile", &NETNS::DEV_VIDEO_PROFILE::encodeLevel, 2},
        {"encodeLevel", "extendedProfile", &NETNS::DEV_VIDEO_PROFILE::encodeLevel, 3},
        {"encodeLevel", "highProfile", &NETNS::DEV_VIDEO_PROFILE::encodeLevel, 4},
        {"quality", "lowest", &NETNS::DEV_VIDEO_PROFILE::quality, 1},
        {"quality", "lower", &NETNS::DEV_VIDEO_PROFILE::quality, 2},
        {"quality", "medium", &NETNS::DEV_VIDEO_PROFILE::quality, 3},
        {"quality", "higher", &NETNS::DEV_VIDEO_PROFILE::quality, 4},
        {"quality", "highest", &NETNS::DEV_VIDEO_PROFILE::quality, 5},
    };
    for (const auto& row : ROWS)
    {
        m_device.videoProfiles[0] = {9, 9, 9, 9, 9, 9, 9, 9};
        const std::string element = row.element;
        EXPECT_EQ(DONE, Code("SetVideoStreamConfig",
                             Streams("<item id=\"0\"><" + element + ">" + row.word + "</" + element + "></item>")));
        EXPECT_EQ(row.value, m_device.videoProfiles[0].*row.field) << row.word;
    }
    // The small l is only written, never read.
    EXPECT_EQ(3, Code("SetVideoStreamConfig", Streams("<item id=\"0\"><encodeLevel>baseline</encodeLevel></item>")));
}

TEST_F(QlxApiStreamCommands, ItemsInFrontOfAWrongOneStayChanged)
{
    EXPECT_EQ(3, Code("SetVideoStreamConfig", Streams("<item id=\"0\"><frameRate>7</frameRate></item>"
                                                      "<item id=\"1\"><quality>best</quality></item>"
                                                      "<item id=\"2\"/>")));
    EXPECT_THAT(m_device.CallLog(),
                ElementsAre("GetVideoProfile 1 0", "SetVideoProfile 1 0 {0 0 7 0 0 0 0 0}", "GetVideoProfile 1 1"));
}

TEST_F(QlxApiStreamCommands, ResolutionNeedsBothNumbers)
{
    m_device.videoProfiles[0] = {1280, 720, 0, 0, 0, 0, 0, 0};
    for (const char* text : {"640x", "640", "x480", "", "640*480"})
    {
        EXPECT_EQ(DONE, Code("SetVideoStreamConfig",
                             Streams("<item id=\"0\"><resolution>" + std::string(text) + "</resolution></item>")));
        EXPECT_EQ("SetVideoProfile 1 0 {1280 720 0 0 0 0 0 0}", LastCall()) << text;
    }
}

TEST_F(QlxApiStreamCommands, ResultOfTheChangeIsNotLookedAt)
{
    m_device.results["SetVideoProfile"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(DONE, Code("SetVideoStreamConfig", Streams("<item id=\"0\"/>")));
    m_device.results = {{"GetVideoProfile", NETNS::DEV_RET_BAD_PARAM}};
    EXPECT_EQ(3, Code("SetVideoStreamConfig", Streams("<item id=\"0\"/><item id=\"1\"/>")));
    EXPECT_EQ(2, m_device.Calls("GetVideoProfile"));
}

TEST_F(QlxApiStreamCommands, WithoutItemsNothingChangesAndAllIsWell)
{
    for (const char* body : {"<config/>", "<config><streams/></config>", "no xml", "<other/>"})
    {
        EXPECT_EQ(DONE, Code("SetVideoStreamConfig", body)) << body;
    }
    EXPECT_TRUE(m_device.CallLog().empty());
}

TEST_F(QlxApiStreamCommands, AudioAnswersSuccessWhateverTheHostSays)
{
    m_device.results["SetAudioEncode"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(DONE, Code("SetAudioStreamConfig", "<config><audioEncode>G711a</audioEncode></config>"));
    EXPECT_EQ("SetAudioEncode 1 0", LastCall());
    EXPECT_EQ(DONE, Code("SetAudioStreamConfig", "<config><audioEncode>G711u</audioEncode></config>", UNAUTHORIZED));
    EXPECT_EQ(DONE, Code("GetAudioStreamConfig", "", UNAUTHORIZED)); // no user is asked for
}

TEST_F(QlxApiStreamCommands, KeyFrameAnswersTheHostsResult)
{
    EXPECT_EQ(DONE, Code("RequestKeyFrame"));
    m_device.results["RequestKeyFrame"] = static_cast<NETNS::DEV_RET>(9);
    EXPECT_EQ(1, Code("RequestKeyFrame"));
}
