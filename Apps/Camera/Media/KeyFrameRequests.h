// KeyFrameRequests.h: turns bursts of key frame requests into single ones.
#pragma once

#include <atomic>

/// Of all requests between two frames of an encoder only the first reaches it: one key frame serves them all.
/// Any thread.
class CKeyFrameRequests
{
public:
    /// @return true when the caller shall pass the request on to the encoder
    bool Ask() { return !m_pending.exchange(true); }

    /// The encoder gave a frame: the next request is a new one.
    void FrameEncoded() { m_pending.store(false); }

private:
    std::atomic<bool> m_pending{false};
};
