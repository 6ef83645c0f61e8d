// FrameMaker.h: frames for the tests of this folder.
#pragma once

#include "NetTypes.h"
#include "SharedData.h"

#include <string>

inline NETNS::RTSP_FRAME FrameInfo(NETNS::RTSP_FRAME_TYPE type, bool key, unsigned long long presentationUs,
                                   unsigned int length)
{
    NETNS::RTSP_FRAME info = {};
    info.frameType = type;
    info.keyFrame = key ? 1 : 0;
    info.presentationUs = presentationUs;
    info.length = length;
    return info;
}

/// A frame that the test holds with a reference of its own until it goes out of scope.
class HeldFrame
{
public:
    HeldFrame(NETNS::RTSP_FRAME_TYPE type, bool key, unsigned long long presentationUs, const std::string& payload)
        : m_data(new CSharedData(FrameInfo(type, key, presentationUs, static_cast<unsigned int>(payload.size())),
                                 payload.data()))
    {
        m_data->Add();
    }
    ~HeldFrame() { m_data->Dec(); }
    HeldFrame(const HeldFrame&) = delete;
    HeldFrame& operator=(const HeldFrame&) = delete;

    CSharedData* Get() const { return m_data; }

    /// How many references others hold.
    int OtherHolders() const
    {
        const int all = m_data->Add();
        m_data->Dec();
        return all - 2;
    }

private:
    CSharedData* m_data;
};
