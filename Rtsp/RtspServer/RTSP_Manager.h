// RTSP_Manager.h: what the exported RTSP functions forward to: the life of the server, the way of a frame.
//
// Any host thread.
#pragma once

#include "DevInterface.h"
#include "Lock.h"
#include "NetTypes.h"
#include "RTSP_DataManager.h"
#include "RTSP_SockScheduler.h"
#include "StreamCtrl.h"
#include "ThreadAnnotations.h"

#include <atomic>

class CRTSP_Server;

class CRTSP_Manager
{
public:
    static CRTSP_Manager& Instance();
    virtual ~CRTSP_Manager();

    /// Opens the port and starts the scheduler thread; does nothing while running. The manager counts as running even
    /// when the port cannot be had. @return 0
    int Start_RTSP_Manager(unsigned short port, CStreamCtrl* stream, CDevInterface* dev);

    /// Ends the thread first, then every session; does nothing while stopped. @return 0
    int Stop_RTSP_Manager();

    /// Hands a frame to the clients of a stream. Audio is delivered by the host once per channel: when the channel has
    /// more than one URL, each URL's stream gets it whatever `stream` says.
    /// @return 0; -1 when the stream or one of its clients refuses the frame
    int AddData_RTSP_Manager(unsigned int id, int stream, const NETNS::RTSP_FRAME& frame, void* data);

    int SetLiveRTSPUrl(unsigned int channel, int stream, const char* url); ///< @return 0
    int Quit_RTSP_Manager();                                               ///< does nothing. @return 1

    /// The port that is listened on, 0 when there is none.
    unsigned short GetPort();

private:
    CRTSP_Manager();

    CRTSP_SockScheduler& m_scheduler;
    CRTSP_DataManager* const m_dataManager;
    std::atomic<bool> m_running{false}; ///< read by the feeders without the lock

    CLock m_lock; ///< start and stop
    CRTSP_Server* m_server GUARDED_BY(m_lock) = nullptr;
};
