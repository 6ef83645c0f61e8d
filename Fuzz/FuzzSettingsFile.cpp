// FuzzSettingsFile.cpp: any bytes as the library's settings file: read, changed, and read again.
#include "NetServerConfig.h"

#include "ShareSDK.h"
#include "TempDirectory.h"

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace
{

void Require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

/// In memory, since each change is written through to the disk.
const std::string& Path()
{
    static const std::string path = []
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        setenv("TMPDIR", "/dev/shm", 1);
        static const CTempDirectory directory;
        return directory.Path("server.xml");
    }();
    return path;
}

std::string ReadFile()
{
    std::ifstream file(Path(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::ofstream(Path(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    CNetServerCfg config;
    config.Initial(Path().c_str());
    std::string address;
    int port = 0;
    config.QlxApiGetAlarmServerConfig(address, port);
    const bool isTaken = config.QlxApiSetAlarmServerConfig("10.0.0.5", 7000);
    const bool isRead = config.QlxApiGetAlarmServerConfig(address, port);
    // Either the new values are read again, or the file could not hold them and is as it was.
    if (isTaken && !(isRead && address == "10.0.0.5" && port == 7000))
    {
        Require(ReadFile() == std::string(reinterpret_cast<const char*>(data), size));
    }
    return 0;
}
