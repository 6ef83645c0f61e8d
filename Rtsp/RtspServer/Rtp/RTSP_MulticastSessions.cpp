#include "RTSP_MulticastSessions.h"

#include "RTSP_ClientSession.h"

#include <iterator>

void RtpTimeOutSessions(const std::list<CRTSP_ClientSession*>& sessions, int iTypeMask)
{
    // The link, and so its own list, may be gone after the last call.
    const std::list<CRTSP_ClientSession*> users(sessions.begin(), sessions.end());
    if (users.empty())
        return;
    for (auto user = std::next(users.begin()); user != users.end(); ++user)
        (*user)->HandleTimeOut(iTypeMask);
    users.front()->HandleTimeOut(iTypeMask);
}
