#include "SysHelper.h"
#include "PubHelper.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <ctime>

namespace
{

const _GUID GUID = {0x00C0FFEE, 0xBEEF, 0x0123, {0x01, 0x02, 0x03, 0x04, 0xAA, 0xBB, 0xCC, 0x0D}};
const char GUID_TEXT[] = "{00C0FFEE-BEEF-0123-0102-0304AABBCC0D}";

unsigned int s_tick = 0;

unsigned int Tick()
{
    return s_tick;
}

} // namespace

TEST(SysHelper, ForwardsToThePlatform)
{
    EXPECT_EQ(CPFHelper::GetCPUCount(), CSysHelper::GetCPUCount());
    _GUID first = {};
    _GUID second = {};
    CSysHelper::CreateGUID(first);
    CSysHelper::CreateGUID(second);
    EXPECT_NE(0, std::memcmp(&first, &second, sizeof(first)));
}

TEST(SysHelper, GuidGoesToTextAndBack)
{
    char text[39];
    EXPECT_TRUE(CSysHelper::GuidToString(GUID, text));
    EXPECT_STREQ(GUID_TEXT, text);
    const _GUID back = CSysHelper::GetGuidFromString(GUID_TEXT);
    EXPECT_EQ(0, std::memcmp(&GUID, &back, sizeof(back)));
}

TEST(SysHelper, ReadGuidTellsWhatIsNone)
{
    _GUID guid = GUID;
    EXPECT_FALSE(CSysHelper::ReadGuid("", guid));
    EXPECT_FALSE(CSysHelper::ReadGuid("{00C0FFEE-BEEF-0123-0102-0304AABBCC", guid));
    EXPECT_FALSE(CSysHelper::ReadGuid("00C0FFEE-BEEF-0123-0102-0304AABBCC0D", guid));
    EXPECT_EQ(0, std::memcmp(&GUID, &guid, sizeof(guid)));
    EXPECT_TRUE(CSysHelper::ReadGuid("{00000000-0000-0000-0000-000000000001}", guid));
    EXPECT_EQ(1, guid.Data4[7]);
}

TEST(SysHelperDeathTest, MistakesEndTheProcess)
{
    EXPECT_DEATH(CSysHelper::GuidToString(GUID, nullptr), "Assertion .pGUIDStr != __null. failed");
    EXPECT_DEATH(CSysHelper::GetGuidFromString("no guid"), "isGuid");
    unsigned long long value = 0;
    EXPECT_DEATH(CSysHelper::stringToUll("012", value), "text");
}

TEST(SysHelper, MacToTextNeedsAByteToSpare)
{
    const unsigned char mac[] = {0x00, 0x1A, 0x2b, 0xFF, 0x0E, 0x09};
    char text[19] = "x";
    EXPECT_FALSE(CSysHelper::MACAddressToStr(mac, text, 18));
    EXPECT_STREQ("x", text);
    EXPECT_TRUE(CSysHelper::MACAddressToStr(mac, text, 19));
    EXPECT_STREQ("00:1A:2B:FF:0E:09", text);
}

TEST(SysHelper, MacFromText)
{
    unsigned char mac[6] = {};
    EXPECT_TRUE(CSysHelper::StrToMACAddress("00:1a:2B:fF:0e:9", mac));
    EXPECT_EQ(0, std::memcmp("\x00\x1A\x2B\xFF\x0E\x09", mac, 6));
    EXPECT_FALSE(CSysHelper::StrToMACAddress("00:1a:2B:fF:0e", mac));
    EXPECT_FALSE(CSysHelper::StrToMACAddress("", mac));
}

TEST(SysHelper, AddressHasItsFirstNumberInTheLowByte)
{
    char text[17] = "x";
    EXPECT_TRUE(CSysHelper::IPAddressToStr(0x0A01A8C0, text, sizeof(text)));
    EXPECT_STREQ("192.168.1.10", text);
    unsigned int address = 1;
    EXPECT_TRUE(CSysHelper::StrToIPAddress("192.168.1.10", address));
    EXPECT_EQ(0x0A01A8C0u, address);
    EXPECT_TRUE(CSysHelper::IPAddressToStr(0xFFFFFFFF, text, sizeof(text)));
    EXPECT_STREQ("255.255.255.255", text);
}

TEST(SysHelper, AddressToTextNeedsAByteToSpare)
{
    char text[16] = "x";
    EXPECT_FALSE(CSysHelper::IPAddressToStr(0x04030201, text, 8)); // "1.2.3.4" has 7
    EXPECT_STREQ("x", text);
    EXPECT_TRUE(CSysHelper::IPAddressToStr(0x04030201, text, 9));
    EXPECT_STREQ("1.2.3.4", text);
}

TEST(SysHelper, AddressOfFewerThanFourNumbersIsZero)
{
    unsigned int address = 1;
    EXPECT_FALSE(CSysHelper::StrToIPAddress("1.2.3", address));
    EXPECT_EQ(0u, address);
    EXPECT_FALSE(CSysHelper::StrToIPAddress("", address));
}

TEST(SysHelper, AddressesAreNotJudgedByRange)
{
    unsigned int address = 0;
    EXPECT_TRUE(CSysHelper::StrToIPAddress("256.1.1.1", address));
    EXPECT_EQ(0x01010100u | 0x100u, address);
}

TEST(SysHelper, BitsGoToTextAndBack)
{
    char text[66];
    std::memset(text, 'x', sizeof(text));
    EXPECT_TRUE(CSysHelper::ullToString(0x8000000000000005ULL, text));
    EXPECT_EQ("1" + std::string(60, '0') + "101", std::string(text));
    EXPECT_EQ('x', text[65]);
    unsigned long long value = 0;
    EXPECT_TRUE(CSysHelper::stringToUll(text + 64, value));
    EXPECT_EQ(0u, value);
    text[64] = '\0';
    EXPECT_TRUE(CSysHelper::stringToUll(text, value));
    EXPECT_EQ(0x8000000000000005ULL, value);
}

TEST(SysHelper, BitsOfAnyLengthCountFromTheEnd)
{
    unsigned long long value = 9;
    EXPECT_TRUE(CSysHelper::stringToUll("", value));
    EXPECT_EQ(0u, value);
    EXPECT_TRUE(CSysHelper::stringToUll("101", value));
    EXPECT_EQ(5u, value);
    EXPECT_TRUE(CSysHelper::stringToUll(("1" + std::string(63, '0') + "1").c_str(), value)); // bit 64 is dropped
    EXPECT_EQ(1u, value);
}

struct AddressCase
{
    const char* name;
    const char* text;
    bool isIP;
    bool isSubnet;
};

const AddressCase ADDRESS_CASES[] = {
    {"Plain", "192.168.1.10", true, true},
    {"FirstOfZero", "0.1.2.3", false, true},
    {"FirstOfOne", "1.0.0.0", true, true},
    {"LastFirst", "223.255.255.255", true, true},
    {"Multicast", "224.0.0.1", false, true},
    {"AllZero", "0.0.0.0", false, true},
    {"AllOnes", "255.255.255.255", false, true},
    {"ThreeNumbers", "1.2.3", false, false},
    {"EmptyNumber", "1..2.3", false, false},
    {"TooLarge", "1.2.3.256", false, false},
    {"FourDigits", "0001.2.3.4", false, false},
    {"ThreeDigits", "001.2.3.4", true, true},
    {"Letters", "1.2.3.a", false, false},
    {"Sign", "1.2.3.-4", false, false},
    {"BehindAFourthDot", "1.2.3.4.junk", true, true}, // it is not looked at
    {"TooLongField", "1.2.3.4444444444444444444444444444444444444444444444444444444444444444444444", false, false},
    {"Empty", "", false, false},
    {"Null", nullptr, false, false},
};

class Addresses : public testing::TestWithParam<AddressCase>
{
};

TEST_P(Addresses, AreJudged)
{
    EXPECT_EQ(GetParam().isIP, CSysHelper::IsValidIP(GetParam().text));
    EXPECT_EQ(GetParam().isSubnet, CSysHelper::IsValidSubnet(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(SysHelper, Addresses, testing::ValuesIn(ADDRESS_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(SysHelper, BuildDateIsUnpacked)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    CSysHelper::ParseBuildDate((2024u << 16) | (12u << 10) | (31u << 5) | 23u, year, month, day, hour);
    EXPECT_EQ(2024, year);
    EXPECT_EQ(12, month);
    EXPECT_EQ(31, day);
    EXPECT_EQ(23, hour);
}

TEST(SysHelper, BuildDateIsPacked)
{
    EXPECT_EQ((2026u << 16) | (1u << 10) | (2u << 5) | 3u, CSysHelper::BuildDateOf("Jan  2 2026", "03:59:59"));
    EXPECT_EQ((2024u << 16) | (12u << 10) | (31u << 5) | 23u, CSysHelper::BuildDateOf("Dec 31 2024", "23:00:00"));
    const char* const MONTHS[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (unsigned int i = 0; i < 12; ++i)
    {
        const std::string date = std::string(MONTHS[i]) + " 10 2026";
        EXPECT_EQ(i + 1, (CSysHelper::BuildDateOf(date.c_str(), "00:00:00") >> 10) & 0x1F) << date;
    }
}

TEST(SysHelper, BuildDateIsADate)
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    CSysHelper::ParseBuildDate(CSysHelper::GetBuildDate(), year, month, day, hour);
    tm fields = {};
    const time_t now = std::time(nullptr);
    gmtime_r(&now, &fields);
    EXPECT_GE(year, 2024);
    EXPECT_LE(year, fields.tm_year + 1901);
    EXPECT_GE(month, 1);
    EXPECT_LE(month, 12);
    EXPECT_GE(day, 1);
    EXPECT_LE(day, 31);
    EXPECT_LT(hour, 24);
}

TEST(PubHelper, CountsBits)
{
    EXPECT_EQ(0u, PUB_GetBitCount(0));
    EXPECT_EQ(1u, PUB_GetBitCount(0x80000000));
    EXPECT_EQ(5u, PUB_GetBitCount(0x10203040));
    EXPECT_EQ(32u, PUB_GetBitCount(0xFFFFFFFF));
}

// The generator is seeded with the tick at every call.
TEST(PubHelper, RandomNumberIsThatOfTheTick)
{
    CPFHelper::ReplaceTickCount(&Tick);
    s_tick = 1000;
    const unsigned int first = PUB_Rand();
    EXPECT_EQ(first, PUB_Rand());
    s_tick = 1001;
    EXPECT_NE(first, PUB_Rand());
    s_tick = 1000;
    EXPECT_EQ(first, PUB_Rand());
    CPFHelper::ReplaceTickCount(nullptr);
    EXPECT_LE(first, 0x7FFFFFFFu);
}

TEST(PubHelper, PrintsThePlaceAndTheError)
{
    testing::internal::CaptureStderr();
    errno = ENOENT;
    PUB_PrintError("file.cpp", 12);
    EXPECT_EQ("file.cpp 12 : No such file or directory\n", testing::internal::GetCapturedStderr());
}
