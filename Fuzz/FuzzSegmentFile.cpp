// A recorded segment of the reference camera, as a killed process or a bad disk leaves it.
#include "SegmentFile.h"

#include <cstdint>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const int file = memfd_create("segment", 0);
    if (file < 0 || write(file, data, size) != static_cast<ssize_t>(size))
    {
        std::abort();
    }
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    CSegmentReader reader;
    if (reader.Open(path))
    {
        RecordedFrame frame;
        std::size_t total = 0;
        while (reader.Next(frame))
        {
            total += frame.payload.size() + 1;
        }
        if (total > size)
        {
            std::abort(); // more than the file holds
        }
        if (reader.SeekKeyFrame(size > 0 ? data[size - 1] : 0) && (!reader.Next(frame) || !frame.keyFrame))
        {
            std::abort();
        }
        reader.LastTime();
    }
    close(file);
    return 0;
}
