#include "RTSP_SockScheduler.h"

#include "FakeClock.h"
#include "NC_Socket.h"
#include "PFHelper.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <thread>
#include <vector>

namespace
{

/// One end of a connected pair; notes its calls and answers as told.
class Handler : public CRTSP_SockHandler
{
public:
    Handler(CRTSP_SockScheduler& scheduler, std::vector<std::string>& log)
        : CRTSP_SockHandler(scheduler, -1), m_log(log)
    {
        int pair[2];
        socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, pair);
        m_sock = pair[0];
        m_far = pair[1];
    }

    int Sock() const { return m_sock; }
    void Write() const { NC_Send(m_far, "x", 1, 0); }
    void CloseFar() { NC_CloseSocket(m_far); }
    /// Leaves no room in the sending direction.
    void FillUp() const
    {
        const std::string block(65536, 'x');
        while (NC_Send(m_sock, block.data(), static_cast<int>(block.size()), 0) > 0)
        {
        }
    }

    int HandleAccept() override { return Note("accept", 0); }
    int HandleRecv() override
    {
        char byte = 0;
        if (readAway)
            NC_Recv(m_sock, &byte, 1, 0);
        return Note("recv", recvResult);
    }
    bool HasDataToSend() override { return hasData; }
    int HandleSend() override { return Note("send", sendResult); }
    int HandleConnected() override
    {
        m_scheduler.DelSockHandler(m_sock);
        return Note("connected", 0);
    }
    int HandleTimeOut(int iTypeMask) override
    {
        Note("timeout " + std::to_string(iTypeMask), 0);
        if (destroyOnTimeOut)
            Destroy();
        return 0;
    }
    int HandleWait(unsigned int now) override { return Note("wait " + std::to_string(now), 0); }
    void Fail() override
    {
        onCall = nullptr;
        Note("fail", 0);
        if (endsOnFail)
            CRTSP_SockHandler::Fail();
    }
    void CloseSocket() override { NC_CloseSocket(m_sock); }

    std::function<void()> onCall;
    bool hasData = false;
    bool readAway = true;
    bool destroyOnTimeOut = false;
    bool endsOnFail = true;
    int sendResult = HANDLER_PROGRESS;
    int recvResult = 0;
    std::string name;

private:
    ~Handler() override
    {
        if (m_far != -1)
            NC_CloseSocket(m_far);
    }
    int Note(const std::string& call, int result)
    {
        m_log.push_back(name + call);
        const std::function<void()> then = onCall; // it may end this handler
        if (then)
            then();
        return result;
    }

    std::vector<std::string>& m_log;
    int m_far = -1;
};

class RTSP_SockScheduler : public ::testing::Test
{
protected:
    ~RTSP_SockScheduler() override
    {
        for (Handler* handler : handlers)
            handler->Destroy();
    }
    Handler* Make()
    {
        handlers.push_back(new Handler(scheduler, log));
        return handlers.back();
    }
    void Round()
    {
        scheduler.WakeUp();
        scheduler.RunRound();
        scheduler.RunRound(); // the first one may only have used up the wake-up
    }
    void RunOnce()
    {
        scheduler.WakeUp();
        scheduler.RunRound();
    }
    using Log = std::vector<std::string>;

    FakeClock clock;
    Log log;
    CRTSP_SockScheduler scheduler;
    std::vector<Handler*> handlers;
};

TEST_F(RTSP_SockScheduler, SendsBeforeItReceives)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, -1);
    handler->hasData = true;
    handler->Write();
    RunOnce();
    EXPECT_EQ((Log{"send", "recv"}), log);
}

TEST_F(RTSP_SockScheduler, AnIdleSocketIsNotAskedToSend)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, -1);
    RunOnce();
    EXPECT_TRUE(log.empty());
}

TEST_F(RTSP_SockScheduler, DataThatNeverMovesTimesOutAsTwo)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, 25000);
    handler->hasData = true;
    handler->FillUp();
    RunOnce();
    clock.Advance(24999);
    RunOnce();
    EXPECT_TRUE(log.empty());
    clock.Advance(1);
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
}

TEST_F(RTSP_SockScheduler, AnIdleSendSideNeverTimesOut)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, 25000);
    for (int i = 0; i < 10; ++i)
    {
        clock.Advance(20000);
        RunOnce();
    }
    EXPECT_TRUE(log.empty());
}

TEST_F(RTSP_SockScheduler, ASendThatWouldBlockDoesNotCountAsActivity)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, 100);
    handler->hasData = true;
    handler->sendResult = HANDLER_WOULD_BLOCK;
    clock.Advance(99);
    RunOnce();
    clock.Advance(1);
    RunOnce();
    EXPECT_EQ((Log{"send", "timeout 2", "send"}), log);
}

TEST_F(RTSP_SockScheduler, EachOtherSendResultCountsAsActivity)
{
    for (const int result : {HANDLER_NOTHING, HANDLER_PROGRESS, HANDLER_PARTIAL})
    {
        Handler* handler = Make();
        scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, 100);
        handler->hasData = true;
        handler->sendResult = result;
        clock.Advance(99);
        RunOnce();
        clock.Advance(99);
        RunOnce();
        EXPECT_EQ((Log{"send", "send"}), log) << result;
        log.clear();
        scheduler.DelSockHandler(handler->Sock());
    }
}

TEST_F(RTSP_SockScheduler, ASilentPeerTimesOutAsTwo)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 1000);
    clock.Advance(999);
    RunOnce();
    EXPECT_TRUE(log.empty());
    clock.Advance(1);
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
}

TEST_F(RTSP_SockScheduler, AListenerAndAConnectTimeOutAsOne)
{
    Handler* listener = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_ACCEPT, listener->Sock(), listener, 1000);
    Handler* connecting = Make();
    connecting->FillUp();
    scheduler.AddSockHandler(SOCK_HANDLER_CONNECTED, connecting->Sock(), connecting, 1000);
    clock.Advance(1000);
    RunOnce();
    EXPECT_EQ((Log{"timeout 1", "timeout 1"}), log);
}

TEST_F(RTSP_SockScheduler, ATimeOutOfZeroFiresInTheNextRound)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 0);
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
}

TEST_F(RTSP_SockScheduler, AHandlerThatOutlivesItsTimeOutHasOneTurnInARound)
{
    Handler* first = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, first->Sock(), first, 0);
    Handler* second = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, second->Sock(), second, 0);
    RunOnce();
    EXPECT_EQ(2u, log.size());
}

TEST_F(RTSP_SockScheduler, AHandlerThatOutlivesItsTimeOutHasAllOfItAgain)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 100);
    clock.Advance(100);
    RunOnce();
    clock.Advance(99);
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
    clock.Advance(1);
    RunOnce();
    EXPECT_EQ((Log{"timeout 2", "timeout 2"}), log);
}

TEST_F(RTSP_SockScheduler, AHandlerMayEndItselfAndOthersInItsTimeOut)
{
    Handler* first = Make();
    Handler* second = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, first->Sock(), first, 0);
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, second->Sock(), second, 0);
    handlers.clear();
    first->onCall = [second]
    {
        second->Destroy();
    };
    first->destroyOnTimeOut = true;
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
}

TEST_F(RTSP_SockScheduler, ActivityPutsTheTimeOutOff)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 1000);
    clock.Advance(900);
    handler->Write();
    RunOnce();
    clock.Advance(999);
    RunOnce();
    EXPECT_EQ(Log{"recv"}, log);
}

TEST_F(RTSP_SockScheduler, AnAcceptPutsTheTimeOutOff)
{
    Handler* listener = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_ACCEPT, listener->Sock(), listener, 1000);
    clock.Advance(900);
    listener->Write();
    RunOnce();
    clock.Advance(999);
    RunOnce();
    clock.Advance(1000);
    RunOnce();
    EXPECT_EQ((Log{"accept", "accept", "timeout 1", "accept"}), log);
}

// A tick count goes round after 49.7 days.
TEST_F(RTSP_SockScheduler, TimeOutsHoldAcrossTheWrapOfTheClock)
{
    clock.Advance(0xFFFFFFF0u - clock.Now());
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 100);
    clock.Advance(99);
    RunOnce();
    EXPECT_TRUE(log.empty());
    clock.Advance(1);
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
}

TEST_F(RTSP_SockScheduler, DeletingAnUnknownSocketIsMinusOne)
{
    EXPECT_EQ(-1, scheduler.DelSockHandler(SOCK_HANDLER_RECV, 5));
    EXPECT_EQ(-1, scheduler.DelSockHandler(5));
}

TEST_F(RTSP_SockScheduler, DeletingAnInterestThatIsNotThereEndsTheProcess)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    EXPECT_DEATH(scheduler.DelSockHandler(SOCK_HANDLER_SEND, handler->Sock()), "");
}

TEST_F(RTSP_SockScheduler, OtherMasksEndTheProcess)
{
    Handler* handler = Make();
    EXPECT_DEATH(scheduler.AddSockHandler(3, handler->Sock(), handler, -1), "");
    EXPECT_DEATH(scheduler.AddSockHandler(16, handler->Sock(), handler, -1), "");
    scheduler.AddSockHandler(SOCK_HANDLER_ACCEPT, handler->Sock(), handler, -1);
    EXPECT_DEATH(scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1), "");
}

TEST_F(RTSP_SockScheduler, AnInterestThatIsDeletedIsServedNoMore)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 0);
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, -1);
    EXPECT_EQ(0, scheduler.DelSockHandler(SOCK_HANDLER_RECV, handler->Sock()));
    handler->Write();
    ::testing::internal::CaptureStderr();
    RunOnce();
    EXPECT_EQ("", ::testing::internal::GetCapturedStderr()); // its time-out went as well
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(0, scheduler.DelSockHandler(SOCK_HANDLER_SEND, handler->Sock()));
    EXPECT_EQ(-1, scheduler.DelSockHandler(handler->Sock()));
}

TEST_F(RTSP_SockScheduler, ADeletedInterestInSendingLeavesTheOtherAlone)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 1000);
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, 0);
    handler->hasData = true;
    EXPECT_EQ(0, scheduler.DelSockHandler(SOCK_HANDLER_SEND, handler->Sock()));
    ::testing::internal::CaptureStderr();
    RunOnce();
    EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
    EXPECT_TRUE(log.empty());
    clock.Advance(1000);
    RunOnce();
    EXPECT_EQ(Log{"timeout 2"}, log);
}

/// A handler is replaced, in the pass in which its socket is ready, by one on a socket of the same number.
class RTSP_SockSchedulerReplaced : public RTSP_SockScheduler
{
protected:
    void Replace(bool hadData)
    {
        Handler* first = Make();
        Handler* old = Make();
        scheduler.AddSockHandler(SOCK_HANDLER_RECV, first->Sock(), first, -1);
        for (const int type : {SOCK_HANDLER_RECV, SOCK_HANDLER_SEND})
            scheduler.AddSockHandler(type, old->Sock(), old, -1);
        old->hasData = hadData;
        first->Write();
        old->Write();
        first->recvResult = HANDLER_GONE;
        first->onCall = [this, old]
        {
            const int sock = old->Sock();
            old->Destroy();
            handlers.pop_back();
            Handler* fresh = Make();
            ASSERT_EQ(sock, fresh->Sock());
            fresh->name = "fresh ";
            for (const int type : {SOCK_HANDLER_RECV, SOCK_HANDLER_SEND})
                scheduler.AddSockHandler(type, sock, fresh, -1);
        };
        RunOnce();
    }
};

TEST_F(RTSP_SockSchedulerReplaced, ASocketThatOnlyHadSomethingToReadLeavesNothingToItsSuccessor)
{
    Replace(false);
    EXPECT_EQ(Log{"recv"}, log);
}

// Only one readiness goes with a socket, that to write first.
TEST_F(RTSP_SockSchedulerReplaced, ASocketThatWasReadyForBothHasItsSuccessorReadOnce)
{
    Replace(true);
    EXPECT_EQ((Log{"recv", "fresh recv"}), log);
}

TEST_F(RTSP_SockScheduler, ASecondRegistrationKeepsTheFirstHandler)
{
    Handler* first = Make();
    Handler* second = Make();
    first->name = "first ";
    second->name = "second ";
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, first->Sock(), first, -1);
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, first->Sock(), second, -1);
    first->Write();
    RunOnce();
    EXPECT_EQ(Log{"first recv"}, log);
}

TEST_F(RTSP_SockScheduler, AConnectIsToldWhenTheSocketIsWritable)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_CONNECTED, handler->Sock(), handler, -1);
    RunOnce();
    EXPECT_EQ(Log{"connected"}, log);
}

TEST_F(RTSP_SockScheduler, AListenerIsToldWhenItIsReadable)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_ACCEPT, handler->Sock(), handler, -1);
    handler->Write();
    RunOnce();
    EXPECT_EQ(Log{"accept"}, log);
}

// The walk starts again when a handler is gone; nobody is called twice for one readiness.
TEST_F(RTSP_SockScheduler, AHandlerThatGoesDoesNotMakeOthersReadTwice)
{
    Handler* first = Make();
    Handler* second = Make();
    first->name = "first ";
    second->name = "second ";
    first->readAway = false;
    second->recvResult = HANDLER_GONE;
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, first->Sock(), first, -1);
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, second->Sock(), second, -1);
    first->Write();
    second->Write();
    RunOnce();
    EXPECT_EQ((Log{"first recv", "second recv"}), log);
}

TEST_F(RTSP_SockScheduler, AClosedPeerIsReadable)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    handler->CloseFar();
    RunOnce();
    EXPECT_EQ(Log{"recv"}, log);
}

TEST_F(RTSP_SockScheduler, AHandlerThatRunsOutOfMemoryEndsAlone)
{
    Handler* handler = Make();
    handlers.clear();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    const int sock = handler->Sock();
    handler->onCall = []
    {
        throw std::bad_alloc();
    };
    handler->Write();
    RunOnce();
    EXPECT_EQ((Log{"recv", "fail"}), log);
    EXPECT_EQ(-1, scheduler.DelSockHandler(sock));
}

// A link belongs to a session, which would go on using it.
TEST_F(RTSP_SockScheduler, AHandlerThatRunsOutOfMemoryIsLeftToItsOwner)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    handler->endsOnFail = false;
    handler->onCall = []
    {
        throw std::bad_alloc();
    };
    handler->Write();
    RunOnce();
    EXPECT_EQ((Log{"recv", "fail"}), log);
    handler->Write();
    RunOnce();
    EXPECT_EQ((Log{"recv", "fail", "recv"}), log);
}

TEST_F(RTSP_SockScheduler, AWaiterIsCalledEveryRoundUntilItIsTakenOut)
{
    Handler* handler = Make();
    scheduler.AddWaiter(handler, CPFHelper::GetTickCount() + 80);
    RunOnce();
    RunOnce();
    scheduler.DelWaiter(handler);
    RunOnce();
    EXPECT_EQ(2u, log.size());
}

TEST_F(RTSP_SockScheduler, EachWaiterIsCalledOnceInARound)
{
    for (int i = 0; i < 3; ++i)
        scheduler.AddWaiter(Make(), CPFHelper::GetTickCount() + 80);
    handlers[0]->onCall = [this]
    {
        scheduler.AddWaiter(handlers[0], clock.Now() + 160);
    };
    RunOnce();
    EXPECT_EQ(3u, log.size());
    for (Handler* handler : handlers)
        scheduler.DelWaiter(handler);
}

TEST_F(RTSP_SockScheduler, AWaiterMayEndItselfAndAllOthers)
{
    for (int i = 0; i < 3; ++i)
    {
        Handler* handler = Make();
        scheduler.AddWaiter(handler, CPFHelper::GetTickCount() + 80);
        handler->onCall = [this]
        {
            for (Handler* each : handlers)
            {
                scheduler.DelWaiter(each);
                each->Destroy();
            }
            handlers.clear();
        };
    }
    RunOnce();
    EXPECT_EQ(1u, log.size());
}

// A link whose report failed lives on, and what came for it is read in the same pass.
TEST_F(RTSP_SockScheduler, AHandlerThatLivesOnBehindAFailedSendIsStillRead)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, -1);
    handler->hasData = true;
    handler->sendResult = HANDLER_GONE;
    handler->Write();
    RunOnce();
    EXPECT_EQ((Log{"send", "recv"}), log);
}

TEST_F(RTSP_SockScheduler, OneHandlerMayEndAnotherThatIsReadyInTheSamePass)
{
    Handler* first = Make();
    Handler* second = Make();
    Handler* third = Make();
    for (Handler* handler : handlers)
    {
        scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
        handler->Write();
    }
    third->name = "third ";
    first->recvResult = HANDLER_GONE;
    handlers = {first, third};
    first->onCall = [second]
    {
        second->Destroy();
    };
    RunOnce();
    EXPECT_EQ((Log{"recv", "third recv"}), log);
}

TEST_F(RTSP_SockScheduler, WithoutAnyHandlerARoundWaits)
{
    scheduler.RunRound(); // no wake-up is left from before
    const auto begin = std::chrono::steady_clock::now();
    scheduler.RunRound();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
}

TEST_F(RTSP_SockScheduler, AWaitIsOfSixtyMilliseconds)
{
    EXPECT_EQ(60, CRTSP_SockScheduler::MAX_WAIT_MS);
}

#ifndef __SANITIZE_ADDRESS__ // the sanitizer opens a pipe to check a pointer, and takes a failure for a bad pointer
TEST_F(RTSP_SockScheduler, AWaitThatFailsIsLoggedAndLastsAsLong)
{
    scheduler.RunRound();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    ::testing::internal::CaptureStderr();
    const auto begin = std::chrono::steady_clock::now();
    setrlimit(RLIMIT_NOFILE, &none); // so that no descriptor may be waited for
    scheduler.RunRound();
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find(" select err."));
}
#endif

TEST_F(RTSP_SockScheduler, AWaitThatASignalEndsIsLoggedAndNotRepeated)
{
    scheduler.RunRound();
    std::signal(SIGALRM, [](int) {});
    const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
    const itimerval never{};
    ::testing::internal::CaptureStderr();
    setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    scheduler.RunRound();
    setitimer(ITIMER_REAL, &never, nullptr);
    std::signal(SIGALRM, SIG_DFL);
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find(" select err."));
}

TEST_F(RTSP_SockScheduler, TimeOutsAreToldOnTheConsole)
{
    Handler* handler = Make();
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, 0);
    scheduler.AddSockHandler(SOCK_HANDLER_SEND, handler->Sock(), handler, 0);
    ::testing::internal::CaptureStderr();
    RunOnce();
    const std::string lines = ::testing::internal::GetCapturedStderr();
    const std::size_t receive = lines.find("*************iRecvTimeOut****************");
    const std::size_t send = lines.find("*************iSendTimeOut****************");
    const std::size_t end = lines.find("==============time out=============");
    EXPECT_LT(receive, send);
    EXPECT_LT(send, end);
    EXPECT_NE(std::string::npos, end);
}

TEST(RTSP_SockSchedulerThread, AWakeUpEndsTheWaitOfARound)
{
    CRTSP_SockScheduler scheduler;
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i)
    {
        scheduler.WakeUp();
        scheduler.RunRound();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3)); // 100 waits are 6 s
}

TEST(RTSP_SockSchedulerThread, HasItsName)
{
    CRTSP_SockScheduler scheduler;
    std::vector<std::string> log;
    auto* handler = new Handler(scheduler, log);
    std::promise<std::string> name;
    handler->onCall = [handler, &name]
    {
        char text[16] = "";
        pthread_getname_np(pthread_self(), text, sizeof(text));
        name.set_value(text);
        handler->onCall = nullptr;
    };
    scheduler.AddSockHandler(SOCK_HANDLER_RECV, handler->Sock(), handler, -1);
    scheduler.Start_RTSP_SockScheduler();
    handler->Write();
    EXPECT_EQ("rtsp \u4efb\u52a1\u8c03\xe5", name.get_future().get()); // the kernel keeps 15 bytes
    scheduler.Stop_RTSP_SockScheduler();
    handler->Destroy();
}

TEST(RTSP_SockSchedulerThread, StartsAndStopsAgainAndAgain)
{
    CRTSP_SockScheduler scheduler;
    for (int i = 0; i < 20; ++i)
    {
        EXPECT_EQ(0, scheduler.Start_RTSP_SockScheduler());
        std::thread waker(
            [&scheduler]
            {
                for (int k = 0; k < 100; ++k)
                    scheduler.WakeUp();
            });
        waker.join();
        EXPECT_EQ(0, scheduler.Stop_RTSP_SockScheduler());
    }
}

} // namespace
