// SharedData.h: one frame, copied once from the host and shared by every client that plays it.
//
// Any thread. Lives while someone holds a reference; the last Dec deletes it, so it exists on the heap only.
#pragma once

#include "Lock.h"
#include "NetTypes.h"
#include "ThreadAnnotations.h"

#include <memory>

class CSharedData
{
public:
    /// Copies the record and `frame.length` bytes. The reference count begins at 0: the maker adds the first reference.
    /// A frame without payload is logged and has the length 0.
    /// @param data  borrowed for the call
    CSharedData(const NETNS::RTSP_FRAME& frame, const void* data);
    CSharedData(const CSharedData&) = delete;
    CSharedData& operator=(const CSharedData&) = delete;

    int Add(); ///< one more reference. @return how many there are now
    int Dec(); ///< one less; the last one deletes the object. @return how many there were

    unsigned char* GetRtData() const; ///< the payload, GetLength() bytes; null only without payload
    int GetLength() const;            ///< bytes of payload
    const NETNS::RTSP_FRAME* GetFrameInfo() const { return &m_frame; }
    bool IsKeyFrame() const { return m_frame.keyFrame != 0; }

private:
    ~CSharedData();

    const NETNS::RTSP_FRAME m_frame; // the host's record
    unsigned char* m_data = nullptr; // from new[]
    int m_length = 0;

    // Taken last: nothing else is locked under it.
    CLock m_lock;
    int m_count GUARDED_BY(m_lock) = 0;
};

/// Gives its reference back at the end of a scope.
struct SharedDataGiveBack
{
    void operator()(CSharedData* frame) const { frame->Dec(); }
};
using SharedDataHolder = std::unique_ptr<CSharedData, SharedDataGiveBack>;
