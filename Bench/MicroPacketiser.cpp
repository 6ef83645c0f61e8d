// MicroPacketiser.cpp: what the packetiser costs for each packet, without sending.
#include "RTSP_RTPPackUp.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <list>
#include <vector>

namespace
{
std::vector<unsigned char> Slice(unsigned char header, std::size_t length)
{
    std::vector<unsigned char> bytes = {0, 0, 0, 1, header};
    // Compressed data, as far as the search is concerned: every value as often, no start code.
    unsigned int value = 1;
    while (bytes.size() < length)
    {
        value = value * 1664525u + 1013904223u;
        bytes.push_back(static_cast<unsigned char>(value >> 24));
    }
    return bytes;
}

void Pack(benchmark::State& state, StreamingMode mode, const std::vector<unsigned char>& payload)
{
    NETNS::RTSP_FRAME info = {};
    info.length = static_cast<std::uint32_t>(payload.size());
    auto* frame = new CSharedData(info, payload.data());
    frame->Add();
    CRTSP_RTPPackUp packUp(mode, NETNS::RTSP_FRAME_VIDEO, NETNS::RTSP_ENCODE_H264, 96, 90000, 1, 2, 0);
    std::int64_t packets = 0;
    for (auto _ : state)
    {
        std::list<SENDING_COMMON_DATA> out;
        unsigned int timestamp = 0;
        packUp.MakeUpPacket(frame, &out, &timestamp);
        packets += static_cast<std::int64_t>(out.size());
        for (const SENDING_COMMON_DATA& packet : out)
            delete[] packet.data;
    }
    frame->Dec();
    state.SetItemsProcessed(packets);
}

// A frame of 20 kB: 14 packets, as 4 Mbit/s at 25 frames a second has on average.
void PFrame(benchmark::State& state)
{
    Pack(state, static_cast<StreamingMode>(state.range(0)), Slice(0x41, 20000));
}

// The same, but of a kind whose slice the search has to read to its end.
void FrameSearchedWhole(benchmark::State& state)
{
    Pack(state, static_cast<StreamingMode>(state.range(0)), Slice(0x01, 20000));
}

// What no packetiser can do without: memory for 14 packets and one copy.
void CopyOnly(benchmark::State& state)
{
    const std::vector<unsigned char> payload = Slice(0x41, 20000);
    for (auto _ : state)
    {
        std::list<SENDING_COMMON_DATA> out;
        for (int i = 0; i < 14; ++i)
        {
            out.emplace_back();
            out.back().data = new char[1472];
            memcpy(out.back().data + 14, payload.data() + i * 1400, 1428);
            benchmark::DoNotOptimize(out.back().data);
        }
        for (const SENDING_COMMON_DATA& packet : out)
            delete[] packet.data;
    }
    state.SetItemsProcessed(state.iterations() * 14);
}
} // namespace

BENCHMARK(PFrame)->ArgName("mode")->Arg(STREAMING_UDP)->Arg(STREAMING_TCP);
BENCHMARK(FrameSearchedWhole)->ArgName("mode")->Arg(STREAMING_UDP)->Arg(STREAMING_TCP);
BENCHMARK(CopyOnly);
BENCHMARK_MAIN();
