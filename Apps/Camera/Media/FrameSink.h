// FrameSink.h: where encoded frames go.
#pragma once

#include <cstdint>
#include <vector>

/// Takes frames that fit the library's contract. Called on the media threads, one for each stream, one for
/// sound and one for snapshots.
class CFrameSink
{
public:
    virtual ~CFrameSink() = default;

    /// @param stream          MAIN_STREAM or SUB_STREAM
    /// @param presentationUs  microseconds of the monotonic clock, the same clock for pictures and sound
    virtual void PutVideo(int stream, const std::vector<unsigned char>& frame, bool keyFrame,
                          std::uint64_t presentationUs) = 0;
    /// @param chunk  40 ms of G.711 A-law behind the marker
    virtual void PutAudio(const std::vector<unsigned char>& chunk, std::uint64_t presentationUs) = 0;

    /// A picture for snapshots.
    virtual void PutJpeg(const std::vector<unsigned char>& picture, std::uint64_t presentationUs) = 0;
};
