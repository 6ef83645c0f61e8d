// The reference camera's own request, which comes as any bytes that hold its mark.
#include "ControlRequest.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<char> exact(data, data + size); // nothing readable behind the end
    const ControlRequest request = ReadControlRequest(exact.data(), exact.size());
    for (const std::string& word : request.words)
    {
        if (word.empty() || !request.isControl)
        {
            std::abort();
        }
    }
    return 0;
}
