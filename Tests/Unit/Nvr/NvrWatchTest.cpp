#include "NvrWatch.h"
#include "NvrCameras.h"

#include <gtest/gtest.h>

namespace
{

/// The cameras as "host:port user password", a line each, or what is wrong.
std::string Read(const std::string& text, const std::string& user = "", const std::string& password = "")
{
    NvrOptions options;
    options.port = 8080;
    options.user = user;
    options.password = password;
    std::vector<NvrCamera> cameras;
    const std::string problem = ReadNvrCameras(text, options, cameras);
    std::string lines;
    for (const NvrCamera& camera : cameras)
    {
        lines += camera.host + ":" + std::to_string(camera.port) + " " + camera.user + " " + camera.password + "\n";
    }
    return problem.empty() ? lines : problem;
}

TEST(NvrCameras, LineHasHostPortUserAndPassword)
{
    EXPECT_EQ("10.0.0.1:81 joe secret\n", Read("10.0.0.1:81 joe secret\n"));
}

TEST(NvrCameras, CommandLineGivesWhatALineDoesNot)
{
    EXPECT_EQ("a:8080 admin pw\nb:81 admin pw\nc:8080 joe pw\n", Read("a\nb:81\n\tc  joe", "admin", "pw"));
}

TEST(NvrCameras, PasswordWithoutAUserIsNobodys)
{
    EXPECT_EQ("a:8080  \nb:8080 joe pw\n", Read("a\nb joe", "", "pw"));
}

TEST(NvrCameras, CommentsAndEmptyLinesAreLeftOut)
{
    EXPECT_EQ("a:8080  \n", Read("# all of them\n\n   \n#b\na\n"));
}

TEST(NvrCameras, ProblemsHaveTheNumberOfTheirLine)
{
    EXPECT_EQ("line 2: '0' is no port", Read("a\nb:0\n"));
    EXPECT_EQ("line 1: '65536' is no port", Read("a:65536"));
    EXPECT_EQ("line 1: '' is no port", Read("a:"));
    EXPECT_EQ("line 1: no host in front of the port", Read(":80"));
    EXPECT_EQ("line 1: more than HOST[:PORT] USER PASSWORD", Read("a b c d"));
    EXPECT_EQ("line 1: user name and password may have 62 bytes together", Read("a b " + std::string(62, 'x')));
    EXPECT_EQ("it names no camera", Read("# none\n"));
}

TEST(NvrWatch, LineTellsTimeCameraAndEvent)
{
    EXPECT_EQ("2026-11-21T13:30:00.007Z 10.0.0.1:80 motion on",
              NvrEventLine(1795267800007, "10.0.0.1:80", "motion", true, false));
    EXPECT_EQ("1970-01-01T00:00:00.000Z door:80 alarm-in off", NvrEventLine(0, "door:80", "alarm-in", false, false));
}

TEST(NvrWatch, LineMayBeAnObject)
{
    EXPECT_EQ(
        "{\"time\":\"2026-11-21T13:30:00.007Z\",\"camera\":\"10.0.0.1:80\",\"event\":\"motion\",\"state\":\"on\"}",
        NvrEventLine(1795267800007, "10.0.0.1:80", "motion", true, true));
}

} // namespace
