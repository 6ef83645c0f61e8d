#include "PFHelper.h"

#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

unsigned int s_ticks[3];
int s_nextTick;

unsigned int NextTick()
{
    return s_ticks[s_nextTick++];
}

class PFHelperClock : public testing::Test
{
protected:
    void TearDown() override { CPFHelper::ReplaceTickCount(nullptr); }
};

void* StoreThreadID(void* argument)
{
    *static_cast<std::atomic<unsigned int>*>(argument) = CPFHelper::GetThreadID();
    return nullptr;
}

void* StoreProcessors(void* argument)
{
    cpu_set_t cpus;
    CPU_ZERO(&cpus);
    while (sched_getaffinity(0, sizeof(cpus), &cpus) == 0 && CPU_COUNT(&cpus) != 1)
    {
        std::this_thread::yield();
    }
    *static_cast<std::atomic<int>*>(argument) = CPU_ISSET(0, &cpus) ? 0 : -1;
    return nullptr;
}

} // namespace

TEST_F(PFHelperClock, CountsMillisecondsOfTheMonotonicClock)
{
    timespec before = {};
    timespec after = {};
    clock_gettime(CLOCK_MONOTONIC, &before);
    const unsigned int tick = CPFHelper::GetTickCount();
    clock_gettime(CLOCK_MONOTONIC, &after);
    const auto ms = [](const timespec& time)
    {
        return static_cast<unsigned int>(time.tv_sec * 1000LL + time.tv_nsec / 1000000);
    };
    EXPECT_LE(tick - ms(before), ms(after) - ms(before));
}

// 0 stands for a tick that is not set, so the clock is read again.
TEST_F(PFHelperClock, NeverReturnsZero)
{
    s_ticks[0] = 0;
    s_ticks[1] = 0;
    s_ticks[2] = 7;
    s_nextTick = 0;
    CPFHelper::ReplaceTickCount(&NextTick);
    EXPECT_EQ(7u, CPFHelper::GetTickCount());
}

TEST_F(PFHelperClock, DifferencesHoldAcrossTheWrap)
{
    s_ticks[0] = 0xFFFFFFF0;
    s_ticks[1] = 0x00000010;
    s_nextTick = 0;
    CPFHelper::ReplaceTickCount(&NextTick);
    const unsigned int before = CPFHelper::GetTickCount();
    EXPECT_EQ(32u, CPFHelper::GetTickCount() - before);
}

TEST(PFHelper, SleepLastsInSpiteOfSignals)
{
    struct sigaction action = {};
    struct sigaction old = {};
    action.sa_handler = [](int) {
    }; // without SA_RESTART
    sigaction(SIGALRM, &action, &old);
    const itimerval every20Ms = {{0, 20000}, {0, 20000}};
    const itimerval never = {};
    setitimer(ITIMER_REAL, &every20Ms, nullptr);
    const auto start = std::chrono::steady_clock::now();
    CPFHelper::Sleep(150);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150));
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &old, nullptr);
}

TEST(PFHelper, KnowsProcessorsAndPageSize)
{
    EXPECT_EQ(sysconf(_SC_NPROCESSORS_ONLN), CPFHelper::GetCPUCount());
    EXPECT_EQ(static_cast<unsigned int>(sysconf(_SC_PAGESIZE)), CPFHelper::GetPageSize());
    EXPECT_EQ(CPFHelper::GetPageSize(), CPFHelper::GetPageSize());
}

TEST(PFHelper, ThreadIdIsTheKernelsAndDiffersByThread)
{
    EXPECT_EQ(static_cast<unsigned int>(syscall(SYS_gettid)), CPFHelper::GetThreadID());
    unsigned int other = 0;
    std::thread([&] { other = CPFHelper::GetThreadID(); }).join();
    EXPECT_NE(CPFHelper::GetThreadID(), other);
}

TEST(PFHelper, CreatedThreadSeesTheIdThatItsCreatorGot)
{
    std::atomic<unsigned int> seen{0};
    unsigned int id = 0;
    const unsigned int result = CPFHelper::CreateThread(&StoreThreadID, &seen, &id);
    const unsigned int created = id;
    CPFHelper::DestroyThread(id); // waits for the end
    EXPECT_EQ(created, result);
    EXPECT_EQ(created, seen);
    EXPECT_EQ(0u, id);
}

TEST(PFHelper, ThreadWithoutRoomForItsStackIsNone)
{
    pthread_attr_t before;
    ASSERT_EQ(0, pthread_getattr_default_np(&before));
    pthread_attr_t huge;
    ASSERT_EQ(0, pthread_attr_init(&huge));
    ASSERT_EQ(0,
              pthread_attr_setstacksize(&huge, SIZE_MAX / 4 * 3 / CPFHelper::GetPageSize() * CPFHelper::GetPageSize()));
    ASSERT_EQ(0, pthread_setattr_default_np(&huge));
    std::atomic<unsigned int> seen{0};
    unsigned int id = 7;
    errno = 0;
    EXPECT_EQ(0u, CPFHelper::CreateThread(&StoreThreadID, &seen, &id));
    EXPECT_EQ(EAGAIN, errno);
    EXPECT_EQ(7u, id);
    EXPECT_EQ(0, pthread_setattr_default_np(&before));
    pthread_attr_destroy(&huge);
    pthread_attr_destroy(&before);
    EXPECT_EQ(0u, seen);
}

TEST(PFHelper, DetachedThreadIsNoLongerKnown)
{
    std::atomic<unsigned int> seen{0};
    unsigned int id = 0;
    CPFHelper::CreateThread(&StoreThreadID, &seen, &id);
    unsigned int copy = id;
    CPFHelper::DetachThread(id);
    CPFHelper::DestroyThread(copy); // returns at once
    EXPECT_EQ(0u, id);
    while (seen == 0)
    {
        std::this_thread::yield();
    }
}

TEST(PFHelper, BindsAThreadToAProcessor)
{
    std::atomic<int> processor{-2};
    unsigned int id = 0;
    CPFHelper::CreateThread(&StoreProcessors, &processor, &id);
    EXPECT_TRUE(CPFHelper::AttachThreadToCPU(id, 0));
    EXPECT_FALSE(CPFHelper::AttachThreadToCPU(id, -1));
    EXPECT_FALSE(CPFHelper::AttachThreadToCPU(id, 1024));
    CPFHelper::DestroyThread(id);
    EXPECT_EQ(0, processor);
    EXPECT_FALSE(CPFHelper::AttachThreadToCPU(id, 0));
}

TEST(PFHelper, NamesTheThreadAndPrintsTheLine)
{
    testing::internal::CaptureStdout();
    char name[16] = {};
    unsigned int id = 0;
    std::thread(
        [&]
        {
            id = CPFHelper::GetThreadID();
            CPFHelper::SetCurrentThreadName("a name beyond 15 bytes", "file.cpp", 12);
            prctl(PR_GET_NAME, name);
        })
        .join();
    EXPECT_STREQ("a name beyond 1", name);
    EXPECT_EQ("THREADDDD=a name beyond 15 bytes," + std::to_string(id) + ",file.cpp,12\n",
              testing::internal::GetCapturedStdout());
}

TEST(PFHelper, GuidsDiffer)
{
    _GUID first = {};
    _GUID second = {};
    CPFHelper::CreateGUID(first);
    CPFHelper::CreateGUID(second);
    EXPECT_NE(0, std::memcmp(&first, &second, sizeof(first)));
}

TEST(PFHelper, LastErrorIsErrno)
{
    CPFHelper::SetLastError(ENOENT);
    EXPECT_EQ(ENOENT, errno);
    errno = EACCES;
    EXPECT_EQ(static_cast<unsigned int>(EACCES), CPFHelper::GetLastError());
}

TEST(PFHelper, ModuleFileNameIsTheProgram)
{
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    char buffer[4096];
    std::memset(buffer, 'x', sizeof(buffer));
    EXPECT_EQ(program.size(), CPFHelper::GetModuleFileName(1, buffer, sizeof(buffer)));
    EXPECT_EQ(program, buffer);
}

TEST(PFHelper, ModuleFileNameThatFillsTheBufferIsNotTerminated)
{
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
    char buffer[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(4u, CPFHelper::GetModuleFileName(0, buffer, 4));
    EXPECT_EQ(program.substr(0, 4) + "xxxx", std::string(buffer, sizeof(buffer)));
}

TEST(PFHelper, FileListHasTheEntriesWithoutDots)
{
    const CTempDirectory directory;
    directory.Write("a", "");
    directory.Write(".b", "");
    std::filesystem::create_directory(directory.Path("c"));
    std::list<std::string> names = {"old"};
    EXPECT_TRUE(CPFHelper::GetFileList(directory.Path().c_str(), names));
    EXPECT_THAT(names, testing::UnorderedElementsAre("a", ".b", "c"));
}

TEST(PFHelper, FileListOfAMissingDirectoryIsEmpty)
{
    const CTempDirectory directory;
    std::list<std::string> names = {"old"};
    EXPECT_FALSE(CPFHelper::GetFileList(directory.Path("missing").c_str(), names));
    EXPECT_TRUE(names.empty());
}

TEST(PFHelper, VirtualMemoryIsPageAligned)
{
    void* const memory = CPFHelper::VirtualAlloc(nullptr, 100, 0x1000, 4);
    ASSERT_NE(nullptr, memory);
    EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(memory) % CPFHelper::GetPageSize());
    std::memset(memory, 1, 100);
    CPFHelper::VirtualFree(memory, 0, 0x8000);
}

TEST(PFHelperDeathTest, WrongUseOfVirtualMemoryEndsTheProcess)
{
    char place = 0;
    EXPECT_DEATH(CPFHelper::VirtualAlloc(&place, 100, 0x1000, 4), "address == nullptr");
    EXPECT_DEATH(CPFHelper::VirtualAlloc(nullptr, 100, 0x2000, 4), "type == MEM_COMMIT");
    EXPECT_DEATH(CPFHelper::VirtualFree(nullptr, 1, 0x8000), "size == 0");
    EXPECT_DEATH(CPFHelper::VirtualFree(nullptr, 0, 0x4000), "type == MEM_RELEASE");
}
