// ShareSDKThreadTest.cpp: threads by handle.
#include "ShareSDK.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

/// A flag that threads wait for.
class Gate
{
public:
    void Open()
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_open = true;
        m_opened.notify_all();
    }
    void Await()
    {
        std::unique_lock<std::mutex> lock(m_lock);
        m_opened.wait(lock, [this] { return m_open; });
    }

private:
    std::mutex m_lock;
    std::condition_variable m_opened;
    bool m_open = false;
};

struct Probe
{
    std::atomic<bool> ran{false};
    std::atomic<unsigned int> kernelId{0};
    std::string name;
    Gate entered;
    Gate mayLeave;
};

void Note(void* argument)
{
    auto* probe = static_cast<Probe*>(argument);
    probe->kernelId = static_cast<unsigned int>(syscall(SYS_gettid));
    char name[17] = {};
    prctl(PR_GET_NAME, name);
    probe->name = name;
    probe->ran = true;
}

void NoteAndStay(void* argument)
{
    auto* probe = static_cast<Probe*>(argument);
    Note(argument);
    probe->entered.Open();
    probe->mayLeave.Await();
}

unsigned int Create(void (*function)(void*), void* argument, bool suspended, const char* name = "test")
{
    return SHARESDK_CreateRunOneThread(function, argument, suspended, __FILE__, __LINE__, name);
}

bool Destroy(unsigned int handle)
{
    return SHARESDK_DestroyThread(handle, __FILE__, __LINE__);
}

TEST(ShareSDKThread, RunsItsFunctionOnceAndIsWaitedFor)
{
    Probe probe;
    const unsigned int handle = Create(Note, &probe, false);
    ASSERT_NE(0u, handle);
    EXPECT_TRUE(Destroy(handle));
    EXPECT_TRUE(probe.ran);
}

TEST(ShareSDKThread, SuspendedThreadHasItsIdBeforeItRuns)
{
    Probe probe;
    const unsigned int handle = Create(Note, &probe, true);
    const unsigned int id = SHARESDK_GetThreadID(handle);
    EXPECT_NE(0u, id);
    EXPECT_FALSE(probe.ran);
    EXPECT_TRUE(SHARESDK_ResumeThread(handle));
    EXPECT_TRUE(Destroy(handle));
    EXPECT_EQ(id, probe.kernelId);
}

TEST(ShareSDKThread, SuspendedThreadThatIsDestroyedNeverRuns)
{
    Probe probe;
    EXPECT_TRUE(Destroy(Create(Note, &probe, true)));
    EXPECT_FALSE(probe.ran);
}

TEST(ShareSDKThread, ResumeOfARunningThreadChangesNothing)
{
    Probe probe;
    const unsigned int handle = Create(NoteAndStay, &probe, false);
    probe.entered.Await();
    EXPECT_TRUE(SHARESDK_ResumeThread(handle));
    probe.mayLeave.Open();
    EXPECT_TRUE(Destroy(handle));
}

TEST(ShareSDKThread, KernelKeepsFifteenBytesOfTheName)
{
    Probe probe;
    Destroy(Create(Note, &probe, false, "##Thread Pool Thread##"));
    EXPECT_EQ("##Thread Pool T", probe.name);
}

TEST(ShareSDKThread, ThreadMayLetOthersFinishFirst)
{
    static std::atomic<int> policy{-1};
    Destroy(Create(
        [](void*)
        {
            SHARESDK_LetOthersFinish();
            policy = sched_getscheduler(0);
        },
        nullptr, false));
    EXPECT_EQ(SCHED_BATCH, policy);
    EXPECT_EQ(SCHED_OTHER, sched_getscheduler(0));
}

TEST(ShareSDKThread, UnknownHandlesFail)
{
    EXPECT_EQ(0u, SHARESDK_GetThreadID(0));
    EXPECT_EQ(0u, SHARESDK_GetThreadID(4711));
    EXPECT_FALSE(SHARESDK_ResumeThread(4711));
    EXPECT_FALSE(Destroy(0));
    EXPECT_FALSE(Destroy(4711));
    EXPECT_EQ(0u, Create(nullptr, nullptr, false));
}

TEST(ShareSDKThread, HandleIsUnknownOnceDestroyed)
{
    Probe probe;
    const unsigned int handle = Create(Note, &probe, false);
    EXPECT_TRUE(Destroy(handle));
    EXPECT_FALSE(Destroy(handle));
    EXPECT_EQ(0u, SHARESDK_GetThreadID(handle));
}

TEST(ShareSDKThread, HandlesAreNotUsedAgainSoon)
{
    Probe probe;
    const unsigned int first = Create(Note, &probe, false);
    Destroy(first);
    for (int i = 0; i < 100; ++i)
    {
        const unsigned int handle = Create(Note, &probe, false);
        EXPECT_NE(first, handle);
        Destroy(handle);
    }
}

/// What a detached thread uses: shared with it, since it may still be leaving when the test ends.
struct Destroyer
{
    unsigned int target = 0;
    Gate mayDestroy;
    std::atomic<bool> result{false};
    Gate left;
};

/// Creates a suspended thread that destroys `destroyer->target`.
unsigned int CreateDestroyer(const std::shared_ptr<Destroyer>& destroyer)
{
    const auto destroyTarget = [](void* argument)
    {
        const std::unique_ptr<std::shared_ptr<Destroyer>> own(static_cast<std::shared_ptr<Destroyer>*>(argument));
        (*own)->mayDestroy.Await();
        (*own)->result = Destroy((*own)->target);
        (*own)->left.Open();
    };
    return Create(destroyTarget, new std::shared_ptr<Destroyer>(destroyer), true);
}

TEST(ShareSDKThread, ThreadThatDestroysItselfIsDetached)
{
    const auto self = std::make_shared<Destroyer>();
    self->target = CreateDestroyer(self);
    SHARESDK_ResumeThread(self->target);
    self->mayDestroy.Open();
    self->left.Await();
    EXPECT_TRUE(self->result);
    EXPECT_FALSE(Destroy(self->target));
}

// Each waits for the other's end; whoever closes the circle goes on at once, so both end.
TEST(ShareSDKThread, TwoThreadsThatDestroyEachOtherBothEnd)
{
    const auto first = std::make_shared<Destroyer>();
    const auto second = std::make_shared<Destroyer>();
    second->target = CreateDestroyer(first);
    first->target = CreateDestroyer(second);
    SHARESDK_ResumeThread(first->target);
    SHARESDK_ResumeThread(second->target);
    first->mayDestroy.Open();
    second->mayDestroy.Open();
    first->left.Await();
    second->left.Await();
    EXPECT_TRUE(first->result);
    EXPECT_TRUE(second->result);
}

struct Rivals
{
    Probe probe;
    unsigned int target = 0;
    std::atomic<int> succeeded{0};
};

TEST(ShareSDKThread, OfTwoCallsWithOneHandleOneSucceeds)
{
    Rivals rivals;
    rivals.target = Create(NoteAndStay, &rivals.probe, false);
    const auto destroyTarget = [](void* argument)
    {
        auto* own = static_cast<Rivals*>(argument);
        own->succeeded += Destroy(own->target) ? 1 : 0;
    };
    const unsigned int first = Create(destroyTarget, &rivals, false);
    const unsigned int second = Create(destroyTarget, &rivals, false);
    rivals.probe.mayLeave.Open();
    EXPECT_TRUE(Destroy(first));
    EXPECT_TRUE(Destroy(second));
    EXPECT_EQ(1, rivals.succeeded);
    EXPECT_TRUE(rivals.probe.ran);
}

TEST(ShareSDKThread, ManyThreadsComeAndGoAtOnce)
{
    std::atomic<int> ran{0};
    const auto count = [](void* argument)
    {
        ++*static_cast<std::atomic<int>*>(argument);
    };
    std::vector<unsigned int> handles;
    for (int i = 0; i < 64; ++i)
    {
        handles.push_back(Create(count, &ran, i % 2 == 0));
    }
    for (const unsigned int handle : handles)
    {
        SHARESDK_ResumeThread(handle);
        EXPECT_TRUE(Destroy(handle));
    }
    EXPECT_EQ(64, ran);
}

} // namespace
