// The small texts in a camera's answers: durations, masks, addresses and packed motion grids.
#include "OnvifHelper.h"
#include "XmlTransform.h"

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

void Unpack(const std::string& text, unsigned int size)
{
    std::vector<unsigned char> out(size); // of just that size, so that a byte too many is seen
    Require(COnvifHelper::DecodeMotionArea(text.c_str(), out.data(), size) <= size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    COnvifHelper::ParseXmlTime(text.c_str());
    Require(COnvifHelper::SubmaskStringToLength(text) <= 32);
    Require(CXmlTransform::ParseUrlInXaddr(text).size() <= text.size());
    for (const unsigned int room : {1U, 7U, 42U, 1024U})
    {
        Unpack(text, room);
    }
    // What is packed here is unpacked to the same bytes when there is room for the packed form.
    const std::string packed = COnvifHelper::EncodeMotionArea(data, static_cast<unsigned int>(size));
    std::vector<unsigned char> out(2 * size + 2);
    const unsigned int count =
        COnvifHelper::DecodeMotionArea(packed.c_str(), out.data(), static_cast<unsigned int>(out.size()));
    Require(count == size && std::equal(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(count), data));
    return 0;
}
