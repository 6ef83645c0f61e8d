#include "RTSP_RTCPPackUp.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace
{
std::string Bytes(std::initializer_list<int> values)
{
    std::string bytes;
    for (int value : values)
        bytes.push_back(static_cast<char>(value));
    return bytes;
}

std::string Take(CRTSP_RTCPPackUp& packUp)
{
    char buffer[4096];
    int size = sizeof(buffer);
    EXPECT_EQ(0, packUp.GetRTCPData(buffer, &size));
    return std::string(buffer, static_cast<std::size_t>(size));
}

CPFHelper::__TNICInfo Nic(const char* name, unsigned char lastByte)
{
    CPFHelper::__TNICInfo nic = {};
    snprintf(nic.name, sizeof(nic.name), "%s", name);
    nic.MAC[0] = 0xAB;
    nic.MAC[5] = lastByte;
    return nic;
}
} // namespace

TEST(RTSP_RTCPPackUp, SenderReport)
{
    CRTSP_RTCPPackUp packUp(0x11223344);
    EXPECT_EQ(28, packUp.MakeSenderReport(0x55667788, 1000002, 0x01020304, 0x0A0B0C0D));
    EXPECT_EQ(Bytes({
                  0x80, 200,  0x00, 0x06, // version 2, count 0; sender report; 7 words
                  0x11, 0x22, 0x33, 0x44, // SSRC
                  0x83, 0xAA, 0x7E, 0x81, // NTP seconds: 1900 to 1970 and one more
                  0x00, 0x00, 0x00, 0x02, // NTP fraction: the microseconds as they are
                  0x55, 0x66, 0x77, 0x88, // RTP timestamp
                  0x01, 0x02, 0x03, 0x04, // packets
                  0x0A, 0x0B, 0x0C, 0x0D, // octets
              }),
              Take(packUp));
}

TEST(RTSP_RTCPPackUp, ReportAtTimeZeroIsAt1970)
{
    CRTSP_RTCPPackUp packUp(0);
    packUp.MakeSenderReport(0, 0, 0, 0);
    EXPECT_EQ(Bytes({0x83, 0xAA, 0x7E, 0x80, 0, 0, 0, 0}), Take(packUp).substr(8, 8));
}

TEST(RTSP_RTCPPackUp, ReportOfOneMicrosecondBeforeASecond)
{
    CRTSP_RTCPPackUp packUp(0);
    packUp.MakeSenderReport(0, 1999999, 0, 0);
    EXPECT_EQ(Bytes({0x83, 0xAA, 0x7E, 0x81, 0x00, 0x0F, 0x42, 0x3F}), Take(packUp).substr(8, 8));
}

// The name is the hardware address of this machine: 17 characters.
TEST(RTSP_RTCPPackUp, SourceDescriptionIsPaddedToWords)
{
    CRTSP_RTCPPackUp packUp(0x11223344);
    EXPECT_EQ(28, packUp.MakeSourceDescription());
    const std::string packet = Take(packUp);
    ASSERT_EQ(28u, packet.size());
    EXPECT_EQ(Bytes({
                  0x81, 202, 0x00, 0x06,  // version 2, count 1; source description; 7 words
                  0x11, 0x22, 0x33, 0x44, // SSRC
                  0x01, 17,               // CNAME of 17 bytes
              }),
              packet.substr(0, 10));
    EXPECT_EQ(':', packet[12]);
    EXPECT_EQ('\0', packet[27]); // the end of the items

    std::list<CPFHelper::__TNICInfo> interfaces;
    CPFHelper::GetNICList(interfaces);
    EXPECT_EQ(RtcpCanonicalName(interfaces), packet.substr(10, 17));
}

TEST(RTSP_RTCPPackUp, NameIsTheAddressOfEth0)
{
    EXPECT_EQ("AB:00:00:00:00:02", RtcpCanonicalName({Nic("bond0", 1), Nic("eth0", 2), Nic("eth1", 3)}));
}

TEST(RTSP_RTCPPackUp, WithoutEth0TheFirstInterfaceCounts)
{
    EXPECT_EQ("AB:00:00:00:00:FF", RtcpCanonicalName({Nic("eth1", 0xFF), Nic("eth2", 3)}));
}

TEST(RTSP_RTCPPackUp, WithoutInterfacesTheNameIsAllZeros)
{
    EXPECT_EQ("00:00:00:00:00:00", RtcpCanonicalName({}));
}

TEST(RTSP_RTCPPackUp, ApplicationSpecificIsFixed)
{
    CRTSP_RTCPPackUp packUp(0x11223344);
    EXPECT_EQ(28, packUp.MakeApplicationSpecific());
    EXPECT_EQ(Bytes({
                  0x81, 204,  0x00, 0x06, // version 2, count 1; application; 7 words
                  0x11, 0x22, 0x33, 0x44, // SSRC
                  'q',  't',  's',  'i',  // name
                  0x00, 0x00, 0x00, 0x00, //
                  0x00, 0x00, 0x00, 0x02, //
                  0x3D, 0x4A, 0x00, 0x04, //
                  0x00, 0x00, 0x00, 0x0E, //
              }),
              Take(packUp));
}

TEST(RTSP_RTCPPackUp, ReportAndDescriptionAreOneCompound)
{
    CRTSP_RTCPPackUp packUp(1);
    EXPECT_EQ(28, packUp.MakeSenderReport(0, 0, 0, 0));
    EXPECT_EQ(56, packUp.MakeSourceDescription());
    const std::string compound = Take(packUp);
    ASSERT_EQ(56u, compound.size());
    EXPECT_EQ(Bytes({0x80, 200}), compound.substr(0, 2));
    EXPECT_EQ(Bytes({0x81, 202}), compound.substr(28, 2));
}

TEST(RTSP_RTCPPackUp, TakingEmptiesAndASmallBufferKeepsWhatIsBuilt)
{
    CRTSP_RTCPPackUp packUp(1);
    char buffer[64];
    int size = sizeof(buffer);
    EXPECT_EQ(-1, packUp.GetRTCPData(buffer, &size)); // nothing is built
    packUp.MakeSenderReport(0, 0, 0, 0);

    size = 27;
    testing::internal::CaptureStderr();
    EXPECT_EQ(-1, packUp.GetRTCPData(buffer, &size));
    EXPECT_EQ("################### 27 28\n", testing::internal::GetCapturedStderr());
    size = 0;
    EXPECT_EQ(-1, packUp.GetRTCPData(buffer, &size));
    EXPECT_EQ(-1, packUp.GetRTCPData(buffer, nullptr));
    size = 28;
    EXPECT_EQ(0, packUp.GetRTCPData(buffer, &size));
    EXPECT_EQ(28, size);
    size = sizeof(buffer);
    EXPECT_EQ(-1, packUp.GetRTCPData(buffer, &size));
}

TEST(RTSP_RTCPPackUp, ClearBeginsANewCompound)
{
    CRTSP_RTCPPackUp packUp(1);
    packUp.MakeSenderReport(0, 0, 0, 0);
    packUp.Clear();
    EXPECT_EQ(28, packUp.MakeSenderReport(0, 0, 0, 0));
}

TEST(RTSP_RTCPPackUp, ContentIsPaddedToFourBytesOfTheWhole)
{
    CRTSP_RTCPPackUp packUp(1);
    packUp.FillContent("ab", 2, false);
    packUp.FillContent("cde", 3, true);
    EXPECT_EQ(Bytes({'a', 'b', 'c', 'd', 'e', 0, 0, 0}), Take(packUp));
    packUp.FillContent("abcd", 4, true);
    EXPECT_EQ("abcd", Take(packUp));
}

TEST(RTSP_RTCPPackUp, ContentGrowsBeyondTheFirstBuffer)
{
    CRTSP_RTCPPackUp packUp(1);
    const std::string first(1023, 'a');
    const std::string second(2000, 'b');
    packUp.FillContent(first.data(), 1023, true);
    packUp.FillContent(second.data(), 2000, false);
    EXPECT_EQ(first + '\0' + second, Take(packUp));
}

TEST(RTSP_RTCPPackUp, NothingIsAppendedOfNothing)
{
    CRTSP_RTCPPackUp packUp(1);
    packUp.FillContent(nullptr, 4, false);
    packUp.FillContent("a", -1, false);
    char buffer[8];
    int size = sizeof(buffer);
    EXPECT_EQ(-1, packUp.GetRTCPData(buffer, &size));
}
