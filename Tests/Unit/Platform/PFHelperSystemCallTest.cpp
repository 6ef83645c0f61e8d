#include "PFHelperSystemCall.h"

#include "TempDirectory.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// The helper process: takes one request and sends the bytes of a reply.
class PFHelperSystemCall : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(0, mkfifo(m_requestPipe.c_str(), 0600));
        ASSERT_EQ(0, mkfifo(m_replyPipe.c_str(), 0600));
        sem_close(sem_open(m_semaphore.c_str(), O_CREAT | O_RDWR, 0600, 1));
    }

    void TearDown() override { sem_unlink(m_semaphore.c_str()); }

    bool Call(const std::string& command, bool flag, const std::string& reply, int& result)
    {
        std::thread helper(
            [&]
            {
                char bytes[300] = {};
                const int in = open(m_requestPipe.c_str(), O_RDONLY);
                const ssize_t count = read(in, bytes, sizeof(bytes));
                m_request.assign(bytes, static_cast<size_t>(count));
                const int out = open(m_replyPipe.c_str(), O_WRONLY);
                EXPECT_EQ(static_cast<ssize_t>(reply.size()), write(out, reply.data(), reply.size()));
                close(out);
                close(in);
            });
        const SYSTEM_CALL_CHANNEL channel = {m_semaphore.c_str(), m_requestPipe.c_str(), m_replyPipe.c_str()};
        const bool done = RequestSystemCall(channel, command.c_str(), flag, result);
        helper.join();
        return done;
    }

    int SemaphoreValue() const
    {
        sem_t* const semaphore = sem_open(m_semaphore.c_str(), 0);
        int value = -1;
        sem_getvalue(semaphore, &value);
        sem_close(semaphore);
        return value;
    }

    std::string m_request; // as it came

private:
    const CTempDirectory m_directory;
    const std::string m_requestPipe = m_directory.Path("request");
    const std::string m_replyPipe = m_directory.Path("reply");
    const std::string m_semaphore = "/netserver-test-systemcall-" + std::to_string(getpid());
};

const std::string REPLY_7_DONE("\x07\0\0\0\0\0\0\0", 8); // host order: little-endian machines
const std::string REPLY_7_FAILED("\x07\0\0\0\x01\0\0\0", 8);

} // namespace

TEST_F(PFHelperSystemCall, SendsTheFlagAndTheCommandWithZeroBytes)
{
    int result = 0;
    EXPECT_TRUE(Call("reboot", true, REPLY_7_DONE, result));
    EXPECT_EQ(7, result);
    EXPECT_EQ(std::string("\x01reboot", 7) + std::string(250, '\0'), m_request);
    EXPECT_EQ(1, SemaphoreValue());
}

TEST_F(PFHelperSystemCall, TakesACommandOf255Characters)
{
    int result = 0;
    EXPECT_TRUE(Call(std::string(255, 'x'), false, REPLY_7_DONE, result));
    EXPECT_EQ(std::string(1, '\0') + std::string(255, 'x') + std::string(1, '\0'), m_request);
}

TEST_F(PFHelperSystemCall, StatusOtherThanZeroIsAFailureWithAResult)
{
    int result = 0;
    EXPECT_FALSE(Call("x", false, REPLY_7_FAILED, result));
    EXPECT_EQ(7, result);
}

TEST_F(PFHelperSystemCall, ShortReplyIsAFailureWithoutAResult)
{
    int result = 5;
    EXPECT_FALSE(Call("x", false, REPLY_7_DONE.substr(0, 7), result));
    EXPECT_EQ(5, result);
    EXPECT_EQ(1, SemaphoreValue());
}

TEST(PFHelperSystemCallWithoutHelper, FailsWhenThereIsNoSemaphore)
{
    const SYSTEM_CALL_CHANNEL channel = {"/netserver-test-no-such-semaphore", "/nonexistent", "/nonexistent"};
    int result = 5;
    EXPECT_FALSE(RequestSystemCall(channel, "x", false, result));
    EXPECT_EQ(5, result);
}

TEST(PFHelperSystemCallDeathTest, LongerCommandEndsTheProcess)
{
    int result = 0;
    EXPECT_DEATH(RequestSystemCall(SYSTEM_CALL_HELPER, std::string(256, 'x').c_str(), false, result),
                 "Assertion .strlen\\(szCmd\\) < sizeof\\(request.szCmd\\). failed");
}

TEST(PFHelperSystemCallNames, AreTheHelpers)
{
    EXPECT_STREQ("SystemCall_LockFile_89Io2", SYSTEM_CALL_HELPER.semaphore);
    EXPECT_STREQ("/tmp/SystemCall_pipe_Server_89Io2", SYSTEM_CALL_HELPER.requestPipe);
    EXPECT_STREQ("/tmp/SystemCall_pipe_Client_89Io2", SYSTEM_CALL_HELPER.replyPipe);
}
