// RTSP_MulticastSessions.h: what the two shared links do with their users. Scheduler thread only.
#pragma once

#include <list>

class CRTSP_ClientSession;

/// Times out every session, the first one last: it may hold the last reference to the link that calls.
void RtpTimeOutSessions(const std::list<CRTSP_ClientSession*>& sessions, int iTypeMask);
