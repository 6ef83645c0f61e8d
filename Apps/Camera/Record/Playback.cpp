#include "Playback.h"

#include "RecordTime.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <limits>
#include <system_error>
#include <utility>

namespace
{

constexpr std::int64_t SECOND_US = 1000000;
constexpr std::int64_t START_DELAY_US = SECOND_US;
constexpr std::int64_t RECORDING_POLL_US = 200000;
constexpr std::int64_t DESCRIBE_LIMIT_US = 3 * SECOND_US; // a client waits for its description for four
constexpr std::int64_t NO_LIMIT = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t LARGEST_WAIT_US = 2 * SECOND_US; // a gap in the recordings is not waited for
constexpr std::size_t MAX_PLAYBACKS = 16;
constexpr int FRAMES_TO_FIND_SOUND = 200;
// Live handles lie below, and 39 is that of talk.
constexpr unsigned int FIRST_HANDLE = 100000;

std::int64_t NowUs()
{
    return static_cast<std::int64_t>(SteadyClockUs());
}

} // namespace

CPlayback::CPlayback(CRecordIndex& index, std::int64_t fromUs, std::int64_t toUs, unsigned int handle,
                     PlaybackFeed feed)
    : m_index(index), m_fromUs(fromUs), m_toUs(toUs), m_handle(handle), m_feed(std::move(feed)),
      m_thread([this] { Run(); })
{
}

CPlayback::~CPlayback()
{
    Stop();
    m_thread.join();
}

void CPlayback::Stop()
{
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_stopping = true;
    }
    m_wake.notify_all();
}

void CPlayback::Run()
{
    const std::int64_t describeUntilUs = NowUs() + DESCRIBE_LIMIT_US;
    CRecordedFrames frames(m_index, m_fromUs, m_toUs);
    RecordedFrame frame;
    if (AwaitNext(frames, frame, describeUntilUs))
    {
        Describe(frame, describeUntilUs);
        bool going = Wait(START_DELAY_US);
        while (going && AwaitTurn(frame))
        {
            Feed(frame);
            going = AwaitNext(frames, frame, NO_LIMIT);
        }
    }
    m_ended = true;
}

/// Sound first: the description is made as soon as there is a picture.
void CPlayback::Describe(const RecordedFrame& picture, std::int64_t untilUs)
{
    CRecordedFrames frames(m_index, m_fromUs, m_toUs);
    RecordedFrame frame;
    for (int count = 0; count <= FRAMES_TO_FIND_SOUND && AwaitNext(frames, frame, untilUs); ++count)
    {
        if (frame.kind == RecordedKind::Audio)
        {
            Feed(frame);
            break;
        }
    }
    Feed(picture);
}

/// Waits while the next frame may still be recorded. @return false when there is none, or the playback shall end
bool CPlayback::AwaitNext(CRecordedFrames& frames, RecordedFrame& frame, std::int64_t untilUs)
{
    NextFrame next = frames.Next(frame);
    while (next == NextFrame::NotYet && NowUs() < untilUs && Wait(RECORDING_POLL_US))
    {
        next = frames.Next(frame);
    }
    return next == NextFrame::Ready;
}

/// Waits until the frame is due, and moves its time so that gaps vanish. @return false when the playback shall end
bool CPlayback::AwaitTurn(RecordedFrame& frame)
{
    if (m_lastUs == 0)
    {
        m_paceUs = NowUs() - frame.timeUs;
    }
    else if (frame.timeUs - m_lastUs > LARGEST_WAIT_US)
    {
        m_shiftUs += frame.timeUs - m_lastUs;
    }
    m_lastUs = std::max(m_lastUs, frame.timeUs);
    frame.timeUs -= m_shiftUs;
    return Wait(frame.timeUs + m_paceUs - NowUs());
}

/// The lock is held meanwhile, so that nothing comes behind a stop; the library copies the frame and calls nobody.
void CPlayback::Feed(const RecordedFrame& frame)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_stopping)
    {
        m_feed(m_handle, frame);
    }
}

/// @return false when the playback shall end
bool CPlayback::Wait(std::int64_t us)
{
    std::unique_lock<std::mutex> guard(m_lock);
    return !m_wake.wait_for(guard, std::chrono::microseconds(std::max<std::int64_t>(us, 0)),
                            [this] { return m_stopping; });
}

CPlaybacks::CPlaybacks(CRecordIndex& index, PlaybackFeed feed)
    : m_index(index), m_feed(std::move(feed)), m_nextHandle(FIRST_HANDLE)
{
}

unsigned int CPlaybacks::Open(std::int64_t fromUs, unsigned int seconds)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    RetireEnded();
    if (m_retired.size() >= MAX_PLAYBACKS)
    {
        return 0; // as many hang at the disk
    }
    if (m_playbacks.size() >= MAX_PLAYBACKS)
    {
        Retire(m_playbacks.begin()); // its client may have left without a word
    }
    const std::int64_t toUs = fromUs + seconds * SECOND_US;
    try
    {
        m_playbacks[m_nextHandle] = std::make_unique<CPlayback>(m_index, fromUs, toUs, m_nextHandle, m_feed);
    }
    catch (const std::system_error&)
    {
        m_playbacks.erase(m_nextHandle);
        return 0; // no thread is left
    }
    return m_nextHandle++;
}

void CPlaybacks::Close(unsigned int handle)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_playbacks.find(handle);
    if (found != m_playbacks.end())
    {
        Retire(found);
    }
}

void CPlaybacks::CloseAll()
{
    Playbacks ending; // these two outside of the lock: their threads are waited for
    Retired ended;
    const std::lock_guard<std::mutex> guard(m_lock);
    ending.swap(m_playbacks);
    ended.swap(m_retired);
}

unsigned int CPlaybacks::NextHandle()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_nextHandle;
}

void CPlaybacks::CloseBefore(unsigned int nextHandle)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    while (!m_playbacks.empty() && m_playbacks.begin()->first < nextHandle)
    {
        Retire(m_playbacks.begin());
    }
}

void CPlaybacks::Sweep()
{
    Retired ended; // outside of the lock: their threads are waited for
    const std::lock_guard<std::mutex> guard(m_lock);
    RetireEnded();
    ended.swap(m_retired);
}

/// The lock is held. @return the next playback
CPlaybacks::Playbacks::iterator CPlaybacks::Retire(Playbacks::iterator at)
{
    at->second->Stop();
    m_retired.push_back(std::move(at->second));
    return m_playbacks.erase(at);
}

/// The lock is held.
void CPlaybacks::RetireEnded()
{
    for (auto at = m_playbacks.begin(); at != m_playbacks.end();)
    {
        at = at->second->HasEnded() ? Retire(at) : std::next(at);
    }
}
