#include "SlowNotice.h"

CSlowNotice::CSlowNotice(const std::string& text, const Teller& tell, std::chrono::milliseconds delay)
    : m_thread(
          [this, text, tell, delay]
          {
              std::unique_lock<std::mutex> guard(m_lock);
              if (!m_ended.wait_for(guard, delay, [this] { return m_isOver; }))
              {
                  tell(text);
              }
          })
{
}

CSlowNotice::~CSlowNotice()
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_isOver = true;
    }
    m_ended.notify_one();
    m_thread.join();
}
