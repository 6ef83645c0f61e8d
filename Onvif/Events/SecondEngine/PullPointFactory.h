// PullPointFactory.h: the pull subscriptions of the second engine, by the token of the camera's login. Any thread.
#pragma once

#include "Lock.h"
#include "PullSubscription.h"
#include "ThreadAnnotations.h"

#include <map>
#include <memory>

class CPullPointFactory
{
public:
    static CPullPointFactory& Instance();
    /// Stops all.
    ~CPullPointFactory();

    /// Begins to ask a camera, after ending an earlier subscription of its. @return 1
    int AddObserver(unsigned int token, CONVIFAlarmStateObserver* observer);
    /// Waits for the camera's thread; does nothing for an unknown token.
    void DelObserver(unsigned int token);

private:
    CPullPointFactory() = default;

    CLock m_lock; ///< never held while a subscription starts or stops
    std::map<unsigned int, std::shared_ptr<CPullSubscription>> m_subscriptions GUARDED_BY(m_lock);
};
