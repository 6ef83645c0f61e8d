#include "OnvifSDK.h"

#include "NetSocket.h"

int ONVIF_SEARCH_Initial(void (* /*callback*/)(char*, int, const char*, void*), void* /*context*/,
                         unsigned int /*option*/)
{
    return 1;
}

int ONVIF_SEARCH_StartManual()
{
    return 1;
}

int ONVIF_SEARCH_Set_Config(char* /*name*/, const char* /*value*/)
{
    return 1;
}

int ONVIF_SEARCH_Quit()
{
    NET_SOCKET_Quit();
    return 1;
}
