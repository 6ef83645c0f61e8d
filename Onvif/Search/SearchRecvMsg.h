// SearchRecvMsg.h: the threads that would receive the answers of a search, eight at most. Nothing starts one.
//
// One object at a time: the class knows the one that was initialised last. Host's thread.
#pragma once

class CDeviceSearch; ///< a concrete search; there is none yet

class CSearchRecvMsg
{
public:
    /// @param search  borrowed until Quit. @return 1
    int Initial(CDeviceSearch* search);

    /// Waits for the threads that run and forgets the search.
    void Quit();
    /// The same, so that threads can be started anew.
    void ResetThread();

    static void RecvThread(void* receiver);
    void StartRecvMessage();
    void RecvMessage();

    static CSearchRecvMsg* Current() { return s_instance; }

private:
    static constexpr int THREADS_MAX = 8;

    void EndThreads();

    static CSearchRecvMsg* s_instance;

    CDeviceSearch* m_search = nullptr;
    unsigned int m_threads[THREADS_MAX] = {};
    int m_threadCount = 0;
};
