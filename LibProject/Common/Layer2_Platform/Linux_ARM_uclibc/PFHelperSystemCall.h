// PFHelperSystemCall.h: how CPFHelper asks the helper process, with the names of its pipes given, so that tests can be
// the helper. Any thread; the semaphore makes the callers of all processes take turns.
#pragma once

/// Where the helper process listens; it makes both pipes and the semaphore.
struct SYSTEM_CALL_CHANNEL
{
    const char* semaphore;
    const char* requestPipe;
    const char* replyPipe;
};

extern const SYSTEM_CALL_CHANNEL SYSTEM_CALL_HELPER;

/// CPFHelper::SystemCall over the given channel.
bool RequestSystemCall(const SYSTEM_CALL_CHANNEL& channel, const char* szCmd, bool flag, int& result);
