#include "NvrAnswer.h"

#include <gtest/gtest.h>

TEST(NvrAnswer, IsIndented)
{
    EXPECT_EQ("<a>\n    <b>1</b>\n</a>\n", IndentAnswer("<a><b>1</b></a>"));
    EXPECT_EQ("POST / HTTP/1.1", IndentAnswer("POST / HTTP/1.1"));
    EXPECT_EQ("", IndentAnswer(""));
}

TEST(NvrAnswer, TellsItsFaults)
{
    EXPECT_EQ((std::vector<std::string>{"dns: fault 5: Not now", "motion: fault 30: the camera gives no reason"}),
              FaultsOf("<GetResponse><ipv4><status>success</status></ipv4><dns><status>fail<errorCode>5</errorCode>"
                       "<description>Not now</description></status></dns><motion><area><status>fail"
                       "<errorCode>30</errorCode></status></area></motion></GetResponse>"));
    EXPECT_TRUE(FaultsOf("<GetResponse><ipv4><status>success</status></ipv4></GetResponse>").empty());
    EXPECT_TRUE(FaultsOf("").empty());
}

TEST(NvrAnswer, ShowsServicesAsATable)
{
    EXPECT_EQ("SERVICE  PATH\ndevice   /onvif/device_service\nptz      /p\n",
              TabulateServices("<GetResponse><serviceUrl><item service=\"device\">onvif/device_service</item>"
                               "<item service=\"ptz\">p</item></serviceUrl></GetResponse>"));
    EXPECT_EQ("SERVICE  PATH\n", TabulateServices(""));
}

TEST(NvrAnswer, ShowsProfilesAsATable)
{
    EXPECT_EQ(
        "INDEX  TOKEN  NAME  ENCODING  SIZE     FRAMES/S  KBIT/S  PTZ\n"
        "0      P1     main  H264      640*360  25        512     yes\n"
        "1      P2                                                no\n",
        TabulateProfiles("<GetResponse><profiles><status>success</status><profile><token>P1</token>"
                         "<name>main</name><videoEncode><encode>H264</encode><resolution>640*360</resolution>"
                         "<frameRate>25</frameRate><bitrate>512</bitrate></videoEncode><PTZ><token>a</token></PTZ>"
                         "</profile><profile><token>P2</token></profile></profiles></GetResponse>"));
}

TEST(NvrAnswer, ShowsPresetsAsATable)
{
    EXPECT_EQ("TOKEN  NAME\n1      door\n2\n",
              TabulatePresets("<GetResponse><presets><item><token>1</token><name>door</name></item>"
                              "<item><token>2</token></item></presets></GetResponse>"));
}

TEST(NvrAnswer, HidesTheLoginOfARequest)
{
    EXPECT_EQ("POST / HTTP/1.1\r\nAuthorization: Basic ***\r\n\r\n<p Type=\"x#PasswordDigest\">***</p>",
              MaskRequest("POST / HTTP/1.1\r\nAuthorization: Basic YTpi\r\n\r\n<p Type=\"x#PasswordDigest\">abc</p>"));
}

TEST(NvrAnswer, TellsPicturesFromOtherBytes)
{
    EXPECT_TRUE(IsPicture("\xff\xd8\xff\xe0"));
    EXPECT_TRUE(IsPicture("\x89PNG\r\n"));
    EXPECT_TRUE(IsPicture("BM...."));
    EXPECT_FALSE(IsPicture("<html>"));
    EXPECT_FALSE(IsPicture("\xff"));
    EXPECT_FALSE(IsPicture(""));
}
