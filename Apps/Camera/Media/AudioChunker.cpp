#include "AudioChunker.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr unsigned char MARKER[] = {0x00, 0x01, 0xa0, 0x00};
constexpr std::uint64_t SAMPLE_US = 125;

} // namespace

CAudioChunker::CAudioChunker(Sink sink) : m_sink(std::move(sink)) {}

void CAudioChunker::Push(std::uint64_t presentationUs, const unsigned char* data, std::size_t length)
{
    if (!m_started || IsFarFrom(presentationUs))
    {
        Restart(presentationUs);
    }
    while (length > 0)
    {
        const std::size_t room = sizeof(MARKER) + CHUNK_BYTES - m_chunk.size();
        const std::size_t taken = std::min(room, length);
        m_chunk.insert(m_chunk.end(), data, data + taken);
        data += taken;
        length -= taken;
        if (taken == room)
        {
            m_sink(m_chunkUs, m_chunk);
            Restart(m_chunkUs + CHUNK_US);
        }
    }
}

bool CAudioChunker::IsFarFrom(std::uint64_t presentationUs) const
{
    const std::uint64_t expected = m_chunkUs + (m_chunk.size() - sizeof(MARKER)) * SAMPLE_US;
    const std::uint64_t distance = presentationUs > expected ? presentationUs - expected : expected - presentationUs;
    return distance > CHUNK_US;
}

void CAudioChunker::Restart(std::uint64_t presentationUs)
{
    m_started = true;
    m_chunkUs = presentationUs;
    m_chunk.assign(MARKER, MARKER + sizeof(MARKER));
}
