// OnvifSDK.h: the functions of the ONVIF side.
//
// The host logs in to cameras and reads and changes them through small XML documents; it never sees SOAP. Any thread
// may call; calls that ask a camera last until it has answered, 5 seconds at most for each request of a command and
// 40 seconds for a login. Requests and answers are described in docs/onvif-client.md.
#pragma once

#include "NetTypes.h"

class CONVIFAlarmStateObserver;
class CONVIFTraceObserver;
class CRTSPReceiver;

/// Starts the client side. Call it once, before anything else here. @return true
bool ONVIF_CLIENT_Initial();
/// Ends the socket service, for everything else in the process too, and then the client side. @return true
bool ONVIF_CLIENT_Quit();

/// Logs in to a camera.
/// @param token  0xFFFFFFFF for a new login; another value only asks whether that login stands
/// @param ip     dotted text
/// @param error  receives 0, or why the login failed: 4 no answer, 5 the camera reports a fault, 6 what answers does
///               not talk SOAP, 401 the camera refuses the credentials; null: not asked for
/// @return the login's token; 0xFFFFFFFF for a failure, an unknown token or a null text
unsigned int ONVIF_CLIENT_Login(unsigned int token, const char* ip, unsigned short port, const char* user,
                                const char* password, unsigned int* error);
/// Ends a login. A command that runs is carried out. @return true, also for an unknown token
bool ONVIF_CLIENT_Logout(unsigned int token);

/// Reads from a camera. A key that is in no table ends the process: check what users type.
/// @param request   a "Get" document
/// @param response  set it to null before; receives the "GetResponse" document, or the picture of the key
/// "snapshotURI".
///                  It goes back through ONVIF_CLIENT_DelResponseBuff.
/// @param length    receives the bytes of `response`, for a document with the zero byte behind it; null: not asked for
/// @return false when a key could not be carried out; a fault that the camera reports is told in the document. True
/// with
///         nothing in `response` for an unknown token
bool ONVIF_CLIENT_GetCfg(unsigned int token, const char* request, char*& response, int* length);
/// Changes a camera. The same rules.
/// @param request   a "Set" document
/// @param response  receives the "SetResponse" document; null when there is none
/// @return false when a key could not be carried out, and when there is no answer, as for an unknown token
bool ONVIF_CLIENT_SetCfg(unsigned int token, const char* request, char*& response);
/// Takes back a response; null is fine. The pointer is left as it is.
void ONVIF_CLIENT_DelResponseBuff(char*& buffer);

/// Has the observer see each exchange with any camera, for diagnosis; without one, which is the state at the start,
/// nothing is recorded. Credentials are masked.
/// @param observer  borrowed until another one is set, or null, and the calls that ran then have returned
void ONVIF_CLIENT_SetTraceObserver(CONVIFTraceObserver* observer);

/// Has the observer hear of a camera's alarms; a second one replaces the first. @param observer  borrowed until
/// ONVIF_CLIENT_DelAlarmStateObserver. @return true
bool ONVIF_CLIENT_AddAlarmStateObserver(unsigned int token, CONVIFAlarmStateObserver* observer);
bool ONVIF_CLIENT_DelAlarmStateObserver(unsigned int token);

/// Live streaming is not in service. @return 0
int ONVIF_CLIENT_LIVESTREAM_Start(int token, int channel, NETNS::RTSP_NETPROTOCOL protocol,
                                  NETNS::RTSP_MEDIADATA_TYPE type, CRTSPReceiver* receiver, unsigned int* result);
/// @return whether there is such a login
bool ONVIF_CLIENT_LIVESTREAM_Stop(int token, int streamId);

/// The search for devices on the network is not in service: these three do nothing and return 1.
int ONVIF_SEARCH_Initial(void (*callback)(char*, int, const char*, void*), void* context, unsigned int option);
int ONVIF_SEARCH_StartManual();                             ///< see ONVIF_SEARCH_Initial
int ONVIF_SEARCH_Set_Config(char* name, const char* value); ///< see ONVIF_SEARCH_Initial

/// Ends the socket service, for everything else in the process too. @return 1
int ONVIF_SEARCH_Quit();
