// EventParse.h: collects a camera's answers to pull requests and reads their events.
//
// One for each camera that is asked for its events. The socket service's event thread brings the bytes and alone
// touches the buffer; Clear runs on the check thread, or on the host's thread that removes the camera.
#pragma once

#include "NetSocket.h"

#include <memory>

struct OnvifEventObserver;

class CEventParse : public CSocketDataObserver
{
public:
    /// An answer of more bytes is thrown away whole.
    static constexpr unsigned int BUFFER_BYTES = 32768;

    /// @param owner  the camera's record, which outlives this
    explicit CEventParse(OnvifEventObserver* owner);
    ~CEventParse() override = default;
    CEventParse(const CEventParse&) = delete;
    CEventParse& operator=(const CEventParse&) = delete;

    /// Appends bytes of an answer. @return whether the answer is whole
    bool CheckMsgPacketCompleted(const char* data, unsigned int length);

    /// @return 0 while an answer is incomplete, `length` in all other cases
    int OnSocketRecvData(int handle, const char* data, unsigned int length, void* param) override;

    /// Ends the pull under way; no bytes of it come any more. What it has brought stays in front of the next answer.
    void Clear();

private:
    void ResetBuffer();
    void ReadEvents();

    OnvifEventObserver* const m_owner;
    const std::unique_ptr<char[]> m_buffer; ///< with room for a zero byte behind the last
    unsigned int m_used = 0;
    unsigned int m_contentLength = 0; ///< 0 until it is known
    unsigned int m_bodyReceived = 0;
};
