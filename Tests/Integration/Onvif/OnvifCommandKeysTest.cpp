// The keys of media, imaging, PTZ, motion and relays, from the host's document to a camera and back, in each dialect.
#include "OnvifFixture.h"
#include "OnvifTraceObserver.h"

#include <atomic>
#include <thread>

namespace
{

class OnvifCommandKeys : public OnvifFixture, public testing::WithParamInterface<std::string> // the dialect's name
{
protected:
    OnvifCommandKeys()
    {
        OnvifSimulatorOptions options;
        options.dialect = OnvifDialects().at(GetParam());
        m_simulator = std::make_unique<OnvifDeviceSimulator>(options);
        m_token = Login();
    }

    std::string Get(const std::string& keys) { return OnvifFixture::Get(m_token, keys); }
    std::string Set(const std::string& keys) { return OnvifFixture::Set(m_token, keys); }
    std::string Value(const std::string& name) const { return m_simulator->Value(name); }

    unsigned int m_token = 0;
};

const std::string FIRST_ENCODER =
    "<token>Encoder_1</token><EncodeName>first</EncodeName><encode>H264</encode><resolution>1920*1080</resolution>"
    "<quality>4</quality><frameRate>25</frameRate><bitrate>4096</bitrate><IFrameInterval>50</IFrameInterval>"
    "<profile>Main</profile>";
const std::string SECOND_ENCODER =
    "<token>Encoder_2</token><EncodeName>second</EncodeName><encode>MPEG4</encode><resolution>640*360</resolution>"
    "<quality>3</quality><frameRate>12</frameRate><bitrate>512</bitrate><IFrameInterval>24</IFrameInterval>"
    "<profile>SP</profile>";
const std::string OTHER_CONFIGURATIONS =
    "<PTZ><token>PTZ_1</token></PTZ><audioEncoder><token>Audio_1</token></audioEncoder>"
    "<audioSource><token>AudioSource_1</token></audioSource><videoAnalytics><token>Analytics_1</token></"
    "videoAnalytics>";

TEST_P(OnvifCommandKeys, ReadsTheProfilesWithAnEncoder)
{
    EXPECT_EQ("<profiles><status>success</status><profile><token>Profile_1</token><name>main</name>"
              "<videoSource><token>VideoSource_1</token></videoSource><videoEncode>" +
                  FIRST_ENCODER + "</videoEncode>" + OTHER_CONFIGURATIONS +
                  "</profile><profile><token>Profile_2</token><name>sub</name><videoSource><token>VideoSource_1</token>"
                  "</videoSource><videoEncode>" +
                  SECOND_ENCODER + "</videoEncode>" + OTHER_CONFIGURATIONS + "</profile></profiles>",
              Get("<profiles/>"));
    EXPECT_EQ("<streamCount>2</streamCount>", Get("<streamCount/>"));
}

TEST_P(OnvifCommandKeys, ReadsOneProfileForEachIndex)
{
    const std::string ending = "<encodingInterval>1</encodingInterval><sessionTimeout>PT60S</sessionTimeout>"
                               "</videoEncode><PTZ><token>PTZ_1</token></PTZ></item>";
    EXPECT_EQ("<profile><item index=\"1\"><status>success</status><token>Profile_2</token><videoSource>"
              "<token>VideoSource_1</token></videoSource><videoEncode>" +
                  SECOND_ENCODER + ending +
                  "<item index=\"0\"><status>success</status><token>Profile_1</token>"
                  "<videoSource><token>VideoSource_1</token></videoSource><videoEncode>" +
                  FIRST_ENCODER + ending + "</profile>",
              Get("<profile><index>1</index><index>7</index><index>0</index></profile>"));
}

TEST_P(OnvifCommandKeys, PassesOverAnIndexWithoutAProfile)
{
    m_simulator->Forget();
    EXPECT_EQ("false: null", Get("<profile><index>2</index></profile>"));
    EXPECT_EQ("false: null", Get("<profile><index>-1</index></profile>"));
    EXPECT_EQ("false: null", Get("<profile/>"));
    EXPECT_EQ("false: null", Get("<streamURI><index>2</index></streamURI>"));
    EXPECT_EQ("false: null", Get("<videoEncoderCfg><index>2</index></videoEncoderCfg>"));
    EXPECT_TRUE(m_simulator->Requests().empty());
}

TEST_P(OnvifCommandKeys, ReadsAnEncoderThatWasSet)
{
    EXPECT_EQ("<videoEncodeCfg><status>success</status></videoEncodeCfg>",
              Set("<videoEncodeCfg><item><index>0</index><encode>H264</encode><resolution>1280*720</resolution>"
                  "<quality>5</quality><frameRate>15</frameRate><bitrate>2048</bitrate>"
                  "<IFrameInterval>30</IFrameInterval><profile>High</profile></item></videoEncodeCfg>"));
    EXPECT_EQ("<videoEncoderCfg><item index=\"0\"><status>success</status><encode>H264</encode>"
              "<IFrameInterval>30</IFrameInterval><profile>High</profile><quality>5</quality>"
              "<resolution>1280*720</resolution><frameRate>15</frameRate><bitrate>2048</bitrate></item>"
              "</videoEncoderCfg>",
              Get("<videoEncoderCfg><index>0</index></videoEncoderCfg>"));
    EXPECT_EQ("first", Value("Encoder_1.name"));
}

TEST_P(OnvifCommandKeys, ReadsWhatAnEncoderCanBeSetTo)
{
    EXPECT_EQ(
        "<videoEncoderCfgOpts><item index=\"0\"><status>success</status><quality><min>1</min><max>6</max></quality>"
        "<H264><resolution>1920*1080</resolution><resolution>640*360</resolution><frameRate><min>1</min>"
        "<max>25</max></frameRate><IFrameInterval><min>1</min><max>200</max></IFrameInterval>"
        "<profilesSupport>Baseline</profilesSupport><profilesSupport>Main</profilesSupport><bitrate>"
        "<min>128</min><max>8192</max></bitrate></H264></item></videoEncoderCfgOpts>",
        Get("<videoEncoderCfgOpts><index>0</index></videoEncoderCfgOpts>"));
}

TEST_P(OnvifCommandKeys, ReadsTheAddressOfAStream)
{
    EXPECT_EQ("<streamURI><status>success</status><uri>rtsp://192.168.1.20:554/Profile_2</uri></streamURI>",
              Get("<streamURI><index>1</index></streamURI>"));
}

TEST_P(OnvifCommandKeys, FetchesAPictureAndLeavesTheKeysBehindIt)
{
    m_simulator->Forget();
    char* picture = nullptr;
    int length = 0;
    ASSERT_TRUE(ONVIF_CLIENT_GetCfg(m_token, "<Get><snapshotURI><index>0</index></snapshotURI><devInfo/></Get>",
                                    picture, &length));
    EXPECT_EQ(Value("snapshot.picture"), std::string(picture, static_cast<std::size_t>(length)));
    ONVIF_CLIENT_DelResponseBuff(picture);
    EXPECT_EQ((std::vector<std::string>{"GetSnapshotUri", ""}), m_simulator->Operations());
}

TEST_P(OnvifCommandKeys, ReadsSettingsOfThePictureThatWereSet)
{
    EXPECT_EQ("<imageSettings><status>success</status></imageSettings>",
              Set("<imageSettings><brightness>10</brightness><contrast>11</contrast><saturation>12</saturation>"
                  "<backlightCompensation>ON</backlightCompensation><nightVision>OFF</nightVision>"
                  "<sharpness>13</sharpness><wideDynamic><mode>OFF</mode><val>2</val></wideDynamic><whiteBalance>"
                  "<mode>MANUAL</mode><crGain>30</crGain><cbGain>40</cbGain></whiteBalance><iris>-5</iris>"
                  "</imageSettings>"));
    EXPECT_EQ("MANUAL", Value("image.balance"));
    EXPECT_EQ("<imageSettings><status>success</status><brightness>10</brightness><contrast>11</contrast>"
              "<saturation>12</saturation><backlightCompensation>ON</backlightCompensation>"
              "<nightVision>OFF</nightVision><sharpness>13</sharpness><iris>-5</iris>"
              "<wideDynamic><mode>OFF</mode><val>2</val></wideDynamic>"
              "<whiteBalance><crGain>30</crGain><cbGain>40</cbGain></whiteBalance></imageSettings>",
              Get("<imageSettings/>"));
}

TEST_P(OnvifCommandKeys, ReadsWhatThePictureCanBeSetTo)
{
    EXPECT_EQ("<imageOpts><status>success</status><brightness><min>0</min><max>100</max></brightness>"
              "<contrast><min>0</min><max>100</max></contrast><saturation><min>0</min><max>100</max></saturation>"
              "<sharpness><min>0</min><max>100</max></sharpness>"
              "<backlightCompensation><mode>OFF</mode><mode>ON</mode></backlightCompensation>"
              "<nightVision><mode>ON</mode><mode>OFF</mode></nightVision>"
              "<wideDynamic><mode>OFF</mode><mode>ON</mode><min>1</min><max>7</max></wideDynamic>"
              "<whiteBalance><mode>AUTO</mode><mode>MANUAL</mode><yrGain><min>0</min><max>255</max></yrGain>"
              "<ybGain><min>0</min><max>255</max></ybGain></whiteBalance><iris><min>-22</min><max>0</max></iris>"
              "</imageOpts>",
              Get("<imageOpts/>"));
}

TEST_P(OnvifCommandKeys, MovesTheFocusInTheRangeOfTheCamera)
{
    EXPECT_EQ("<continuousFocus><status>success</status></continuousFocus>",
              Set("<continuousFocus><speed>50</speed></continuousFocus>"));
    EXPECT_EQ("3.50000000", Value("focus.speed"));
    EXPECT_EQ("<imageStop><status>success</status></imageStop>",
              Set("<imageStop><token>VideoSource_1</token></imageStop>"));
    EXPECT_EQ("", Value("focus.speed"));
}

TEST_P(OnvifCommandKeys, MovesAndStops)
{
    EXPECT_EQ("<continuousMove><status>success</status></continuousMove>",
              Set("<continuousMove><ptz><velocity><x>50</x><y>-100</y><zoom>30</zoom></velocity></ptz>"
                  "</continuousMove>"));
    EXPECT_EQ("0.50000000", Value("ptz.pan"));
    EXPECT_EQ("-1.00000000", Value("ptz.tilt"));
    EXPECT_EQ("0.30000000", Value("ptz.zoom"));
    EXPECT_EQ("<ptzStop><status>success</status></ptzStop>",
              Set("<ptzStop><panTilt>true</panTilt><zoom>false</zoom></ptzStop>"));
    EXPECT_EQ("", Value("ptz.pan"));
    EXPECT_EQ("0.30000000", Value("ptz.zoom"));
}

TEST_P(OnvifCommandKeys, AddsRenamesRemovesAndReachesPresets)
{
    EXPECT_EQ("<addPreset><status>success</status><token>3</token></addPreset>",
              Set("<addPreset><presetName>yard &amp; garden</presetName></addPreset>"));
    EXPECT_EQ("<modifyPresetName><status>success</status></modifyPresetName>",
              Set("<modifyPresetName><presetToken>1</presetToken><presetName>entrance</presetName>"
                  "</modifyPresetName>"));
    EXPECT_EQ("<removePreset><status>success</status></removePreset>",
              Set("<removePreset><presetToken>2</presetToken></removePreset>"));
    EXPECT_EQ("<gotoPreset><status>success</status></gotoPreset>",
              Set("<gotoPreset><presetToken>3</presetToken></gotoPreset>"));
    EXPECT_EQ("3", Value("ptz.at"));
    EXPECT_EQ("<presets><status>success</status><item><token>1</token><name>entrance</name></item>"
              "<item><token>3</token><name>yard &amp; garden</name></item></presets>",
              Get("<presets/>"));
}

TEST_P(OnvifCommandKeys, MakesAndRunsCruises)
{
    EXPECT_EQ("<addCruise><status>success</status><token>2</token></addCruise>", Set("<addCruise/>"));
    EXPECT_EQ("<modifyCruise><status>success</status></modifyCruise>",
              Set("<modifyCruise><token>2</token><name>night</name><presets><item><token>2</token>"
                  "<stayTime>10</stayTime></item><item><token>1</token></item></presets></modifyCruise>"));
    EXPECT_EQ("<cruises><status>success</status><item><token>1</token><name>round</name><presets><item>"
              "<presetToken>1</presetToken><time>5</time></item><item><presetToken>2</presetToken><time>10</time>"
              "</item></presets></item><item><token>2</token><name>night</name><presets><item>"
              "<presetToken>2</presetToken><time>10</time></item><item><presetToken>1</presetToken><time>1</time>"
              "</item></presets></item></cruises>",
              Get("<cruises/>"));
    EXPECT_EQ("<startCruise><status>success</status></startCruise>",
              Set("<startCruise><token>2</token></startCruise>"));
    EXPECT_EQ("Start", Value("state.2"));
    EXPECT_EQ("<pauseCruise><status>success</status></pauseCruise>",
              Set("<pauseCruise><token>2</token></pauseCruise>"));
    EXPECT_EQ("Pause", Value("state.2"));
    EXPECT_EQ("<stopCruise><status>success</status></stopCruise>", Set("<stopCruise><token>2</token></stopCruise>"));
    EXPECT_EQ("Stop", Value("state.2"));
}

// The request goes out without the tour's token, so a camera finds none to remove.
TEST_P(OnvifCommandKeys, AsksToRemoveACruiseWithoutNamingIt)
{
    EXPECT_EQ("<delCruise><status>fail<errorCode>5</errorCode><description>No such tour</description></status>"
              "</delCruise>",
              Set("<delCruise><token>1</token></delCruise>"));
    EXPECT_EQ("round", Value("tour.1"));
}

TEST_P(OnvifCommandKeys, SendsNothingForACruiseWithoutAToken)
{
    for (const char* key : {"delCruise", "startCruise", "stopCruise", "pauseCruise"})
    {
        m_simulator->Forget();
        EXPECT_EQ("false: null", Set(std::string("<") + key + "/>")) << key;
        EXPECT_TRUE(m_simulator->Requests().empty()) << key;
    }
}

TEST_P(OnvifCommandKeys, ReadsAMotionGridThatWasSet)
{
    std::string all;
    for (int row = 0; row < 18; ++row)
    {
        all += "<item index=\"" + std::to_string(row) + "\">1111111111111111111111</item>";
    }
    EXPECT_EQ("<motion><status>success</status><name>Cells</name><sensitivity min=\"0\" max=\"100\">60</sensitivity>"
              "<columns>22</columns><rows>18</rows><area><name>Motion</name>" +
                  all + "</area></motion>",
              Get("<motion/>"));
    EXPECT_EQ("<motion><status>success</status><area><status>success</status></area></motion>",
              Set("<motion><sensitivity>33</sensitivity><area><item>1000000000000000000000</item></area></motion>"));
    EXPECT_EQ("33", Value("motion.sensitivity"));
    EXPECT_EQ("AoAAAA==", Value("motion.cells")); // 2, 0x80, 0, 0
    const std::string read = Get("<motion/>");
    EXPECT_NE(std::string::npos, read.find("<item index=\"0\">1000000000000000000000</item>")) << read;
    EXPECT_NE(std::string::npos, read.find("<item index=\"17\">0000000000000000000000</item>")) << read;
}

TEST_P(OnvifCommandKeys, ReadsRelaysThatWereSet)
{
    EXPECT_EQ("<alarmout><status>success</status><alarm><token>Alarm1</token><delayTime>10</delayTime>"
              "<switch>off</switch></alarm><alarm><token>Alarm2</token><delayTime>4294967295</delayTime>"
              "<switch>on</switch></alarm></alarmout>",
              Get("<alarmout/>"));
    EXPECT_EQ("<alarmout><status>success</status></alarmout>",
              Set("<alarmout><token>Alarm2</token><delayTime>20</delayTime><switch>off</switch></alarmout>"));
    EXPECT_EQ("PT20S", Value("relay.Alarm2.delay"));
    EXPECT_EQ("closed", Value("relay.Alarm2.idle"));
    EXPECT_EQ("<manualAlarmout><status>success</status></manualAlarmout>",
              Set("<manualAlarmout><token>Alarm2</token><active>1</active></manualAlarmout>"));
    EXPECT_EQ("active", Value("relay.Alarm2.state"));
}

TEST_P(OnvifCommandKeys, ReadsTheTokensOfAlarmInputs)
{
    EXPECT_EQ("<alarmin><status>success</status><token>Input1</token><token>Input2</token></alarmin>",
              Get("<alarmin/>"));
}

TEST_P(OnvifCommandKeys, AddsTheAnswersOfSeveralKeys)
{
    EXPECT_EQ("<alarmin><status>success</status><token>Input1</token><token>Input2</token></alarmin>"
              "<streamCount>2</streamCount>",
              Get("<alarmin/><streamCount/>"));
}

class OnvifCommandThreads : public OnvifFixture
{
};

// Reads that refresh the profiles, reads and writes that work on them, and an observer, all of one login.
TEST_F(OnvifCommandThreads, ShareOneLogin)
{
    class CountingObserver : public CONVIFTraceObserver
    {
    public:
        void OnExchange(const ONVIF_TRACE& /*trace*/) override { ++count; }
        std::atomic<unsigned int> count{0};
    };
    m_simulator = std::make_unique<OnvifDeviceSimulator>();
    const unsigned int token = Login();
    Get(token, "<motion/>");
    m_simulator->Forget();
    CountingObserver observer;
    ONVIF_CLIENT_SetTraceObserver(&observer);
    const std::string gets[] = {"<profiles/>", "<motion/>", "<snapshotURI><index>0</index></snapshotURI>",
                                "<presets/>"};
    std::vector<std::thread> threads;
    for (const std::string& keys : gets)
    {
        threads.emplace_back(
            [&keys, token]
            {
                for (int i = 0; i < 10; ++i)
                {
                    char* response = nullptr;
                    EXPECT_TRUE(ONVIF_CLIENT_GetCfg(token, ("<Get>" + keys + "</Get>").c_str(), response, nullptr));
                    ONVIF_CLIENT_DelResponseBuff(response);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    ONVIF_CLIENT_SetTraceObserver(nullptr);
    EXPECT_EQ(m_simulator->Requests().size(), observer.count);
    EXPECT_EQ(60U, observer.count); // motion and pictures take two exchanges
}

INSTANTIATE_TEST_SUITE_P(Dialects, OnvifCommandKeys, testing::ValuesIn(OnvifDialectNames()),
                         [](const auto& one) { return one.param; });

} // namespace
