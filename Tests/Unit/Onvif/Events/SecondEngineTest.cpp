#include "EventWorld.h"
#include "NotifyObserver.h"
#include "Peer.h"
#include "PullPointFactory.h"
#include "PullSubscription.h"

#include <arpa/inet.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// Passes are made by the test, not by the thread.
class NotifyObserver : public EventWorld
{
protected:
    void SetUp() override
    {
        EventWorld::SetUp();
        ASSERT_TRUE(NET_SOCKET_StartListen(0, &m_observer, htonl(INADDR_LOOPBACK), true));
        m_port = NET_SOCKET_GetListenPort(&m_observer);
        m_token = Login(m_camera);
        m_observer.AddObserver(m_token, &m_host);
    }
    void TearDown() override
    {
        m_observer.DelObserver(m_token);
        EventWorld::TearDown();
    }

    void Push(const Messages& messages) { PushTo(m_camera.Value("subscribe.consumer"), messages); }
    void PushTo(const std::string& to, const Messages& messages)
    {
        EXPECT_THAT(PostOnvifNotification(m_port, Notification(to, messages)),
                    testing::StartsWith("HTTP/1.1 200 OK\r\n"));
    }
    void Pass(unsigned int ms = 100)
    {
        m_clock.Advance(ms);
        m_observer.CheckPass();
    }

    CNotifyObserver m_observer;
    OnvifDeviceSimulator m_camera;
    unsigned short m_port = 0;
    unsigned int m_token = 0;
};

TEST_F(NotifyObserver, EveryEventIsTold)
{
    Push(Message(MOTION_TOPIC, "true"));
    Push(Message(MOTION_TOPIC, "true"));
    Push(Message(INPUT_TOPIC, "false"));
    Pass();
    EXPECT_THAT(m_host.Take(),
                ElementsAre(Call(m_token, "motion on"), Call(m_token, "motion on"), Call(m_token, "alarm-in 1 off")));
    Pass(20000);
    EXPECT_THAT(m_host.Take(), IsEmpty()); // silence ends nothing
}

TEST_F(NotifyObserver, OnlyTrueInSmallLettersIsTrue)
{
    Push(Message(MOTION_TOPIC, "TRUE"));
    Push(Message(MOTION_TOPIC, "1"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(m_token, "motion off"), Call(m_token, "motion off")));
}

TEST_F(NotifyObserver, TwoTopicsAreKnown)
{
    Push(Message("tns1:VideoSource/MotionAlarm", "true"));
    Push(Message("tns1:Device/Trigger/Relay", "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(NotifyObserver, NotificationCountsOnceWhateverItsMessages)
{
    Push(Message(MOTION_TOPIC, "true") + Message(INPUT_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(m_token, "motion on")));
}

TEST_F(NotifyObserver, AddressInTheHeaderIsRequired)
{
    PushTo("", Message(MOTION_TOPIC, "true", m_camera.Value("subscribe.consumer")));
    PushTo("http://elsewhere/", Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(NotifyObserver, SubscriptionIsRenewedAfterMoreThan55Seconds)
{
    Pass(55000);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe"));
    Pass(1);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe", "Renew"));
}

TEST_F(NotifyObserver, RecordStandsWhateverTheCameraAnswers)
{
    m_camera.Refuse("Subscribe", "ter:ActionNotSupported", "no");
    m_observer.AddObserver(m_token, &m_host);
    PushTo("http://:0/subscription_1", Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(m_token, "motion on")));
}

TEST_F(NotifyObserver, HostMayRemoveTheCameraFromItsCallback)
{
    m_host.action = [this]
    {
        m_observer.DelObserver(m_token);
    };
    Push(Message(MOTION_TOPIC, "true"));
    Push(Message(MOTION_TOPIC, "false"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(m_token, "motion on")));
}

TEST_F(NotifyObserver, EmptyNotificationGetsNoAnswer)
{
    Peer peer(m_port);
    peer.Send("POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
    PushTo("http://elsewhere/", {});
    EXPECT_FALSE(peer.IsClosedNow());
    EXPECT_EQ("", peer.Drain());
}

TEST_F(NotifyObserver, ThreadTellsAndStopsAtOnce)
{
    CNotifyObserver observer;
    observer.Start(FreePort());
    observer.Start(FreePort());
    observer.Stop();
    observer.Stop();
}

class PullSubscription : public EventWorld
{
protected:
    OnvifDeviceSimulator m_camera;
};

TEST_F(PullSubscription, EveryAnswerIsTold)
{
    const unsigned int token = Login(m_camera);
    CPullSubscription subscription(token, &m_host);
    EXPECT_EQ(1, subscription.Start());
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() >= 3; }));
    EXPECT_EQ(1, subscription.Stop());
    const std::vector<std::string> calls = m_host.Take();
    EXPECT_THAT(calls, testing::Each(Call(token, "motion on"))); // also where nothing has changed
    EXPECT_EQ("CreatePullPointSubscription", EventOperations(m_camera)[0]);
    EXPECT_EQ("PullMessages", EventOperations(m_camera)[1]);
    EXPECT_EQ("Renew", EventOperations(m_camera)[2]);
    const auto requests = m_camera.Requests();
    const auto pull = std::find_if(requests.begin(), requests.end(),
                                   [](const auto& request) { return request.operation == "PullMessages"; });
    EXPECT_EQ("2", OnvifSoapRequest(pull->soap).Text("MessageLimit"));
}

TEST_F(PullSubscription, LostPullPointIsOpenedAnew)
{
    m_camera.SetManners("PullMessages", Delivery(OnvifManners::CLOSED));
    CPullSubscription subscription(Login(m_camera), &m_host);
    subscription.Start();
    EXPECT_TRUE(RepeatUntil(
        [&]
        {
            const auto operations = EventOperations(m_camera);
            return std::count(operations.begin(), operations.end(), "CreatePullPointSubscription") >= 2;
        }));
    subscription.Stop();
}

TEST_F(PullSubscription, StopEndsTheWaitForACameraThatRefuses)
{
    m_camera.Refuse("CreatePullPointSubscription", "ter:ActionNotSupported", "no");
    CPullSubscription subscription(Login(m_camera), &m_host);
    subscription.Start();
    EXPECT_TRUE(RepeatUntil([&] { return !EventOperations(m_camera).empty(); }));
    subscription.Stop(); // the test would last ten seconds otherwise
    EXPECT_EQ(1u, EventOperations(m_camera).size());
}

TEST_F(PullSubscription, StopEndsTheWaitForAnAnswer)
{
    m_camera.SetManners("PullMessages", Delivery(OnvifManners::SILENT));
    CPullSubscription subscription(Login(m_camera), &m_host);
    subscription.Start();
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() == 2; }));
    subscription.Stop();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(PullSubscription, FactoryKeepsOneForEachCamera)
{
    const unsigned int token = Login(m_camera);
    CPullPointFactory& factory = CPullPointFactory::Instance();
    EXPECT_EQ(1, factory.AddObserver(token, &m_host));
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() >= 1; }));
    NotingObserver second;
    EXPECT_EQ(1, factory.AddObserver(token, &second));
    m_host.Take();
    EXPECT_TRUE(RepeatUntil([&] { return second.Count() >= 1; }));
    factory.DelObserver(token);
    second.Take();
    factory.DelObserver(token);
    EXPECT_THAT(m_host.Take(), IsEmpty());
    EXPECT_THAT(second.Take(), IsEmpty());
}

} // namespace
