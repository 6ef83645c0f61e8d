// StreamCtrl.h: what the host implements so that RTSP clients can open live, recorded and talk streams.
#pragma once

#include "NetTypes.h"

/// The host's stream interface.
///
/// All operations are called on the RTSP scheduler thread, on which every RTSP client is served: an operation that
/// takes long stalls them all. No lock of the library is held, but NET_SERVER_RTSPStop waits for the call to return.
///
/// `userInfoXml` is `<?xml version="1.0" encoding="UTF-8"?>` and directly behind it
/// `<userinfo><username>..</username><password>..</password><ip>..</ip></userinfo>`, without the tabs of the text that
/// CDevInterface gets. It tells the user that passed the Digest check, in at most 255 bytes; user name and password are
/// empty when no login is required, and for a client that got past the login without a name: by an unreadable Basic
/// header, or a Digest over an empty name and password.
///
/// CDefaultStreams implements all of it for hosts whose live streams are always there.
class CStreamCtrl
{
public:
    virtual ~CStreamCtrl() = default;

    /// A client describes a live stream. Each DESCRIBE opens once more; only TEARDOWN closes, so a client that merely
    /// disconnects leaves its stream open, and a host that counts its use must allow for it. The client waits up to
    /// four seconds for the stream's first key frame, if there has been none yet.
    /// @param userInfoXml  who asks; borrowed for the call
    /// @param chn          channel registered with the URL
    /// @param stream       stream index registered with the URL
    /// @param out          set to 0 before the call, not read afterwards
    /// @return a handle for CloseLiveStream; any value, it is not checked. 39 is what talk sessions close.
    virtual unsigned int OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out) = 0;

    /// Keeps its place in the table of operations; nothing calls it.
    /// @return unused
    virtual int StreamReserved() = 0;

    /// A client tears down a live or a talk session (a talk session with handle 39).
    /// @param handle  what OpenLiveStream returned for the last DESCRIBE of the session
    virtual void CloseLiveStream(unsigned int handle) = 0;

    /// A client describes a recording: `/3?date=2016-1-2&time=8:30:0&timelen=600`.
    /// @param userInfoXml  who asks; borrowed for the call
    /// @param chn          channel number in the URL, as it stands there; all ones when there is none
    /// @param date         day of the beginning, not checked
    /// @param time         time of the beginning, not checked
    /// @param timeLen      seconds asked for
    /// @param out          set to 0 before the call, not read afterwards
    /// @return the handle with which the host then feeds NET_SERVER_PlayStreamIn; one for each session, neither 39 nor
    ///         the number of a live channel. The description waits up to four seconds for a key frame under it.
    virtual unsigned int OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                                       const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& out) = 0;

    /// A client tears down a playback session. A client that merely disconnects does not: let a playback end by itself.
    /// @param handle  what OpenRecStream returned
    virtual void ClosePlayStream(unsigned int handle) = 0;

    /// A client describes a talk URL, one that holds "talk" and nothing else that is known; "talkback" is taken for a
    /// live stream.
    /// @param userInfoXml  who asks; borrowed for the call
    /// @return a handle for CloseTalkBackStream; any value
    virtual unsigned int OpenTalkBackStream(const char* userInfoXml) = 0;

    /// A talk session ends, in whatever way.
    /// @param handle  what OpenTalkBackStream returned
    virtual void CloseTalkBackStream(unsigned int handle) = 0;

    /// One packet of a client's speech. No login is needed for it, and no talk URL: any RTSP connection may send it.
    /// @param data        the four bytes 00 01 A0 00, then G.711 A-law; borrowed for the call, and may be written to
    /// @param len         bytes in `data`, the four included
    /// @param encodeType  NETNS::RTSP_ENCODE_TALK
    /// @return not looked at
    virtual int TalkBackStreamInput(unsigned char* data, int len, int encodeType) = 0;
};
