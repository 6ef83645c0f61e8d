#include "CameraSettings.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>

namespace
{

namespace fs = std::filesystem;

constexpr const char* NAME = "netserver-camera";

std::string FromEnvironment(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : "";
}

} // namespace

std::string DataDirectory(const CameraOptions& options)
{
    if (!options.dataDir.empty())
    {
        return options.dataDir;
    }
    const std::string state = FromEnvironment("XDG_STATE_HOME");
    if (!state.empty())
    {
        return (fs::path(state) / NAME).string();
    }
    const std::string home = FromEnvironment("HOME");
    return home.empty() ? "camera-data" : (fs::path(home) / ".local/state" / NAME).string();
}

std::string WebRoot(const CameraOptions& options)
{
    if (!options.webRoot.empty())
    {
        return options.webRoot;
    }
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    const fs::path folder = program.parent_path();
    for (const fs::path& candidate : {folder / "www", folder / ".." / "share" / NAME / "www"})
    {
        if (fs::is_regular_file(candidate / "index.html", error))
        {
            return candidate.lexically_normal().string();
        }
    }
    return {};
}

bool MakeDirectory(const std::string& path, std::string& problem)
{
    std::error_code error;
    fs::create_directories(path, error);
    if (!fs::is_directory(path))
    {
        problem = path + ": " + (error ? error.message() : "is no directory") +
                  "; choose a directory that you may write to with --data-dir";
        return false;
    }
    return true;
}

bool LockDirectory(const std::string& path, std::string& problem)
{
    // Left open: the lock goes with the process, however that ends.
    const int directory = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0 || flock(directory, LOCK_EX | LOCK_NB) != 0)
    {
        problem =
            path + ": " +
            (errno == EWOULDBLOCK ? "is in use by another camera; give this one another --data-dir" : strerror(errno));
        return false;
    }
    return true;
}
