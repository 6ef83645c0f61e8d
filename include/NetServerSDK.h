// NetServerSDK.h: the functions a host calls to serve HTTP and RTSP clients.
//
// Order: NET_SERVER_SetPolicy (if at all), NET_SERVER_Initial, NET_SERVER_Start, NET_SERVER_RTSPStart; then, at any
// time and from any thread, the stream and status functions; at the end NET_SERVER_RTSPStop, NET_SERVER_Stop,
// NET_SERVER_Quit. The life cycle functions are called from one thread.
#pragma once

#include "DevInterface.h"
#include "NetTypes.h"
#include "StreamCtrl.h"

/// Policy bit: RTSP as the standards have it, for hosts whose clients do not lean on the default behaviour.
/// Method words are compared whole (GET_PARAMETER and SET_PARAMETER answer with the client's CSeq); the RTP clock of a
/// live audio track is its sample rate, so that its time stamps advance; and a client that waits for a key frame does
/// not keep frames from the clients behind it.
constexpr unsigned int NET_POLICY_STANDARD_RTSP = 1;

/// Policy bit: the device stays silent. Set before NET_SERVER_Initial: no multicast socket is opened, nothing is
/// announced over UPnP, and the description port stays shut.
constexpr unsigned int NET_POLICY_NO_ANNOUNCE = 2;

/// Chooses behaviour by policy bits (0 by default). Takes effect for connections made afterwards,
/// NET_POLICY_NO_ANNOUNCE with the next NET_SERVER_Initial. Any thread.
void NET_SERVER_SetPolicy(unsigned int bits);

/// The bits last set. Any thread.
unsigned int NET_SERVER_GetPolicy();

/// Brings the library up. Meant to run once. The device gets a new UPnP identity (UDN).
/// @param channels    number of video channels
/// @param alarmOuts   number of alarm outputs
/// @param sensors     number of alarm inputs
/// @param dev         the device; borrowed until NET_SERVER_Quit, must be safe from several threads
/// @param stream      not read here; see NET_SERVER_RTSPStart
/// @param oldVersion  text in web files that is replaced when they are served; copied
/// @param newVersion  what it is replaced with, of the same length; copied
/// @param flags       bit 0 set: the XML API is served; clear: static files only
/// @param type        not read
/// @return 1; 0 when the socket service could not be started
int NET_SERVER_Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors, CDevInterface* dev,
                       CStreamCtrl* stream, const char* oldVersion, const char* newVersion, unsigned int flags,
                       NETNS::DEV_TYPE type);

/// Serves HTTP on a port, and announces the device over UPnP: once on each Ethernet or bond interface, with the
/// description on port 33899. May be called again, which announces again.
/// @param webRoot  directory of the web pages
/// @param cfgFile  path of the library's own settings file
/// @return 0, also when the port could not be opened
int NET_SERVER_Start(unsigned short port, const char* webRoot, const char* cfgFile);

/// Moves the HTTP server to another port; the same port is closed and opened again. @return 1
int NET_SERVER_SetHttpPort(unsigned short port);

/// Serves RTSP on a port (RFC 2326). Does nothing while RTSP runs.
/// @param stream, dev  borrowed until NET_SERVER_RTSPStop
/// @return 0, also when the port could not be opened
int NET_SERVER_RTSPStart(unsigned short port, CStreamCtrl* stream, CDevInterface* dev);

/// Registers a live URL: a request URL that holds `url` plays this stream. The first registration of a text wins; when
/// several registered texts occur in a request URL the last in text order wins. @return 0
int NET_SERVER_SetLiveRTSPUrl(unsigned int channel, int stream, const char* url);

/// Feeds a live frame. Audio is delivered once per channel and reaches every stream that has a URL there.
/// @param data  the payload, borrowed for the call and copied at most once
/// @return 0 whatever becomes of the frame
int NET_SERVER_LiveStreamIn(unsigned int channel, int stream, const NETNS::RTSP_FRAME& frame, void* data);

/// Feeds a recorded frame to the playback with this handle (CStreamCtrl::OpenRecStream). @return 0
int NET_SERVER_PlayStreamIn(unsigned int channel, const NETNS::RTSP_FRAME& frame, void* data);

/// Feeds a frame of the device's own sound to talk clients. @return 0
int NET_SERVER_TalkBackStreamIn(const NETNS::RTSP_FRAME& frame, void* data);

/// Reports the motion state of a channel, counted from 0. Each report, also one that changes nothing, is pushed to the
/// alarm server before the call returns: at once when it is near, within some seconds when it is not. @return 0
int NET_SERVER_SetMotionStatus(unsigned int channel, bool active);

/// The same for the state of an alarm input, counted from 0. @return 0
int NET_SERVER_SetSensorStatus(unsigned int id, bool active);

/// The same for the video-loss state of a channel, counted from 0. @return 0
int NET_SERVER_SetVideoLossStatus(unsigned int channel, bool active);

/// Ends RTSP: the scheduler thread first, then every session. Does nothing while RTSP is stopped. @return 0
int NET_SERVER_RTSPStop();

/// Ends HTTP and the UPnP description; nothing is announced. @return 0
int NET_SERVER_Stop();

/// Ends the socket service with its threads and sockets; starting again needs NET_SERVER_Initial. Requests that are
/// inside the device come out first, for which it waits five seconds at most; called from inside a request it does not.
/// @return 1
int NET_SERVER_Quit();

int NET_SERVER_GetVersion();      ///< @return 0
int NET_SERVER_GetOnvifVersion(); ///< @return 0
int NET_SERVER_GetAPIVersion();   ///< @return 0
