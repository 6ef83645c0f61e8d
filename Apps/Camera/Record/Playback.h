// Playback.h: plays recordings to RTSP clients, each on a thread of its own, at the pace at which they were recorded.
#pragma once

#include "RecordIndex.h"
#include "RecordedFrames.h"
#include "SegmentFile.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// Gets each frame when its time has come; on the playback's thread.
using PlaybackFeed = std::function<void(unsigned int handle, const RecordedFrame& frame)>;

/// One playback, from its construction to its destruction or its end.
///
/// The library describes a stream by its first frames and tells nobody when the client begins to play. So the first
/// picture and sound are fed at once, for the description, and all frames again, from the first one on, a second
/// later: by then a client has set up its tracks, also over a long way. A recording that is removed from the
/// description on plays to its end.
class CPlayback
{
public:
    /// @param index  borrowed for the playback's life
    CPlayback(CRecordIndex& index, std::int64_t fromUs, std::int64_t toUs, unsigned int handle, PlaybackFeed feed);
    ~CPlayback();

    /// Nothing is fed any more once it returns. It does not wait for the thread, which may wait for the disk.
    void Stop();

    bool HasEnded() const { return m_ended; }

private:
    void Run();
    void Describe(const RecordedFrame& picture, std::int64_t untilUs);
    bool AwaitNext(CRecordedFrames& frames, RecordedFrame& frame, std::int64_t untilUs);
    bool AwaitTurn(RecordedFrame& frame);
    void Feed(const RecordedFrame& frame);
    bool Wait(std::int64_t us);

    CRecordIndex& m_index;
    const std::int64_t m_fromUs;
    const std::int64_t m_toUs;
    const unsigned int m_handle;
    const PlaybackFeed m_feed;

    std::int64_t m_paceUs = 0;  // from recorded time to the steady clock; the playback's thread
    std::int64_t m_lastUs = 0;  // recorded time of the last frame, 0: none yet
    std::int64_t m_shiftUs = 0; // gaps left out so far

    std::mutex m_lock;
    std::condition_variable m_wake;
    bool m_stopping = false;
    std::atomic<bool> m_ended{false};

    std::thread m_thread; // last: it uses all of the above
};

/// All that is being played. Open and Close are called on the RTSP scheduler thread and do not wait for the disk; the
/// rest is called on the main thread.
class CPlaybacks
{
public:
    /// @param index  borrowed for the life of the playbacks
    CPlaybacks(CRecordIndex& index, PlaybackFeed feed);

    /// @return the handle under which it is fed, 0 while no thread is left or too many that were closed hang at the
    /// disk. Of more than sixteen playbacks the oldest ends.
    unsigned int Open(std::int64_t fromUs, unsigned int seconds);
    /// Nothing is fed any more once it returns.
    void Close(unsigned int handle);
    void CloseAll();

    /// Above the handles of all playbacks that were opened up to now.
    unsigned int NextHandle();
    /// Closes those that were opened before NextHandle gave this.
    void CloseBefore(unsigned int nextHandle);

    /// Frees what was closed or has come to its end. Called several times a second.
    void Sweep();

private:
    using Playbacks = std::map<unsigned int, std::unique_ptr<CPlayback>>;
    using Retired = std::vector<std::unique_ptr<CPlayback>>;

    Playbacks::iterator Retire(Playbacks::iterator at);
    void RetireEnded();

    CRecordIndex& m_index;
    const PlaybackFeed m_feed;

    std::mutex m_lock; // in front of a playback's
    Playbacks m_playbacks;
    Retired m_retired; // stopped; their threads have not been waited for yet
    unsigned int m_nextHandle;
};
