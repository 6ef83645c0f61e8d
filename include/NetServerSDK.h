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

/// Chooses behaviour by policy bits. Takes effect for connections made afterwards, NET_POLICY_NO_ANNOUNCE with the next
/// NET_SERVER_Initial. Any thread.
/// @param bits  any of the NET_POLICY bits, or 0 as at the start; other bits are kept and do nothing
void NET_SERVER_SetPolicy(unsigned int bits);

/// Tells the behaviour that was chosen. Any thread.
/// @return the bits last set
unsigned int NET_SERVER_GetPolicy();

/// Brings the library up. Meant to run once. The device gets a new UPnP identity (UDN).
/// @param channels    number of video channels; alarm states of channels beyond are not taken
/// @param alarmOuts   number of alarm outputs, as clients see it
/// @param sensors     number of alarm inputs; states of inputs beyond are not taken
/// @param dev         the device; borrowed until NET_SERVER_Quit, must be safe from several threads
/// @param stream      not read here; see NET_SERVER_RTSPStart
/// @param oldVersion  text in web files that is replaced when they are served; copied, empty for none
/// @param newVersion  what it is replaced with, of the same length; copied
/// @param flags       bit 0 set: the XML API is served; clear: static files only
/// @param type        not read
/// @return 1; 0 when the socket service could not be started
int NET_SERVER_Initial(unsigned int channels, unsigned int alarmOuts, unsigned int sensors, CDevInterface* dev,
                       CStreamCtrl* stream, const char* oldVersion, const char* newVersion, unsigned int flags,
                       NETNS::DEV_TYPE type);

/// Serves HTTP on a port, and announces the device over UPnP: once on each Ethernet or bond interface, with the
/// description on port 33899. May be called again, which announces again.
/// @param port     TCP port on all interfaces; 0 lets the system choose
/// @param webRoot  directory of the web pages; copied. URLs with ".." lead out of it
/// @param cfgFile  path of the library's own settings file, made when it is first needed, in a directory that may be
///                 written; copied. It keeps the address of the alarm server and nothing else
/// @return 0, also when the port could not be opened
int NET_SERVER_Start(unsigned short port, const char* webRoot, const char* cfgFile);

/// Moves the HTTP server to another port; the same port is closed and opened again. Requests that are being served are
/// answered; connections that wait for a worker get no answer.
/// @param port  TCP port on all interfaces
/// @return 1, also when the port could not be opened
int NET_SERVER_SetHttpPort(unsigned short port);

/// Serves RTSP on a port (RFC 2326). Does nothing while RTSP runs. Starts the socket service, if need be. The first
/// call of an RTSP function has the process ignore SIGPIPE.
/// @param port    TCP port on all interfaces
/// @param stream  the streams; borrowed until NET_SERVER_RTSPStop
/// @param dev     the users; borrowed until NET_SERVER_RTSPStop
/// @return 0, also when the port could not be opened
int NET_SERVER_RTSPStart(unsigned short port, CStreamCtrl* stream, CDevInterface* dev);

/// Registers a live URL: a request URL that holds `url` plays this stream. The first registration of a text wins and
/// lasts for the life of the process; when several registered texts occur in a request URL the last in text order wins.
/// Any thread.
/// @param channel  as in NET_SERVER_LiveStreamIn; not 39, which stands for talk
/// @param stream   index of the stream, from 0; not 29 or 39, which stand for playback and talk
/// @param url      such as "/live/ch1/main"; copied
/// @return 0
int NET_SERVER_SetLiveRTSPUrl(unsigned int channel, int stream, const char* url);

/// Feeds a live frame. Audio is delivered once per channel and reaches every stream that has a URL there. Any thread,
/// also several at once for different streams; frames of one stream come in order. The caller is not held up by
/// clients.
/// @param channel  from 1; not 39, which stands for talk
/// @param stream   index of the stream, from 0; not 29 or 39, which stand for playback and talk
/// @param frame    what `data` is; borrowed for the call
/// @param data     the payload, `frame.length` bytes, borrowed for the call and copied at most once, and only when a
///                 client plays the stream or waits for the snapshot
/// @return 0 whatever becomes of the frame
int NET_SERVER_LiveStreamIn(unsigned int channel, int stream, const NETNS::RTSP_FRAME& frame, void* data);

/// Feeds a recorded frame to a playback. Any thread. The pace is the host's: what comes faster than a client takes it
/// is dropped from two seconds on.
/// @param channel  the handle that CStreamCtrl::OpenRecStream returned
/// @param frame    what `data` is; borrowed for the call
/// @param data     the payload; borrowed for the call
/// @return 0 whatever becomes of the frame
int NET_SERVER_PlayStreamIn(unsigned int channel, const NETNS::RTSP_FRAME& frame, void* data);

/// Feeds a frame of the device's own sound to all talk clients. Any thread.
/// @param frame  what `data` is: audio, G.711 A-law at 8000 Hz; borrowed for the call
/// @param data   the payload; borrowed for the call
/// @return 0 whatever becomes of the frame
int NET_SERVER_TalkBackStreamIn(const NETNS::RTSP_FRAME& frame, void* data);

/// Reports the motion state of a channel. Each report, also one that changes nothing, is pushed to the alarm server
/// before the call returns: at once when it is near, within some seconds when it is not. Any thread, but not one that
/// feeds frames.
/// @param channel  counted from 0; one beyond the number of channels is logged and dropped
/// @param active   true: motion
/// @return 0
int NET_SERVER_SetMotionStatus(unsigned int channel, bool active);

/// Reports the state of an alarm input, as NET_SERVER_SetMotionStatus does for motion.
/// @param id      counted from 0; one beyond the number of inputs is logged and dropped
/// @param active  true: alarm
/// @return 0
int NET_SERVER_SetSensorStatus(unsigned int id, bool active);

/// Reports the loss of a channel's video signal, as NET_SERVER_SetMotionStatus does for motion.
/// @param channel  counted from 0; one beyond the number of channels is logged and dropped
/// @param active   true: no signal
/// @return 0
int NET_SERVER_SetVideoLossStatus(unsigned int channel, bool active);

/// Ends RTSP: the scheduler thread first, then every session. Clients that wait for a snapshot are let go. Does nothing
/// while RTSP is stopped. Not to be called from CStreamCtrl or CDevInterface.
/// @return 0
int NET_SERVER_RTSPStop();

/// Ends HTTP and the UPnP description; nothing is announced. Requests that are being served are answered.
/// @return 0
int NET_SERVER_Stop();

/// Ends the socket service with its threads and sockets; starting again needs NET_SERVER_Initial. Requests that are
/// inside the device come out first, for which it waits five seconds at most; called from inside a request it does not.
/// @return 1
int NET_SERVER_Quit();

/// Kept for hosts that call it.
/// @return 0
int NET_SERVER_GetVersion();
/// Kept for hosts that call it.
/// @return 0
int NET_SERVER_GetOnvifVersion();
/// Kept for hosts that call it.
/// @return 0
int NET_SERVER_GetAPIVersion();
