#include "AnnexB.h"

#include <gtest/gtest.h>

namespace
{

using Bytes = std::vector<unsigned char>;

// Parameter sets and slices of a few bytes: the normaliser looks at their first byte only.
const Bytes SPS = {0x67, 0x4d, 0x40, 0x1f};
const Bytes PPS = {0x68, 0xef, 0x3c, 0x80};
const Bytes KEY_SLICE = {0x65, 0x88, 0x84};
const Bytes SLICE = {0x61, 0x9a, 0x02};

Bytes Join(std::initializer_list<Bytes> parts)
{
    Bytes whole;
    for (const Bytes& part : parts)
    {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

const Bytes LONG_CODE = {0, 0, 0, 1};
const Bytes SHORT_CODE = {0, 0, 1};

const Bytes KEY_FRAME = {0, 0, 0, 1, 0x67, 0x4d, 0x40, 0x1f, // SPS
                         0, 0, 0, 1, 0x68, 0xef, 0x3c, 0x80, // PPS
                         0, 0, 0, 1, 0x65, 0x88, 0x84};      // slice

AnnexBResult Normalise(CAnnexBNormaliser& normaliser, const Bytes& unit)
{
    return normaliser.Normalise(unit.data(), unit.size());
}

} // namespace

TEST(AnnexBNormaliser, LengthensThreeByteStartCodes)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame,
              Normalise(normaliser, Join({LONG_CODE, SPS, SHORT_CODE, PPS, SHORT_CODE, KEY_SLICE})));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());
    EXPECT_TRUE(normaliser.IsKeyFrame());
}

TEST(AnnexBNormaliser, LeavesAFrameThatFitsAsItIs)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, KEY_FRAME));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());
}

TEST(AnnexBNormaliser, DropsDelimitersSeiAndFiller)
{
    const Bytes delimiter = {0x09, 0x10};
    const Bytes sei = {0x06, 0x05, 0x01, 0xff, 0x80};
    const Bytes filler = {0x0c, 0xff, 0x80};
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame,
              Normalise(normaliser, Join({LONG_CODE, delimiter, LONG_CODE, SPS, LONG_CODE, PPS, SHORT_CODE, sei,
                                          SHORT_CODE, KEY_SLICE, SHORT_CODE, filler})));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());

    EXPECT_EQ(AnnexBResult::Frame,
              Normalise(normaliser, Join({LONG_CODE, delimiter, SHORT_CODE, sei, SHORT_CODE, SLICE})));
    EXPECT_EQ(Join({LONG_CODE, SLICE}), normaliser.Frame());
    EXPECT_FALSE(normaliser.IsKeyFrame());
}

TEST(AnnexBNormaliser, PutsTheLastParameterSetsInFrontOfAKeyFrameWithout)
{
    const Bytes newPps = {0x68, 0xee, 0x01};
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, Join({LONG_CODE, SPS, LONG_CODE, PPS})));
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, Join({LONG_CODE, KEY_SLICE})));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());

    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, Join({LONG_CODE, newPps})));
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, Join({LONG_CODE, KEY_SLICE})));
    EXPECT_EQ(Join({LONG_CODE, SPS, LONG_CODE, newPps, LONG_CODE, KEY_SLICE}), normaliser.Frame());
}

TEST(AnnexBNormaliser, PutsTheSequenceSetFirst)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, Join({LONG_CODE, PPS, LONG_CODE, SPS, LONG_CODE, KEY_SLICE})));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());
}

TEST(AnnexBNormaliser, TakesParameterSetsOutOfOtherFrames)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, Join({LONG_CODE, SPS, LONG_CODE, PPS, LONG_CODE, SLICE})));
    EXPECT_EQ(Join({LONG_CODE, SLICE}), normaliser.Frame());
}

// Any number but 0 in nal_ref_idc says the same; the library knows units by the bytes 67, 68, 65 and 61.
TEST(AnnexBNormaliser, WritesOneFormOfTheHeaderByte)
{
    const Bytes sps = {0x27, 0x4d, 0x40, 0x1f};
    const Bytes pps = {0x28, 0xef, 0x3c, 0x80};
    const Bytes keySlice = {0x25, 0x88, 0x84};
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, Join({LONG_CODE, sps, LONG_CODE, pps, LONG_CODE, keySlice})));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, {0, 0, 1, 0x41, 0x9a}));
    EXPECT_EQ((Bytes{0, 0, 0, 1, 0x61, 0x9a}), normaliser.Frame());
}

TEST(AnnexBNormaliser, KeepsTheHeaderOfAPictureThatNoneRefersTo)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, {0, 0, 0, 1, 0x01, 0x9a}));
    EXPECT_EQ((Bytes{0, 0, 0, 1, 0x01, 0x9a}), normaliser.Frame());
}

TEST(AnnexBNormaliser, RefusesSeveralSlicesAndPartitions)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::SeveralSlices, Normalise(normaliser, Join({LONG_CODE, SLICE, SHORT_CODE, SLICE})));
    EXPECT_EQ(AnnexBResult::SeveralSlices, Normalise(normaliser, {0, 0, 0, 1, 0x42, 0x9a}));
    EXPECT_EQ(AnnexBResult::SeveralSlices, Normalise(normaliser, {0, 0, 0, 1, 0x44, 0x9a}));
}

TEST(AnnexBNormaliser, RefusesAKeyFrameBeforeBothParameterSets)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::NoParameters, Normalise(normaliser, Join({LONG_CODE, SPS, LONG_CODE, KEY_SLICE})));
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, Join({LONG_CODE, PPS, LONG_CODE, KEY_SLICE})));
    EXPECT_EQ(KEY_FRAME, normaliser.Frame());
}

// The packetiser looks for the slice of a key frame up to the fifth unit.
TEST(AnnexBNormaliser, TakesFourParameterSetsAndRefusesFive)
{
    const Bytes four = Join({LONG_CODE, SPS, LONG_CODE, PPS, LONG_CODE, PPS, LONG_CODE, PPS, LONG_CODE, KEY_SLICE});
    const Bytes five = Join({LONG_CODE, SPS, LONG_CODE, PPS, four});
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, four));
    EXPECT_EQ(four, normaliser.Frame());
    EXPECT_EQ(AnnexBResult::NoParameters, Normalise(normaliser, five));
}

TEST(AnnexBNormaliser, CutsZerosBehindAUnit)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::Frame, Normalise(normaliser, {0, 0, 0, 0, 0, 1, 0x61, 0x9a, 0, 0, 0}));
    EXPECT_EQ((Bytes{0, 0, 0, 1, 0x61, 0x9a}), normaliser.Frame());
}

TEST(AnnexBNormaliser, FindsNothingInOtherBytes)
{
    CAnnexBNormaliser normaliser;
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, {}));
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, {0, 0}));
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, {0, 0, 1}));
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, {0, 0, 0, 1}));
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(AnnexBResult::NoPicture, Normalise(normaliser, {0, 0, 2, 0, 0, 3, 0x65}));
}

// Each prefix of an access unit is read within its bounds (the sanitizers watch) and never yields what is not there.
TEST(AnnexBNormaliser, ReadsAnAccessUnitCutAnywhere)
{
    for (std::size_t length = 0; length <= KEY_FRAME.size(); ++length)
    {
        const Bytes cut(KEY_FRAME.begin(), KEY_FRAME.begin() + static_cast<std::ptrdiff_t>(length));
        CAnnexBNormaliser normaliser;
        const bool hasSlice = length > 20; // the slice's header byte is the 21st
        EXPECT_EQ(hasSlice ? AnnexBResult::Frame : AnnexBResult::NoPicture, Normalise(normaliser, cut)) << length;
    }
}
