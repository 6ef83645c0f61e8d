// RTSP_DataManager.h: between the host's frames and the sessions.
//
// Remembers what each stream is, hands frames to the lists of the clients that play it, writes the SDP (RFC 4566, RFC
// 6184), answers snapshot requests, keeps the URL table, and is the only caller of the host's CStreamCtrl.
//
// Host threads add frames, HTTP workers take snapshots; everything else runs on the scheduler thread.
#pragma once

#include "DevInterface.h"
#include "Lock.h"
#include "MyEvent.h"
#include "Policy.h"
#include "RTSP_ManagerKey.h"
#include "RTSP_StreamCfg.h"
#include "SharedDataList.h"
#include "StreamCtrl.h"
#include "ThreadAnnotations.h"

#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// What the SDP says about an H.264 stream.
struct SDP_INFO_H264
{
    bool valid = false;
    unsigned int profileLevelId = 0; ///< first three bytes of the SPS, its header byte included
    char spropParameterSets[128] = "";
};

/// Reads the parameter sets of a key frame: the NAL units behind 00 00 00 01, the first 512 of them, up to the IDR
/// slice (0x65). A set whose text no longer fits is left out.
/// @param data  the frame's payload, `length` bytes
void Create_SPS_PPS_INFO(const unsigned char* data, unsigned int length, SDP_INFO_H264* info);

class CRTSP_DataManager
{
public:
    static constexpr unsigned int SNAPSHOT_WAIT_MS = 3000;
    static constexpr int MAX_RTSP_USERS = 8; ///< a host that reports this many has none: nobody can log in

    static CRTSP_DataManager& Instance();

    /// The process has one, from Instance(); tests make their own.
    explicit CRTSP_DataManager(unsigned int snapShotWaitMs = SNAPSHOT_WAIT_MS);
    ~CRTSP_DataManager();
    CRTSP_DataManager(const CRTSP_DataManager&) = delete;
    CRTSP_DataManager& operator=(const CRTSP_DataManager&) = delete;

    /// Before the scheduler starts. @param stream, dev  borrowed until the scheduler has stopped
    void Init(CStreamCtrl* stream, CDevInterface* dev);

    /// Forgets every stream and deletes every list. After the sessions are gone. The URLs stay. No picture is waited
    /// for any more, until the next Init.
    void Clear();

    // Host threads.

    /// Copies a frame for the clients that play its stream; no copy is made when there is none. The first usable frame
    /// of a stream only says what the stream is and goes to no list: any audio or JPEG frame, a video key frame.
    /// @param data  borrowed for the call
    /// @return 0; -1 for a video frame before the first key frame, or when a list refused the frame and so kept it
    /// from the lists behind it
    int AddData(unsigned int id, int stream, const NETNS::RTSP_FRAME& frame, const void* data);

    /// The first registration of a URL text wins.
    void SetLiveRtspUrl(unsigned int chn, int stream, const char* url);

    /// All URLs registered for a channel, in text order.
    void GetRtspUrl(unsigned int chn, std::vector<RTSP_URL_CHN_EX>& urls) const;

    // HTTP workers.

    /// Waits for the next JPEG frame of a channel, three seconds at most; one caller at a time, the others wait.
    /// @param data  receives an array from new[] that the caller deletes
    /// @return false when none came; at once between Clear and Init, since no frame is taken then
    bool GetSnapShot(unsigned int chn, char*& data, unsigned int& len);

    // Scheduler thread.

    /// Finds the stream of a request URL: of all registered texts that occur in it the last in text order.
    /// @return false when there is none; a URL with "talkback" is found even so, with `chn` and `stream` untouched
    bool FindRtspUrl(const char* url, unsigned int& chn, int& stream) const;

    /// A new client's queue on a stream. @return the list, owned here until DelSharedDataList
    CSharedDataList* CreateSharedDataList(unsigned int id, int stream, NETNS::RTSP_FRAME_TYPE type, int maxBytes,
                                          int maxMs, RefusalRule rule = REFUSAL_ENDS_WALK);

    /// @return 0; -1 for a list that is not there
    int DelSharedDataList(CSharedDataList* list);

    /// Writes a stream's SDP.
    /// @param sdp      receives the text, also when the result is false
    /// @param profile  a track that the text names is filled, any other stays as it is
    /// @param policy   StandardRtsp(): the RTP clock of a live audio track is its sample rate, otherwise 0
    /// @return false while the stream has no video (talk: never)
    bool GetSDPInfo(unsigned int id, int stream, std::string& sdp, RTSP_PROFILE_CFG& profile,
                    CPolicy policy = CPolicy());

    /// Whether GetSDPInfo would succeed: the stream's first key frame has come, or it is talk.
    bool IsDescribable(unsigned int id, int stream) const;

    bool NeedAuthorization();
    void GetRtspUserInfo(std::vector<NETNS::DEV_USER_INFO>& users);

    // The host's CStreamCtrl, one for one. No lock is held; a slow host stalls every client.
    unsigned int OpenLiveStream(const char* userInfoXml, unsigned int chn, int stream, unsigned int& out);
    void CloseLiveStream(unsigned int handle);
    unsigned int OpenRecStream(const char* userInfoXml, unsigned int chn, const NETNS::DEV_DATE& date,
                               const NETNS::DEV_TIME& time, unsigned int timeLen, unsigned int& out);
    void ClosePlayStream(unsigned int handle);
    unsigned int OpenTalkBackStream(const char* userInfoXml);
    void CloseTalkBackStream(unsigned int handle);
    int TalkBackStremInput(unsigned char* data, int len, int encodeType);

private:
    struct StreamRecord
    {
        bool described = false; // false: made by a list, no frame has said yet what the stream is
        SDP_INFO_H264 h264;
        NETNS::RTSP_ENCODE_TYPE videoEncodeType = NETNS::RTSP_ENCODE_H264;
        unsigned int videoClockRate = 0;
        bool hasAudio = false;
        NETNS::RTSP_ENCODE_TYPE audioEncodeType = NETNS::RTSP_ENCODE_H264;
        unsigned int audioSampleRate = 0;
        std::list<std::unique_ptr<CSharedDataList>> lists; // in the order in which the clients came
    };
    using RecordMap = std::map<RTSP_MANAGER_KEY, StreamRecord>;

    void TakeSnapShot(unsigned int id, const NETNS::RTSP_FRAME& frame, const void* data) REQUIRES(m_dataLock);
    static bool Describe(const NETNS::RTSP_FRAME& frame, const void* data, StreamRecord& record);
    int FindLists(const RTSP_MANAGER_KEY& key, const NETNS::RTSP_FRAME& frame, const void* data, bool& hasLists);
    int PushToLists(const RTSP_MANAGER_KEY& key, CSharedData* shared);
    bool WriteVideo(unsigned int id, int stream, std::string& sdp, RTSP_PROFILE_CFG& profile) REQUIRES(m_dataLock);
    void WriteAudio(unsigned int id, int stream, std::string& sdp, RTSP_PROFILE_CFG& profile, CPolicy policy)
        REQUIRES(m_dataLock);
    const StreamRecord* FindAudio(unsigned int id, int stream) const REQUIRES(m_dataLock);

    // Set by Init while no other thread runs.
    CStreamCtrl* m_streamCtrl = nullptr;
    CDevInterface* m_dev = nullptr;

    // First in the order: then a list's lock, then a frame's lock.
    mutable CLock m_dataLock;
    RecordMap m_records GUARDED_BY(m_dataLock);
    bool m_snapShotWanted GUARDED_BY(m_dataLock) = false;
    bool m_snapShotsEnded GUARDED_BY(m_dataLock) = false;
    unsigned int m_snapShotChannel GUARDED_BY(m_dataLock) = 0;
    std::unique_ptr<char[]> m_snapShot GUARDED_BY(m_dataLock);
    unsigned int m_snapShotLength GUARDED_BY(m_dataLock) = 0;

    // Held over a whole snapshot, before the data lock: one caller at a time.
    CLock m_snapShotLock;
    CMyEvent m_snapShotTaken;
    const unsigned int m_snapShotWaitMs;

    // Never nested with the data lock.
    mutable CLock m_urlLock;
    std::map<std::string, std::pair<unsigned int, int>> m_urls GUARDED_BY(m_urlLock);
};
