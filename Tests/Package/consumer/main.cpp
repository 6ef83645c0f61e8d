// Links the installed library and asks it for something.
#include <NetServerSDK.h>
#include <OnvifSDK.h>

int main()
{
    NET_SERVER_SetPolicy(NET_POLICY_STANDARD_RTSP);
    const bool good = NET_SERVER_GetPolicy() == NET_POLICY_STANDARD_RTSP && NET_SERVER_GetVersion() == 0 &&
                      NET_SERVER_RTSPStop() == 0 && ONVIF_SEARCH_StartManual() == 1;
    return good ? 0 : 1;
}
