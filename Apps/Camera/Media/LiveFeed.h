// LiveFeed.h: hands encoded frames to the library, for every channel.
//
// The frames come on the media threads; the rest may be called on any thread.
#pragma once

#include "CameraStreams.h"
#include "FrameSink.h"

#include <atomic>
#include <mutex>

class CLiveFeed : public CFrameSink
{
public:
    explicit CLiveFeed(unsigned int channels) : m_channels(channels) {}

    void PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                  std::uint64_t presentationUs) override;
    void PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs) override;
    void PutJpeg(const std::vector<unsigned char>& picture, std::uint64_t presentationUs) override;

    /// Live sound is mu-law from now on, or A-law. Talk clients get A-law always.
    void SetUlaw(bool ulaw) { m_ulaw = ulaw; }
    bool IsUlaw() const { return m_ulaw; }

    /// What pictures show changes now: no snapshot taken before is handed out any more.
    void ForgetSnapshot();

    /// Hands the last snapshot over once more when no new one has come for a while. Called several times a second, so
    /// that a client's wait does not get longer with a lower frame rate.
    void RepeatSnapshot();

    /// Whether a key frame of each stream and some sound have come: every DESCRIBE is answered at once then.
    bool HasAll() const;

    /// Waits for all of them anew.
    void Restart();

private:
    void HandOverSnapshot();

    const unsigned int m_channels;
    std::atomic<bool> m_hasKeyFrame[STREAM_COUNT] = {};
    std::atomic<bool> m_hasSound{false};
    std::atomic<bool> m_ulaw{false};

    std::mutex m_snapshotLock;
    std::uint64_t m_snapshotsFromUs = 0;
    std::uint64_t m_handedOverUs = 0;
    std::vector<unsigned char> m_snapshot; // empty: none that may be handed out
};
