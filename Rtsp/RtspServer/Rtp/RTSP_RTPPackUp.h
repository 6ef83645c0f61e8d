// RTSP_RTPPackUp.h: one shared frame into RTP packets, for one track of one client.
//
// H.264 as single NAL unit packets and FU-A fragments (RFC 6184), G.711 as it comes (RFC 3551).
// Scheduler thread only, so there is no lock.
#pragma once

#include "NetTypes.h"
#include "SendingCommonData.h"
#include "SharedData.h"
#include "StreamingMode.h"

#include <list>

class CRTSP_RTPPackUp
{
public:
    static constexpr unsigned int PACKET_LIMIT = 1472; ///< bytes of a packet with all its headers
    static constexpr int MAX_UNITS = 512;              ///< units of a frame that are looked at

    /// @param mode     STREAMING_TCP puts the interleave header in front of each packet
    /// @param clock    RTP clock in Hz: 90000 for video, the sample rate for audio; 0: the time stamp stands still
    /// @param encodeType  not looked at: what a frame holds follows from its type
    /// @param channel  interleaved channel (RFC 2326, 10.12), read for TCP only
    CRTSP_RTPPackUp(StreamingMode mode, NETNS::RTSP_FRAME_TYPE frameType, NETNS::RTSP_ENCODE_TYPE encodeType,
                    unsigned char payload, unsigned int clock, unsigned int ssrc, unsigned int initialTimestamp,
                    unsigned char channel);
    virtual ~CRTSP_RTPPackUp();

    /// Appends the frame's packets in sending order, each at most 1472 bytes with all its headers.
    /// @param frame      borrowed for the call; its presentation time is in microseconds
    /// @param out        what is appended belongs to the caller; `data` is an array from new[]
    /// @param timestamp  receives the RTP timestamp of all these packets, in ticks of `clock`
    /// @return 0; a frame without a start code appends nothing
    int MakeUpPacket(CSharedData* frame, std::list<SENDING_COMMON_DATA>* out, unsigned int* timestamp);

    unsigned short GetCurrentSeqNo() const { return m_sequence; }     ///< of the next packet
    unsigned int GetNextTimestamp() const { return m_nextTimestamp; } ///< of the last frame; at first the initial one
    unsigned int GetSSRC() const { return m_ssrc; }

private:
    /// A NAL unit or an audio chunk. It may reach beyond the frame's end: what lies there is sent as zero bytes.
    struct Unit
    {
        unsigned int start;
        unsigned int length;
    };
    /// Where the units of a frame are.
    struct UnitTable
    {
        Unit units[MAX_UNITS];
        int count = 0;
    };
    struct FrameBytes
    {
        const unsigned char* data;
        unsigned int length;
    };

    static void ParseVideoUnits(const FrameBytes& frame, UnitTable& table);
    static void ParseAudioChunks(const FrameBytes& frame, UnitTable& table);
    void ParseVideoData(const FrameBytes& frame, UnitTable& table) const;

    unsigned int CalculateTimestamp(unsigned long long frameTimeUs, NETNS::RTSP_FRAME_TYPE frameType);

    void PackUnit(const FrameBytes& frame, const Unit& unit, bool lastOfFrame, std::list<SENDING_COMMON_DATA>* out);
    void PackSingle(const FrameBytes& frame, const Unit& unit, bool marker, std::list<SENDING_COMMON_DATA>* out);
    void PackFragments(const FrameBytes& frame, const Unit& unit, bool lastOfFrame,
                       std::list<SENDING_COMMON_DATA>* out);
    unsigned char* AppendPacket(unsigned int payloadLength, bool marker, std::list<SENDING_COMMON_DATA>* out);
    static void CopyPayload(const FrameBytes& frame, unsigned int from, unsigned char* payload, unsigned int length);
    unsigned int HeaderLength() const;

    const StreamingMode m_mode;
    const NETNS::RTSP_FRAME_TYPE m_frameType;
    const unsigned char m_payload;
    const unsigned char m_channel;
    const unsigned int m_clock;
    const unsigned int m_ssrc;

    bool m_hasFirstFrame = false;
    unsigned long long m_previousTimeUs = 0;
    unsigned int m_nextTimestamp;
    unsigned short m_sequence;
};
