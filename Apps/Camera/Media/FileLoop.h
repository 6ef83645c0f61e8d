// FileLoop.h: plays a media file over and over into the live pipeline.
//
// One thread of its own; the decoders' threads carry pictures and sound.
#pragma once

#include "GstHandles.h"
#include "LoopTimeline.h"

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

/// What a media file holds.
struct MediaFileInfo
{
    bool hasPictures = false;
    bool hasSound = false;
    std::string problem; ///< why it cannot be read; empty when it can
};

MediaFileInfo InspectMediaFile(const std::string& path);

/// Decodes a file from its beginning to its end, again and again, and pushes what comes out with times that go on from
/// repetition to repetition. It runs as far ahead as the live pipeline's inputs let it; the clock is there.
class CFileLoop
{
public:
    /// @param pictures, sound  appsrc elements, borrowed; `sound` is null when the file has none
    /// @param frameNs          duration of a picture when the file gives none
    CFileLoop(std::string path, GstElement* pictures, GstElement* sound, std::uint64_t frameNs);

    /// Ends the thread. The live pipeline must have been stopped: a push into it may be waiting for room.
    ~CFileLoop();

    /// What keeps the file from being played; empty while it plays.
    std::string Problem() const;

private:
    struct Track
    {
        CFileLoop* loop;
        GstElement* target;
    };

    static GstFlowReturn OnSample(GstAppSink* source, gpointer track);
    GstFlowReturn Forward(GstSample* sample, GstElement* target);
    void Run();
    bool PlayOnce();
    GstElementPtr Open();
    void Connect(GstElement* pipeline, const char* name, Track& track);
    void SetProblem(const std::string& problem);

    const std::string m_path;
    Track m_pictures;
    Track m_sound;
    CLoopTimeline m_timeline;
    std::atomic<bool> m_stopping{false};
    std::atomic<bool> m_anyPicture{false};

    mutable std::mutex m_problemLock;
    std::string m_problem;

    std::thread m_thread; // last: it uses all of the above
};
