// NetSocketNodeTest.cpp: received data handed to an observer.
#include "NetSocketFixture.h"

#include <atomic>
#include <thread>

namespace
{

using NetSocketNode = NetSocketPair;

/// Collects what it is told.
class DataCollector : public CSocketDataObserver
{
public:
    int OnSocketRecvData(int handle, const char* data, unsigned int length, void* param) override
    {
        std::lock_guard<std::mutex> lock(m_lock);
        m_handle = handle;
        m_param = param;
        m_data.append(data, length);
        m_ends += length == 0 ? 1 : 0;
        m_changed.notify_all();
        return 0;
    }
    bool AwaitData(const std::string& data)
    {
        return Await([&] { return m_data == data; });
    }
    bool AwaitEnd()
    {
        return Await([&] { return m_ends > 0; });
    }
    int Ends()
    {
        std::lock_guard<std::mutex> lock(m_lock);
        return m_ends;
    }

    int m_handle = 0;
    void* m_param = nullptr;

private:
    template <typename Condition>
    bool Await(Condition condition)
    {
        std::unique_lock<std::mutex> lock(m_lock);
        return m_changed.wait_for(lock, std::chrono::seconds(10), condition);
    }

    std::mutex m_lock;
    std::condition_variable m_changed;
    std::string m_data;
    int m_ends = 0;
};

/// Runs what it is given on each delivery.
class ActingObserver : public CSocketDataObserver
{
public:
    int OnSocketRecvData(int handle, const char*, unsigned int, void*) override
    {
        ++m_calls;
        m_action(handle);
        m_done.Open();
        return 0;
    }

    std::function<void(int)> m_action;
    std::atomic<int> m_calls{0};
    Gate m_done;
};

bool Register(int handle, CSocketDataObserver& observer, void* param = nullptr)
{
    return NET_SOCKET_RegisterNode(handle, &observer, param, 1, 1);
}

TEST_F(NetSocketNode, DeliversDataWithHandleAndParameter)
{
    DataCollector collector;
    int param = 0;
    EXPECT_TRUE(Register(m_handle, collector, &param));
    EXPECT_TRUE(NET_SOCKET_Start(m_handle));
    m_peer.Send("one");
    EXPECT_TRUE(collector.AwaitData("one"));
    m_peer.Send("two");
    EXPECT_TRUE(collector.AwaitData("onetwo"));
    EXPECT_EQ(m_handle, collector.m_handle);
    EXPECT_EQ(&param, collector.m_param);
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(m_handle));
}

TEST_F(NetSocketNode, NothingIsDeliveredBeforeStart)
{
    DataCollector collector;
    EXPECT_TRUE(Register(m_handle, collector));
    m_peer.Send("x");
    EXPECT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    EXPECT_TRUE(collector.AwaitData(""));
    EXPECT_TRUE(NET_SOCKET_Start(m_handle));
    EXPECT_TRUE(collector.AwaitData("x"));
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(m_handle));
}

TEST_F(NetSocketNode, EndIsToldOnceBehindTheData)
{
    DataCollector collector;
    Register(m_handle, collector);
    NET_SOCKET_Start(m_handle);
    m_peer.Send("last");
    m_peer.Close();
    EXPECT_TRUE(collector.AwaitEnd());
    EXPECT_TRUE(collector.AwaitData("last"));
    // Another node's delivery goes the same way: had the first been told again, it would have been by now.
    TcpPeer second = TcpPeer::Connect(m_port);
    DataCollector other;
    const int handle = m_queue.Take().handle;
    Register(handle, other);
    NET_SOCKET_Start(handle);
    second.Send("x");
    EXPECT_TRUE(other.AwaitData("x"));
    EXPECT_EQ(1, collector.Ends());
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(m_handle));
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(handle));
}

TEST_F(NetSocketNode, SecondObserverIsRefusedUntilTheFirstIsRemoved)
{
    DataCollector first;
    DataCollector second;
    EXPECT_FALSE(NET_SOCKET_RegisterNode(m_handle, nullptr, nullptr, 1, 1));
    EXPECT_FALSE(NET_SOCKET_Start(m_handle));
    EXPECT_FALSE(NET_SOCKET_Stop(m_handle));
    EXPECT_FALSE(NET_SOCKET_UnRegisterNode(m_handle));
    EXPECT_TRUE(Register(m_handle, first));
    EXPECT_FALSE(Register(m_handle, second));
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(m_handle));
    EXPECT_TRUE(Register(m_handle, second));
    EXPECT_TRUE(NET_SOCKET_Start(m_handle));
    EXPECT_TRUE(NET_SOCKET_Start(m_handle));
    m_peer.Send("x");
    EXPECT_TRUE(second.AwaitData("x"));
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(m_handle));
}

TEST_F(NetSocketNode, StoppedNodeKeepsItsDataForTheNextStart)
{
    DataCollector collector;
    Register(m_handle, collector);
    NET_SOCKET_Start(m_handle);
    m_peer.Send("a");
    EXPECT_TRUE(collector.AwaitData("a"));
    EXPECT_TRUE(NET_SOCKET_Stop(m_handle));
    m_peer.Send("b");
    EXPECT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    EXPECT_TRUE(collector.AwaitData("a"));
    EXPECT_TRUE(NET_SOCKET_Start(m_handle));
    EXPECT_TRUE(collector.AwaitData("ab"));
    EXPECT_TRUE(NET_SOCKET_UnRegisterNode(m_handle));
}

TEST_F(NetSocketNode, StopWaitsForTheRunningCallback)
{
    ActingObserver observer;
    Gate entered;
    Gate mayLeave;
    std::atomic<bool> left{false};
    observer.m_action = [&](int)
    {
        entered.Open();
        mayLeave.Await();
        left = true;
    };
    Register(m_handle, observer);
    NET_SOCKET_Start(m_handle);
    m_peer.Send("x");
    entered.Await();
    std::thread stoppers[2];
    for (std::thread& stopper : stoppers)
    {
        stopper = std::thread(
            [&]
            {
                EXPECT_TRUE(NET_SOCKET_Stop(m_handle));
                EXPECT_TRUE(left);
            });
    }
    mayLeave.Open();
    for (std::thread& stopper : stoppers)
    {
        stopper.join();
    }
    m_peer.Send("y");
    EXPECT_TRUE(NET_SOCKET_WaitRecv(m_handle, 10000));
    EXPECT_EQ(1, observer.m_calls);
}

TEST_F(NetSocketNode, CallbackMayStopUnregisterAndDestroyItsOwnNode)
{
    ActingObserver observer;
    observer.m_action = [](int handle)
    {
        EXPECT_TRUE(NET_SOCKET_Stop(handle));
        EXPECT_TRUE(NET_SOCKET_UnRegisterNode(handle));
        NET_SOCKET_DestroyHNetCommunication(handle);
    };
    Register(m_handle, observer);
    NET_SOCKET_Start(m_handle);
    m_peer.Send("x");
    observer.m_done.Await();
    EXPECT_EQ("", m_peer.ReadAll());
    EXPECT_EQ(1, observer.m_calls);
}

TEST_F(NetSocketNode, DestroyEndsTheDelivery)
{
    auto observer = std::make_unique<ActingObserver>();
    observer->m_action = [](int) {
    };
    for (int i = 0; i < 200; ++i)
    {
        TcpPeer peer = TcpPeer::Connect(m_port);
        const int handle = m_queue.Take().handle;
        Register(handle, *observer);
        NET_SOCKET_Start(handle);
        peer.Send("x");
        NET_SOCKET_DestroyHNetCommunication(handle);
        // No callback runs any more: the observer may go.
        observer = std::make_unique<ActingObserver>();
        observer->m_action = [](int) {
        };
    }
}

TEST_F(NetSocketNode, NodeOfAnOutgoingConnectionIsToldOfItsFailure)
{
    for (const char* address : {"127.0.0.1", "no address"})
    {
        DataCollector collector;
        const int handle = NET_SOCKET_AddConnect(0, address, FreePort());
        EXPECT_TRUE(Register(handle, collector));
        EXPECT_TRUE(NET_SOCKET_Start(handle));
        EXPECT_TRUE(collector.AwaitEnd()) << address;
        EXPECT_TRUE(NET_SOCKET_UnRegisterNode(handle));
    }
}

} // namespace
