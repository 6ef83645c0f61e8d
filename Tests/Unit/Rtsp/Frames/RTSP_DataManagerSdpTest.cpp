#include "RTSP_DataManager.h"

#include "FrameMaker.h"
#include "NetServerSDK.h"
#include "PFHelper.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{
constexpr NETNS::RTSP_FRAME_TYPE VIDEO = NETNS::RTSP_FRAME_VIDEO;
constexpr NETNS::RTSP_FRAME_TYPE AUDIO = NETNS::RTSP_FRAME_AUDIO;

const char START[] = {0, 0, 0, 1};

std::string Unit(const std::string& bytes)
{
    return std::string(START, 4) + bytes;
}

std::string Bytes(const char* text, std::size_t length)
{
    return std::string(text, length);
}

const std::string SPS = Unit(Bytes("\x67\x42\x00\x1F", 4)); // "Z0IAHw=="
const std::string PPS = Unit(Bytes("\x68\xCE\x3C\x80", 4)); // "aM48gA=="
const std::string IDR = Unit("\x65slice");

SDP_INFO_H264 Read(const std::string& frame)
{
    // Memory of the frame's own length, so that a byte beyond it is seen.
    const std::unique_ptr<unsigned char[]> data(new unsigned char[frame.size()]);
    memcpy(data.get(), frame.data(), frame.size());
    SDP_INFO_H264 info;
    Create_SPS_PPS_INFO(data.get(), static_cast<unsigned int>(frame.size()), &info);
    return info;
}

unsigned int TickOf1234()
{
    return 1234;
}

const char SESSION_LINES[] = "v=0\r\n"
                             "o=- 1234 1 IN IP4 0.0.0.0\r\n"
                             "s=RTSP SESSION\r\n"
                             "u=http:///\r\n"
                             "e=admin@\r\n"
                             "t=0 0\r\n"
                             "a=control:*\r\n"
                             "a=range:npt=00.000- \r\n";

const char H264_LINES[] = "m=video 0 RTP/AVP 96\r\n"
                          "a=control:trackID=0\r\n"
                          "a=rtpmap:96 H264/90000\r\n"
                          "a=fmtp:96 profile-level-id=674200; sprop-parameter-sets=Z0IAHw==,aM48gA==; "
                          "packetization-mode=1\r\n";

const char PCMA_LINES[] = "m=audio 0 RTP/AVP 8\r\n"
                          "a=control:trackID=1\r\n"
                          "a=rtpmap:8 pcma/8000\r\n"
                          "a=ptime:40\r\n";

class Sdp : public testing::Test
{
protected:
    void SetUp() override { CPFHelper::ReplaceTickCount(TickOf1234); }
    void TearDown() override { CPFHelper::ReplaceTickCount(nullptr); }

    void Video(unsigned int id, int stream, unsigned int encodeType = NETNS::RTSP_ENCODE_H264,
               const std::string& payload = SPS + PPS + IDR)
    {
        Add(id, stream, VIDEO, encodeType, 90000, payload);
    }

    void Audio(unsigned int id, int stream, unsigned int encodeType = NETNS::RTSP_ENCODE_PCMA,
               unsigned int sampleRate = 8000)
    {
        Add(id, stream, AUDIO, encodeType, sampleRate, "sound");
    }

    bool Describe(unsigned int id, int stream, CPolicy policy = CPolicy())
    {
        return m_manager.GetSDPInfo(id, stream, m_sdp, m_profile, policy);
    }

    CRTSP_DataManager m_manager;
    std::string m_sdp = "unset";
    RTSP_PROFILE_CFG m_profile;

private:
    void Add(unsigned int id, int stream, NETNS::RTSP_FRAME_TYPE type, unsigned int encodeType, unsigned int clock,
             const std::string& payload)
    {
        NETNS::RTSP_FRAME info = FrameInfo(type, true, 0, static_cast<unsigned int>(payload.size()));
        info.encodeType = static_cast<NETNS::RTSP_ENCODE_TYPE>(encodeType);
        info.clockRate = clock;
        m_manager.AddData(id, stream, info, payload.data());
    }
};
} // namespace

TEST(CreateSpsPpsInfo, SetsAreBase64BehindOneAnother)
{
    const SDP_INFO_H264 info = Read(SPS + PPS + IDR);
    EXPECT_TRUE(info.valid);
    EXPECT_STREQ("Z0IAHw==,aM48gA==", info.spropParameterSets);
}

// The header byte stands in front of profile and constraint bytes.
TEST(CreateSpsPpsInfo, ProfileLevelIdIsTheFirstThreeBytesOfTheSps)
{
    EXPECT_EQ(0x674200u, Read(SPS + PPS + IDR).profileLevelId);
    EXPECT_EQ(0u, Read(PPS + IDR).profileLevelId);
}

TEST(CreateSpsPpsInfo, OtherUnitsAreLeftOut)
{
    const SDP_INFO_H264 info = Read(Unit("\x06sei") + SPS + Unit("\x06sei") + PPS + IDR);
    EXPECT_STREQ("Z0IAHw==,aM48gA==", info.spropParameterSets);
}

TEST(CreateSpsPpsInfo, SetsBehindTheIdrSliceAreNotSeen)
{
    EXPECT_STREQ("Z0IAHw==", Read(SPS + IDR + PPS).spropParameterSets);
}

TEST(CreateSpsPpsInfo, LastSetGoesToTheFramesEnd)
{
    EXPECT_STREQ("Z0IAHw==,aM48gA==", Read(SPS + PPS).spropParameterSets);
}

TEST(CreateSpsPpsInfo, FrameWithoutUnitsIsValidAndEmpty)
{
    for (const char* frame : {"", "a", "abc", "abcdefgh"})
    {
        const SDP_INFO_H264 info = Read(frame);
        EXPECT_TRUE(info.valid);
        EXPECT_STREQ("", info.spropParameterSets);
        EXPECT_EQ(0u, info.profileLevelId);
    }
}

TEST(CreateSpsPpsInfo, MissingBytesCountAsZero)
{
    EXPECT_EQ(0x670000u, Read(Unit("\x67")).profileLevelId);
    EXPECT_EQ(0x674200u, Read(Unit("\x67\x42")).profileLevelId);
    EXPECT_STREQ("Zw==", Read(Unit("\x67")).spropParameterSets);
    EXPECT_EQ(0u, Read(Unit("")).profileLevelId);
}

TEST(CreateSpsPpsInfo, FrameCutAnywhereIsReadWithinItsEnd)
{
    const std::string whole = SPS + PPS + IDR;
    for (std::size_t length = 0; length <= whole.size(); ++length)
        EXPECT_TRUE(Read(whole.substr(0, length)).valid);
}

TEST(CreateSpsPpsInfo, TextOf127CharactersFits)
{
    // 93 bytes are 124 characters; with ",Zw==" 129: the second set is left out with its comma.
    const SDP_INFO_H264 cut = Read(Unit("\x67" + std::string(92, 'a')) + Unit("\x68"));
    EXPECT_EQ(124u, strlen(cut.spropParameterSets));
    // 90 bytes are 120 characters; with ",aA==" 125.
    const SDP_INFO_H264 both = Read(Unit("\x67" + std::string(89, 'a')) + Unit("\x68"));
    EXPECT_EQ(125u, strlen(both.spropParameterSets));
    // One set of 96 bytes would be 128 characters: not even the first fits.
    const SDP_INFO_H264 none = Read(Unit("\x67" + std::string(95, 'a')) + Unit("\x68"));
    EXPECT_STREQ("aA==", none.spropParameterSets);
    EXPECT_EQ(0x676161u, none.profileLevelId);
}

// The search goes on one byte behind a unit's first byte.
TEST(CreateSpsPpsInfo, StartCodeRightBehindAnotherIsPartOfTheUnit)
{
    EXPECT_STREQ("aM48gA==", Read(Unit(SPS) + PPS).spropParameterSets);
}

TEST(CreateSpsPpsInfo, ReadsTheFirst512Units)
{
    std::string others;
    for (int i = 0; i < 511; ++i)
        others += Unit("\x06");
    EXPECT_STREQ("Z0IAHw==", Read(others + SPS + PPS).spropParameterSets);
}

TEST_F(Sdp, LiveStreamWithVideoAndSound)
{
    Video(1, 0);
    Audio(1, 0);
    EXPECT_TRUE(Describe(1, 0));
    EXPECT_EQ(std::string(SESSION_LINES) + H264_LINES + PCMA_LINES, m_sdp);

    EXPECT_EQ(VIDEO, m_profile.video.frameType);
    EXPECT_EQ(NETNS::RTSP_ENCODE_H264, m_profile.video.encodeType);
    EXPECT_EQ(96, m_profile.video.payloadType);
    EXPECT_EQ(90000u, m_profile.video.clockRate);
    EXPECT_EQ(0, m_profile.video.linkTimeOutMs);
    EXPECT_EQ(0u, m_profile.video.multicastAddress);
    EXPECT_EQ(0, m_profile.video.ttl);
    EXPECT_EQ(AUDIO, m_profile.audio.frameType);
    EXPECT_EQ(NETNS::RTSP_ENCODE_PCMA, m_profile.audio.encodeType);
    EXPECT_EQ(8, m_profile.audio.payloadType);
}

// The sample rate stands in the text, but the track runs on a clock of 0: its time stamps stand still.
TEST_F(Sdp, ClockOfLiveSoundIsZero)
{
    Video(1, 0);
    Audio(1, 0);
    Describe(1, 0);
    EXPECT_EQ(0u, m_profile.audio.clockRate);
}

TEST_F(Sdp, StandardRtspRunsLiveSoundOnItsSampleRate)
{
    Video(1, 0);
    Audio(1, 0, NETNS::RTSP_ENCODE_PCMU, 16000);
    Describe(1, 0, CPolicy(NET_POLICY_STANDARD_RTSP));
    EXPECT_EQ(16000u, m_profile.audio.clockRate);
}

TEST_F(Sdp, MuLaw)
{
    Video(1, 0);
    Audio(1, 0, NETNS::RTSP_ENCODE_PCMU, 16000);
    EXPECT_TRUE(Describe(1, 0));
    EXPECT_EQ(std::string(SESSION_LINES) + H264_LINES +
                  "m=audio 0 RTP/AVP 0\r\n"
                  "a=control:trackID=1\r\n"
                  "a=rtpmap:0 pcmu/16000\r\n"
                  "a=ptime:40\r\n",
              m_sdp);
    EXPECT_EQ(0, m_profile.audio.payloadType);
    EXPECT_EQ(NETNS::RTSP_ENCODE_PCMU, m_profile.audio.encodeType);
}

TEST_F(Sdp, JpegHasNoFormatLine)
{
    Video(1, 0, NETNS::RTSP_ENCODE_JPEG);
    EXPECT_TRUE(Describe(1, 0));
    EXPECT_EQ(std::string(SESSION_LINES) + "m=video 0 RTP/AVP 26\r\n"
                                           "a=control:trackID=0\r\n"
                                           "a=rtpmap:26 JPEG/90000\r\n",
              m_sdp);
    EXPECT_EQ(26, m_profile.video.payloadType);
}

TEST_F(Sdp, UnknownEncodeTypesHaveNoSection)
{
    Video(1, 0, 7);
    Audio(1, 0, 7);
    testing::internal::CaptureStderr();
    EXPECT_TRUE(Describe(1, 0));
    const std::string lines = testing::internal::GetCapturedStderr();
    const std::size_t video = lines.find(" error RTSP_DataManagerSdp.cpp:");
    EXPECT_NE(std::string::npos, video);
    EXPECT_NE(std::string::npos, lines.find(" error RTSP_DataManagerSdp.cpp:", video + 1));
    EXPECT_EQ(SESSION_LINES, m_sdp);
}

TEST_F(Sdp, UnknownStreamHasTheSessionLinesOnly)
{
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Describe(1, 0));
    const std::string lines = testing::internal::GetCapturedStderr();
    EXPECT_EQ(0u, lines.find("CRTSP_DataManager::GetSDPInfo failed, "));
    EXPECT_NE(std::string::npos, lines.find(", size:0, id:1, streamidx:0. type:0 \n"));
    EXPECT_EQ(SESSION_LINES, m_sdp);
}

TEST_F(Sdp, SoundAloneIsNoStreamYet)
{
    Audio(1, 0);
    EXPECT_FALSE(Describe(1, 0));
    EXPECT_EQ(std::string(SESSION_LINES) + PCMA_LINES, m_sdp);
}

TEST_F(Sdp, SoundOfAnotherStreamOfTheSameIdServes)
{
    Video(1, 1);
    Audio(1, 3);
    Audio(1, 2, NETNS::RTSP_ENCODE_PCMU);
    Audio(2, 1);
    EXPECT_TRUE(Describe(1, 1));
    EXPECT_NE(std::string::npos, m_sdp.find("a=rtpmap:0 pcmu/8000\r\n"));

    Video(3, 0);
    EXPECT_TRUE(Describe(3, 0));
    EXPECT_EQ(std::string::npos, m_sdp.find("m=audio"));
}

TEST_F(Sdp, TalkHasItsFixedSectionAndNeedsNoVideo)
{
    EXPECT_TRUE(Describe(39, 39));
    EXPECT_EQ(std::string(SESSION_LINES) + "m=application 0 RTP/AVP \r\n"
                                           "a=control:trackID=2\r\n"
                                           "a=rtpmap:8 pcma/8000\r\n"
                                           "a=ptime:40\r\n"
                                           "a=recvonly\r\n",
              m_sdp);
    EXPECT_EQ(AUDIO, m_profile.audio.frameType);
    EXPECT_EQ(NETNS::RTSP_ENCODE_PCMA, m_profile.audio.encodeType);
    EXPECT_EQ(8, m_profile.audio.payloadType);
    EXPECT_EQ(8000u, m_profile.audio.clockRate);
    EXPECT_TRUE(Describe(39, 0)); // by the id alone
    EXPECT_FALSE(Describe(1, 39));
}

// A client that plays before the first frame makes a record that says nothing; the next key frame fills it.
TEST_F(Sdp, RecordMadeByAListIsFilledByAKeyFrame)
{
    CSharedDataList* video = m_manager.CreateSharedDataList(1, 0, VIDEO, -1, 2000);
    CSharedDataList* audio = m_manager.CreateSharedDataList(1, 0, AUDIO, -1, 2000);
    Video(1, 0);
    Audio(1, 0);
    EXPECT_TRUE(Describe(1, 0));
    EXPECT_EQ(std::string(SESSION_LINES) + H264_LINES + PCMA_LINES, m_sdp);
    EXPECT_EQ(1, video->Size());
    EXPECT_EQ(1, audio->Size());
}

TEST_F(Sdp, RecordOfAFrameIsNotChangedByLaterOnes)
{
    Video(1, 0);
    Video(1, 0, NETNS::RTSP_ENCODE_JPEG);
    Describe(1, 0);
    EXPECT_EQ(std::string(SESSION_LINES) + H264_LINES, m_sdp);
}

TEST_F(Sdp, TrackThatIsNotDescribedKeepsItsProfile)
{
    m_profile.audio.payloadType = 77;
    Video(1, 0);
    Describe(1, 0);
    EXPECT_EQ(77, m_profile.audio.payloadType);
}
