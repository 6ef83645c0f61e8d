#include "H264File.h"

#include "AnnexB.h"

#include <cstring>
#include <fstream>
#include <iterator>

namespace
{
constexpr std::size_t NONE = static_cast<std::size_t>(-1);

// Position of the next 00 00 01.
std::size_t FindUnit(const std::vector<unsigned char>& file, std::size_t from)
{
    for (std::size_t i = from; i + 3 <= file.size(); ++i)
    {
        const void* one = memchr(file.data() + i, 1, file.size() - i);
        if (one == nullptr)
            return NONE;
        i = static_cast<std::size_t>(static_cast<const unsigned char*>(one) - file.data());
        if (i >= 2 && i - 2 >= from && file[i - 1] == 0 && file[i - 2] == 0)
            return i - 2;
    }
    return NONE;
}

bool IsSlice(int type)
{
    return type >= 1 && type <= 5;
}

// Whether a unit that follows a slice begins a new picture: anything that stands in front of one, or its first slice
// (first_mb_in_slice is 0, written as a single bit 1).
bool BeginsPicture(int type, unsigned char secondByte)
{
    return IsSlice(type) ? (secondByte & 0x80) != 0 : (type >= 6 && type <= 9);
}

std::vector<std::size_t> PictureStarts(const std::vector<unsigned char>& file)
{
    std::vector<std::size_t> starts;
    bool hasSlice = true;
    for (std::size_t unit = FindUnit(file, 0); unit != NONE; unit = FindUnit(file, unit + 3))
    {
        if (unit + 4 >= file.size())
            break;
        const int type = file[unit + 3] & 0x1F;
        if (hasSlice && BeginsPicture(type, file[unit + 4]))
        {
            starts.push_back(unit);
            hasSlice = false;
        }
        hasSlice = hasSlice || IsSlice(type);
    }
    return starts;
}
} // namespace

bool ReadH264File(const std::string& path, std::vector<H264Frame>& frames, std::string& why)
{
    std::ifstream input(path, std::ios::binary);
    const std::vector<unsigned char> file((std::istreambuf_iterator<char>(input)), std::istreambuf_iterator<char>());
    if (file.empty())
    {
        why = "cannot be read or is empty";
        return false;
    }

    std::vector<std::size_t> starts = PictureStarts(file);
    starts.push_back(file.size());
    CAnnexBNormaliser normaliser;
    for (std::size_t i = 0; i + 1 < starts.size(); ++i)
    {
        const AnnexBResult result = normaliser.Normalise(file.data() + starts[i], starts[i + 1] - starts[i]);
        if (result == AnnexBResult::SeveralSlices)
        {
            why = "holds pictures of more than one slice";
            return false;
        }
        if (result == AnnexBResult::Frame && (!frames.empty() || normaliser.IsKeyFrame()))
            frames.push_back({normaliser.Frame(), normaliser.IsKeyFrame()});
    }
    if (frames.empty())
        why = "holds no key frame with parameter sets";
    return !frames.empty();
}
