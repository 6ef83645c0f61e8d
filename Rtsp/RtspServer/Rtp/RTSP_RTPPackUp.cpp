#include "RTSP_RTPPackUp.h"

#include "ByteOrder.h"
#include "PubHelper.h"
#include "StartCode.h"

#include <cstring>

namespace
{
constexpr unsigned int RTP_HEADER_BYTES = 12;
constexpr unsigned int INTERLEAVE_HEADER_BYTES = 4;
constexpr unsigned int FU_HEADER_BYTES = 2; // indicator and header

constexpr unsigned char FU_A = 28;
constexpr unsigned char FU_START = 0x80;
constexpr unsigned char FU_END = 0x40;
constexpr unsigned char NAL_REF_BITS = 0xE0; // forbidden bit and nal_ref_idc
constexpr unsigned char NAL_TYPE_BITS = 0x1F;

constexpr unsigned int AUDIO_STEP = 320; // ticks: 40 ms at 8000 Hz

struct RTP_HEADER_NO_CSRC
{
    bool marker;
    unsigned char payload;
    unsigned short sequence;
    unsigned int timestamp;
    unsigned int ssrc;
};

//  0                   1                   2                   3      RFC 3550, 5.1
//  0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9 0 1
// |V=2|P|X|  CC   |M|     PT      |       sequence number         |
// |                           timestamp                           |
// |                             SSRC                              |
void WriteRtpHeader(unsigned char* out, const RTP_HEADER_NO_CSRC& header)
{
    out[0] = 0x80; // version 2; no padding, no extension, no CSRC
    out[1] = static_cast<unsigned char>((header.marker ? 0x80 : 0) | header.payload);
    PutBE16(out + 2, header.sequence);
    PutBE32(out + 4, header.timestamp);
    PutBE32(out + 8, header.ssrc);
}

// |      '$'      |    channel    |            length             |   RFC 2326, 10.12
void WriteInterleaveHeader(unsigned char* out, unsigned char channel, unsigned int length)
{
    out[0] = '$';
    out[1] = channel;
    PutBE16(out + 2, static_cast<std::uint16_t>(length));
}

// A slice takes all the rest of its frame, so its body need not be searched: the slice of a P frame stands first, that
// of a key frame behind SPS, PPS and up to two SEI units.
bool IsLastSlice(int index, unsigned char header)
{
    if (index == 0)
        return header == 0x41 || header == 0x61;
    return index >= 2 && index <= 4 && header == 0x65;
}

// Where no slice ended the search, clients get the last unit with as many bytes as the frame has, the zero bytes behind
// the frame's end included. One shorter than a start code has its own length.
unsigned int LastUnitLength(unsigned int start, unsigned int frameLength)
{
    const unsigned int left = frameLength - start;
    return left >= START_CODE_BYTES ? frameLength : left;
}
} // namespace

CRTSP_RTPPackUp::CRTSP_RTPPackUp(StreamingMode mode, NETNS::RTSP_FRAME_TYPE frameType,
                                 NETNS::RTSP_ENCODE_TYPE /*encodeType*/, unsigned char payload, unsigned int clock,
                                 unsigned int ssrc, unsigned int initialTimestamp, unsigned char channel)
    : m_mode(mode), m_frameType(frameType), m_payload(payload), m_channel(channel), m_clock(clock), m_ssrc(ssrc),
      m_nextTimestamp(initialTimestamp), m_sequence(static_cast<unsigned short>(PUB_Rand() / 0x10000))
{
}

CRTSP_RTPPackUp::~CRTSP_RTPPackUp() = default;

int CRTSP_RTPPackUp::MakeUpPacket(CSharedData* frame, std::list<SENDING_COMMON_DATA>* out, unsigned int* timestamp)
{
    const NETNS::RTSP_FRAME& info = *frame->GetFrameInfo();
    const FrameBytes bytes = {frame->GetRtData(), static_cast<unsigned int>(frame->GetLength())};
    UnitTable table;
    ParseVideoData(bytes, table);
    *timestamp = CalculateTimestamp(info.presentationUs, info.frameType);
    for (int i = 0; i < table.count; ++i)
        PackUnit(bytes, table.units[i], i + 1 == table.count, out);
    return 0;
}

void CRTSP_RTPPackUp::ParseVideoData(const FrameBytes& frame, UnitTable& table) const
{
    if (m_frameType == NETNS::RTSP_FRAME_VIDEO)
        ParseVideoUnits(frame, table);
    else
        ParseAudioChunks(frame, table);
}

void CRTSP_RTPPackUp::ParseVideoUnits(const FrameBytes& frame, UnitTable& table)
{
    unsigned int start = FindStartCode(frame.data, 0, frame.length, NALU_BOUNDARY);
    while (start != START_CODE_NONE && table.count < MAX_UNITS)
    {
        start += START_CODE_BYTES;
        Unit& unit = table.units[table.count];
        unit.start = start;
        unit.length = frame.length - start;
        if (start < frame.length && IsLastSlice(table.count, frame.data[start]))
        {
            ++table.count;
            return;
        }
        ++table.count;
        // A start code right behind another is not seen: between two there is at least one byte.
        const unsigned int next = FindStartCode(frame.data, start + 1, frame.length, NALU_BOUNDARY);
        unit.length = next != START_CODE_NONE ? next - start : LastUnitLength(start, frame.length);
        start = next;
    }
}

void CRTSP_RTPPackUp::ParseAudioChunks(const FrameBytes& frame, UnitTable& table)
{
    unsigned int start = FindStartCode(frame.data, 0, frame.length, AUDIO_NALU_BOUNDARY);
    while (start != START_CODE_NONE && table.count < MAX_UNITS)
    {
        start += START_CODE_BYTES;
        const unsigned int next = FindStartCode(frame.data, start + 1, frame.length, AUDIO_NALU_BOUNDARY);
        table.units[table.count] = {start, (next != START_CODE_NONE ? next : frame.length) - start};
        ++table.count;
        start = next;
    }
}

// The time between two frames is rounded to 100 microseconds; sound goes in whole steps of 320 ticks.
unsigned int CRTSP_RTPPackUp::CalculateTimestamp(unsigned long long frameTimeUs, NETNS::RTSP_FRAME_TYPE frameType)
{
    unsigned int result = m_nextTimestamp;
    if (m_hasFirstFrame)
    {
        // Unsigned products wrap where a host's clock makes no sense; a clock that jumps back moves the stamp back.
        const auto differenceUs = static_cast<long long>(frameTimeUs - m_previousTimeUs + 50);
        const auto scaled = static_cast<unsigned long long>(differenceUs / 100) * (m_clock / 1000) * 100;
        const auto ticks = static_cast<std::uint32_t>(static_cast<long long>(scaled) / 1000);
        if (frameType == NETNS::RTSP_FRAME_VIDEO)
        {
            result += ticks;
        }
        else if (frameType == NETNS::RTSP_FRAME_AUDIO)
        {
            const long long signedTicks = static_cast<std::int32_t>(ticks);
            result += static_cast<std::uint32_t>((signedTicks + AUDIO_STEP / 2) / AUDIO_STEP * AUDIO_STEP);
        }
        else
        {
            result = 0;
        }
    }
    m_hasFirstFrame = true;
    m_previousTimeUs = frameTimeUs;
    m_nextTimestamp = result;
    return result;
}

unsigned int CRTSP_RTPPackUp::HeaderLength() const
{
    return RTP_HEADER_BYTES + (m_mode == STREAMING_TCP ? INTERLEAVE_HEADER_BYTES : 0);
}

void CRTSP_RTPPackUp::PackUnit(const FrameBytes& frame, const Unit& unit, bool lastOfFrame,
                               std::list<SENDING_COMMON_DATA>* out)
{
    if (unit.length == 0)
        return;
    if (unit.length <= PACKET_LIMIT - HeaderLength())
        PackSingle(frame, unit, lastOfFrame, out);
    else if (m_frameType == NETNS::RTSP_FRAME_VIDEO)
        PackFragments(frame, unit, lastOfFrame, out);
    // A longer chunk of sound has no fragments: it is not sent.
}

void CRTSP_RTPPackUp::PackSingle(const FrameBytes& frame, const Unit& unit, bool marker,
                                 std::list<SENDING_COMMON_DATA>* out)
{
    unsigned char* payload = AppendPacket(unit.length, marker, out);
    CopyPayload(frame, unit.start, payload, unit.length);
}

// |  FU indicator |   FU header   |   RFC 6184, 5.8
// |F|NRI|  28     |S|E|R|  type   |
void CRTSP_RTPPackUp::PackFragments(const FrameBytes& frame, const Unit& unit, bool lastOfFrame,
                                    std::list<SENDING_COMMON_DATA>* out)
{
    const unsigned int budget = PACKET_LIMIT - HeaderLength() - FU_HEADER_BYTES;
    const unsigned char header = frame.data[unit.start]; // not sent itself: the FU bytes carry it
    const auto indicator = static_cast<unsigned char>((header & NAL_REF_BITS) + FU_A);
    auto fuHeader = static_cast<unsigned char>((header & NAL_TYPE_BITS) | FU_START);
    unsigned int from = unit.start + 1;
    unsigned int left = unit.length - 1;
    while (left > 0)
    {
        const bool last = left <= budget;
        const unsigned int size = last ? left : budget;
        if (last)
            fuHeader |= FU_END;
        unsigned char* payload = AppendPacket(FU_HEADER_BYTES + size, last && lastOfFrame, out);
        payload[0] = indicator;
        payload[1] = fuHeader;
        CopyPayload(frame, from, payload + FU_HEADER_BYTES, size);
        fuHeader = header & NAL_TYPE_BITS;
        from += size;
        left -= size;
    }
}

// Returns where the payload goes; the caller writes all of it.
unsigned char* CRTSP_RTPPackUp::AppendPacket(unsigned int payloadLength, bool marker,
                                             std::list<SENDING_COMMON_DATA>* out)
{
    const unsigned int length = HeaderLength() + payloadLength;
    out->emplace_back();
    SENDING_COMMON_DATA& packet = out->back();
    packet.data = new char[length];
    packet.length = static_cast<int>(length);

    auto* bytes = reinterpret_cast<unsigned char*>(packet.data);
    if (m_mode == STREAMING_TCP)
    {
        WriteInterleaveHeader(bytes, m_channel, length - INTERLEAVE_HEADER_BYTES);
        bytes += INTERLEAVE_HEADER_BYTES;
    }
    WriteRtpHeader(bytes, {marker, m_payload, m_sequence, m_nextTimestamp, m_ssrc});
    ++m_sequence;
    return bytes + RTP_HEADER_BYTES;
}

// What lies behind the frame's end is zero bytes.
void CRTSP_RTPPackUp::CopyPayload(const FrameBytes& frame, unsigned int from, unsigned char* payload,
                                  unsigned int length)
{
    const unsigned int left = from < frame.length ? frame.length - from : 0;
    const unsigned int inFrame = length < left ? length : left;
    if (inFrame > 0)
        memcpy(payload, frame.data + from, inFrame);
    if (inFrame < length)
        memset(payload + inFrame, 0, length - inFrame);
}
