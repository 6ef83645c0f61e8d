// SlowNotice.h: tells a person what the camera is at, when it takes longer than one likes to wait without a word.
//
// Local to the one who waits; a thread of its own for as long as it lives.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

class CSlowNotice
{
public:
    using Teller = std::function<void(const std::string&)>;

    /// @param tell   gets the text, once, on the thread of this object
    /// @param delay  nothing is told when this object goes before
    CSlowNotice(const std::string& text, const Teller& tell, std::chrono::milliseconds delay = std::chrono::seconds(1));
    ~CSlowNotice();
    CSlowNotice(const CSlowNotice&) = delete;
    CSlowNotice& operator=(const CSlowNotice&) = delete;

private:
    std::mutex m_lock;
    std::condition_variable m_ended;
    bool m_isOver = false; // under the lock
    std::thread m_thread;
};
