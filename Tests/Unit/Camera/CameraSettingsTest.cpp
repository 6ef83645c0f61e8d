#include "CameraSettings.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

/// An environment variable that is put back when the test ends.
class CVariable
{
public:
    CVariable(const char* name, const char* value) : m_name(name)
    {
        const char* const before = std::getenv(name);
        m_wasSet = before != nullptr;
        m_before = m_wasSet ? before : "";
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~CVariable() { m_wasSet ? setenv(m_name, m_before.c_str(), 1) : unsetenv(m_name); }
    CVariable(const CVariable&) = delete;
    CVariable& operator=(const CVariable&) = delete;

private:
    const char* m_name;
    bool m_wasSet = false;
    std::string m_before;
};

} // namespace

TEST(CameraSettings, UsesTheDataDirectoryAskedFor)
{
    CameraOptions options;
    options.dataDir = "/srv/data";
    EXPECT_EQ("/srv/data", DataDirectory(options));
}

TEST(CameraSettings, KeepsDataInTheUsersStateDirectory)
{
    const CVariable state("XDG_STATE_HOME", "/home/x/state");
    EXPECT_EQ("/home/x/state/netserver-camera", DataDirectory(CameraOptions()));
}

TEST(CameraSettings, FindsTheStateDirectoryInTheHome)
{
    const CVariable state("XDG_STATE_HOME", nullptr);
    const CVariable home("HOME", "/home/x");
    EXPECT_EQ("/home/x/.local/state/netserver-camera", DataDirectory(CameraOptions()));
}

TEST(CameraSettings, KeepsDataInTheCurrentDirectoryWithoutAHome)
{
    const CVariable state("XDG_STATE_HOME", "relative");
    const CVariable home("HOME", nullptr);
    EXPECT_EQ("camera-data", DataDirectory(CameraOptions()));
}

TEST(CameraSettings, UsesTheWebRootAskedFor)
{
    CameraOptions options;
    options.webRoot = "/srv/www";
    EXPECT_EQ("/srv/www", WebRoot(options));
}

TEST(CameraSettings, HasNoWebRootWhereThereAreNoPages)
{
    EXPECT_EQ("", WebRoot(CameraOptions())) << "there are no pages beside this test program";
}

TEST(CameraSettings, MakesADirectoryWithAllAboveIt)
{
    char base[] = "/tmp/camera-settings-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(base));
    std::string problem;
    const std::string path = std::string(base) + "/a/b";
    EXPECT_TRUE(MakeDirectory(path, problem));
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_TRUE(MakeDirectory(path, problem)) << "it may be there already";
    EXPECT_EQ("", problem);
    fs::remove_all(base);
}

TEST(CameraSettings, SaysWhyADirectoryCannotBeMade)
{
    char file[] = "/tmp/camera-settings-XXXXXX";
    close(mkstemp(file));
    std::string problem;
    EXPECT_FALSE(MakeDirectory(std::string(file) + "/below", problem));
    EXPECT_NE(std::string::npos, problem.find("Not a directory")) << problem;
    problem.clear();
    EXPECT_FALSE(MakeDirectory(file, problem));
    EXPECT_NE("", problem);
    fs::remove(file);
}

TEST(CameraSettings, ADirectoryIsOneCamerasOnly)
{
    const CTempDirectory directory;
    std::string problem;
    ASSERT_TRUE(LockDirectory(directory.Path(), problem)) << problem;
    EXPECT_FALSE(LockDirectory(directory.Path(), problem));
    EXPECT_EQ(directory.Path() + ": is in use by another camera; give this one another --data-dir", problem);
    EXPECT_FALSE(LockDirectory(directory.Path("none"), problem));
    EXPECT_EQ(directory.Path("none") + ": No such file or directory", problem);
}
