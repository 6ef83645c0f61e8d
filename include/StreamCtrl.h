// StreamCtrl.h: what the host implements so that RTSP clients can open live, recorded and talk streams.
#pragma once

#include "NetTypes.h"

/// The host's stream interface.
///
/// All operations are called on the RTSP scheduler thread, on which every RTSP client is served: an operation that
/// takes long stalls them all. `userInfoXml` is the text
/// `<?xml version="1.0"
/// encoding="UTF-8"?><userinfo><username>..</username><password>..</password><ip>..</ip></userinfo>` of the user that
/// passed the Digest check; user name and password are empty when no login is required.
class CStreamCtrl
{
public:
    virtual ~CStreamCtrl() = default;

    /// A client describes a live stream. Each DESCRIBE opens once more; only TEARDOWN closes, so a client that merely
    /// disconnects leaves its stream open, and a host that counts its use must allow for it.
    /// @param chn     channel registered with the URL
    /// @param stream  stream index registered with the URL
    /// @param out     set to 0 before the call, not read afterwards
    /// @return a handle for CloseLiveStream; any value, it is not checked
    virtual unsigned int OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out) = 0;

    /// Keeps its place in the table of operations; nothing calls it.
    virtual int StreamReserved() = 0;

    /// A client tears down a live or a talk session (a talk session with handle 39).
    virtual void CloseLiveStream(unsigned int handle) = 0;

    /// A client describes a recording: `/3?date=2016-1-2&time=8:30:0&timelen=600`.
    /// @param chn      channel number in the URL; all ones when there is none
    /// @param timeLen  seconds asked for
    /// @param out      set to 0 before the call, not read afterwards
    /// @return the handle with which the host then feeds NET_SERVER_PlayStreamIn
    virtual unsigned int OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                                       const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& out) = 0;

    /// A client tears down a playback session.
    virtual void ClosePlayStream(unsigned int handle) = 0;

    /// A client describes a talk URL. @return a handle for CloseTalkBackStream
    virtual unsigned int OpenTalkBackStream(const char* userInfoXml) = 0;

    /// A talk session ends, in whatever way.
    virtual void CloseTalkBackStream(unsigned int handle) = 0;

    /// One packet of a client's speech.
    /// @param data        the four bytes 00 01 A0 00, then G.711 A-law; borrowed for the call
    /// @param len         bytes in `data`
    /// @param encodeType  NETNS::RTSP_ENCODE_TALK
    /// @return not looked at
    virtual int TalkBackStreamInput(unsigned char* data, int len, int encodeType) = 0;
};
