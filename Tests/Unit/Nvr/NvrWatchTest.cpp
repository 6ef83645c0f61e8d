#include "NvrWatch.h"
#include "NvrCameras.h"
#include "OnvifDeviceSimulator.h"
#include "OnvifSDK.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <ostream>
#include <streambuf>

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

/// What is written to it can be waited for on another thread.
class CWatchedText : public std::streambuf
{
public:
    /// @return false when the text has not come in ten seconds
    bool Await(const std::string& text)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10),
                                  [&] { return m_text.find(text) != std::string::npos; });
    }
    std::string Text()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_text;
    }

private:
    int overflow(int character) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_text += static_cast<char>(character);
        m_changed.notify_all();
        return character;
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_text;
};

/// A watch over one camera that has pull points, so that no fixed port is taken.
class NvrWatchedCamera : public testing::Test
{
protected:
    static void SetUpTestSuite() { ONVIF_CLIENT_Initial(); }

    void SwitchOn(const std::string& password = "secret")
    {
        OnvifSimulatorOptions options;
        options.password = password;
        options.subscriptionPolicy = false;
        options.pullPoint = true;
        m_device = std::make_unique<OnvifDeviceSimulator>(options, m_port);
        m_port = m_device->Port();
    }
    void SwitchOff() { m_device.reset(); }

    unsigned int Add() { return m_watch.Add({"cam", m_port, "admin", "secret"}, "127.0.0.1"); }
    std::string Named(const std::string& words) const { return "cam:" + std::to_string(m_port) + words; }

    CWatchedText m_text;
    std::ostream m_out{&m_text};
    unsigned short m_port = 0; // free at first, then kept
    std::unique_ptr<OnvifDeviceSimulator> m_device;
    CNvrWatch m_watch{m_out, false};
};

TEST_F(NvrWatchedCamera, ThatAnswersIsLeftAlone)
{
    SwitchOn();
    EXPECT_EQ(0u, Add());
    EXPECT_EQ("", m_watch.CheckNext());
}

TEST_F(NvrWatchedCamera, ThatWasAwayIsLoggedInAnew)
{
    SwitchOn();
    EXPECT_EQ(0u, Add());
    SwitchOff();
    EXPECT_EQ(Named(" does not answer; waiting for it"), m_watch.CheckNext());
    EXPECT_EQ("", m_watch.CheckNext());
    SwitchOn();
    EXPECT_EQ(Named(" is watched again"), m_watch.CheckNext());
    EXPECT_EQ("", m_watch.CheckNext());
}

TEST_F(NvrWatchedCamera, ThatComesLateIsLoggedIn)
{
    SwitchOn();
    SwitchOff();
    EXPECT_EQ(4u, Add());
    SwitchOn();
    EXPECT_EQ(Named(" is watched again"), m_watch.CheckNext());
}

// Cameras lock out who tries a wrong password too often.
TEST_F(NvrWatchedCamera, ThatRefusesTheLoginIsAskedAgainOnlyWhenItWasAway)
{
    SwitchOn("other");
    EXPECT_EQ(401u, Add());
    EXPECT_EQ("", m_watch.CheckNext());
    SwitchOff();
    EXPECT_EQ("", m_watch.CheckNext());
    SwitchOn("other");
    EXPECT_EQ(0u, m_watch.CheckNext().find(Named(": login failed with code 401: ")));
    SwitchOff();
    EXPECT_EQ("", m_watch.CheckNext());
    SwitchOn();
    EXPECT_EQ(Named(" is watched again"), m_watch.CheckNext());
}

TEST_F(NvrWatchedCamera, EventsThatAreOnEndWhenTheCameraIsAway)
{
    SwitchOn();
    m_device->SetValue("motion", "true");
    EXPECT_EQ(0u, Add());
    EXPECT_TRUE(m_text.Await(Named(" motion on\n")));
    SwitchOff();
    m_watch.CheckNext();
    EXPECT_NE(std::string::npos, m_text.Text().find(Named(" motion off\n")));
    EXPECT_EQ(std::string::npos, m_text.Text().find("alarm-in"));
}

TEST_F(NvrWatchedCamera, CamerasHaveTheirTurnOneAfterTheOther)
{
    SwitchOn();
    EXPECT_EQ(0u, m_watch.Add({"first", m_port, "admin", "secret"}, "127.0.0.1"));
    EXPECT_EQ(0u, m_watch.Add({"second", m_port, "admin", "secret"}, "127.0.0.1"));
    SwitchOff();
    EXPECT_EQ(0u, m_watch.CheckNext().find("first:"));
    EXPECT_EQ(0u, m_watch.CheckNext().find("second:"));
    EXPECT_EQ("", m_watch.CheckNext());
}

} // namespace
