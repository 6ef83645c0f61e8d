// CameraStreams.h: the streams that RTSP clients open: live ones, recordings, talk.
//
// The library calls on its RTSP scheduler thread; the camera asks from its main thread.
#pragma once

#include "CameraUsers.h"
#include "DefaultHost.h"
#include "Playback.h"
#include "TalkSink.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

/// Streams of a channel, by the index that the library knows them by.
constexpr int MAIN_STREAM = 0;
constexpr int SUB_STREAM = 1;
constexpr int STREAM_COUNT = 2;

/// The path under which a stream plays: /live/ch1/main, /live/ch1/sub. No path occurs within another one: the library
/// looks for them anywhere in a request's URL.
std::string LivePath(unsigned int channel, int stream);

/// Counts the use of each live stream.
///
/// The library opens a stream for each DESCRIBE and closes it for a TEARDOWN only: a client that merely disconnects
/// leaves its count behind. Whoever knows that such clients are gone says so.
class CCameraStreams : public CDefaultStreams
{
public:
    /// What the streams work with; borrowed for their life.
    struct Parts
    {
        const CCameraUsers& users;
        CPlaybacks& playbacks;
        CTalkSink& talk;
    };

    /// @param login   whether RTSP clients must log in
    /// @param onOpen  called for each live open, on the library's thread: must be quick
    CCameraStreams(unsigned int channels, const Parts& parts, bool login, std::function<void(int stream)> onOpen);

    unsigned int OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out) override;
    void CloseLiveStream(unsigned int handle) override;
    unsigned int OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                               const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& out) override;
    void ClosePlayStream(unsigned int handle) override;
    unsigned int OpenTalkBackStream(const char* userInfoXml) override;
    void CloseTalkBackStream(unsigned int handle) override;
    int TalkBackStreamInput(unsigned char* data, int len, int encodeType) override;

    /// Whether the stream is in use on any channel.
    bool IsOpen(int stream) const;
    void ForgetAll();

    /// How many live streams clients have ever opened.
    std::uint64_t Opens() const;
    /// Forgets all, for clients that are gone. Does nothing when a stream was opened since `opens` was asked for: one
    /// count tells nobody whose it is.
    void ForgetUnlessOpenedSince(std::uint64_t opens);

private:
    bool MayOpen(const char* userInfoXml) const;

    const unsigned int m_channels;
    const Parts m_parts;
    const bool m_login;
    const std::function<void(int stream)> m_onOpen;

    mutable std::mutex m_lock;
    std::vector<std::uint64_t> m_uses; // by channel, then by stream
    std::uint64_t m_opens = 0;

    unsigned int m_talkers = 0; // scheduler thread, as what follows
    std::vector<std::int16_t> m_speech;
};
