#include "NvrOptions.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

namespace
{

struct Parsed
{
    NvrCommandLine result;
    NvrOptions options;
    std::string out;
    std::string err;
};

Parsed Parse(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "netserver-nvr");
    Parsed parsed = {};
    std::ostringstream out;
    std::ostringstream err;
    parsed.result = ParseNvrCommandLine(static_cast<int>(arguments.size()), arguments.data(), parsed.options, out, err);
    parsed.out = out.str();
    parsed.err = err.str();
    return parsed;
}

/// The login's options in front of a command.
Parsed ParseCommand(std::vector<const char*> command)
{
    command.insert(command.begin(), {"--host", "10.0.0.1", "--user", "admin", "--password", "secret"});
    return Parse(command);
}

class NvrOptionsTest : public testing::Test
{
protected:
    NvrOptionsTest() { unsetenv(NVR_PASSWORD_VARIABLE); }
    ~NvrOptionsTest() override { unsetenv(NVR_PASSWORD_VARIABLE); }
};

} // namespace

TEST_F(NvrOptionsTest, ReadsTheLogin)
{
    const Parsed parsed = Parse(
        {"--host", "cam", "--port", "8000", "--user", "u", "--password", "p", "--trace", "t", "--verbose", "login"});
    EXPECT_EQ(NvrCommandLine::Run, parsed.result);
    EXPECT_EQ("cam", parsed.options.host);
    EXPECT_EQ(8000, parsed.options.port);
    EXPECT_EQ("u", parsed.options.user);
    EXPECT_EQ("p", parsed.options.password);
    EXPECT_TRUE(parsed.options.hasPassword);
    EXPECT_EQ("t", parsed.options.traceFile);
    EXPECT_TRUE(parsed.options.verbose);
    EXPECT_EQ(NvrCommand::Login, parsed.options.command);
}

TEST_F(NvrOptionsTest, TakesTheLoginBehindTheCommandToo)
{
    const Parsed parsed = Parse({"get", "ipv4", "--host", "cam"});
    EXPECT_EQ(NvrCommandLine::Run, parsed.result);
    EXPECT_EQ("cam", parsed.options.host);
    EXPECT_EQ(80, parsed.options.port);
    EXPECT_EQ("", parsed.options.user);
}

TEST_F(NvrOptionsTest, TakesThePasswordOfTheEnvironment)
{
    setenv(NVR_PASSWORD_VARIABLE, "hidden", 1);
    const Parsed parsed = Parse({"--host", "cam", "--user", "u", "login"});
    EXPECT_EQ("hidden", parsed.options.password);
    EXPECT_TRUE(parsed.options.hasPassword);
}

TEST_F(NvrOptionsTest, TakesNoPasswordOfTheEnvironmentWithoutAUser)
{
    setenv(NVR_PASSWORD_VARIABLE, "hidden", 1);
    EXPECT_EQ("", Parse({"--host", "cam", "login"}).options.password);
}

TEST_F(NvrOptionsTest, PrefersThePasswordOfTheCommandLine)
{
    setenv(NVR_PASSWORD_VARIABLE, "hidden", 1);
    EXPECT_EQ("", Parse({"--host", "cam", "--user", "u", "--password", "", "login"}).options.password);
    EXPECT_EQ("p", Parse({"--host", "cam", "--user", "u", "--password", "p", "login"}).options.password);
}

TEST_F(NvrOptionsTest, KnowsThatThereIsNoPassword)
{
    EXPECT_FALSE(Parse({"--host", "cam", "--user", "u", "login"}).options.hasPassword);
}

TEST_F(NvrOptionsTest, ReadsKeysIndexesAndFields)
{
    const Parsed parsed =
        ParseCommand({"get", "profile", "ipv4", "--index", "1", "--index", "0", "--field", "token=a=b"});
    EXPECT_EQ(NvrCommand::Get, parsed.options.command);
    EXPECT_EQ((std::vector<std::string>{"profile", "ipv4"}), parsed.options.keys);
    EXPECT_EQ((std::vector<int>{1, 0}), parsed.options.indexes);
    EXPECT_EQ((std::vector<std::pair<std::string, std::string>>{{"token", "a=b"}}), parsed.options.fields);
    EXPECT_EQ(NvrCommand::Raw, ParseCommand({"raw", "ipv4"}).options.command);
}

TEST_F(NvrOptionsTest, ReadsTheOtherCommands)
{
    const NvrOptions set = ParseCommand({"set", "-"}).options;
    EXPECT_EQ(NvrCommand::Set, set.command);
    EXPECT_EQ("-", set.file);
    const NvrOptions snapshot = ParseCommand({"snapshot", "1", "a.jpg"}).options;
    EXPECT_EQ(NvrCommand::Snapshot, snapshot.command);
    EXPECT_EQ((std::vector<int>{1}), snapshot.indexes);
    EXPECT_EQ("a.jpg", snapshot.file);
    EXPECT_EQ(NvrCommand::Stop, ParseCommand({"stop"}).options.command);
    EXPECT_EQ(NvrCommand::Presets, ParseCommand({"presets"}).options.command);
    const NvrOptions goTo = ParseCommand({"goto", "Preset 1"}).options;
    EXPECT_EQ(NvrCommand::Goto, goTo.command);
    EXPECT_EQ("Preset 1", goTo.preset);
}

TEST_F(NvrOptionsTest, ReadsAMoveToTheLeft)
{
    const NvrOptions move = ParseCommand({"move", "-50", "0", "100", "--ms", "250"}).options;
    EXPECT_EQ(NvrCommand::Move, move.command);
    EXPECT_EQ(-50, move.x);
    EXPECT_EQ(0, move.y);
    EXPECT_EQ(100, move.zoom);
    EXPECT_EQ(250U, move.moveMs);
    EXPECT_EQ(500U, ParseCommand({"move", "1", "2", "3"}).options.moveMs);
}

TEST_F(NvrOptionsTest, PrintsHelp)
{
    const Parsed parsed = Parse({"--help"});
    EXPECT_EQ(NvrCommandLine::Done, parsed.result);
    EXPECT_NE(std::string::npos, parsed.out.find("Exit status: 0 done"));
    EXPECT_EQ("", parsed.err);
    EXPECT_NE(std::string::npos, Parse({"get", "--help"}).out.find("  videoEncoderCfgOpts"));
    EXPECT_NE(std::string::npos, Parse({"set", "--help"}).out.find("  videoEncodeCfg"));
}

TEST_F(NvrOptionsTest, RefusesWhatItCannotUse)
{
    const std::string longest(MAX_NVR_CREDENTIALS, 'p');
    const std::string tooLong = longest + "p";
    const std::vector<std::vector<const char*>> wrong = {
        {},
        {"login"},
        {"--host", "cam"},
        {"--host", "cam", "dance"},
        {"--host", "cam", "--port", "0", "login"},
        {"--host", "cam", "--port", "65536", "login"},
        {"--host", "cam", "--user", "a:b", "--password", "c", "login"},
        {"--host", "cam", "--password", tooLong.c_str(), "login"},
        {"--host", "cam", "get"},
        {"--host", "cam", "get", "nix"},
        {"--host", "cam", "raw", "nix"},
        {"--host", "cam", "get", "snapshotURI"},
        {"--host", "cam", "get", "ipv4", "--index", "-1"},
        {"--host", "cam", "get", "ipv4", "--field", "noValue"},
        {"--host", "cam", "get", "ipv4", "--field", "<a>=1"},
        {"--host", "cam", "get", "ipv4", "--field", "=1"},
        {"--host", "cam", "set"},
        {"--host", "cam", "snapshot", "a.jpg"},
        {"--host", "cam", "move", "101", "0", "0"},
        {"--host", "cam", "move", "-101", "0", "0"},
        {"--host", "cam", "move", "1", "2"},
        {"--host", "cam", "move", "1", "2", "3", "--ms", "0"},
        {"--host", "cam", "goto"},
    };
    for (const std::vector<const char*>& arguments : wrong)
    {
        const Parsed parsed = Parse(arguments);
        EXPECT_EQ(NvrCommandLine::Bad, parsed.result) << testing::PrintToString(arguments);
        EXPECT_NE("", parsed.err) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(NvrCommandLine::Run, Parse({"--host", "cam", "--password", longest.c_str(), "login"}).result);
}
