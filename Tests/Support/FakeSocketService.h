// FakeSocketService.h: the socket service as a test scripts it. It stands in for the library's at link time. Any
// thread.
//
// Bytes arrive at times of the test's clock, and a wait moves that clock instead of lasting.
#pragma once

#include "FakeClock.h"

#include <condition_variable>
#include <deque>
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

    bool AwaitDestroyed(int handle);
    bool AwaitHeld(int count);
    bool IsDestroyed(int handle);
    std::string Sent(int handle);
    /// Milliseconds that the connection lived.
    unsigned int LifetimeMs(int handle);
    int Reads(int handle);
    /// "initial", "listen 80 0 1", "stop 80", "quit", in order; taken out.
    std::vector<std::string> TakeCalls();

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

private:
    struct Connection
    {
        std::vector<Arrival> arrivals;
        std::size_t next = 0;
        unsigned int beganMs = 0;
        unsigned int endedMs = 0;
        bool held = false;
        bool destroyed = false;
        int reads = 0;
        std::string sent;
        std::deque<int> sendResults;
        bool sendBreaks = false;
    };

    const Arrival* Due(const Connection& connection) const;

    FakeClock m_clock;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::map<int, Connection> m_connections;
    std::vector<std::string> m_calls;
    int m_lastHandle = 0;
    int m_held = 0;
};
