#include "NameLock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// A name that no other test has, removed at the end.
class CName
{
public:
    explicit CName(const char* purpose)
        : m_name("/netserver-test-" + std::string(purpose) + "-" + std::to_string(getpid()))
    {
    }
    ~CName() { sem_unlink(m_name.c_str()); }

    const char* Get() const { return m_name.c_str(); }

private:
    const std::string m_name;
};

int ValueOf(const char* name)
{
    sem_t* const semaphore = sem_open(name, 0);
    if (semaphore == SEM_FAILED)
    {
        return -1;
    }
    int value = -1;
    sem_getvalue(semaphore, &value);
    sem_close(semaphore);
    return value;
}

} // namespace

TEST(NameLock, MakesTheSemaphoreFreeAndLeavesItBehind)
{
    const CName name("made");
    {
        CNameLock lock(name.Get());
        EXPECT_EQ(1, ValueOf(name.Get()));
        lock.Lock();
        EXPECT_EQ(0, ValueOf(name.Get()));
        lock.Unlock();
    }
    EXPECT_EQ(1, ValueOf(name.Get()));
}

// The C library keeps the semaphore as a file of shared memory.
TEST(NameLock, EveryUserMayTakeANewOne)
{
    const CName name("mode");
    const mode_t before = umask(0);
    const CNameLock lock(name.Get());
    umask(before);
    struct stat status = {};
    ASSERT_EQ(0, stat(("/dev/shm/sem." + std::string(name.Get() + 1)).c_str(), &status));
    EXPECT_EQ(0666u, status.st_mode & 07777u);
}

TEST(NameLock, OpensTheSemaphoreThatIsThere)
{
    const CName name("opened");
    sem_close(sem_open(name.Get(), O_CREAT | O_RDWR, 0600, 3));
    CNameLock lock(name.Get());
    EXPECT_EQ(3, ValueOf(name.Get()));
}

TEST(NameLock, KeepsAnotherProcessWaiting)
{
    const CName name("process");
    CNameLock lock(name.Get());
    lock.Lock();
    int pipeEnds[2];
    ASSERT_EQ(0, pipe(pipeEnds));
    const pid_t child = fork();
    if (child == 0)
    {
        CNameLock other(name.Get());
        char order = 'w'; // about to wait
        _exit(write(pipeEnds[1], &order, 1) == 1 && (other.Lock(), true) && (order = 'l', true) &&
                      write(pipeEnds[1], &order, 1) == 1
                  ? 0
                  : 1);
    }
    char order = 0;
    ASSERT_EQ(1, read(pipeEnds[0], &order, 1));
    EXPECT_EQ('w', order);
    EXPECT_EQ(0, waitpid(child, nullptr, WNOHANG));
    lock.Unlock();
    ASSERT_EQ(1, read(pipeEnds[0], &order, 1));
    EXPECT_EQ('l', order);
    int status = -1;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
    close(pipeEnds[0]);
    close(pipeEnds[1]);
}

TEST(NameLock, ImpossibleNameLocksNothing)
{
    CNameLock lock("/no/such/name");
    lock.Lock();
    lock.Unlock();
}
