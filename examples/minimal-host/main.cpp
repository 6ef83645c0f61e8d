// minimal-host: a device that shows one H.264 file, again and again, and serves a page.
#include <DefaultHost.h>
#include <NetServerSDK.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace
{

const std::string START_CODE("\0\0\0\1", 4);
volatile std::sig_atomic_t isEnded = 0;

class CMinimalDevice : public CDefaultDevice
{
    bool NeedAuthorization() override { return false; } // everybody may watch
    NETNS::DEV_RET GetDevInfo(const char*, NETNS::DEV_DEVICE_INFO* info) override
    {
        std::snprintf(info->model, sizeof(info->model), "Minimal host");
        return NETNS::DEV_RET_OK;
    }
};

struct Picture
{
    std::string bytes;
    bool isKey;
};

/// The NAL units of an Annex B byte stream (ITU-T H.264, Annex B), without their start codes.
std::vector<std::string> Units(const std::string& stream)
{
    const std::string startCode = START_CODE.substr(1); // zeros in front of it count as part of it
    std::vector<std::string> units;
    std::size_t at = stream.find(startCode);
    while (at != std::string::npos)
    {
        const std::size_t begin = at + startCode.size();
        at = stream.find(startCode, begin);
        std::string unit = stream.substr(begin, at == std::string::npos ? at : at - begin);
        unit.erase(unit.find_last_not_of('\0') + 1);
        units.push_back(unit);
    }
    return units;
}

/// What the library takes: one slice a picture behind 00 00 00 01, and SPS and PPS in front of a key frame.
/// @return no pictures when the file has none, or several slices in one
std::vector<Picture> Pictures(const std::string& stream)
{
    std::string sps;
    std::string pps;
    std::vector<Picture> pictures;
    for (const std::string& unit : Units(stream))
    {
        const int type = unit.empty() ? 0 : unit[0] & 0x1f;
        const bool isFirstSlice = unit.size() > 1 && (unit[1] & 0x80) != 0; // first_mb_in_slice is 0
        if (type == 7)
            sps = START_CODE + unit;
        else if (type == 8)
            pps = START_CODE + unit;
        else if ((type == 1 || type == 5) && !isFirstSlice)
            return {};
        else if (type == 5 || (type == 1 && !pictures.empty()))
            pictures.push_back({(type == 5 ? sps + pps : "").append(START_CODE).append(unit), type == 5});
    }
    return pictures;
}

} // namespace

int main(int argc, char** argv)
{
    std::ifstream file(argc > 2 ? argv[1] : "", std::ios::binary);
    std::vector<Picture> pictures = Pictures(std::string(std::istreambuf_iterator<char>(file), {}));
    const int httpPort = argc > 4 ? std::atoi(argv[3]) : 8080;
    const int rtspPort = argc > 4 ? std::atoi(argv[4]) : 8554;
    const int rate = argc > 5 ? std::atoi(argv[5]) : 25;
    if (pictures.empty() || rate < 1)
    {
        std::fprintf(stderr, "usage: minimal-host FILE WEB_ROOT [HTTP_PORT RTSP_PORT [PICTURES_PER_SECOND]]\n"
                             "FILE: H.264 (Annex B) that begins with a key frame and has one slice a picture\n");
        return 2;
    }
    CMinimalDevice device;
    CDefaultStreams streams;
    NET_SERVER_SetPolicy(NET_POLICY_STANDARD_RTSP | NET_POLICY_NO_ANNOUNCE);
    if (NET_SERVER_Initial(1, 0, 0, &device, &streams, "", "", 1, NETNS::DEV_TYPE_DEFAULT) != 1)
        return 1;
    NET_SERVER_Start(static_cast<unsigned short>(httpPort), argv[2], "netserver.xml");
    NET_SERVER_RTSPStart(static_cast<unsigned short>(rtspPort), &streams, &device);
    NET_SERVER_SetLiveRTSPUrl(1, 0, "/live");
    for (const int number : {SIGINT, SIGTERM})
        std::signal(number, [](int) { isEnded = 1; });
    std::signal(SIGPIPE, SIG_IGN);
    std::printf("%zu pictures: rtsp://localhost:%d/live http://localhost:%d/\n", pictures.size(), rtspPort, httpPort);
    std::fflush(stdout);
    const auto start = std::chrono::steady_clock::now();
    for (std::uint64_t number = 0; isEnded == 0; ++number)
    {
        Picture& picture = pictures[static_cast<std::size_t>(number % pictures.size())];
        NETNS::RTSP_FRAME frame = {NETNS::RTSP_FRAME_VIDEO, NETNS::RTSP_ENCODE_H264, 0, {}, 0, 90000, {}, 0};
        frame.keyFrame = picture.isKey;
        frame.presentationUs = number * 1000000 / static_cast<unsigned int>(rate);
        frame.length = static_cast<std::uint32_t>(picture.bytes.size());
        NET_SERVER_LiveStreamIn(1, 0, frame, &picture.bytes[0]);
        std::this_thread::sleep_until(start + std::chrono::microseconds(frame.presentationUs));
    }
    NET_SERVER_RTSPStop();
    NET_SERVER_Stop();
    NET_SERVER_Quit();
}
