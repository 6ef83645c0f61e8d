// FuzzPacketiser.cpp: whatever a host hands in as a frame.
//
// The first byte chooses UDP or TCP, video or sound; the next two bytes are the time between two frames, the rest is
// the payload. The packets are held against units found by a plain search, byte by byte.
#include "RTSP_DataManager.h"
#include "RTSP_RTPPackUp.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace
{
void Require(bool condition)
{
    if (!condition)
        abort();
}

struct Unit
{
    std::size_t start;
    std::size_t length;
};

bool StartsAt(const std::string& frame, std::size_t i, const char (&code)[4])
{
    return frame.compare(i, 4, code, 4) == 0;
}

std::vector<Unit> VideoUnits(const std::string& frame)
{
    static const char CODE[4] = {0, 0, 0, 1};
    std::vector<Unit> units;
    std::size_t i = 0;
    for (; i + 4 <= frame.size(); ++i)
    {
        if (!StartsAt(frame, i, CODE))
            continue;
        i += 4;
        if (!units.empty())
            units.back().length = i - units.back().start - 4;
        if (units.size() == 512)
            return units;
        const std::size_t n = units.size();
        units.push_back({i, frame.size() - i});
        const int first = i < frame.size() ? static_cast<unsigned char>(frame[i]) : 0;
        if ((n >= 2 && n <= 4 && first == 0x65) || (n == 0 && (first == 0x41 || first == 0x61)))
            return units;
    }
    if (!units.empty() && i + 3 == frame.size())
        units.back().length = frame.size();
    return units;
}

std::vector<Unit> AudioUnits(const std::string& frame)
{
    static const char CODE[4] = {0, 1, static_cast<char>(0xA0), 0};
    std::vector<Unit> units;
    for (std::size_t i = 0; i + 4 <= frame.size(); ++i)
    {
        if (!StartsAt(frame, i, CODE))
            continue;
        i += 4;
        if (!units.empty())
            units.back().length = i - units.back().start - 4;
        if (units.size() == 512)
            return units;
        units.push_back({i, frame.size() - i});
    }
    return units;
}

std::string UnitBytes(const std::string& frame, const Unit& unit)
{
    std::string bytes = frame.substr(unit.start, unit.length);
    bytes.resize(unit.length, '\0');
    return bytes;
}

// Takes the packets of one unit from the front and puts it together again.
std::string TakeUnit(std::list<std::string>& packets, std::size_t header, std::size_t length)
{
    if (length <= 1472 - header)
    {
        Require(!packets.empty());
        const std::string unit = packets.front().substr(header);
        packets.pop_front();
        return unit;
    }
    std::string unit;
    for (;;)
    {
        Require(!packets.empty());
        const std::string packet = packets.front().substr(header);
        packets.pop_front();
        const int fuHeader = static_cast<unsigned char>(packet[1]);
        Require(unit.empty() == ((fuHeader & 0x80) != 0));
        if (unit.empty())
            unit.push_back(static_cast<char>((packet[0] & 0xE0) | (fuHeader & 0x1F)));
        unit += packet.substr(2);
        if ((fuHeader & 0x40) != 0)
            return unit;
    }
}

void Pack(CRTSP_RTPPackUp& packUp, const NETNS::RTSP_FRAME& info, const std::string& frame, std::size_t header)
{
    auto* shared = new CSharedData(info, frame.data());
    shared->Add();
    std::list<SENDING_COMMON_DATA> out;
    unsigned int timestamp = 0;
    Require(packUp.MakeUpPacket(shared, &out, &timestamp) == 0);
    shared->Dec();

    std::list<std::string> packets;
    for (const SENDING_COMMON_DATA& packet : out)
    {
        Require(packet.length > 0 && packet.length <= 1472);
        packets.emplace_back(packet.data, static_cast<std::size_t>(packet.length));
        delete[] packet.data;
    }
    const bool video = info.frameType == NETNS::RTSP_FRAME_VIDEO;
    for (const Unit& unit : video ? VideoUnits(frame) : AudioUnits(frame))
    {
        if (unit.length == 0 || (!video && unit.length > 1472 - header))
            continue;
        Require(TakeUnit(packets, header, unit.length) == UnitBytes(frame, unit));
    }
    Require(packets.empty());
}

void ReadParameterSets(const std::string& frame)
{
    const std::unique_ptr<unsigned char[]> data(new unsigned char[frame.size()]);
    memcpy(data.get(), frame.data(), frame.size());
    SDP_INFO_H264 info;
    Create_SPS_PPS_INFO(data.get(), static_cast<unsigned int>(frame.size()), &info);
    Require(info.valid && memchr(info.spropParameterSets, 0, sizeof(info.spropParameterSets)) != nullptr);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    const std::string frame(reinterpret_cast<const char*>(data + 3), size - 3);
    const bool tcp = (data[0] & 1) != 0;
    NETNS::RTSP_FRAME info = {};
    info.frameType = (data[0] & 2) != 0 ? NETNS::RTSP_FRAME_AUDIO : NETNS::RTSP_FRAME_VIDEO;
    info.length = static_cast<unsigned int>(frame.size());

    CRTSP_RTPPackUp packUp(tcp ? STREAMING_TCP : STREAMING_UDP, info.frameType, NETNS::RTSP_ENCODE_H264, 96, 90000, 1,
                           2, 3);
    for (int i = 0; i < 2; ++i)
    {
        Pack(packUp, info, frame, tcp ? 16 : 12);
        info.presentationUs += static_cast<unsigned long long>((data[1] << 8) | data[2]) << ((data[0] >> 2) & 0x3F);
    }
    ReadParameterSets(frame);
    return 0;
}
