#include "SegmentFile.h"

#include <algorithm>
#include <cstring>

#include <sys/stat.h>

namespace
{

constexpr std::size_t FILE_HEADER = 16;
constexpr std::size_t FRAME_HEADER = 24;
constexpr unsigned char MAGIC[8] = {'N', 'S', 'C', 'A', 'M', 'R', 'E', 'C'};
constexpr std::uint32_t VERSION = 1;
constexpr std::uint32_t FRAME_MARK = 0x4d415246;
constexpr std::uint32_t MAX_PAYLOAD = 16U * 1024 * 1024;

template <class Number>
void PutLE(unsigned char* out, Number value)
{
    for (std::size_t index = 0; index < sizeof(value); ++index)
    {
        out[index] = static_cast<unsigned char>(static_cast<std::uint64_t>(value) >> (8 * index));
    }
}

template <class Number>
Number GetLE(const unsigned char* in)
{
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < sizeof(Number); ++index)
    {
        value |= std::uint64_t{in[index]} << (8 * index);
    }
    return static_cast<Number>(value);
}

bool WriteAll(std::FILE* file, const unsigned char* data, std::size_t length)
{
    return length == 0 || std::fwrite(data, 1, length, file) == length;
}

} // namespace

bool CSegmentWriter::Open(const std::string& path)
{
    m_file.reset(std::fopen(path.c_str(), "wbxe"));
    m_bytes = 0;
    if (m_file == nullptr)
    {
        return false;
    }
    unsigned char header[FILE_HEADER] = {};
    std::copy(std::begin(MAGIC), std::end(MAGIC), header);
    PutLE(header + 8, VERSION);
    m_bytes = FILE_HEADER;
    return WriteAll(m_file.get(), header, sizeof(header));
}

bool CSegmentWriter::Write(const RecordedFrame& frame)
{
    if (m_file == nullptr || frame.payload.size() > MAX_PAYLOAD)
    {
        return false;
    }
    if (frame.keyFrame && std::fflush(m_file.get()) != 0)
    {
        return false;
    }
    unsigned char header[FRAME_HEADER] = {};
    PutLE(header, FRAME_MARK);
    header[4] = static_cast<unsigned char>(frame.kind);
    header[5] = frame.keyFrame ? 1 : 0;
    PutLE(header + 8, frame.timeUs);
    PutLE(header + 16, static_cast<std::uint32_t>(frame.payload.size()));
    m_bytes += sizeof(header) + frame.payload.size();
    return WriteAll(m_file.get(), header, sizeof(header)) &&
           WriteAll(m_file.get(), frame.payload.data(), frame.payload.size());
}

bool CSegmentWriter::Close()
{
    std::FILE* const file = m_file.release();
    return file == nullptr || std::fclose(file) == 0;
}

bool CSegmentReader::Open(const std::string& path)
{
    m_file.reset(std::fopen(path.c_str(), "rbe"));
    unsigned char header[FILE_HEADER] = {};
    return m_file != nullptr && std::fread(header, 1, sizeof(header), m_file.get()) == sizeof(header) &&
           std::memcmp(header, MAGIC, sizeof(MAGIC)) == 0 && GetLE<std::uint32_t>(header + 8) == VERSION;
}

/// Bytes from here to the end of the file as it is now.
long CSegmentReader::Left()
{
    const long here = std::ftell(m_file.get());
    struct stat status = {};
    return here >= 0 && fstat(fileno(m_file.get()), &status) == 0 ? static_cast<long>(status.st_size) - here : 0;
}

bool CSegmentReader::ReadHeader(Header& header)
{
    unsigned char bytes[FRAME_HEADER] = {};
    if (m_file == nullptr || std::fread(bytes, 1, sizeof(bytes), m_file.get()) != sizeof(bytes) ||
        GetLE<std::uint32_t>(bytes) != FRAME_MARK || bytes[4] > static_cast<unsigned char>(RecordedKind::Audio))
    {
        return false;
    }
    header.kind = static_cast<RecordedKind>(bytes[4]);
    header.keyFrame = bytes[5] != 0 && header.kind == RecordedKind::Video;
    header.timeUs = GetLE<std::int64_t>(bytes + 8);
    header.length = GetLE<std::uint32_t>(bytes + 16);
    return header.length <= MAX_PAYLOAD && header.timeUs >= 0;
}

/// @return false when the payload is not there whole
bool CSegmentReader::SkipPayload(const Header& header)
{
    return static_cast<long>(header.length) <= Left() &&
           std::fseek(m_file.get(), static_cast<long>(header.length), SEEK_CUR) == 0;
}

bool CSegmentReader::Next(RecordedFrame& frame)
{
    if (m_file == nullptr)
    {
        return false;
    }
    const long begin = std::ftell(m_file.get());
    Header header = {};
    if (ReadHeader(header) && static_cast<long>(header.length) <= Left())
    {
        frame.kind = header.kind;
        frame.keyFrame = header.keyFrame;
        frame.timeUs = header.timeUs;
        frame.payload.resize(header.length);
        if (header.length == 0 || std::fread(frame.payload.data(), 1, header.length, m_file.get()) == header.length)
        {
            return true;
        }
    }
    std::clearerr(m_file.get());
    std::fseek(m_file.get(), begin, SEEK_SET);
    return false;
}

bool CSegmentReader::SeekKeyFrame(std::int64_t timeUs)
{
    long found = -1;
    Header header = {};
    if (m_file == nullptr || std::fseek(m_file.get(), FILE_HEADER, SEEK_SET) != 0)
    {
        return false;
    }
    long at = FILE_HEADER;
    while (ReadHeader(header) && SkipPayload(header))
    {
        if (header.keyFrame && found >= 0 && header.timeUs > timeUs)
        {
            break;
        }
        found = header.keyFrame ? at : found;
        at = std::ftell(m_file.get());
    }
    return found >= 0 && std::fseek(m_file.get(), found, SEEK_SET) == 0;
}

std::int64_t CSegmentReader::LastTime()
{
    std::int64_t last = 0;
    Header header = {};
    while (ReadHeader(header) && SkipPayload(header))
    {
        last = std::max(last, header.timeUs);
    }
    return last;
}
