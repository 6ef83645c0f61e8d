#include "CameraOptions.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include <unistd.h>

namespace
{

struct Parsed
{
    CommandLine result;
    CameraOptions options;
    std::string out;
    std::string err;
};

Parsed Parse(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "netserver-camera");
    Parsed parsed = {};
    std::ostringstream out;
    std::ostringstream err;
    parsed.result = ParseCommandLine(static_cast<int>(arguments.size()), arguments.data(), parsed.options, out, err);
    parsed.out = out.str();
    parsed.err = err.str();
    return parsed;
}

/// A file of its own for one test.
class CTemporaryFile
{
public:
    CTemporaryFile() { close(mkstemp(m_path)); }
    ~CTemporaryFile() { std::remove(m_path); }
    CTemporaryFile(const CTemporaryFile&) = delete;
    CTemporaryFile& operator=(const CTemporaryFile&) = delete;
    std::string Path() const { return m_path; }

private:
    char m_path[32] = "/tmp/camera-options-XXXXXX";
};

struct BadCase
{
    const char* name;
    std::vector<const char*> arguments;
    const char* message; // occurs in what is printed
};

class CameraOptionsBad : public ::testing::TestWithParam<BadCase>
{
};

} // namespace

TEST(CameraOptions, HasDefaults)
{
    const Parsed parsed = Parse({});
    ASSERT_EQ(CommandLine::Run, parsed.result) << parsed.err;
    EXPECT_EQ(8080, parsed.options.httpPort);
    EXPECT_EQ(8554, parsed.options.rtspPort);
    EXPECT_EQ("", parsed.options.webRoot);
    EXPECT_EQ("", parsed.options.dataDir);
    EXPECT_EQ(SourceKind::Test, parsed.options.source);
    EXPECT_EQ(1280U, parsed.options.width);
    EXPECT_EQ(720U, parsed.options.height);
    EXPECT_EQ(15U, parsed.options.fps);
    EXPECT_EQ(1000U, parsed.options.bitrate);
    EXPECT_EQ(30U, parsed.options.gop);
    ASSERT_EQ(1U, parsed.options.users.size());
    EXPECT_EQ("admin", parsed.options.users[0].name);
    EXPECT_EQ("admin", parsed.options.users[0].password);
    EXPECT_TRUE(parsed.options.rtspAuth);
    EXPECT_EQ(1U, parsed.options.channels);
    EXPECT_FALSE(parsed.options.compat);
    EXPECT_FALSE(parsed.options.announce);
    EXPECT_EQ(PtzSupport::Both, parsed.options.ptz);
    EXPECT_EQ(1024U, parsed.options.recordLimit);
    EXPECT_EQ("", parsed.options.talkOut);
}

TEST(CameraOptions, TakesEachOption)
{
    const Parsed parsed = Parse({"--http-port",
                                 "80",
                                 "--rtsp-port",
                                 "554",
                                 "--web-root",
                                 "/tmp",
                                 "--data-dir",
                                 "/tmp/new",
                                 "--source",
                                 "rtsp://camera/1",
                                 "--size",
                                 "640x480",
                                 "--fps",
                                 "25",
                                 "--bitrate",
                                 "2000",
                                 "--gop",
                                 "50",
                                 "--user",
                                 "a:b:c",
                                 "--user",
                                 "d:e",
                                 "--no-rtsp-auth",
                                 "--channels",
                                 "4",
                                 "--compat",
                                 "--announce",
                                 "--ptz",
                                 "rs485",
                                 "--record-limit",
                                 "0",
                                 "--talk-out",
                                 "/tmp/talk.wav"});
    ASSERT_EQ(CommandLine::Run, parsed.result) << parsed.err;
    EXPECT_EQ(80, parsed.options.httpPort);
    EXPECT_EQ(554, parsed.options.rtspPort);
    EXPECT_EQ("/tmp", parsed.options.webRoot);
    EXPECT_EQ("/tmp/new", parsed.options.dataDir);
    EXPECT_EQ(SourceKind::Rtsp, parsed.options.source);
    EXPECT_EQ("rtsp://camera/1", parsed.options.location);
    EXPECT_EQ(640U, parsed.options.width);
    EXPECT_EQ(480U, parsed.options.height);
    EXPECT_EQ(25U, parsed.options.fps);
    EXPECT_EQ(2000U, parsed.options.bitrate);
    EXPECT_EQ(50U, parsed.options.gop);
    ASSERT_EQ(2U, parsed.options.users.size()) << "the default user is gone";
    EXPECT_EQ("a", parsed.options.users[0].name);
    EXPECT_EQ("b:c", parsed.options.users[0].password);
    EXPECT_EQ("d", parsed.options.users[1].name);
    EXPECT_FALSE(parsed.options.rtspAuth);
    EXPECT_EQ(4U, parsed.options.channels);
    EXPECT_TRUE(parsed.options.compat);
    EXPECT_TRUE(parsed.options.announce);
    EXPECT_EQ(PtzSupport::Rs485, parsed.options.ptz);
    EXPECT_EQ(0U, parsed.options.recordLimit);
    EXPECT_EQ("/tmp/talk.wav", parsed.options.talkOut);
}

TEST(CameraOptions, TakesTheOtherSources)
{
    const CTemporaryFile file;
    const std::string source = "file:" + file.Path();
    const Parsed fromFile = Parse({"--source", source.c_str()});
    EXPECT_EQ(SourceKind::File, fromFile.options.source);
    EXPECT_EQ(file.Path(), fromFile.options.location);
    const Parsed fromDevice = Parse({"--source", "v4l2:/dev/video0"});
    EXPECT_EQ(SourceKind::V4l2, fromDevice.options.source);
    EXPECT_EQ("/dev/video0", fromDevice.options.location);
    EXPECT_EQ(SourceKind::Test, Parse({"--source", "test"}).options.source);
}

TEST(CameraOptions, TakesTheLimits)
{
    EXPECT_EQ(CommandLine::Run, Parse({"--http-port", "1", "--rtsp-port", "65535"}).result);
    EXPECT_EQ(CommandLine::Run, Parse({"--size", "64x64", "--fps", "1", "--bitrate", "16", "--gop", "1"}).result);
    EXPECT_EQ(CommandLine::Run,
              Parse({"--size", "4096x4096", "--fps", "60", "--bitrate", "100000", "--gop", "1000"}).result);
    EXPECT_EQ(CommandLine::Run, Parse({"--channels", "32"}).result);
    EXPECT_EQ(CommandLine::Run, Parse({"--user", "1234567890123456789:1234567890123456789"}).result);
    EXPECT_EQ(CommandLine::Run, Parse({"--user", "a:1", "--user", "b:1", "--user", "c:1", "--user", "d:1", "--user",
                                       "e:1", "--user", "f:1", "--user", "g:1"})
                                    .result);
}

TEST(CameraOptions, PrintsHelp)
{
    const Parsed parsed = Parse({"--help"});
    EXPECT_EQ(CommandLine::Done, parsed.result);
    EXPECT_EQ("", parsed.err);
    for (const char* option :
         {"--http-port", "--rtsp-port", "--web-root", "--data-dir", "--source", "--size", "--fps", "--bitrate", "--gop",
          "--user", "--no-rtsp-auth", "--channels", "--compat", "--announce", "--ptz", "--record-limit", "--talk-out"})
    {
        EXPECT_NE(std::string::npos, parsed.out.find(option)) << option;
    }
}

TEST_P(CameraOptionsBad, IsRefusedWithAMessage)
{
    const Parsed parsed = Parse(GetParam().arguments);
    EXPECT_EQ(CommandLine::Bad, parsed.result);
    EXPECT_NE(std::string::npos, parsed.err.find(GetParam().message)) << parsed.err;
    EXPECT_EQ("", parsed.out);
}

const BadCase BAD_CASES[] = {
    {"UnknownOption", {"--bogus"}, "--bogus"},
    {"UnknownWord", {"bogus"}, "bogus"},
    {"PortZero", {"--http-port", "0"}, "--http-port"},
    {"PortTooLarge", {"--rtsp-port", "65536"}, "--rtsp-port"},
    {"PortNoNumber", {"--rtsp-port", "8x"}, "--rtsp-port"},
    {"PortNegative", {"--rtsp-port", "-1"}, "--rtsp-port"},
    {"PortMissing", {"--rtsp-port"}, "--rtsp-port"},
    {"PortsEqual", {"--http-port", "8554"}, "must differ"},
    {"NoWebRoot", {"--web-root", "/nonexistent"}, "/nonexistent"},
    {"SourceUnknown", {"--source", "tape"}, "tape"},
    {"SourceNoFile", {"--source", "file:/nonexistent"}, "/nonexistent"},
    {"SourceDirectory", {"--source", "file:/tmp"}, "/tmp"},
    {"SourceNoDevice", {"--source", "v4l2:"}, "v4l2:"},
    {"SourceNoHost", {"--source", "rtsp://"}, "rtsp://"},
    {"SizeNoForm", {"--size", "1280"}, "--size"},
    {"SizeTail", {"--size", "1280x720p"}, "--size"},
    {"SizeNegative", {"--size", "-1280x720"}, "--size"},
    {"SizeTooSmall", {"--size", "60x64"}, "multiples of 4"},
    {"SizeTooLarge", {"--size", "4096x4100"}, "multiples of 4"},
    {"SizeOdd", {"--size", "1280x722"}, "multiples of 4"},
    {"SizeHuge", {"--size", "99999999999x720"}, "--size"},
    {"FpsZero", {"--fps", "0"}, "--fps"},
    {"FpsTooMany", {"--fps", "61"}, "--fps"},
    {"BitrateTooLow", {"--bitrate", "15"}, "--bitrate"},
    {"BitrateTooHigh", {"--bitrate", "100001"}, "--bitrate"},
    {"GopZero", {"--gop", "0"}, "--gop"},
    {"GopTooLong", {"--gop", "1001"}, "--gop"},
    {"NoChannels", {"--channels", "0"}, "--channels"},
    {"TooManyChannels", {"--channels", "33"}, "--channels"},
    {"PtzUnknown", {"--ptz", "all"}, "none of none, integrated, rs485, both"},
    {"RecordLimitNegative", {"--record-limit", "-1"}, "--record-limit"},
    {"RecordLimitTooLarge", {"--record-limit", "1000001"}, "--record-limit"},
    {"UserNoColon", {"--user", "admin"}, "NAME:PASSWORD"},
    {"UserNoName", {"--user", ":x"}, "user name"},
    {"UserNoPassword", {"--user", "x:"}, "password"},
    {"UserLongName", {"--user", "12345678901234567890:x"}, "user name"},
    {"UserLongPassword", {"--user", "x:12345678901234567890"}, "password"},
    {"UserBlankInPassword", {"--user", "x:a b"}, "password"},
    {"UserQuoteInName", {"--user", "x\"y:a"}, "user name"},
    {"UserTwice", {"--user", "x:a", "--user", "x:b"}, "twice"},
    {"UserEighth",
     {"--user", "a:1", "--user", "b:1", "--user", "c:1", "--user", "d:1", "--user", "e:1", "--user", "f:1", "--user",
      "g:1", "--user", "h:1"},
     "at most 7"},
    {"UserSecondWord", {"--user", "x:a", "y:b"}, "y:b"},
};

INSTANTIATE_TEST_SUITE_P(Arguments, CameraOptionsBad, ::testing::ValuesIn(BAD_CASES),
                         [](const auto& testCase) { return std::string(testCase.param.name); });
