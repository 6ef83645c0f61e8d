// SegmentFile.h: the file format of a recorded segment, written and read.
//
// A file is its 16 bytes "NSCAMREC", the version and four zero bytes, then frames. All numbers are little-endian:
//
//   frame:  0  u32  46 52 41 4d, "FRAM"
//           4  u8   0 video, 1 audio
//           5  u8   1 on a key frame
//           6  u16  0
//           8  i64  microseconds since 1970, UTC
//          16  u32  bytes of payload
//          20  u32  0
//          24       the payload, as NET_SERVER_PlayStreamIn takes it: H.264 in Annex B form, or G.711 A-law
//
// A file that was cut off anywhere is good up to its last whole frame. Local to one thread.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

enum class RecordedKind : unsigned char
{
    Video = 0,
    Audio = 1,
};

struct RecordedFrame
{
    RecordedKind kind = RecordedKind::Video;
    bool keyFrame = false;
    std::int64_t timeUs = 0;
    std::vector<unsigned char> payload;
};

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

class CSegmentWriter
{
public:
    /// Makes the file anew. @return false when it cannot be written
    bool Open(const std::string& path);

    /// Writes a frame; a key frame first puts all frames before it where a killed process does not lose them.
    /// @return false when the disk refuses
    bool Write(const RecordedFrame& frame);

    /// @return false when something of it is not on disk
    bool Close();

    bool IsOpen() const { return m_file != nullptr; }
    std::uint64_t Bytes() const { return m_bytes; }

private:
    FilePtr m_file;
    std::uint64_t m_bytes = 0;
};

class CSegmentReader
{
public:
    /// @return false when there is no such file or it is none of these
    bool Open(const std::string& path);

    /// Reads the next frame. @return false at the end and where the file is damaged; while the file is still being
    /// written, a later call finds what has been added
    bool Next(RecordedFrame& frame);

    /// Moves to the last key frame at or before a time; to the first one when all are later.
    /// @return false when there is no key frame
    bool SeekKeyFrame(std::int64_t timeUs);

    /// The time of the last whole frame; 0 when there is none. Reads on to the end.
    std::int64_t LastTime();

private:
    struct Header
    {
        RecordedKind kind;
        bool keyFrame;
        std::int64_t timeUs;
        std::uint32_t length;
    };
    bool ReadHeader(Header& header);
    bool SkipPayload(const Header& header);
    long Left();

    FilePtr m_file;
};
