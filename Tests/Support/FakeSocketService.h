// FakeSocketService.h: the socket service as a test scripts it. It stands in for the library's at link time. Any
// thread.
//
// Bytes arrive at times of the test's clock, and a wait moves that clock instead of lasting.
#pragma once

#include "FakeClock.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// What one read brings, from a time on.
struct Arrival
{
    unsigned int afterMs; ///< since the connection was made
    std::string data;     ///< empty: nothing
    bool broken = false;  ///< the read sets the flag
};

/// What one outgoing connection comes to.
struct Outgoing
{
    enum OUTCOME
    {
        REFUSED = -1,
        PENDING = 0, ///< for ever
        CONNECTED = 1,
    };
    OUTCOME outcome = CONNECTED;
    std::vector<Arrival> arrivals = {};
};

class FakeSocketService
{
public:
    FakeSocketService();
    ~FakeSocketService();
    FakeSocketService(const FakeSocketService&) = delete;
    FakeSocketService& operator=(const FakeSocketService&) = delete;

    /// @return the new connection's handle
    int Connect(std::vector<Arrival> arrivals);
    /// Reads of the connection wait until Release.
    int ConnectHeld(std::vector<Arrival> arrivals);
    void Release(int handle);
    void Release(); ///< all of them
    /// Results of the next sends; those behind the last take everything. @param broken  the last one sets the flag
    void ScriptSends(int handle, std::deque<int> results, bool broken = false);

    /// The next outgoing connections, in order; behind the last the service is down for them.
    void ScriptConnects(std::deque<Outgoing> connects);
    /// Answers blocking exchanges; an empty answer, and every one without this, is none. Set before the first one.
    std::function<std::string(const std::string& request)> exchange;

    bool AwaitDestroyed(int handle);
    bool AwaitHeld(int count);
    bool IsDestroyed(int handle);
    std::string Sent(int handle);
    /// Milliseconds that the connection lived.
    unsigned int LifetimeMs(int handle);
    int Reads(int handle);
    /// How often an outgoing connection was asked after.
    int Polls(int handle);
    /// "initial", "listen 80 0 1", "stop 80", "quit", in order; taken out. Of outgoing connections "connect 10.0.0.1
    /// 80", "give up 1", "register 1 1 1" (its handle last), "start 1", "send 1", "stop node 1", "unregister 1" and
    /// "destroy 1" too.
    std::vector<std::string> TakeCalls();
    bool AwaitCall(const std::string& call);

    bool initialSucceeds = true;
    bool listenSucceeds = true;

    // The operations.
    bool Initial();
    void Quit();
    bool StartListen(unsigned short port, unsigned int address, bool reuse);
    bool StopListen(unsigned short port);
    int Recv(int handle, char* buffer, int length, bool* broken);
    bool WaitRecv(int handle, unsigned int timeoutMs);
    int Send(int handle, const char* data, int length, bool& broken);
    void Destroy(int handle);
    int AddConnect(const std::string& address, unsigned short port);
    bool PopConnectResult(int handle, int& result, unsigned int timeoutMs);
    /// An operation on a connection. @return whether it is an outgoing one
    bool Note(const std::string& call, int handle);

private:
    struct Connection
    {
        std::vector<Arrival> arrivals;
        std::size_t next = 0;
        unsigned int beganMs = 0;
        unsigned int endedMs = 0;
        bool held = false;
        bool destroyed = false;
        bool isOutgoing = false;
        Outgoing::OUTCOME outcome = Outgoing::REFUSED;
        int reads = 0;
        int polls = 0;
        std::string sent;
        std::deque<int> sendResults;
        bool sendBreaks = false;
    };

    const Arrival* Due(const Connection& connection) const;

    FakeClock m_clock;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::map<int, Connection> m_connections;
    std::deque<Outgoing> m_connects;
    std::vector<std::string> m_calls;
    int m_lastHandle = 0;
    int m_held = 0;
};
