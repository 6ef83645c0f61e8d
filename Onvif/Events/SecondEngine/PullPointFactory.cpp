#include "PullPointFactory.h"

#include <utility>

CPullPointFactory& CPullPointFactory::Instance()
{
    static CPullPointFactory factory;
    return factory;
}

CPullPointFactory::~CPullPointFactory()
{
    for (const auto& [token, subscription] : m_subscriptions)
    {
        subscription->Stop();
    }
}

int CPullPointFactory::AddObserver(unsigned int token, CONVIFAlarmStateObserver* observer)
{
    DelObserver(token);
    const auto subscription = std::make_shared<CPullSubscription>(token, observer);
    std::shared_ptr<CPullSubscription> older;
    {
        const CMySingleLock lock(m_lock);
        older = std::exchange(m_subscriptions[token], subscription); // another thread may have added one meanwhile
    }
    if (older != nullptr)
    {
        older->Stop();
    }
    subscription->Start();
    return 1;
}

void CPullPointFactory::DelObserver(unsigned int token)
{
    std::shared_ptr<CPullSubscription> subscription;
    {
        const CMySingleLock lock(m_lock);
        const auto place = m_subscriptions.find(token);
        if (place == m_subscriptions.end())
        {
            return;
        }
        subscription = place->second;
        m_subscriptions.erase(place);
    }
    subscription->Stop();
}
