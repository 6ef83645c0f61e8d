// OnvifEventObserver.h: what event control knows of one camera.
//
// Event control's map owns a record; whoever works on one holds a reference, so that it outlives its removal. The
// fields that the socket service's event thread touches are atomic or under `eventLock`; the others belong to whoever
// holds the map's lock, and before the record is in the map to the thread that makes it.
#pragma once

#include "EventParse.h"
#include "Lock.h"
#include "OnvifEventTypes.h"
#include "SubscriptionRequests.h"

#include <atomic>
#include <list>
#include <memory>

class CONVIFAlarmStateObserver;

struct OnvifEventObserver
{
    std::atomic<bool> subscribed{false}; ///< the camera pushes, and its subscription is renewed
    std::atomic<bool> pulling{false};    ///< the camera is asked; exactly one of the two holds for a record in the map
    std::atomic<bool> eventSeen{false};  ///< a first event has come
    std::atomic<unsigned int> lastRenew{0}; ///< tick of creation, then of the last renewal or pull
    unsigned int token = 0;
    char localAddress[ONVIF_ADDRESS_BYTES] = {};        ///< where the camera shall push to
    char subscriptionAddress[ONVIF_ADDRESS_BYTES] = {}; ///< the camera's subscription manager
    char pullAddress[ONVIF_ADDRESS_BYTES] = {};         ///< the camera's pull point

    CLock eventLock;                              ///< after the map's lock; nothing is called under it
    CONVIFAlarmStateObserver* observer = nullptr; ///< the host's; null: nobody is told
    std::unique_ptr<CEventParse> parser;          ///< null unless pulling
    std::unique_ptr<std::list<OnvifEvent>> events GUARDED_BY(eventLock); ///< not yet delivered; null once removed

    std::atomic<bool> responseReady{false}; ///< an answer has been handled, the next pull is due
    int pullSocket = 0;                     ///< connection of the pull under way, 0 if none

    bool alarmInState = false; ///< as the host was told
    unsigned int alarmInTick = 0;
    bool motionState = false; ///< as the host was told
    unsigned int motionTick = 0;

    bool removed = false; ///< not in the map any more: the host is not called for it

    /// Appends an event, unless the record is removed or too many wait.
    void Push(const OnvifEvent& event);
};
