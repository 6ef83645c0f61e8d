// SearchListener.h: the place of a thread that would listen for devices announcing themselves. Nothing runs it.
#pragma once

class CSearchListener
{
public:
    void Initial(void* search, unsigned int option);
    void Destroy();

    /// A thread's body. @param listener  the CSearchListener
    static void ProcListenThread(void* listener);
    void ListenDevice();

private:
    [[maybe_unused]] unsigned int m_thread = 0; ///< of a concrete search
};
