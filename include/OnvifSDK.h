// OnvifSDK.h: the functions of the ONVIF side.
#pragma once

/// The search for devices on the network is not in service: these three do nothing and return 1.
int ONVIF_SEARCH_Initial(void (*callback)(char*, int, const char*, void*), void* context, unsigned int option);
int ONVIF_SEARCH_StartManual();                             ///< see ONVIF_SEARCH_Initial
int ONVIF_SEARCH_Set_Config(char* name, const char* value); ///< see ONVIF_SEARCH_Initial

/// Ends the socket service, for everything else in the process too. @return 1
int ONVIF_SEARCH_Quit();
