#include "QlxApiWorld.h"

#include <cstring>

namespace
{

using testing::ElementsAre;

class QlxApiPtzCommands : public QlxApiWorld
{
protected:
    void SetUp() override
    {
        QlxApiWorld::SetUp();
        OpenPtz();
    }
};

const char* const READ_COMMANDS[] = {"PtzGetCaps", "PtzGetProtocolConfig", "PtzGetPresets", "PtzGetCruises"};
const char* const BODY_COMMANDS[] = {"PtzSetProtocolConfig", "PtzControl/1/up", "PtzGotoPreset",
                                     "PtzRunCruise",         "PtzStopCruise",   "PtzAddPreset",
                                     "PtzDeletePreset",      "PtzGetCruise",    "PtzModifyPresetPosition",
                                     "PtzModifyPresetName",  "PtzAddCruise",    "PtzModifyCruise",
                                     "PtzDeleteCruise"};

} // namespace

// A device with only one of the two is refused, too.
TEST_F(QlxApiPtzCommands, NeedABuiltInHeadAndOneOverTheSerialPort)
{
    for (const bool integrated : {false, true})
    {
        m_device.integratedPtz = integrated;
        m_device.rs485Ptz = !integrated;
        for (const char* url : READ_COMMANDS)
        {
            EXPECT_EQ(1, Code(url)) << url;
        }
        for (const char* url : BODY_COMMANDS)
        {
            EXPECT_EQ(1, Code(url)) << url; // in front of the question for a body
            EXPECT_EQ(1, Code(url, "<config/>")) << url;
        }
    }
    for (const std::string& call : m_device.CallLog())
    {
        EXPECT_TRUE(call == "GetIntegratedPtz" || call == "GetSupportRS485Ptz") << call;
    }
}

// The kinds of head are asked for twice; a device may lose one in between.
TEST_F(QlxApiPtzCommands, HeadThatGoesAwayLeavesWhatIsThere)
{
    class ChangingDevice : public CFakeDevice
    {
    public:
        NETNS::DEV_RET GetIntegratedPtz(bool& supported) override
        {
            supported = m_integratedAnswers-- > 0;
            return NETNS::DEV_RET_OK;
        }
        NETNS::DEV_RET GetSupportRS485Ptz(bool& supported) override
        {
            supported = m_rs485Answers-- > 0;
            return NETNS::DEV_RET_OK;
        }
        void Answer(int integrated, int rs485)
        {
            m_integratedAnswers = integrated;
            m_rs485Answers = rs485;
        }

    private:
        int m_integratedAnswers = 0; // how often it says yes
        int m_rs485Answers = 0;
    };
    ChangingDevice device;
    device.presetCaps = {1, 8, 64};
    CQLXApiProc::Instance().Init(1, &device);
    device.Answer(1, 2);
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\"><caps>"
              "<controlMinSpeed type=\"uint32\">1</controlMinSpeed>\n"
              "        <controlMaxSpeed type=\"uint32\">8</controlMaxSpeed>\n"
              "        <presetMaxCount type=\"uint32\">64</presetMaxCount>\n"
              "    </caps>\n"
              "</config>\n",
              BodyOf(Ask("PtzGetCaps")));
    EXPECT_EQ(0, device.Calls("GetPtzCruiseCaps"));
    device.Answer(1, 1);
    EXPECT_EQ(1, Code("PtzGetCaps"));
    device.Answer(1, 1);
    EXPECT_EQ(1, Code("PtzGetProtocolConfig"));
    EXPECT_EQ(0, device.Calls("GetPtzProtocol"));
}

TEST_F(QlxApiPtzCommands, WithoutABodyTheReplyIsEmpty)
{
    for (const char* url : BODY_COMMANDS)
    {
        m_device.ForgetCalls();
        EXPECT_EQ(SILENT, Code(url)) << url;
        EXPECT_THAT(m_device.CallLog(), ElementsAre("GetIntegratedPtz", "GetSupportRS485Ptz")) << url;
    }
}

TEST_F(QlxApiPtzCommands, HostRefusalsAreAnswered)
{
    const char BODY[] = "<config><presetInfo><id>1</id><name>n</name></presetInfo>"
                        "<cruiseInfo><id>1</id><name>n</name></cruiseInfo></config>";
    for (const char* url : BODY_COMMANDS)
    {
        EXPECT_EQ(CHALLENGED, Code(url, BODY, UNAUTHORIZED)) << url;
    }
    for (const char* url : READ_COMMANDS)
    {
        EXPECT_EQ(CHALLENGED, Code(url, "", UNAUTHORIZED)) << url;
    }
}

struct ActionCase
{
    const char* word;
    int value;
};

const ActionCase ACTIONS[] = {
    {"up", 0},       {"down", 1},     {"left", 2},      {"right", 3},      {"leftup", 4},
    {"leftdown", 5}, {"rightup", 6},  {"rightdown", 7}, {"near", 8},       {"far", 9},
    {"zoomin", 10},  {"zoomout", 11}, {"irisopen", 12}, {"irisclose", 13}, {"stop", 14},
};

class PtzActions : public QlxApiPtzCommands, public testing::WithParamInterface<ActionCase>
{
};

TEST_P(PtzActions, AreKnownInAnyCase)
{
    std::string word = GetParam().word;
    EXPECT_EQ(DONE, Code("PtzControl/1/" + word, "<actionInfo><speed>5</speed></actionInfo>"));
    EXPECT_EQ("PtzControl 1 " + std::to_string(GetParam().value) + " 5", LastCall());
    for (char& character : word)
    {
        character = static_cast<char>(std::toupper(character));
    }
    EXPECT_EQ(DONE, Code("PtzControl/2/" + word, "<config><actionInfo><speed>5</speed></actionInfo></config>"));
    EXPECT_EQ("PtzControl 2 " + std::to_string(GetParam().value) + " 5", LastCall());
}

INSTANTIATE_TEST_SUITE_P(QlxApiPtzCommands, PtzActions, testing::ValuesIn(ACTIONS),
                         [](const auto& row) { return row.param.word; });

TEST_F(QlxApiPtzCommands, UnknownActionIsRefusedAndTheHeadStaysStill)
{
    for (const char* url :
         {"PtzControl/1/jump", "PtzControl/1/", "PtzControl/1", "PtzControl", "PtzControl/1/left/2", "PtzControl/left"})
    {
        EXPECT_EQ(3, Code(url, "<actionInfo/>")) << url;
    }
    EXPECT_EQ(0, m_device.Calls("PtzControl"));
}

TEST_F(QlxApiPtzCommands, SpeedIsNotHeldAgainstTheCapabilities)
{
    Ask("PtzControl/1/up", "<actionInfo><speed>100000</speed></actionInfo>");
    EXPECT_EQ("PtzControl 1 0 100000", LastCall());
    Ask("PtzControl/1/up", "no xml");
    EXPECT_EQ("PtzControl 1 0 0", LastCall());
}

TEST_F(QlxApiPtzCommands, CapabilitiesNeedBothRecords)
{
    m_device.results["GetPtzPresetCaps"] = NETNS::DEV_RET_FAILED;
    EXPECT_EQ(4, Code("PtzGetCaps"));
    m_device.results = {{"GetPtzCruiseCaps", NETNS::DEV_RET_FAILED}};
    EXPECT_EQ(4, Code("PtzGetCaps"));
}

TEST_F(QlxApiPtzCommands, EveryWordOfTheProtocols)
{
    const char* const WORDS[] = {"PELCOP", "PELCOD", "LILIN", "MINKING", "NEON", "STAR", "VIDO", "DSCP", "VISCA"};
    for (std::uint32_t protocol = 0; protocol < 9; ++protocol)
    {
        const std::string word = WORDS[protocol];
        EXPECT_EQ(DONE, Code("PtzSetProtocolConfig", "<ptzInfo><protocol>" + word + "</protocol></ptzInfo>"));
        EXPECT_EQ(protocol, m_device.ptzProtocol.protocol);
        EXPECT_EQ(word, Value(Ask("PtzGetProtocolConfig"), "ptzInfo/protocol"));
    }
    m_device.ptzProtocol.protocol = 9;
    EXPECT_EQ("", Value(Ask("PtzGetProtocolConfig"), "ptzInfo/protocol"));
    m_device.ForgetCalls();
    EXPECT_EQ(3, Code("PtzSetProtocolConfig", "<config><ptzInfo><protocol>pelcod</protocol></ptzInfo></config>"));
    EXPECT_EQ(0, m_device.Calls("SetPtzProtocol"));
}

// Nothing is read from the host first: what is left out goes to it as 0.
TEST_F(QlxApiPtzCommands, ProtocolWithOnlyAnAddress)
{
    m_device.ptzProtocol = {9600, 3, 1};
    EXPECT_EQ(DONE, Code("PtzSetProtocolConfig", "<config><ptzInfo><address>4</address></ptzInfo></config>"));
    EXPECT_EQ("SetPtzProtocol 1 {0 0 4}", LastCall());
}

TEST_F(QlxApiPtzCommands, MissingNumberIsNoughtForSomeAndRefusedByOthers)
{
    EXPECT_EQ(DONE, Code("PtzGotoPreset", "<config/>"));
    EXPECT_EQ("PtzGotoPreset 1 0", LastCall());
    EXPECT_EQ(DONE, Code("PtzRunCruise", "<config/>"));
    EXPECT_EQ("PtzRunCruise 1 0", LastCall());
    m_device.ForgetCalls();
    for (const char* url : {"PtzDeletePreset", "PtzModifyPresetPosition", "PtzModifyPresetName", "PtzAddPreset",
                            "PtzGetCruise", "PtzAddCruise", "PtzModifyCruise", "PtzDeleteCruise"})
    {
        EXPECT_EQ(3, Code(url, "<config><presetInfo/><cruiseInfo/></config>")) << url;
        EXPECT_EQ(3, Code(url, "no xml")) << url;
    }
    EXPECT_EQ(3, Code("PtzModifyPresetName", "<presetInfo><id>1</id></presetInfo>"));
    EXPECT_EQ(3, Code("PtzModifyPresetName", "<presetInfo><name>n</name></presetInfo>"));
    EXPECT_EQ(3, Code("PtzModifyCruise", "<cruiseInfo><id>1</id></cruiseInfo>"));
    EXPECT_EQ(3, Code("PtzModifyCruise", "<cruiseInfo><name>n</name></cruiseInfo>"));
    for (const std::string& call : m_device.CallLog())
    {
        EXPECT_TRUE(call == "GetIntegratedPtz" || call == "GetSupportRS485Ptz") << call;
    }
}

TEST_F(QlxApiPtzCommands, StoppingTakesAnyBody)
{
    EXPECT_EQ(SILENT, Code("PtzStopCruise"));
    EXPECT_EQ(0, m_device.Calls("PtzStopCruise"));
    EXPECT_EQ(DONE, Code("PtzStopCruise/3", " "));
    EXPECT_EQ("PtzStopCruise 3", LastCall());
}

TEST_F(QlxApiPtzCommands, PresetListsAreClippedAtTheTable)
{
    NETNS::DEV_PTZ_PRESET preset = {};
    std::memset(preset.name, 'n', sizeof(preset.name)); // without a zero byte
    preset.id = 255;
    m_device.presets.assign(256, preset);
    const std::string answer = Ask("PtzGetPresets");
    EXPECT_EQ(256u, Count(answer, "presetInfo"));
    EXPECT_EQ(std::string(12, 'n'), Value(answer, "presetInfo/item"));
    EXPECT_EQ("255", Attribute(answer, "presetInfo/item", "id"));
    m_device.counts["PtzGetPresets"] = 257; // the bare success document
    EXPECT_EQ("success", Attribute(Ask("PtzGetPresets"), "config", "status"));
    m_device.counts["PtzGetPresets"] = -5;
    EXPECT_EQ(0u, Count(Ask("PtzGetPresets"), "presetInfo"));
}

TEST_F(QlxApiPtzCommands, CruiseListsAreClippedAtTheTable)
{
    NETNS::DEV_PTZ_CRUISE cruise = {};
    std::memset(cruise.name, 'n', sizeof(cruise.name)); // without a zero byte
    m_device.cruises.assign(12, cruise);
    const std::string answer = Ask("PtzGetCruises");
    EXPECT_EQ(12u, Count(answer, "cruiseInfo"));
    EXPECT_EQ(std::string(31, 'n'), Value(answer, "cruiseInfo/item"));
    m_device.counts["PtzGetCruises"] = 13;
    EXPECT_EQ("success", Attribute(Ask("PtzGetCruises"), "config", "status"));
    m_device.counts["PtzGetCruises"] = -5;
    EXPECT_EQ(0u, Count(Ask("PtzGetCruises"), "cruiseInfo"));
}

TEST_F(QlxApiPtzCommands, ListsNeedTheListButNotTheCapabilities)
{
    m_device.results = {{"GetPtzPresetCaps", NETNS::DEV_RET_FAILED}, {"GetPtzCruiseCaps", NETNS::DEV_RET_FAILED}};
    EXPECT_EQ("0", Attribute(Ask("PtzGetPresets"), "presetInfo", "maxCount"));
    EXPECT_EQ("0", Attribute(Ask("PtzGetCruises"), "cruiseInfo", "maxCount"));
    m_device.results = {{"PtzGetPresets", NETNS::DEV_RET_FAILED}, {"PtzGetCruises", NETNS::DEV_RET_BAD_PARAM}};
    EXPECT_EQ(4, Code("PtzGetPresets"));
    EXPECT_EQ(3, Code("PtzGetCruises"));
}

TEST_F(QlxApiPtzCommands, CruiseThatNobodyKnowsHasNoName)
{
    m_device.cruises = {{1, "one"}, {2, "two"}};
    m_device.cruisePoints = {{7, "seven", 1, 2}};
    const std::string answer = Ask("PtzGetCruise", "<cruiseInfo><id>3</id></cruiseInfo>");
    EXPECT_EQ("", Value(answer, "cruiseInfo/name"));
    EXPECT_EQ("seven", Value(answer, "cruiseInfo/presetInfo/item/name"));
    EXPECT_EQ("two", Value(Ask("PtzGetCruise", "<cruiseInfo><id>2</id></cruiseInfo>"), "cruiseInfo/name"));
    EXPECT_EQ("", Value(Ask("PtzGetCruise", "<cruiseInfo><id>258</id></cruiseInfo>"), "cruiseInfo/name"));
}

TEST_F(QlxApiPtzCommands, CruiseCountsBeyondTheTablesAreClipped)
{
    m_device.counts = {{"PtzGetCruisePoints", 100000}, {"PtzGetCruises", 100000}};
    EXPECT_EQ(256u, Count(Ask("PtzGetCruise", "<cruiseInfo><id>3</id></cruiseInfo>"), "cruiseInfo/presetInfo"));
    m_device.counts = {{"PtzGetCruisePoints", -1}, {"PtzGetCruises", -1}};
    EXPECT_EQ(0u, Count(Ask("PtzGetCruise", "<cruiseInfo><id>3</id></cruiseInfo>"), "cruiseInfo/presetInfo"));
}

TEST_F(QlxApiPtzCommands, CruiseNeedsAllThreeOfItsReads)
{
    for (const char* operation : {"PtzGetCruisePoints", "PtzGetCruises", "GetPtzCruiseCaps"})
    {
        m_device.results = {{operation, NETNS::DEV_RET_FAILED}};
        EXPECT_EQ(4, Code("PtzGetCruise", "<cruiseInfo><id>3</id></cruiseInfo>")) << operation;
    }
}

TEST_F(QlxApiPtzCommands, SixtyFourPointsFitInACruise)
{
    std::string items;
    for (int i = 0; i < 64; ++i)
    {
        items += "<item id=\"1\"/>";
    }
    const auto Cruise = [](const std::string& points)
    {
        return "<config><cruiseInfo><id>1</id><name>n</name><presetInfo>" + points +
               "</presetInfo></cruiseInfo></config>";
    };
    EXPECT_EQ(DONE, Code("PtzAddCruise", Cruise(items)));
    EXPECT_EQ(DONE, Code("PtzModifyCruise", Cruise(items)));
    EXPECT_EQ(3, Code("PtzAddCruise", Cruise(items + "<item/>")));
    EXPECT_EQ(3, Code("PtzModifyCruise", Cruise(items + "<item/>")));
    EXPECT_EQ(1, m_device.Calls("PtzAddCruise"));
    EXPECT_EQ(1, m_device.Calls("PtzModifyCruise"));
    EXPECT_EQ(DONE, Code("PtzAddCruise", Cruise("")));
    EXPECT_EQ("PtzAddCruise 1 \"n\" []", LastCall());
}
