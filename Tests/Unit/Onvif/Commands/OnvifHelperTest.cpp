#include "OnvifHelper.h"

#include "Base64Coder.h"
#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

std::string Encode(const Bytes& data)
{
    return COnvifHelper::EncodeMotionArea(data.data(), static_cast<unsigned int>(data.size()));
}

/// What a text unpacks to in a buffer of `size` bytes; the bytes around the buffer must stay as they are.
Bytes Decode(const std::string& text, unsigned int size)
{
    constexpr unsigned char GUARD = 0xa5;
    Bytes room(size + 2, GUARD);
    const unsigned int written = COnvifHelper::DecodeMotionArea(text.c_str(), room.data() + 1, size);
    EXPECT_LE(written, size);
    EXPECT_EQ(GUARD, room.front());
    EXPECT_EQ(GUARD, room.back());
    return {room.begin() + 1, room.begin() + 1 + written};
}

std::string Base64(const Bytes& bytes)
{
    std::string text;
    CBase64Coder::Encode(bytes.data(), bytes.size(), text);
    return text;
}

/// So many cells, all set or none, packed into bytes with zero bits behind them.
Bytes Cells(unsigned int count, bool set)
{
    Bytes bytes((count + 7) / 8);
    for (unsigned int cell = 0; set && cell < count; ++cell)
    {
        bytes[cell / 8] = static_cast<unsigned char>(bytes[cell / 8] | (0x80 >> cell % 8));
    }
    return bytes;
}

} // namespace

struct MaskCase
{
    const char* mask;
    int length;
};

class OnvifHelperMask : public testing::TestWithParam<MaskCase>
{
};

TEST_P(OnvifHelperMask, ReadsAndWritesTheSame)
{
    EXPECT_EQ(GetParam().length, COnvifHelper::SubmaskStringToLength(GetParam().mask));
    EXPECT_EQ(GetParam().mask, COnvifHelper::SubmaskLengthToString(GetParam().length));
}

// clang-format off
const MaskCase MASK_CASES[] = {
    {"0.0.0.0",         0 },
    {"128.0.0.0",       1 },
    {"254.0.0.0",       7 },
    {"255.0.0.0",       8 },
    {"255.128.0.0",     9 },
    {"255.255.0.0",     16},
    {"255.255.240.0",   20},
    {"255.255.254.0",   23},
    {"255.255.255.0",   24},
    {"255.255.255.128", 25},
    {"255.255.255.254", 31},
    {"255.255.255.255", 32},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Masks, OnvifHelperMask, testing::ValuesIn(MASK_CASES));

TEST(OnvifHelper, HasNoLengthForAnEmptyMask)
{
    EXPECT_EQ(-1, COnvifHelper::SubmaskStringToLength(""));
}

TEST(OnvifHelper, CountsTheOneBitsOfEachPartOfAMask)
{
    EXPECT_EQ(10, COnvifHelper::SubmaskStringToLength("255.5.256.0")); // 8, 2, and nothing in the low 8 bits of 256
    EXPECT_EQ(8, COnvifHelper::SubmaskStringToLength("255"));
    EXPECT_EQ(0, COnvifHelper::SubmaskStringToLength("no mask"));
}

TEST(OnvifHelper, HasNoMaskForALengthBelow0OrAbove32)
{
    EXPECT_EQ("", COnvifHelper::SubmaskLengthToString(-1));
    EXPECT_EQ("", COnvifHelper::SubmaskLengthToString(33));
}

TEST(OnvifHelper, TellsDevicesOfItsOwnFamilyByTheirExtension)
{
    EXPECT_TRUE(COnvifHelper::IsQLXDevice("<a><tns1:Extension></tns1:Extension></a>"));
    EXPECT_FALSE(COnvifHelper::IsQLXDevice("<a><tns1:Extension/></a>"));
    EXPECT_FALSE(COnvifHelper::IsQLXDevice(""));
    EXPECT_FALSE(COnvifHelper::IsQLXDevice(nullptr));
}

TEST(OnvifHelper, TellsNoOtherMakersApart)
{
    for (const char* text : {"", "<tns1:Extension>", "HIKVISION", "Dahua"})
    {
        EXPECT_FALSE(COnvifHelper::IsHKDevice(text));
        EXPECT_FALSE(COnvifHelper::IsDHDevice(text));
    }
    EXPECT_FALSE(COnvifHelper::IsHKDevice(nullptr));
    EXPECT_FALSE(COnvifHelper::IsDHDevice(nullptr));
}

struct DurationCase
{
    const char* text;
    long long seconds;
};

class OnvifHelperDuration : public testing::TestWithParam<DurationCase>
{
};

TEST_P(OnvifHelperDuration, ReadsSeconds)
{
    EXPECT_EQ(GetParam().seconds, COnvifHelper::ParseXmlTime(GetParam().text));
}

// clang-format off
const DurationCase DURATION_CASES[] = {
    {"PT10S",                  10                   },
    {"PT0S",                   0                    },
    {"PT1M30S",                90                   },
    {"PT2H",                   7200                 },
    {"P1DT1H",                 90000                },
    {"P2D",                    172800               },
    {"P1DT1H1M1S",             90061                },
    {"PT1.5S",                 1                    }, // a fraction is cut
    {"P3M",                    180                  }, // months count as minutes
    {"P3MT1H",                 3600                 }, // but not in front of a time
    {"P1Y",                    0                    },
    {"PT-5S",                  -5                   },
    {"PTS",                    0                    },
    {"P",                      0                    },
    {"",                       0                    },
    {"10",                     0                    },
    {"pt10s",                  0                    },
    {"T10S",                   0                    },
    {"PT99999999999999999999S", 2147483647          }, // no wrap-around
    {"P2147483647D",           2147483647LL * 86400 },
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Durations, OnvifHelperDuration, testing::ValuesIn(DURATION_CASES));

TEST(OnvifHelper, HasNoDurationForNoText)
{
    EXPECT_EQ(-1, COnvifHelper::ParseXmlTime(nullptr));
}

// The seconds below a minute are not written; what subscribes with such a duration sees it so.
TEST(OnvifHelper, WritesDurationsWithoutTheirSeconds)
{
    EXPECT_EQ("P", COnvifHelper::ChangeToXmlTime(0));
    EXPECT_EQ("PT", COnvifHelper::ChangeToXmlTime(45));
    EXPECT_EQ("PT1M", COnvifHelper::ChangeToXmlTime(60));
    EXPECT_EQ("PT1M", COnvifHelper::ChangeToXmlTime(90));
    EXPECT_EQ("PT1H", COnvifHelper::ChangeToXmlTime(3600));
    EXPECT_EQ("P1D", COnvifHelper::ChangeToXmlTime(86400));
    EXPECT_EQ("P1DT", COnvifHelper::ChangeToXmlTime(86401));
    EXPECT_EQ("P1DT1H1M", COnvifHelper::ChangeToXmlTime(90061));
    EXPECT_EQ("", COnvifHelper::ChangeToXmlTime(-1));
}

TEST(OnvifHelper, WritesEightDigitsBehindThePoint)
{
    EXPECT_EQ("0.00000000", COnvifHelper::DecimalText(0));
    EXPECT_EQ("0.00000000", COnvifHelper::DecimalText(-0.0));
    EXPECT_EQ("0.12345679", COnvifHelper::DecimalText(0.123456789));
    EXPECT_EQ("-1.50000000", COnvifHelper::DecimalText(-1.5));
    EXPECT_EQ("4611686018427387904.00000000", COnvifHelper::DecimalText(4611686018427387904.0));
}

TEST(OnvifHelper, ReadsTheNumberAtTheStartOfAText)
{
    EXPECT_EQ(-0.25, COnvifHelper::ReadDecimal(" -0.25x"));
    EXPECT_EQ(100, COnvifHelper::ReadDecimal("1e2"));
    for (const char* text : {"", "fast", "-", ".", ","})
    {
        EXPECT_EQ(0, COnvifHelper::ReadDecimal(text)) << text;
    }
}

/// A locale whose numbers have a comma, for the process while it lives.
class CommaLocale
{
public:
    CommaLocale()
    {
        const std::string source =
            m_directory.Write("source", "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\n"
                                        "END LC_NUMERIC\n");
        // It warns of all that the locale lacks, and ends with a failure for that.
        const std::string make = "localedef -c --no-archive -i " + source + " " + m_directory.Path("comma_X");
        isThere = std::system((make + " >/dev/null 2>&1").c_str()) != -1;
        setenv("LOCPATH", m_directory.Path().c_str(), 1);
        isThere = isThere && std::setlocale(LC_NUMERIC, "comma_X") != nullptr;
    }
    ~CommaLocale()
    {
        std::setlocale(LC_NUMERIC, "C");
        unsetenv("LOCPATH");
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool isThere = false;

private:
    const CTempDirectory m_directory;
};

// Hosts follow their users' locale, cameras do not.
TEST(OnvifHelper, KeepsThePointInALocaleOfTheHost)
{
    const CommaLocale locale;
    if (!locale.isThere)
    {
        GTEST_SKIP() << "localedef is not installed";
    }
    ASSERT_EQ(',', *localeconv()->decimal_point);
    EXPECT_EQ("-0.50000000", COnvifHelper::DecimalText(-0.5));
    EXPECT_EQ(0.75, COnvifHelper::ReadDecimal("0.75"));
}

struct GridCase
{
    const char* text; // as devices send it
    unsigned int cells;
    bool set;
};

class OnvifHelperGrid : public testing::TestWithParam<GridCase>
{
};

TEST_P(OnvifHelperGrid, UnpacksWhatDevicesSend)
{
    EXPECT_EQ(Cells(GetParam().cells, GetParam().set), Decode(GetParam().text, GetParam().cells));
}

TEST_P(OnvifHelperGrid, PacksAsDevicesDo)
{
    EXPECT_EQ(GetParam().text, Encode(Cells(GetParam().cells, GetParam().set)));
}

// clang-format off
const GridCase GRID_CASES[] = {
    {"0P8A8A==", 22 * 18, true },
    {"zwA=",     22 * 18, false},
    {"2P8AwA==", 22 * 15, true },
    {"1wA=",     22 * 15, false},
    {"7/8=",     144,     true },
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Grids, OnvifHelperGrid, testing::ValuesIn(GRID_CASES));

struct PackCase
{
    const char* name;
    Bytes plain;
    Bytes packed;
};

class OnvifHelperPackBits : public testing::TestWithParam<PackCase>
{
};

TEST_P(OnvifHelperPackBits, Packs)
{
    EXPECT_EQ(Base64(GetParam().packed), Encode(GetParam().plain));
}

TEST_P(OnvifHelperPackBits, Unpacks)
{
    EXPECT_EQ(GetParam().plain, Decode(Base64(GetParam().packed), 1000));
}

Bytes Join(const Bytes& first, const Bytes& second)
{
    Bytes all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

/// So many bytes of which no three in a row are alike.
Bytes Varied(unsigned int count)
{
    Bytes bytes(count);
    for (unsigned int at = 0; at < count; ++at)
    {
        bytes[at] = static_cast<unsigned char>(at % 7);
    }
    return bytes;
}

// clang-format off
const PackCase PACK_CASES[] = {
    {"OneByte",          {9},           {0, 9}                                      },
    {"TwoAlike",         {9, 9},        {1, 9, 9}                                   },
    {"ThreeAlike",       {9, 9, 9},     {254, 9}                                    },
    {"LiteralThenRun",   {1, 2, 2, 2},  {0, 1, 254, 2}                              },
    {"RunThenLiteral",   {2, 2, 2, 1},  {254, 2, 0, 1}                              },
    {"TwoAlikeAtTheEnd", {1, 2, 2},     {2, 1, 2, 2}                                },
    {"127Alike",         Bytes(127, 5), {130, 5}                                    },
    {"128Alike",         Bytes(128, 5), {129, 5}                                    },
    {"129Alike",         Bytes(129, 5), {129, 5, 0, 5}                              },
    {"131Alike",         Bytes(131, 5), {129, 5, 254, 5}                            },
    {"128Varied",        Varied(128),   Join({127}, Varied(128))                    },
    {"129Varied",        Varied(129),   Join(Join({127}, Varied(128)), {0, 128 % 7})},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Runs, OnvifHelperPackBits, testing::ValuesIn(PACK_CASES),
                         [](const testing::TestParamInfo<PackCase>& one)
                         { return "Of" + std::string(one.param.name); });

TEST(OnvifHelper, PacksNoBytesToNoText)
{
    const unsigned char byte = 0;
    EXPECT_EQ("", COnvifHelper::EncodeMotionArea(&byte, 0));
    EXPECT_EQ("", COnvifHelper::EncodeMotionArea(nullptr, 8));
}

TEST(OnvifHelper, StopsUnpackingAtTheControlByte128)
{
    EXPECT_EQ(Bytes(), Decode(Base64({128, 0, 1}), 100));
    EXPECT_EQ(Bytes({7, 7, 7}), Decode(Base64({254, 7, 128, 0, 1}), 100));
}

TEST(OnvifHelper, CutsARunAndALiteralToTheRoom)
{
    EXPECT_EQ(Bytes(10, 7), Decode(Base64({129, 7, 0, 1, 0, 1, 0, 1}), 10));
    EXPECT_EQ(Bytes({1, 2, 3, 4, 5, 6}), Decode(Base64({5, 1, 2, 3, 4, 5, 6}), 7));
    EXPECT_EQ(Bytes({9, 9, 9, 1}), Decode(Base64({254, 9, 1, 1}), 4)); // two announced, room and bytes for one
}

TEST(OnvifHelper, EndsAtALiteralThatRunsPastTheText)
{
    EXPECT_EQ(Bytes({9, 9, 9}), Decode(Base64({254, 9, 127, 1, 2}), 100));
}

TEST(OnvifHelper, EndsAtARunWithoutItsByte)
{
    EXPECT_EQ(Bytes({9, 9, 9}), Decode(Base64({254, 9, 254}), 100));
}

TEST(OnvifHelper, UnpacksNothingFromGarbage)
{
    EXPECT_EQ(Bytes(), Decode("", 100));
    EXPECT_EQ(Bytes(), Decode("!?<>", 100));
    EXPECT_EQ(Bytes(), Decode("0P8", 100)); // an unfinished group is dropped
    EXPECT_EQ(Bytes(), Decode("0P8A8A==", 0));
    unsigned char room[4];
    EXPECT_EQ(0U, COnvifHelper::DecodeMotionArea(nullptr, room, sizeof(room)));
    EXPECT_EQ(0U, COnvifHelper::DecodeMotionArea("0P8A8A==", nullptr, 4));
}

// A grid has more cells than it has packed bytes; a text beyond that is none.
TEST(OnvifHelper, UnpacksNothingFromATextLongerThanTheRoom)
{
    EXPECT_EQ(Bytes(4, 0xff), Decode(Base64({253, 0xff, 128}), 4));
    EXPECT_EQ(Bytes(), Decode(Base64({253, 0xff, 128, 128, 128}), 4));
}

TEST(OnvifHelper, UnpacksWhatItPacks)
{
    for (unsigned int size = 1; size < 400; ++size)
    {
        Bytes bytes(size);
        for (unsigned int at = 0; at < size; ++at)
        {
            bytes[at] = static_cast<unsigned char>((at * at / (size % 17 + 1)) % 5);
        }
        EXPECT_EQ(bytes, Decode(Encode(bytes), size * 8));
    }
}
