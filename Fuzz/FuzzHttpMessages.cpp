// The bytes of a connection through the message cutter and the analyser. The first byte of the input is the size of the
// reads, so that the same bytes come whole, byte by byte and in between; every size must give the same messages.
#include "HttpDataPacket.h"
#include "HttpProtocolAnalyse.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

void Require(bool condition)
{
    if (!condition)
    {
        std::abort();
    }
}

std::vector<std::string> Cut(const std::string& bytes, std::size_t readSize)
{
    CHttpDataPacket packets;
    for (std::size_t at = 0; at < bytes.size(); at += readSize)
    {
        const std::size_t length = std::min(readSize, bytes.size() - at);
        packets.PushBack(bytes.data() + at, static_cast<unsigned int>(length));
    }
    std::vector<std::string> messages;
    while (packets.HasPendingPacket())
    {
        _DATA_PACK_* pack = packets.GetNextPendingPacket();
        messages.emplace_back(pack->m_pBuff, static_cast<std::size_t>(pack->Length()));
        CHttpDataPacket::ReleasePack(pack);
    }
    return messages;
}

void Analyse(const std::string& message)
{
    CHttpProtocolAnalyse request(message.data(), static_cast<int>(message.size()));
    int length = 0;
    Require(std::string(request.GetBuf(length), static_cast<std::size_t>(length)) == message);
    request.GetPayLoad(length);
    Require(length >= 0 && static_cast<std::size_t>(length) <= message.size());
    Require(request.IsRequestCmd() != request.IsRequestFile());
    std::string info;
    request.GetVerifyInfo(info);
    request.GetStatusCode();
    unsigned int value = 0;
    request.GetHeaderExtra("CSeq:", value);

    CHttpProtocolAnalyse response;
    response.SetURL(request.GetUrl());
    response.SetResPackage(200, message.data(), static_cast<int>(message.size()), info);
    response.SetHeaderLine("X: y");
    const char* const payload = response.GetPayLoad(length);
    Require(std::string(payload, static_cast<std::size_t>(length)) == message);
}

// A body too large to wait for is handled with what has come, so its message depends on the reads.
bool AnnouncesAHugeBody(const std::string& bytes)
{
    return bytes.find("Content-Length:") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
    {
        return 0;
    }
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::vector<std::string> messages = Cut(bytes, data[0] == 0 ? 4095 : data[0]);
    Require(AnnouncesAHugeBody(bytes) || messages == Cut(bytes, 4095));
    for (const std::string& message : messages)
    {
        Analyse(message);
    }
    Analyse(bytes);
    return 0;
}
