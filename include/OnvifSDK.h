// OnvifSDK.h: the functions of the ONVIF side.
//
// The host logs in to cameras and reads and changes them through small XML documents; it never sees SOAP. Any thread
// may call; calls that ask a camera last until it has answered, 5 seconds at most for each request of a command, 8
// where it writes an encoder, and 40 seconds for a login. Requests and answers are described in docs/onvif-client.md.
#pragma once

#include "NetTypes.h"

class CONVIFAlarmStateObserver;
class CONVIFTraceObserver;
class CRTSPReceiver;

/// Starts the client side: the socket service, the listener of notifications on TCP port 6699 of all interfaces, and
/// the thread that checks the cameras. Call it once, before anything else here.
/// @return true, also when the port could not be opened
bool ONVIF_CLIENT_Initial();
/// Ends the socket service, for everything else in the process too, and then the client side.
/// @return true
bool ONVIF_CLIENT_Quit();

/// Logs in to a camera: finds its services and profiles. Nothing is kept open afterwards, and nothing renews or tests
/// the login; two logins to one camera are independent of each other.
/// @param token     0xFFFFFFFF for a new login; another value only asks whether that login stands, without a word to
///                  the camera
/// @param ip        dotted text; all requests go there, whatever addresses the camera names
/// @param port      of the camera's ONVIF services, host order
/// @param user      may be empty
/// @param password  may be empty; with the name at most 62 characters. With both empty, requests carry no security
///                  header
/// @param error     receives 0, or why the login failed: 4 no answer, 5 the camera reports a fault, 6 what answers does
///                  not talk SOAP, 401 the camera refuses the credentials; null: not asked for. Left alone when nothing
///                  is said to a camera
/// @return the login's token, from 1; 0xFFFFFFFF for a failure, an unknown token or a null text
unsigned int ONVIF_CLIENT_Login(unsigned int token, const char* ip, unsigned short port, const char* user,
                                const char* password, unsigned int* error);
/// Ends a login. A command that runs is carried out. Its observer stays: remove that first.
/// @param token  of the login
/// @return true, also for an unknown token
bool ONVIF_CLIENT_Logout(unsigned int token);

/// Reads from a camera. A key that is in no table ends the process: check what users type.
/// @param token     of the login
/// @param request   a "Get" document; borrowed for the call
/// @param response  set it to null before; receives the "GetResponse" document, or the picture of the key
///                  "snapshotURI". It goes back through ONVIF_CLIENT_DelResponseBuff
/// @param length    receives the length of `response`, for a document with the zero byte behind it; null: not asked for
/// @return false when a key could not be carried out; a fault that the camera reports is told in the document. True
///         with nothing in `response` for an unknown token
bool ONVIF_CLIENT_GetCfg(unsigned int token, const char* request, char*& response, int* length);
/// Changes a camera. A key that is in no table ends the process: check what users type.
/// @param token     of the login
/// @param request   a "Set" document; borrowed for the call
/// @param response  receives the "SetResponse" document, which goes back through ONVIF_CLIENT_DelResponseBuff; null
///                  when there is none
/// @return false when a key could not be carried out, and when there is no answer, as for an unknown token. Keys in
///         front of one that failed stay applied on the camera
bool ONVIF_CLIENT_SetCfg(unsigned int token, const char* request, char*& response);
/// Takes back a response. The pointer is left as it is.
/// @param buffer  a response of ONVIF_CLIENT_GetCfg or ONVIF_CLIENT_SetCfg, or null
void ONVIF_CLIENT_DelResponseBuff(char*& buffer);

/// Has the observer see each exchange with any camera, for diagnosis; without one, which is the state at the start,
/// nothing is recorded. Credentials are masked.
/// @param observer  borrowed until another one is set, or null, and the calls that ran then have returned
void ONVIF_CLIENT_SetTraceObserver(CONVIFTraceObserver* observer);

/// Has the observer hear of a camera's alarms; a second one replaces the first. Subscribes on the camera, which takes
/// as long as a command.
/// @param token     of the login
/// @param observer  borrowed until ONVIF_CLIENT_DelAlarmStateObserver has returned
/// @return true
bool ONVIF_CLIENT_AddAlarmStateObserver(unsigned int token, CONVIFAlarmStateObserver* observer);
/// Ends that. When it returns no call of the observer runs any more, except one from which it was called. A lock that
/// the observer takes must not be held by the caller.
/// @param token  of the login
/// @return true, also for an unknown token
bool ONVIF_CLIENT_DelAlarmStateObserver(unsigned int token);

/// Live streaming is not in service: nothing is looked at, and no receiver is called.
/// @param token     unused
/// @param channel   unused
/// @param protocol  unused
/// @param type      unused
/// @param receiver  unused
/// @param result    unused
/// @return 0
int ONVIF_CLIENT_LIVESTREAM_Start(int token, int channel, NETNS::RTSP_NETPROTOCOL protocol,
                                  NETNS::RTSP_MEDIADATA_TYPE type, CRTSPReceiver* receiver, unsigned int* result);
/// Live streaming is not in service: there is nothing to stop.
/// @param token     of the login
/// @param streamId  unused
/// @return whether there is such a login
bool ONVIF_CLIENT_LIVESTREAM_Stop(int token, int streamId);

/// The search for devices on the network is not in service: this and the next two do nothing.
/// @param callback  never called
/// @param context   unused
/// @param option    unused
/// @return 1
int ONVIF_SEARCH_Initial(void (*callback)(char*, int, const char*, void*), void* context, unsigned int option);
/// See ONVIF_SEARCH_Initial.
/// @return 1
int ONVIF_SEARCH_StartManual();
/// See ONVIF_SEARCH_Initial.
/// @param name   unused
/// @param value  unused
/// @return 1
int ONVIF_SEARCH_Set_Config(char* name, const char* value);

/// Ends the socket service, for everything else in the process too.
/// @return 1
int ONVIF_SEARCH_Quit();
