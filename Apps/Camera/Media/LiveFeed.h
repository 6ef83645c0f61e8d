// LiveFeed.h: hands encoded frames to the library, for every channel.
//
// The frames come on the media threads; HasAll may be asked on any thread.
#pragma once

#include "CameraStreams.h"
#include "FrameSink.h"

#include <atomic>

class CLiveFeed : public CFrameSink
{
public:
    explicit CLiveFeed(unsigned int channels) : m_channels(channels) {}

    void PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                  std::uint64_t presentationUs) override;
    void PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs) override;

    /// Whether a key frame of each stream and some sound have come: every DESCRIBE is answered at once then.
    bool HasAll() const;

    /// Waits for all of them anew.
    void Restart();

private:
    const unsigned int m_channels;
    std::atomic<bool> m_hasKeyFrame[STREAM_COUNT] = {};
    std::atomic<bool> m_hasSound{false};
};
