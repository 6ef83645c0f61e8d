#include "RTSP_RTPPackUp.h"

#include <gtest/gtest.h>

#include <cstring>
#include <list>
#include <string>
#include <vector>

namespace
{
constexpr NETNS::RTSP_FRAME_TYPE VIDEO = NETNS::RTSP_FRAME_VIDEO;
constexpr NETNS::RTSP_FRAME_TYPE AUDIO = NETNS::RTSP_FRAME_AUDIO;

std::string Bytes(std::initializer_list<int> values)
{
    std::string bytes;
    for (int value : values)
        bytes.push_back(static_cast<char>(value));
    return bytes;
}

std::string Unit(const std::string& bytes)
{
    return Bytes({0, 0, 0, 1}) + bytes;
}

std::string Chunk(const std::string& bytes)
{
    return Bytes({0, 1, 0xA0, 0}) + bytes;
}

// A NAL unit of `length` bytes: the header, then 1, 2, 3 ... 250, again and again, so that a byte out of place is seen.
std::string Nal(int header, std::size_t length)
{
    std::string bytes = Bytes({header});
    for (std::size_t i = 1; i < length; ++i)
        bytes.push_back(static_cast<char>((i - 1) % 250 + 1));
    return bytes;
}

unsigned int Get16(const std::string& packet, std::size_t at)
{
    return static_cast<unsigned char>(packet[at]) * 256u + static_cast<unsigned char>(packet[at + 1]);
}

unsigned int Get32(const std::string& packet, std::size_t at)
{
    return (Get16(packet, at) << 16) + Get16(packet, at + 2);
}

constexpr std::size_t RTP = 12; // bytes of the RTP header

bool Marker(const std::string& packet)
{
    return (static_cast<unsigned char>(packet[1]) & 0x80) != 0;
}

// One packetiser and what it made of the last frame.
class Track
{
public:
    Track(StreamingMode mode, NETNS::RTSP_FRAME_TYPE type, unsigned int clock)
        : m_type(type), m_packUp(mode, type, NETNS::RTSP_ENCODE_H264, 96, clock, 0x11223344, 1000, 5)
    {
    }

    std::vector<std::string> Pack(const std::string& payload, unsigned long long timeUs = 0)
    {
        NETNS::RTSP_FRAME info = {};
        info.frameType = m_type;
        info.presentationUs = timeUs;
        info.length = static_cast<unsigned int>(payload.size());
        auto* frame = new CSharedData(info, payload.data());
        frame->Add();
        std::list<SENDING_COMMON_DATA> packets;
        EXPECT_EQ(0, m_packUp.MakeUpPacket(frame, &packets, &m_timestamp));
        frame->Dec();
        std::vector<std::string> texts;
        for (const SENDING_COMMON_DATA& packet : packets)
        {
            EXPECT_EQ(0, packet.sent);
            texts.emplace_back(packet.data, static_cast<std::size_t>(packet.length));
            delete[] packet.data;
        }
        return texts;
    }

    unsigned int Timestamp(unsigned long long timeUs)
    {
        Pack("", timeUs);
        return m_timestamp;
    }

    CRTSP_RTPPackUp& PackUp() { return m_packUp; }

private:
    const NETNS::RTSP_FRAME_TYPE m_type;
    CRTSP_RTPPackUp m_packUp;
    unsigned int m_timestamp = 0;
};

Track UdpVideo()
{
    return Track(STREAMING_UDP, VIDEO, 90000);
}
Track TcpVideo()
{
    return Track(STREAMING_TCP, VIDEO, 90000);
}
Track UdpAudio()
{
    return Track(STREAMING_UDP, AUDIO, 8000);
}
} // namespace

TEST(RTSP_RTPPackUp, UdpPacketIsRtpHeaderAndUnit)
{
    Track track = UdpVideo();
    const unsigned short sequence = track.PackUp().GetCurrentSeqNo();
    const std::vector<std::string> packets = track.Pack(Unit(Bytes({0x41, 0xAA, 0xBB})));
    ASSERT_EQ(1u, packets.size());
    EXPECT_EQ(Bytes({
                  0x80,                           // version 2, no padding, no extension, no CSRC
                  0xE0,                           // marker, payload type 96
                  sequence >> 8, sequence & 0xFF, // sequence number
                  0x00, 0x00, 0x03, 0xE8,         // timestamp 1000
                  0x11, 0x22, 0x33, 0x44,         // SSRC
                  0x41, 0xAA, 0xBB,               // the unit without its start code
              }),
              packets[0]);
}

TEST(RTSP_RTPPackUp, TcpPacketHasTheInterleaveHeaderInFront)
{
    Track track = TcpVideo();
    const std::vector<std::string> packets = track.Pack(Unit(Bytes({0x41, 0xAA, 0xBB})));
    ASSERT_EQ(1u, packets.size());
    ASSERT_EQ(19u, packets[0].size());
    EXPECT_EQ(Bytes({'$', 5, 0, 15}), packets[0].substr(0, 4)); // channel 5, 15 bytes
    EXPECT_EQ(Bytes({0x80, 0xE0}), packets[0].substr(4, 2));
    EXPECT_EQ(Bytes({0x41, 0xAA, 0xBB}), packets[0].substr(16));
}

TEST(RTSP_RTPPackUp, SequenceNumbersGoUpByOne)
{
    Track track = UdpVideo();
    const unsigned short first = track.PackUp().GetCurrentSeqNo();
    EXPECT_LT(first, 0x8000); // 31 random bits, the upper fifteen
    const std::vector<std::string> packets = track.Pack(Unit(Nal(0x41, 4000)));
    ASSERT_EQ(3u, packets.size());
    for (unsigned int i = 0; i < 3; ++i)
        EXPECT_EQ((first + i) & 0xFFFF, Get16(packets[i], 2));
    EXPECT_EQ((first + 3) & 0xFFFF, track.PackUp().GetCurrentSeqNo());
}

TEST(RTSP_RTPPackUp, SequenceNumbersWrapAt16Bits)
{
    Track track = UdpVideo();
    unsigned int last = track.PackUp().GetCurrentSeqNo();
    const std::string frame = Unit("\x41");
    while (last != 0xFFFF)
        last = Get16(track.Pack(frame)[0], 2);
    EXPECT_EQ(0u, Get16(track.Pack(frame)[0], 2));
}

struct SizeCase
{
    const char* name;
    StreamingMode mode;
    std::size_t unit;
    std::vector<std::size_t> packets;
};

const SizeCase SIZE_CASES[] = {
    {"UdpOneByte", STREAMING_UDP, 1, {13}},
    {"UdpWholePacket", STREAMING_UDP, 1460, {1472}},
    {"UdpOneMore", STREAMING_UDP, 1461, {1472, 16}},        // 1458 and 2 bytes behind the unit's header
    {"UdpTwoFragments", STREAMING_UDP, 2917, {1472, 1472}}, // 1 + 2 * 1458
    {"UdpThreeFragments", STREAMING_UDP, 2918, {1472, 1472, 15}},
    {"TcpOneByte", STREAMING_TCP, 1, {17}},
    {"TcpWholePacket", STREAMING_TCP, 1456, {1472}},
    {"TcpOneMore", STREAMING_TCP, 1457, {1472, 20}},        // 1454 and 2 bytes
    {"TcpTwoFragments", STREAMING_TCP, 2909, {1472, 1472}}, // 1 + 2 * 1454
    {"TcpThreeFragments", STREAMING_TCP, 2910, {1472, 1472, 19}},
};

void PrintTo(const SizeCase& row, std::ostream* out)
{
    *out << row.name;
}

class RTSP_RTPPackUpSize : public testing::TestWithParam<SizeCase>
{
};

TEST_P(RTSP_RTPPackUpSize, IsAsStatedAndTheUnitComesWhole)
{
    const SizeCase& row = GetParam();
    Track track(row.mode, VIDEO, 90000);
    const std::string nal = Nal(0x41, row.unit);
    const std::vector<std::string> packets = track.Pack(Unit(nal));
    const std::size_t header = row.mode == STREAMING_TCP ? 16 : 12;

    std::vector<std::size_t> sizes;
    std::string together;
    for (const std::string& packet : packets)
    {
        sizes.push_back(packet.size());
        if (row.mode == STREAMING_TCP)
        {
            EXPECT_EQ(packet.size() - 4, Get16(packet, 2));
        }
        together += packet.substr(packets.size() == 1 ? header : header + 2);
    }
    EXPECT_EQ(row.packets, sizes);
    EXPECT_EQ(packets.size() == 1 ? nal : nal.substr(1), together);
}

INSTANTIATE_TEST_SUITE_P(Units, RTSP_RTPPackUpSize, testing::ValuesIn(SIZE_CASES),
                         [](const testing::TestParamInfo<SizeCase>& row) { return std::string(row.param.name); });

TEST(RTSP_RTPPackUp, LargestTcpPacketCountsItsLengthWithoutTheInterleaveHeader)
{
    const std::vector<std::string> packets = TcpVideo().Pack(Unit(Nal(0x41, 1456)));
    ASSERT_EQ(1472u, packets[0].size());
    EXPECT_EQ(1468u, Get16(packets[0], 2));
}

TEST(RTSP_RTPPackUp, FragmentsSayWhereTheyStand)
{
    const std::vector<std::string> packets = UdpVideo().Pack(Unit(Nal(0x61, 4000)));
    ASSERT_EQ(3u, packets.size());
    EXPECT_EQ(Bytes({0x7C, 0x81}), packets[0].substr(RTP, 2)); // reference 3, FU-A; start, type 1
    EXPECT_EQ(Bytes({0x7C, 0x01}), packets[1].substr(RTP, 2));
    EXPECT_EQ(Bytes({0x7C, 0x41}), packets[2].substr(RTP, 2)); // end
    EXPECT_FALSE(Marker(packets[0]));
    EXPECT_FALSE(Marker(packets[1]));
    EXPECT_TRUE(Marker(packets[2]));
    EXPECT_EQ(1, packets[0][RTP + 2]); // the byte behind the unit's header
}

TEST(RTSP_RTPPackUp, MarkerIsOnTheLastFragmentOfAKeyFrameOnly)
{
    const std::vector<std::string> packets = UdpVideo().Pack(Unit("\x67sps") + Unit("\x68pps") + Unit(Nal(0x65, 2000)));
    ASSERT_EQ(4u, packets.size());
    EXPECT_EQ("\x67sps", packets[0].substr(RTP));
    EXPECT_EQ("\x68pps", packets[1].substr(RTP));
    EXPECT_EQ(Bytes({0x7C, 0x85}), packets[2].substr(RTP, 2));
    EXPECT_EQ(Bytes({0x7C, 0x45}), packets[3].substr(RTP, 2));
    EXPECT_FALSE(Marker(packets[0]));
    EXPECT_FALSE(Marker(packets[1]));
    EXPECT_FALSE(Marker(packets[2]));
    EXPECT_TRUE(Marker(packets[3]));
}

TEST(RTSP_RTPPackUp, AllPacketsOfAFrameCarryItsTimestamp)
{
    Track track = UdpVideo();
    track.Pack(Unit("\x41"));
    for (const std::string& packet : track.Pack(Unit("\x67sps") + Unit("\x68pps") + Unit(Nal(0x65, 2000)), 40000))
        EXPECT_EQ(4600u, Get32(packet, 4)); // 1000 and 40 ms at 90 kHz
}

struct SliceCase
{
    const char* name;
    std::vector<int> before; // headers of the units in front, of two bytes each
    int slice;
    bool wholeRest; // the slice takes a start code inside it for its own bytes
};

const SliceCase SLICE_CASES[] = {
    {"P", {}, 0x41, true},
    {"PHighReference", {}, 0x61, true},
    {"PWithoutReference", {}, 0x01, false},
    {"PBehindSei", {0x06}, 0x41, false},
    {"KeyFrame", {0x67, 0x68}, 0x65, true},
    {"KeyFrameAndSei", {0x67, 0x68, 0x06}, 0x65, true},
    {"KeyFrameAndTwoSei", {0x67, 0x68, 0x06, 0x06}, 0x65, true},
    {"KeyFrameAndThreeSei", {0x67, 0x68, 0x06, 0x06, 0x06}, 0x65, false},
    {"KeyFrameWithoutSets", {}, 0x65, false},
    {"KeyFrameWithOneSet", {0x67}, 0x65, false},
};

void PrintTo(const SliceCase& row, std::ostream* out)
{
    *out << row.name;
}

class RTSP_RTPPackUpSlice : public testing::TestWithParam<SliceCase>
{
};

TEST_P(RTSP_RTPPackUpSlice, EndsTheSearchOrNot)
{
    const SliceCase& row = GetParam();
    std::string frame;
    for (int header : row.before)
        frame += Unit(Bytes({header, 0x77}));
    const std::string slice = Bytes({row.slice, 0x11}) + Unit(Bytes({0x22, 0x33, 0x44, 0x55}));
    const std::vector<std::string> packets = UdpVideo().Pack(frame + Unit(slice));
    ASSERT_EQ(row.before.size() + (row.wholeRest ? 1 : 2), packets.size());
    EXPECT_EQ(row.wholeRest ? slice : slice.substr(0, 2), packets[row.before.size()].substr(RTP));
}

INSTANTIATE_TEST_SUITE_P(Slices, RTSP_RTPPackUpSlice, testing::ValuesIn(SLICE_CASES),
                         [](const testing::TestParamInfo<SliceCase>& row) { return std::string(row.param.name); });

// Where no slice ended the search, the last unit is as long as the whole frame: the bytes behind the frame are zeros.
TEST(RTSP_RTPPackUp, LastUnitIsAsLongAsTheFrameWithZerosBehindIt)
{
    const std::vector<std::string> packets = UdpVideo().Pack(Unit(Bytes({0x01, 0xAA, 0xBB, 0xCC})));
    ASSERT_EQ(1u, packets.size());
    EXPECT_EQ(Bytes({0x01, 0xAA, 0xBB, 0xCC, 0, 0, 0, 0}), packets[0].substr(RTP));
}

TEST(RTSP_RTPPackUp, LastUnitBehindOthersIsAsLongAsTheFrame)
{
    const std::vector<std::string> packets = UdpVideo().Pack(Unit("\x67sps") + Unit("\x65idr"));
    ASSERT_EQ(2u, packets.size());
    EXPECT_EQ("\x67sps", packets[0].substr(RTP));
    EXPECT_EQ("\x65idr" + std::string(12, '\0'), packets[1].substr(RTP)); // 16 bytes
    EXPECT_TRUE(Marker(packets[1]));
}

TEST(RTSP_RTPPackUp, ZerosBehindTheFrameGoIntoTheLastFragments)
{
    // Two units: the first of 3000 bytes, the second as long as the whole frame of 4508 bytes.
    const std::string second = Nal(0x01, 1500);
    const std::vector<std::string> packets = UdpVideo().Pack(Unit(Nal(0x06, 3000)) + Unit(second));
    std::string together;
    for (std::size_t i = 3; i < packets.size(); ++i)
        together += packets[i].substr(RTP + 2);
    EXPECT_EQ(second.substr(1) + std::string(3008, '\0'), together);
    EXPECT_EQ(7u, packets.size());
}

// A unit of less than four bytes at the end has its own length.
TEST(RTSP_RTPPackUp, ShortUnitAtTheEndHasItsOwnLength)
{
    for (std::size_t length = 1; length <= 3; ++length)
    {
        const std::string nal = Nal(0x0B, length);
        const std::vector<std::string> packets = UdpVideo().Pack(Unit("\x67sps") + Unit(nal));
        ASSERT_EQ(2u, packets.size());
        EXPECT_EQ(nal, packets[1].substr(RTP));
    }
    EXPECT_EQ("\x41", UdpVideo().Pack(Unit("\x41"))[0].substr(RTP));
}

TEST(RTSP_RTPPackUp, StartCodeAtTheVeryEndIsNoPacket)
{
    EXPECT_EQ(0u, UdpVideo().Pack(Unit("")).size());
    const std::vector<std::string> packets = UdpVideo().Pack(Unit("\x06sei") + Unit(""));
    ASSERT_EQ(1u, packets.size());
    EXPECT_FALSE(Marker(packets[0])); // it is not the frame's last unit
}

TEST(RTSP_RTPPackUp, FrameWithoutAStartCodeGivesNothing)
{
    EXPECT_EQ(0u, UdpVideo().Pack("").size());
    EXPECT_EQ(0u, UdpVideo().Pack("abc").size());
    EXPECT_EQ(0u, UdpVideo().Pack(std::string(5000, '\xFF')).size());
    EXPECT_EQ(0u, UdpVideo().Pack(Bytes({0, 0, 1, 0x41, 0xAA, 0xBB})).size());
    EXPECT_EQ(0u, UdpVideo().Pack(Chunk("sound")).size());
}

TEST(RTSP_RTPPackUp, BytesInFrontOfTheFirstStartCodeAreNotSent)
{
    const std::vector<std::string> packets = UdpVideo().Pack("junk" + Unit("\x41slice"));
    ASSERT_EQ(1u, packets.size());
    EXPECT_EQ("\x41slice", packets[0].substr(RTP));
}

// The search goes on one byte behind a unit's first byte.
TEST(RTSP_RTPPackUp, StartCodeRightBehindAnotherIsPartOfTheUnit)
{
    const std::vector<std::string> packets = UdpVideo().Pack(Unit(Unit("\x06sei")));
    ASSERT_EQ(1u, packets.size());
    EXPECT_EQ(Bytes({0, 0, 0, 1, 0x06, 's', 'e', 'i', 0, 0, 0, 0}), packets[0].substr(RTP));
}

TEST(RTSP_RTPPackUp, OnlyTheFirst512UnitsAreSent)
{
    std::string frame;
    for (int i = 0; i < 512; ++i)
        frame += Unit("\x06");
    EXPECT_EQ(512u, UdpVideo().Pack(frame).size());
    const std::vector<std::string> packets = UdpVideo().Pack(frame + Unit("\x01more") + Unit("\x01more"));
    ASSERT_EQ(512u, packets.size());
    EXPECT_EQ("\x06", packets[511].substr(RTP));
    EXPECT_TRUE(Marker(packets[511]));
}

TEST(RTSP_RTPPackUp, FrameCutAnywhereIsReadWithinItsEnd)
{
    const std::string whole = Unit("\x67sps") + Unit("\x68pps") + Unit("\x65idr");
    for (std::size_t length = 0; length <= whole.size(); ++length)
        EXPECT_LE(UdpVideo().Pack(whole.substr(0, length)).size(), 3u);
}

TEST(RTSP_RTPPackUp, SoundIsSentChunkByChunkWithoutTheMarker)
{
    const std::vector<std::string> packets = UdpAudio().Pack(Chunk("one") + Chunk("two"));
    ASSERT_EQ(2u, packets.size());
    EXPECT_EQ("one", packets[0].substr(RTP));
    EXPECT_EQ("two", packets[1].substr(RTP));
    EXPECT_FALSE(Marker(packets[0]));
    EXPECT_TRUE(Marker(packets[1]));
}

TEST(RTSP_RTPPackUp, SoundWithoutAMarkerOrBehindTheEndGivesNothing)
{
    EXPECT_EQ(0u, UdpAudio().Pack("sound").size());
    EXPECT_EQ(0u, UdpAudio().Pack(Chunk("")).size());
    EXPECT_EQ(0u, UdpAudio().Pack(Unit("sound")).size());
}

TEST(RTSP_RTPPackUp, LongSoundIsNotSentAndTheNextChunkIs)
{
    EXPECT_EQ(1u, UdpAudio().Pack(Chunk(std::string(1460, 'a'))).size());
    EXPECT_EQ(0u, UdpAudio().Pack(Chunk(std::string(1461, 'a'))).size());
    const std::vector<std::string> packets = UdpAudio().Pack(Chunk(std::string(1461, 'a')) + Chunk("b"));
    ASSERT_EQ(1u, packets.size());
    EXPECT_EQ("b", packets[0].substr(RTP));
    Track tcp(STREAMING_TCP, AUDIO, 8000);
    EXPECT_EQ(1u, tcp.Pack(Chunk(std::string(1456, 'a'))).size());
    EXPECT_EQ(0u, tcp.Pack(Chunk(std::string(1457, 'a'))).size());
}

TEST(RTSP_RTPPackUp, FirstTimestampIsTheInitialOne)
{
    Track track = UdpVideo();
    EXPECT_EQ(1000u, track.PackUp().GetNextTimestamp());
    EXPECT_EQ(0x11223344u, track.PackUp().GetSSRC());
    EXPECT_EQ(1000u, track.Timestamp(123456789));
    EXPECT_EQ(1000u, track.PackUp().GetNextTimestamp());
}

struct ClockCase
{
    const char* name;
    NETNS::RTSP_FRAME_TYPE type;
    unsigned int clock;
    unsigned long long secondUs; // the first frame is at 1000000
    unsigned int ticks;
};

const ClockCase CLOCK_CASES[] = {
    {"Video40ms", VIDEO, 90000, 1040000, 3600},
    {"Video33366us", VIDEO, 90000, 1033366, 3006}, // 334 times 9
    {"VideoRoundsDown", VIDEO, 90000, 1000049, 0},
    {"VideoRoundsUp", VIDEO, 90000, 1000050, 9},
    {"VideoSameTime", VIDEO, 90000, 1000000, 0},
    {"VideoBack40ms", VIDEO, 90000, 960000, 0xFFFFF1F9u},
    {"VideoOneDay", VIDEO, 90000, 86401000000ULL, 0xCF7C5800u},
    {"VideoClockOf0", VIDEO, 0, 1040000, 0},
    {"Audio40ms", AUDIO, 8000, 1040000, 320},
    {"AudioOneStepBelow", AUDIO, 8000, 1019900, 0}, // 159 ticks
    {"AudioOneStepAt", AUDIO, 8000, 1020000, 320},  // 160 ticks
    {"Audio60ms", AUDIO, 8000, 1060000, 640},
    {"Audio59900us", AUDIO, 8000, 1059900, 320}, // 479 ticks
    {"AudioBack40ms", AUDIO, 8000, 960000, 0},
    {"AudioBack80ms", AUDIO, 8000, 920000, 0xFFFFFEC0u},
    {"AudioClockOf0", AUDIO, 0, 1040000, 0},
};

void PrintTo(const ClockCase& row, std::ostream* out)
{
    *out << row.name;
}

class RTSP_RTPPackUpClock : public testing::TestWithParam<ClockCase>
{
};

TEST_P(RTSP_RTPPackUpClock, GoesByTheTimeBetweenTheFrames)
{
    const ClockCase& row = GetParam();
    Track track(STREAMING_UDP, row.type, row.clock);
    const unsigned int first = track.Timestamp(1000000);
    EXPECT_EQ(row.ticks, track.Timestamp(row.secondUs) - first);
}

INSTANTIATE_TEST_SUITE_P(Clocks, RTSP_RTPPackUpClock, testing::ValuesIn(CLOCK_CASES),
                         [](const testing::TestParamInfo<ClockCase>& row) { return std::string(row.param.name); });

TEST(RTSP_RTPPackUp, OtherFrameTypesHaveTheTimestampZero)
{
    Track track(STREAMING_UDP, NETNS::RTSP_FRAME_JPEG, 90000);
    EXPECT_EQ(1000u, track.Timestamp(0));
    EXPECT_EQ(0u, track.Timestamp(40000));
}

TEST(RTSP_RTPPackUp, AnyHostClockIsTaken)
{
    Track track = UdpVideo();
    track.Timestamp(0);
    track.Timestamp(0x7FFFFFFFFFFFFFFFULL);
    track.Timestamp(0xFFFFFFFFFFFFFFFFULL);
    track.Timestamp(0x8000000000000000ULL);
    EXPECT_EQ(track.PackUp().GetNextTimestamp(), track.Timestamp(0x8000000000000000ULL));
}
