#include "EventWorld.h"
#include "NotifyObserver.h"
#include "Peer.h"
#include "PullPointFactory.h"
#include "PullSubscription.h"

#include <atomic>

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

// Waits of the threads, which are on the real clock.
TEST(SecondEngineThreads, WaitAsLongAsCamerasKnowThem)
{
    EXPECT_EQ(100u, CNotifyObserver::PASS_MS);
    EXPECT_EQ(200u, CPullSubscription::REOPEN_PAUSE_MS);
    EXPECT_EQ(10000u, CPullSubscription::RETRY_PAUSE_MS);
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

// The events of one answer: what each topic tells, and what an item without a topic or a value has of the one before.
TEST_F(PullSubscription, FourTopicsAndThreeSpellingsAreKnown)
{
    const auto item = [](const std::string& topic, const std::string& value)
    {
        return "<wsn:NotificationMessage>" + (topic.empty() ? "" : "<wsn:Topic>" + topic + "</wsn:Topic>") +
               "<wsn:Message><tt:Message><tt:Data>" +
               (value.empty() ? "" : "<tt:SimpleItem Name=\"State\" Value=\"" + value + "\"/>") +
               "</tt:Data></tt:Message></wsn:Message></wsn:NotificationMessage>";
    };
    m_camera.SetAnswer("PullMessages",
                       {"<ew:PullMessagesResponse>" + item("tns1:RuleEngine/CellMotionDetector/Motion", "true") +
                            item("tns1:VideoSource/MotionAlarm", "TRUE") +
                            item("tns1:VideoAnalytics/MotionDetection", "true") + item("tns1:Other", "true") +
                            item("tns1:Device/Trigger/Relay", "true") + item("tns1:Device/Trigger/DigitalInput", "1") +
                            item("tnsx:Vendor/AlarmIn", "True") + item("", "1") +
                            item("tns1:VideoSource/MotionAlarm", "") + "</ew:PullMessagesResponse>",
                        "", "", ""});
    const unsigned int token = Login(m_camera);
    CPullSubscription subscription(token, &m_host);
    subscription.Start();
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() >= 6; }));
    subscription.Stop();
    std::vector<std::string> calls = m_host.Take();
    calls.resize(6);
    EXPECT_THAT(calls,
                ElementsAre(Call(token, "motion on"), Call(token, "motion on"), Call(token, "alarm-in 1 on"),
                            Call(token, "alarm-in 1 off"), Call(token, "alarm-in 1 on"), Call(token, "motion on")));
}

/// An answer of a pull that is so many bytes long with its head.
std::string PullAnswer(std::size_t bytes)
{
    std::string answer =
        "HTTP/1.1 200 OK\r\n\r\n" +
        RenderOnvifAnswer({std::string("<ew:PullMessagesResponse><wsn:NotificationMessage><wsn:Topic>") + MOTION_TOPIC +
                               "</wsn:Topic><wsn:Message><tt:Message><tt:Data><tt:SimpleItem Name=\"S\" "
                               "Value=\"true\"/></tt:Data></tt:Message></wsn:Message></wsn:NotificationMessage>"
                               "</ew:PullMessagesResponse>",
                           "", "", ""},
                          {});
    answer.erase(answer.find_last_not_of(" \r\n") + 1);
    return answer.insert(answer.find("<wsn:NotificationMessage>"), bytes - answer.size(), ' ');
}

TEST_F(PullSubscription, AnswerThatJustFillsTheBufferIsRead)
{
    OnvifManners manners = Delivery(OnvifManners::RAW);
    manners.raw = PullAnswer(8191);
    m_camera.SetManners("PullMessages", manners);
    CPullSubscription subscription(Login(m_camera), &m_host);
    subscription.Start();
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() >= 1; }));
    subscription.Stop();
}

// What does not fit is cut, and a document that is cut has no events.
TEST_F(PullSubscription, LongerAnswerHasNoEvents)
{
    OnvifManners manners = Delivery(OnvifManners::RAW);
    manners.raw = PullAnswer(8192);
    m_camera.SetManners("PullMessages", manners);
    CPullSubscription subscription(Login(m_camera), &m_host);
    subscription.Start();
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() >= 6; })); // two pulls are over
    subscription.Stop();
    EXPECT_THAT(m_host.Take(), IsEmpty());
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

/// Notes whether its thread was made.
class NotingSubscription : public CPullSubscription
{
public:
    NotingSubscription() : CPullSubscription(0, nullptr) {}
    std::atomic<int> threads{0};

protected:
    int EventCheckThread() override
    {
        ++threads;
        return 0;
    }
};

TEST_F(PullSubscription, StartsOnce)
{
    NotingSubscription subscription;
    EXPECT_EQ(1, subscription.Start());
    EXPECT_EQ(1, subscription.Start());
    EXPECT_EQ(1, subscription.Stop());
    EXPECT_EQ(1, subscription.threads);
}

// One thread may remove a camera while another still adds it.
TEST_F(PullSubscription, StopBeforeTheStartKeepsItFromStarting)
{
    NotingSubscription subscription;
    EXPECT_EQ(1, subscription.Stop());
    EXPECT_EQ(1, subscription.Start());
    EXPECT_EQ(1, subscription.Stop()); // waits for a thread, if there is one
    EXPECT_EQ(0, subscription.threads);
}

TEST_F(PullSubscription, FactoryTakesAndRemovesOneCameraFromManyThreads)
{
    const unsigned int token = Login(m_camera);
    CPullPointFactory& factory = CPullPointFactory::Instance();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (int j = 0; j < 5; ++j)
                {
                    factory.AddObserver(token, &m_host);
                    factory.DelObserver(token);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    m_host.Take();
    m_camera.Forget();
    EXPECT_THAT(EventOperations(m_camera), IsEmpty()); // nobody asks any more
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
