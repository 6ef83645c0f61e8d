// CameraStreams.h: which live streams are in use.
//
// The library calls on its RTSP scheduler thread; the camera asks from its main thread.
#pragma once

#include "CameraUsers.h"
#include "DefaultHost.h"

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
/// leaves its count behind. Whoever knows that no client is connected any more says so with ForgetAll.
class CCameraStreams : public CDefaultStreams
{
public:
    /// @param onOpen  called for each open, on the library's thread: must be quick
    /// @param login   whether RTSP clients must log in
    CCameraStreams(unsigned int channels, const CCameraUsers& users, bool login,
                   std::function<void(int stream)> onOpen);

    unsigned int OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out) override;
    void CloseLiveStream(unsigned int handle) override;
    int TalkBackStreamInput(unsigned char* data, int len, int encodeType) override;

    /// Whether the stream is in use on any channel.
    bool IsOpen(int stream) const;
    void ForgetAll();

private:
    const unsigned int m_channels;
    const CCameraUsers& m_users;
    const bool m_login;
    const std::function<void(int stream)> m_onOpen;

    mutable std::mutex m_lock;
    std::vector<std::uint64_t> m_uses; // by channel, then by stream
};
