#include "AnnexB.h"

namespace
{

enum NalType
{
    NAL_SLICE = 1,
    NAL_PARTITION_A = 2,
    NAL_PARTITION_C = 4,
    NAL_KEY_SLICE = 5,
    NAL_SEQUENCE_SET = 7,
    NAL_PICTURE_SET = 8,
};

constexpr unsigned char START_CODE[] = {0, 0, 0, 1};
constexpr std::size_t SHORT_START_CODE_LENGTH = 3;
// The packetiser looks for the slice of a key frame among the third, fourth and fifth unit.
constexpr std::size_t MAX_PARAMETER_SETS = 4;

int TypeOf(unsigned char header)
{
    return header & 0x1f;
}

// nal_ref_idc says "a reference" by being any number but 0. Encoders choose differently; the library knows parameter
// sets and slices by the header bytes 67, 68, 65 and 61.
unsigned char HeaderOf(unsigned char header)
{
    const bool reference = (header & 0x60) != 0;
    return static_cast<unsigned char>(reference ? header | 0x60 : header);
}

/// Position of the next 00 00 01, or `length`.
std::size_t FindStartCode(const unsigned char* data, std::size_t from, std::size_t length)
{
    for (std::size_t i = from; length - i >= SHORT_START_CODE_LENGTH; ++i)
    {
        if (data[i] == 0 && data[i + 1] == 0 && data[i + 2] == 1)
        {
            return i;
        }
    }
    return length;
}

/// Zero bytes behind a unit belong to the next start code or are padding; a unit never ends in one.
std::size_t TrimZeros(const unsigned char* data, std::size_t begin, std::size_t end)
{
    while (end > begin && data[end - 1] == 0)
    {
        --end;
    }
    return end;
}

} // namespace

AnnexBResult CAnnexBNormaliser::Normalise(const unsigned char* data, std::size_t length)
{
    std::vector<Unit> units;
    for (std::size_t at = FindStartCode(data, 0, length); at < length;)
    {
        const std::size_t begin = at + SHORT_START_CODE_LENGTH;
        at = FindStartCode(data, begin, length);
        const std::size_t end = TrimZeros(data, begin, at);
        if (end > begin)
        {
            units.push_back({data + begin, end - begin});
        }
    }

    KeepParameterSets(units);
    const Unit* slice = nullptr;
    for (const Unit& unit : units)
    {
        const int type = TypeOf(unit.data[0]);
        if (type < NAL_SLICE || type > NAL_KEY_SLICE)
        {
            continue;
        }
        if (slice != nullptr || (type >= NAL_PARTITION_A && type <= NAL_PARTITION_C))
        {
            return AnnexBResult::SeveralSlices;
        }
        slice = &unit;
    }
    return slice == nullptr ? AnnexBResult::NoPicture : Build(*slice);
}

void CAnnexBNormaliser::KeepParameterSets(const std::vector<Unit>& units)
{
    std::vector<ParameterSet> sequenceSets;
    std::vector<ParameterSet> pictureSets;
    for (const Unit& unit : units)
    {
        const int type = TypeOf(unit.data[0]);
        if (type == NAL_SEQUENCE_SET)
        {
            sequenceSets.emplace_back(unit.data, unit.data + unit.length);
        }
        else if (type == NAL_PICTURE_SET)
        {
            pictureSets.emplace_back(unit.data, unit.data + unit.length);
        }
    }
    if (!sequenceSets.empty())
    {
        m_sequenceSets.swap(sequenceSets);
    }
    if (!pictureSets.empty())
    {
        m_pictureSets.swap(pictureSets);
    }
}

AnnexBResult CAnnexBNormaliser::Build(const Unit& slice)
{
    const bool keyFrame = TypeOf(slice.data[0]) == NAL_KEY_SLICE;
    const std::size_t sets = m_sequenceSets.size() + m_pictureSets.size();
    if (keyFrame && (m_sequenceSets.empty() || m_pictureSets.empty() || sets > MAX_PARAMETER_SETS))
    {
        return AnnexBResult::NoParameters;
    }
    m_frame.clear();
    m_keyFrame = keyFrame;
    if (keyFrame)
    {
        for (const std::vector<ParameterSet>* kind : {&m_sequenceSets, &m_pictureSets})
        {
            for (const ParameterSet& set : *kind)
            {
                AppendUnit({set.data(), set.size()});
            }
        }
    }
    AppendUnit(slice);
    return AnnexBResult::Frame;
}

void CAnnexBNormaliser::AppendUnit(const Unit& unit)
{
    m_frame.insert(m_frame.end(), START_CODE, START_CODE + sizeof(START_CODE));
    m_frame.push_back(HeaderOf(unit.data[0]));
    m_frame.insert(m_frame.end(), unit.data + 1, unit.data + unit.length);
}
