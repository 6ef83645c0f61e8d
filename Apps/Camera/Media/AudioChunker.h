// AudioChunker.h: cuts a stream of G.711 bytes into the chunks that the library sends as RTP packets.
//
// RFC 3551, 4.5.14: 8000 samples a second, one byte each. Local to one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// Collects G.711 in pieces of any length and hands out chunks of 40 ms, each behind the marker 00 01 A0 00.
///
/// Time stamps are counted from the first sample on, so they advance by exactly 40 ms. When the source's own time is
/// more than a chunk away from the count (sound was lost), counting starts again from the source's time.
class CAudioChunker
{
public:
    static constexpr std::size_t CHUNK_BYTES = 320;
    static constexpr std::uint64_t CHUNK_US = 40000;

    /// @param sink  gets each chunk with its marker, 324 bytes, and the time of its first sample
    using Sink = std::function<void(std::uint64_t presentationUs, const std::vector<unsigned char>& chunk)>;
    explicit CAudioChunker(Sink sink);

    /// @param presentationUs  time of the first byte
    void Push(std::uint64_t presentationUs, const unsigned char* data, std::size_t length);

private:
    bool IsFarFrom(std::uint64_t presentationUs) const;
    void Restart(std::uint64_t presentationUs);

    const Sink m_sink;
    std::vector<unsigned char> m_chunk; // the marker and what was collected so far
    std::uint64_t m_chunkUs = 0;        // time of the first byte behind the marker
    bool m_started = false;
};
