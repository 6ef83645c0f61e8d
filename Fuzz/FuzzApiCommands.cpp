// FuzzApiCommands.cpp: any request through the dispatcher and the whole command processor, in front of a fake device.
//
// The first byte fills the host's records, the second chooses what the host refuses, and the rest is the request.
#include "FakeDevice.h"
#include "HostRecords.h"
#include "HttpProtocolAnalyse.h"
#include "NetServerConfig.h"
#include "NetServerDataProc.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

const char* const REFUSED[] = {
    nullptr,           "GetUserList",       "GetDevInfo",         "GetTimeConfig",    "GetImageCaps",
    "GetImageParam",   "GetPortInfo",       "GetVideoProfile",    "GetProfileName",   "GetVideoEncodeCaps",
    "GetTimeOsd",      "SetTimeOsd",        "GetPrivacyMask",     "GetPtzPresetCaps", "GetPtzCruiseCaps",
    "PtzGetPresets",   "PtzGetCruises",     "PtzGetCruisePoints", "GetMotionCaps",    "GetSensorConfig",
    "SetSensorConfig", "GetAlarmStatusXml", "SearchRecordDate",   "SearchRecord",     "GetChannelIdList",
};
const size_t REFUSED_COUNT = sizeof(REFUSED) / sizeof(REFUSED[0]);

void Require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

/// In memory, since each change of the alarm server writes the file through to its disk.
std::string SettingsFile()
{
    setenv("TMPDIR", "/dev/shm", 1);
    static const CTempDirectory directory;
    return directory.Path("server.xml");
}

CFakeDevice& Device()
{
    static CFakeDevice device;
    static const bool isReady = []
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        CNetServerDataProc::Instance().Initial(2, 3, 4, &device, "", "", 1);
        CNetServerCfg::Instance().Initial(SettingsFile().c_str());
        return true;
    }();
    Require(isReady);
    return device;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CFakeDevice& device = Device();
    if (size < 3)
    {
        return 0;
    }
    FillHostRecords(device, data[0]);
    device.integratedPtz = true;
    device.rs485Ptz = true;
    device.profileCount = 2;
    device.counts.clear();
    device.results.clear();
    device.ForgetCalls();
    const char* const refused = REFUSED[data[1] % REFUSED_COUNT];
    if (refused != nullptr)
    {
        device.results[refused] = NETNS::DEV_RET_FAILED;
    }
    const CHttpProtocolAnalyse request(reinterpret_cast<const char*>(data + 2), static_cast<int>(size - 2));
    if (request.GetUrl().compare(0, 11, "GetSnapshot") == 0)
    {
        return 0; // waits three seconds for a picture
    }
    CHttpProtocolAnalyse response;
    CNetServerDataProc::Instance().AnalysisRequest("10.0.0.1", request, response);
    int length = 0;
    const char* const bytes = response.GetBuf(length);
    Require(length == 0 || (length > 9 && std::memcmp(bytes, "HTTP/1.1 ", 9) == 0));
    Require(device.BuffersOut() == 0);
    return 0;
}
