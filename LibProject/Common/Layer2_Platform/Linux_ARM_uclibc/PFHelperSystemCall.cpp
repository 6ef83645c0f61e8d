#include "PFHelperSystemCall.h"

#include "PFAssert.h"
#include "PFHelper.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <semaphore.h>
#include <unistd.h>

namespace
{

// On the request pipe: the flag in byte 0, then the command with zero bytes behind it.
struct Request
{
    std::uint8_t flag;
    char szCmd[256];
};
static_assert(sizeof(Request) == 257, "the request has 257 bytes");

// On the reply pipe, in the host's byte order.
struct Reply
{
    std::uint32_t result;
    std::uint32_t status; // 0: done
};
static_assert(sizeof(Reply) == 8, "the reply has 8 bytes");

class CDescriptor
{
public:
    CDescriptor(const char* path, int flags) : m_fd(open(path, flags | O_CLOEXEC)) {}
    ~CDescriptor()
    {
        if (m_fd >= 0)
        {
            close(m_fd);
        }
    }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;

    int Get() const { return m_fd; }

private:
    const int m_fd;
};

// The order is the helper's: it opens its reading side first, and its writing side once it has the request.
bool Exchange(const SYSTEM_CALL_CHANNEL& channel, const Request& request, Reply& reply)
{
    const CDescriptor out(channel.requestPipe, O_WRONLY); // waits for the reader
    if (write(out.Get(), &request, sizeof(request)) != static_cast<ssize_t>(sizeof(request)))
    {
        return false;
    }
    const CDescriptor in(channel.replyPipe, O_RDONLY); // waits for the writer
    return read(in.Get(), &reply, sizeof(reply)) == static_cast<ssize_t>(sizeof(reply));
}

} // namespace

const SYSTEM_CALL_CHANNEL SYSTEM_CALL_HELPER = {"SystemCall_LockFile_89Io2", "/tmp/SystemCall_pipe_Server_89Io2",
                                                "/tmp/SystemCall_pipe_Client_89Io2"};

bool RequestSystemCall(const SYSTEM_CALL_CHANNEL& channel, const char* szCmd, bool flag, int& result)
{
    Request request = {};
    PF_ASSERT_TEXT(std::strlen(szCmd) < sizeof(request.szCmd), "strlen(szCmd) < sizeof(request.szCmd)");
    std::memcpy(request.szCmd, szCmd, std::strlen(szCmd));
    request.flag = flag ? 1 : 0;

    sem_t* const turn = sem_open(channel.semaphore, 0);
    if (turn == SEM_FAILED)
    {
        return false; // no helper
    }
    while (sem_wait(turn) != 0 && errno == EINTR)
    {
    }
    Reply reply = {};
    const bool answered = Exchange(channel, request, reply);
    sem_post(turn);
    sem_close(turn);

    if (answered)
    {
        std::memcpy(&result, &reply.result, sizeof(result));
    }
    return answered && reply.status == 0;
}

bool CPFHelper::SystemCall(const char* szCmd, bool flag, int& result)
{
    return RequestSystemCall(SYSTEM_CALL_HELPER, szCmd, flag, result);
}
