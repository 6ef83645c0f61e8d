// FuzzOnvifPull.cpp: whatever a camera answers to a pull.
//
// The first byte chooses the size of the pieces that the answer comes in, and whether the rest is a whole HTTP answer
// or the document in one.
#include "EventParse.h"
#include "OnvifEventObserver.h"
#include "ShareSDK.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    std::string answer(reinterpret_cast<const char*>(data) + 1, size - 1);
    if ((data[0] & 1) != 0)
        answer = "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(answer.size()) + "\r\n\r\n" + answer;

    OnvifEventObserver record;
    record.pulling = true;
    {
        const CMySingleLock lock(record.eventLock);
        record.events = std::make_unique<std::list<OnvifEvent>>();
    }
    CEventParse parser(&record);
    const std::size_t piece = data[0] / 2 == 0 ? answer.size() : data[0] / 2;
    for (std::size_t done = 0; done < answer.size(); done += piece)
    {
        const std::size_t length = std::min(piece, answer.size() - done);
        const std::string bytes = answer.substr(done, length); // of its own, so that a read beyond it is seen
        const int taken = parser.OnSocketRecvData(1, bytes.data(), static_cast<unsigned int>(length), &parser);
        if (taken != 0 && taken != static_cast<int>(length))
            abort();
    }
    parser.Clear();
    return 0;
}
