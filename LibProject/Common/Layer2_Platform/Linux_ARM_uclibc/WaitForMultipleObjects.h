// WaitForMultipleObjects.h: waiting for several events. Any thread.
#pragma once

#include "MyEvent.h"

/// Polls the events one after the other, 10 ms each, so it is slow by design.
/// @param count    how many; below 1 there is nothing to wait for and the result is 258
/// @param waitAll  true: waits for all of them; false: for the first that is set
/// @param ms       by count of the waits, 10 each, whether they waited or not, and not by a clock: about the time in
/// all
/// @return the index of the event that was set; 0 when all were; 258 on time-out
int WaitForMultipleObjects(int count, const CMyEvent** events, bool waitAll, unsigned int ms);
