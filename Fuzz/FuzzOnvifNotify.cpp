// FuzzOnvifNotify.cpp: whatever a camera, or anybody else, sends as a notification.
#include "AlarmStateObserver.h"
#include "OnvifEventCtrol.h"
#include "ShareSDK.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

class CNoObserver : public CONVIFAlarmStateObserver
{
public:
    void OnMotionState(unsigned int, bool) override { abort(); } // both records are asked and do not take notifications
    void OnAlarmInState(unsigned int, unsigned int, bool) override { abort(); }
};

/// Two records whose cameras are not logged in.
COnvifEventCtrol& Control()
{
    static CNoObserver observer;
    static COnvifEventCtrol& control = *[]
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        auto* const made = new COnvifEventCtrol;
        made->AddObserver(1, &observer, "127.0.0.1", false, true);
        made->AddObserver(2, &observer, "127.0.0.1", false, true);
        return made;
    }();
    return control;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    Control().ParseWebMsg(text.c_str(), static_cast<int>(size));
    Control().CheckPass();
    return 0;
}
