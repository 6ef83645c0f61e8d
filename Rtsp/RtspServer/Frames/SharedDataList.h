// SharedDataList.h: one playing client's queue of shared frames, and what is dropped when the client is slow.
//
// Host threads push, the scheduler thread pops. Every call is locked by itself.
#pragma once

#include "Lock.h"
#include "NetTypes.h"
#include "SharedData.h"
#include "ThreadAnnotations.h"

#include <list>

/// What a list that refuses a frame means for the lists behind it on the same stream.
enum RefusalRule
{
    REFUSAL_ENDS_WALK, ///< they do not get the frame either
    REFUSAL_PASSES,    ///< they get it
};

class CSharedDataList
{
public:
    /// @param type      a video list begins at a key frame; any other is always open
    /// @param maxBytes  payload held at most, -1: no limit
    /// @param maxMs     age of the oldest frame at most, -1: no limit
    CSharedDataList(NETNS::RTSP_FRAME_TYPE type, int maxBytes, int maxMs, RefusalRule rule = REFUSAL_ENDS_WALK);
    virtual ~CSharedDataList(); ///< gives back every reference
    CSharedDataList(const CSharedDataList&) = delete;
    CSharedDataList& operator=(const CSharedDataList&) = delete;

    /// Appends a frame and drops what is too much or too old. A video list drops whole groups: everything up to the
    /// next key frame.
    /// @param data  a reference of the list's own is added; a refused or dropped frame that nobody else holds is
    /// deleted
    /// @return 0; -1 when the list waits for a key frame afterwards, so that the frame is not in it
    int AddDataToList(CSharedData* data);

    /// Takes the oldest frame. @return with its reference, which the caller gives back with Dec; null when empty
    CSharedData* GetFirstData();

    int Size() const;
    bool IsEmpty() const;

    /// Drops the frames in front of the first key frame; without one the list waits for the next.
    /// @return 0; -1 for a list that is not video
    int DeleteUntilKeyFrame();

    RefusalRule GetRefusalRule() const { return m_rule; }

private:
    void DropFirst() REQUIRES(m_lock);
    void DropByBytes() REQUIRES(m_lock);
    void DropByAge(unsigned long long newestUs) REQUIRES(m_lock);
    bool IsVideo() const { return m_type == NETNS::RTSP_FRAME_VIDEO; }

    const NETNS::RTSP_FRAME_TYPE m_type; // constant after construction, like the limits
    const int m_maxBytes;                // -1: no limit
    const int m_maxMs;                   // -1: no limit
    const RefusalRule m_rule;

    // Order: data manager, this lock, a frame's lock.
    mutable CLock m_lock;
    std::list<CSharedData*> m_frames GUARDED_BY(m_lock); // one reference held for each
    long long m_totalBytes GUARDED_BY(m_lock) = 0;
    bool m_started GUARDED_BY(m_lock) = false; // video: what is held begins at a key frame
};
