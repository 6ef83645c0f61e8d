// RTSP_ManagerKey.h: what names one stream of frames.
#pragma once

#include "NetTypes.h"

/// Stream index of every playback; the id is the handle of CStreamCtrl::OpenRecStream.
constexpr int RTSP_STREAM_PLAYBACK = 29;
/// Id and stream index of the device's own sound for talk clients.
constexpr int RTSP_STREAM_TALKBACK = 39;

struct RTSP_MANAGER_KEY
{
    unsigned int id;
    int stream;
    NETNS::RTSP_FRAME_TYPE type;
};

/// By id, then by stream index with its sign, then by type.
inline bool operator<(const RTSP_MANAGER_KEY& a, const RTSP_MANAGER_KEY& b)
{
    if (a.id != b.id)
        return a.id < b.id;
    if (a.stream != b.stream)
        return a.stream < b.stream;
    return static_cast<int>(a.type) < static_cast<int>(b.type);
}
