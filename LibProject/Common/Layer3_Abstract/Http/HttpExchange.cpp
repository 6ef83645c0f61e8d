#include "HttpExchange.h"

#include "HttpDataPacket.h"
#include "NetSocket.h"
#include "PFHelper.h"
#include "ShareSDK.h"

#include <algorithm>

namespace
{

/// Bounds the waits of one message by the time that they take together, however often bytes end them early.
class CReadBudget
{
public:
    explicit CReadBudget(unsigned int budgetMs) : m_budgetMs(budgetMs) {}

    /// Waits for bytes. @return false when the budget is used up
    bool Wait(int handle)
    {
        if (m_waitedMs >= m_budgetMs)
        {
            return false;
        }
        const unsigned int begin = CPFHelper::GetTickCount();
        NET_SOCKET_WaitRecv(handle, m_budgetMs - m_waitedMs);
        m_lastWaitMs = CPFHelper::GetTickCount() - begin;
        m_waitedMs += m_lastWaitMs;
        return true;
    }

    /// A read brought nothing. A wait that ended at once for nothing counts too, so that none goes on for ever.
    void NoteEmptyRead()
    {
        if (m_waits && m_lastWaitMs == 0)
        {
            ++m_waitedMs;
        }
        m_waits = true;
    }
    void NoteBytes() { m_waits = false; }

private:
    const unsigned int m_budgetMs;
    unsigned int m_waitedMs = 0;
    unsigned int m_lastWaitMs = 0;
    bool m_waits = false; ///< the read before brought nothing either
};

} // namespace

bool ReadHttpMessage(int handle, const HTTP_READ_LIMITS& limits, CHttpDataPacket& packet)
{
    char buffer[HTTP_READ_BYTES_MAX];
    const int room = std::min(limits.readBytes, HTTP_READ_BYTES_MAX);
    CReadBudget budget(limits.silenceMs);
    for (;;)
    {
        bool broken = false;
        const int count = NET_SOCKET_Recv_Immediate(handle, buffer, room, &broken);
        if (broken)
        {
            return false; // bytes that came with the news are dropped
        }
        if (count <= 0)
        {
            budget.NoteEmptyRead();
            if (!budget.Wait(handle))
            {
                return false;
            }
            continue;
        }
        budget.NoteBytes();
        packet.PushBack(buffer, static_cast<unsigned int>(count));
        if (packet.IsComplete())
        {
            return true;
        }
        if (packet.IsHeaderTooLong())
        {
            return false;
        }
    }
}

std::optional<CHttpProtocolAnalyse> TakeHttpRequest(CHttpDataPacket& packet)
{
    std::optional<CHttpProtocolAnalyse> request;
    _DATA_PACK_* message = packet.GetNextPendingPacket();
    if (message == nullptr)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
        return request;
    }
    request.emplace(message->m_pBuff, message->Length());
    CHttpDataPacket::ReleasePack(message);
    if (request->IsResponse())
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    return request;
}

void SendHttpMessageAndEnd(int handle, const CHttpProtocolAnalyse& message)
{
    int remaining = 0;
    const char* cursor = message.GetBuf(remaining);
    if (cursor == nullptr || remaining <= 0)
    {
        SHARESDK_AbnormalOutput("ASSERT", __FILE__, __LINE__);
    }
    bool broken = false;
    while (remaining > 0 && !broken)
    {
        const int sent = NET_SOCKET_Send_Last(handle, cursor, remaining, broken);
        if (sent > 0)
        {
            cursor += sent;
            remaining -= sent;
        }
    }
    NET_SOCKET_DestroyHNetCommunication(handle);
}
