// MicroApi.cpp: what a request of the XML API costs in the library, from the message to the answer, without sockets,
// and how many allocations it makes. Counters: bytes of the answer, allocations, nanoseconds for each byte.
#include "BenchDevice.h"
#include "HttpProtocolAnalyse.h"
#include "NetServerDataProc.h"
#include "NetServerSDK.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

namespace
{
std::atomic<std::uint64_t> allocations{0};

const char HEAD[] = " HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\n\r\n";
const char IMAGE[] = "<config><image><bright>60</bright><contrast>55</contrast><hue>50</hue><saturation>45</saturation>"
                     "<mirrorSwitch>false</mirrorSwitch><flipSwitch>true</flipSwitch><whiteBalance><mode>auto</mode>"
                     "<red>50</red><blue>50</blue></whiteBalance><IRCutMode>day</IRCutMode></image></config>";
} // namespace

void* operator new(std::size_t size)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    void* const memory = std::malloc(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{
void Ask(benchmark::State& state, const std::string& url, const std::string& body, bool alarm)
{
    static BenchDevice device;
    NET_SERVER_Initial(4, 2, 4, &device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT);
    if (alarm)
        NET_SERVER_SetMotionStatus(0, true);
    const std::string message = (body.empty() ? "GET /" : "POST /") + url + HEAD + body;
    int length = 0;
    const std::uint64_t before = allocations;
    for (auto _ : state)
    {
        const CHttpProtocolAnalyse request(message);
        CHttpProtocolAnalyse response;
        CNetServerDataProc::Instance().AnalysisRequest("127.0.0.1", request, response);
        benchmark::DoNotOptimize(response.GetBuf(length));
    }
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocations - before), benchmark::Counter::kAvgIterations);
    state.counters["bytes"] = length;
    state.counters["s_per_byte"] = benchmark::Counter(
        static_cast<double>(length), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
} // namespace

BENCHMARK_CAPTURE(Ask, GetDeviceInfo, "GetDeviceInfo", "", false);
BENCHMARK_CAPTURE(Ask, GetImageConfig, "GetImageConfig", "", false);
BENCHMARK_CAPTURE(Ask, SetImageConfig, "SetImageConfig", IMAGE, false);
BENCHMARK_CAPTURE(Ask, GetStreamCaps, "GetStreamCaps", "", false);
BENCHMARK_CAPTURE(Ask, GetAlarmStatusQuiet, "GetAlarmStatus", "", false);
BENCHMARK_CAPTURE(Ask, GetAlarmStatusActive, "GetAlarmStatus", "", true);
BENCHMARK_MAIN();
