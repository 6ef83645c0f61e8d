// AnnexB.h: makes an encoder's H.264 access units fit what the library's packetiser takes.
//
// ITU-T H.264, Annex B and 7.4.1. Local to one thread.
#pragma once

#include <cstddef>
#include <vector>

/// What became of an access unit.
enum class AnnexBResult
{
    Frame,         ///< the frame is ready
    NoPicture,     ///< parameter sets or nothing: they are kept for the next key frame
    SeveralSlices, ///< refused: a frame must be one slice
    NoParameters,  ///< refused: a key frame before the first SPS and PPS, or with too many of them
};

/// Turns access units with three- or four-byte start codes, in any order an encoder may choose, into frames that are
/// one slice, behind the SPS and PPS when it is a key frame, each unit behind the bytes 00 00 00 01.
///
/// Access unit delimiters, SEI and filler are left out, so that the slice is the first unit of a frame, or the first
/// behind the parameter sets: there the packetiser finds it without reading the whole frame. Parameter sets are
/// remembered, so a key frame that comes without them gets the last ones.
class CAnnexBNormaliser
{
public:
    /// @param data  one access unit, borrowed for the call
    AnnexBResult Normalise(const unsigned char* data, std::size_t length);

    /// The frame of the last call that returned Frame; valid until the next call.
    const std::vector<unsigned char>& Frame() const { return m_frame; }
    bool IsKeyFrame() const { return m_keyFrame; }

private:
    struct Unit
    {
        const unsigned char* data;
        std::size_t length;
    };

    void KeepParameterSets(const std::vector<Unit>& units);
    void AppendUnit(const Unit& unit);
    AnnexBResult Build(const Unit& slice);

    using ParameterSet = std::vector<unsigned char>;

    std::vector<ParameterSet> m_sequenceSets; // SPS units without start codes
    std::vector<ParameterSet> m_pictureSets;  // PPS units without start codes
    std::vector<unsigned char> m_frame;
    bool m_keyFrame = false;
};
