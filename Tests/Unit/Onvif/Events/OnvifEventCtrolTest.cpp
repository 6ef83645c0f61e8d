#include "OnvifEventCtrol.h"

#include "EventWorld.h"
#include "NetworkNamespace.h"
#include "Peer.h"

#include <cstring>

#include <arpa/inet.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{

constexpr const char* ACKNOWLEDGED = "HTTP/1.1 200 OK\r\n"
                                     "Content-type: text/html\r\n"
                                     "Content-Length: 0\r\n"
                                     "Connection: close\r\n"
                                     "AuthInfo: \r\n"
                                     "\r\n";

/// Passes are made by the test, not by the thread.
class OnvifEventCtrol : public EventWorld
{
protected:
    void TearDown() override
    {
        for (unsigned int token = 0; token < 100; ++token)
        {
            m_control.DelObserver(token);
        }
        EventWorld::TearDown();
    }

    /// Watches a camera that pushes. @return the token
    unsigned int Watch(const OnvifDeviceSimulator& camera)
    {
        const unsigned int token = Login(camera);
        EXPECT_EQ(1, m_control.AddObserver(token, &m_host, "127.0.0.1", true, false));
        return token;
    }
    unsigned int WatchByPulling(const OnvifDeviceSimulator& camera)
    {
        const unsigned int token = Login(camera);
        EXPECT_EQ(1, m_control.AddObserver(token, &m_host, "127.0.0.1", false, true));
        return token;
    }
    /// A notification to the address that a camera was given.
    void Push(const OnvifDeviceSimulator& camera, const Messages& messages)
    {
        PushTo(camera.Value("subscribe.consumer"), messages);
    }
    void PushTo(const std::string& to, const Messages& messages)
    {
        const std::string text = OnvifNotifyDocument(Notification(to, messages));
        m_control.ParseWebMsg(text.c_str(), static_cast<int>(text.size()));
    }
    void Pass(unsigned int ms = 300)
    {
        m_clock.Advance(ms);
        m_control.CheckPass();
    }

    COnvifEventCtrol m_control;
    OnvifDeviceSimulator m_camera;
};

TEST_F(OnvifEventCtrol, CameraIsGivenANumberedAddress)
{
    Watch(m_camera);
    EXPECT_THAT(m_camera.Value("subscribe.consumer"), testing::MatchesRegex("http://[0-9.]+:0/subscription_0"));
    EXPECT_EQ("PT60S", m_camera.Value("subscribe.term"));
    OnvifDeviceSimulator second;
    Watch(second);
    EXPECT_THAT(second.Value("subscribe.consumer"), HasSubstr("/subscription_1"));
}

TEST_F(OnvifEventCtrol, BurstOfTrueEventsIsOneCall)
{
    const unsigned int token = Watch(m_camera);
    for (int i = 0; i < 10; ++i)
    {
        Push(m_camera, Message(MOTION_TOPIC, "true"));
    }
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, ChangesWithinOnePassAreAllTold)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Push(m_camera, Message(MOTION_TOPIC, "false"));
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(),
                ElementsAre(Call(token, "motion on"), Call(token, "motion off"), Call(token, "motion on")));
}

TEST_F(OnvifEventCtrol, AlarmInputsCountAsNumberOne)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(INPUT_TOPIC, "1"));
    Push(m_camera, Message("tns1:Device/Trigger/Relay", "false"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "alarm-in 1 on"), Call(token, "alarm-in 1 off")));
}

TEST_F(OnvifEventCtrol, FalseWithoutAnAlarmIsNoCallAndStartsNothing)
{
    Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "false"));
    Pass();
    Pass(20000);
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, UnknownTopicIsDropped)
{
    Watch(m_camera);
    Push(m_camera, Message("tns1:Other", "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, SilenceOfMoreThanTenSecondsEndsAnAlarm)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Pass();
    m_host.Take();
    Pass(10000);
    EXPECT_THAT(m_host.Take(), IsEmpty());
    Pass(1);
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion off")));
    Pass(20000);
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, FurtherTrueEventsHoldTheAlarm)
{
    Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Pass();
    m_host.Take();
    for (int i = 0; i < 3; ++i)
    {
        Push(m_camera, Message(MOTION_TOPIC, "true"));
        Pass(9000);
    }
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, SilenceEndsTheAlarmInputBeforeMotion)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Push(m_camera, Message(INPUT_TOPIC, "true"));
    Pass();
    m_host.Take();
    Pass(10001);
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "alarm-in 1 off"), Call(token, "motion off")));
}

TEST_F(OnvifEventCtrol, ClockMayWrapDuringAnAlarm)
{
    const unsigned int token = Watch(m_camera);
    m_clock.Advance(0xFFFFFF00u - m_clock.Now());
    m_control.CheckPass(); // renews
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    m_control.CheckPass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
    Pass(9000);
    EXPECT_THAT(m_host.Take(), IsEmpty());
    Pass(1001);
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion off")));
}

// What the camera says of itself decides which way is tried first; one that says nothing is subscribed to.
struct ModeCase
{
    const char* name;
    bool subscription;
    bool pullPoint;
    std::vector<std::string> operations;
};

class OnvifEventCtrolMode : public OnvifEventCtrol, public testing::WithParamInterface<ModeCase>
{
};

TEST_P(OnvifEventCtrolMode, FollowsWhatTheCameraOffers)
{
    const unsigned int token = Login(m_camera);
    m_control.AddObserver(token, &m_host, "127.0.0.1", GetParam().subscription, GetParam().pullPoint);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera) == GetParam().operations; }))
        << testing::PrintToString(EventOperations(m_camera));
}

// clang-format off
const ModeCase MODE_CASES[] = {
    {"Subscription", true,  false, {"Subscribe"}                                  },
    {"PullPoint",    false, true,  {"CreatePullPointSubscription", "PullMessages"}},
    {"Both",         true,  true,  {"Subscribe"}                                  },
    {"Neither",      false, false, {"Subscribe"}                                  },
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(All, OnvifEventCtrolMode, testing::ValuesIn(MODE_CASES),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(OnvifEventCtrol, RefusedSubscriptionFallsToThePullPoint)
{
    m_camera.Refuse("Subscribe", "ter:ActionNotSupported", "no");
    Watch(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() == 3; }));
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe", "CreatePullPointSubscription", "PullMessages"));
}

TEST_F(OnvifEventCtrol, CameraWithoutAPullPointIsAskedAtItsEventService)
{
    m_camera.Refuse("CreatePullPointSubscription", "ter:ActionNotSupported", "no");
    WatchByPulling(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return m_camera.LastRequest().operation == "PullMessages"; }));
    EXPECT_EQ("onvif/event_service", m_camera.LastRequest().path);
}

OnvifAnswer SubscriptionAt(const std::string& address)
{
    return {"<wsn:SubscribeResponse><wsn:SubscriptionReference><ad:Address>" + XmlEscaped(address) +
                "</ad:Address></wsn:SubscriptionReference></wsn:SubscribeResponse>",
            "", "", ""};
}

TEST_F(OnvifEventCtrol, AddressOf127CharactersIsUsed)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://c/" + std::string(118, 'a')));
    Watch(m_camera);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe"));
    Pass(52001);
    EXPECT_EQ(std::string(118, 'a'), m_camera.LastRequest().path);
}

TEST_F(OnvifEventCtrol, AddressOf128CharactersCountsAsNone)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://c/" + std::string(119, 'a')));
    Watch(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() == 3; })); // the pull point is used
}

TEST_F(OnvifEventCtrol, AnswerWithoutAnAddressCountsAsNone)
{
    m_camera.SetAnswer("Subscribe", {"<wsn:SubscribeResponse/>", "", "", ""});
    Watch(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() == 3; }));
}

// An address of the camera's choice is a text of ours and nothing else.
TEST_F(OnvifEventCtrol, AddressMayHoldMarkup)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://c/a?x=1&y=</serverAddr></renew><evil/><renew>"));
    Watch(m_camera);
    Pass(52001);
    EXPECT_EQ("Renew", m_camera.LastRequest().operation);
    EXPECT_THAT(m_camera.LastRequest().http, StartsWith("POST /a?x=1&y=</serverAddr></renew><evil/><renew>"));
}

TEST_F(OnvifEventCtrol, SubscriptionIsRenewedAfterMoreThan52Seconds)
{
    Watch(m_camera);
    Pass(52000);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe"));
    Pass(1);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe", "Renew"));
    EXPECT_EQ("onvif/subscription_1", m_camera.LastRequest().path);
    EXPECT_EQ("PT60S", m_camera.Value("renew.term"));
    Pass(52000);
    EXPECT_EQ(2u, EventOperations(m_camera).size());
    Pass(1);
    EXPECT_EQ(3u, EventOperations(m_camera).size());
}

TEST_F(OnvifEventCtrol, FailedRenewalStartsTheIntervalAgain)
{
    Watch(m_camera);
    m_camera.Refuse("Renew", "ter:InvalidArgVal", "no");
    Pass(52001);
    Pass(52000);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe", "Renew"));
}

// The key of a subscription without a consumer: the camera's subscription is left to run out.
TEST_F(OnvifEventCtrol, RemovalSendsASubscriptionWithoutAConsumer)
{
    const unsigned int token = Watch(m_camera);
    m_control.DelObserver(token);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe", "Subscribe"));
    EXPECT_EQ("", m_camera.Value("subscribe.consumer"));
    m_control.DelObserver(token); // nothing is left to remove
    EXPECT_EQ(2u, EventOperations(m_camera).size());
}

TEST_F(OnvifEventCtrol, SecondObserverReplacesTheFirst)
{
    const unsigned int token = Watch(m_camera);
    NotingObserver second;
    m_control.AddObserver(token, &second, "127.0.0.1", true, false);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe", "Subscribe", "Subscribe"));
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
    EXPECT_THAT(second.Take(), ElementsAre(Call(token, "motion on")));
}

TEST_F(OnvifEventCtrol, RemovedCameraIsNotToldOf)
{
    const unsigned int token = Watch(m_camera);
    const std::string address = m_camera.Value("subscribe.consumer");
    PushTo(address, Message(MOTION_TOPIC, "true"));
    m_control.DelObserver(token);
    PushTo(address, Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, CameraMayBeWatchedForNobody)
{
    m_control.AddObserver(Login(m_camera), nullptr, "127.0.0.1", true, false);
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Push(m_camera, Message(INPUT_TOPIC, "true"));
    Pass();
    Pass(10001);
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe"));
}

TEST_F(OnvifEventCtrol, UnknownLoginIsWatchedInVain)
{
    EXPECT_EQ(1, m_control.AddObserver(77, &m_host, "", true, false));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
    m_control.DelObserver(77);
}

// Addresses.

TEST_F(OnvifEventCtrol, NotificationWithoutAnAddressIsDropped)
{
    Watch(m_camera);
    PushTo("", Message(MOTION_TOPIC, "true"));
    PushTo("http://elsewhere/", Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventCtrol, ReferenceNamesTheCameraByHostAndPort)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://192.168.1.20:80/onvif/Subscription?Idx=1"));
    const unsigned int token = Watch(m_camera);
    PushTo("", Message(MOTION_TOPIC, "true", "http://192.168.1.20:80/other/path"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

// Only so many characters as the reference has are compared, so that a longer host fits as well, and the camera that
// was logged in to first is taken.
TEST_F(OnvifEventCtrol, LongerHostFitsTooAndTheLowestTokenWins)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://192.168.1.200/onvif/Subscription?Idx=1"));
    const unsigned int token = Watch(m_camera);
    OnvifDeviceSimulator right;
    right.SetAnswer("Subscribe", SubscriptionAt("http://192.168.1.20/onvif/Subscription?Idx=1"));
    Watch(right);
    PushTo("", Message(MOTION_TOPIC, "true", "http://192.168.1.20/onvif/Subscription?Idx=1"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

TEST_F(OnvifEventCtrol, ReferenceOfOneMessageHoldsForThoseBehindIt)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://192.168.1.20/s"));
    const unsigned int token = Watch(m_camera);
    PushTo("", Message(MOTION_TOPIC, "true", "http://192.168.1.20/s") + Message(INPUT_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on"), Call(token, "alarm-in 1 on")));
}

// Also when the message itself tells nothing.
TEST_F(OnvifEventCtrol, ReferenceOfAMessageWithoutATopicHoldsToo)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("http://192.168.1.20/s"));
    const unsigned int token = Watch(m_camera);
    Messages messages = Message(MOTION_TOPIC, "true", "http://192.168.1.20/s");
    messages.list[0].topicElement = "wsnt:Other";
    PushTo("", messages + Message(INPUT_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "alarm-in 1 on")));
}

TEST_F(OnvifEventCtrol, ReferenceWithoutAHostFitsNobody)
{
    Watch(m_camera);
    PushTo("", Message(MOTION_TOPIC, "true", "http:///onvif"));
    PushTo("", Message(MOTION_TOPIC, "true", "http:///"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

// An address that is no URL is compared as a whole.
TEST_F(OnvifEventCtrol, ReferenceOfAnotherKindFitsAsItBegins)
{
    m_camera.SetAnswer("Subscribe", SubscriptionAt("urn:camera:17/s"));
    const unsigned int token = Watch(m_camera);
    PushTo("", Message(MOTION_TOPIC, "true", "urn:camera:18"));
    PushTo("", Message(MOTION_TOPIC, "true", "urn:camera:17/s/more"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
    PushTo("", Message(MOTION_TOPIC, "true", "urn:camera:17"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

TEST_F(OnvifEventCtrol, CameraThatIsAskedCannotPush)
{
    m_camera.SetManners("PullMessages", Delivery(OnvifManners::SILENT));
    WatchByPulling(m_camera);
    PushTo("http://127.0.0.1:0/subscription_0", Message(MOTION_TOPIC, "true"));
    m_control.CheckPass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

// Messages.

// Each message has a topic of its own, and the items of the first.
TEST_F(OnvifEventCtrol, MessagesOfOneNotificationShareTheFirstOnesState)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "true") + Message(INPUT_TOPIC, "false"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on"), Call(token, "alarm-in 1 on")));
}

TEST_F(OnvifEventCtrol, TopicMayBeSpelledSmall)
{
    const unsigned int token = Watch(m_camera);
    Messages messages = Message(MOTION_TOPIC, "true");
    messages.list[0].topicElement = "wsnt:topic";
    Push(m_camera, messages);
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

struct PushCase
{
    const char* name;
    const char* topic;
    const char* value;
    const char* call; ///< null for none
};

class OnvifEventCtrolPush : public OnvifEventCtrol, public testing::WithParamInterface<PushCase>
{
};

TEST_P(OnvifEventCtrolPush, IsClassified)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(GetParam().topic, GetParam().value));
    Pass();
    std::vector<std::string> expected;
    if (GetParam().call != nullptr)
    {
        expected.push_back(Call(token, GetParam().call));
    }
    EXPECT_EQ(expected, m_host.Take());
}

// clang-format off
const PushCase PUSH_CASES[] = {
    {"CellMotion",           "tns1:RuleEngine/CellMotionDetector/Motion", "true", "motion on"    },
    {"MotionAlarm",          "tns1:VideoSource/MotionAlarm",              "true", "motion on"    },
    {"AnyMotionDetection",   "tns1:RuleEngine/MotionDetection",           "true", "motion on"    },
    {"DigitalInput",         "tns1:Device/Trigger/DigitalInput",          "true", "alarm-in 1 on"},
    {"Relay",                "tns1:Device/Trigger/Relay",                 "true", "alarm-in 1 on"},
    {"AlarmIn",              "tnsx:Vendor/AlarmIn",                       "true", "alarm-in 1 on"},
    {"MotionInFrontOfInput", "tnsx:AlarmIn/MotionAlarm",                  "true", "motion on"    },
    {"UpperCaseTrue",        "tns1:VideoSource/MotionAlarm",              "TRUE", "motion on"    },
    {"One",                  "tns1:VideoSource/MotionAlarm",              "1",    "motion on"    },
    {"MixedCaseTrue",        "tns1:VideoSource/MotionAlarm",              "True", nullptr        },
    {"Unknown",              "tns1:Device/HardwareFailure",               "true", nullptr        },
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(All, OnvifEventCtrolPush, testing::ValuesIn(PUSH_CASES),
                         [](const auto& one) { return std::string(one.param.name); });

const char* const BAD_NOTIFICATIONS[] = {
    "",
    "no xml",
    "<",
    "<?xml version=\"1.0\"?>",
    "<a><b></a>",
    "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\"/>",
    "<!DOCTYPE a [<!ENTITY b \"c\">]><a>&b;</a>",
};

TEST_F(OnvifEventCtrol, UnreadableNotificationsAreDropped)
{
    Watch(m_camera);
    for (const char* text : BAD_NOTIFICATIONS)
    {
        m_control.ParseWebMsg(text, static_cast<int>(std::strlen(text)));
    }
    std::string deep;
    for (int i = 0; i < 100000; ++i)
    {
        deep += "<a>";
    }
    m_control.ParseWebMsg(deep.c_str(), static_cast<int>(deep.size()));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

// The port.

class OnvifEventPort : public OnvifEventCtrol
{
protected:
    void SetUp() override
    {
        OnvifEventCtrol::SetUp();
        ASSERT_TRUE(NET_SOCKET_StartListen(0, &m_control, htonl(INADDR_LOOPBACK), true));
        m_port = NET_SOCKET_GetListenPort(&m_control);
    }
    std::string Post(const std::string& body) const
    {
        Peer peer(m_port);
        peer.Send("POST /anything HTTP/1.1\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        return peer.ReadAll();
    }
    std::string Post(const OnvifNotification& notification) const
    {
        return PostOnvifNotification(m_port, notification);
    }
    /// Motion, to the address that the camera was given.
    OnvifNotification Motion() const
    {
        return Notification(m_camera.Value("subscribe.consumer"), Message(MOTION_TOPIC, "true"));
    }

    unsigned short m_port = 0;
};

TEST_F(OnvifEventPort, NotificationIsAcknowledgedAndTold)
{
    const unsigned int token = Watch(m_camera);
    EXPECT_EQ(ACKNOWLEDGED, Post(Motion()));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

TEST_F(OnvifEventPort, AnythingElseIsAcknowledgedToo)
{
    EXPECT_EQ(ACKNOWLEDGED, Post("no xml"));
    EXPECT_EQ(ACKNOWLEDGED, Post(Notification("http://unknown/", Message(MOTION_TOPIC, "true"))));
}

TEST_F(OnvifEventPort, NotificationMayComeInPieces)
{
    const unsigned int token = Watch(m_camera);
    OnvifNotification notification = Motion();
    notification.pieceBytes = 100;
    EXPECT_EQ(ACKNOWLEDGED, Post(notification));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

// Without a length that is spelled as expected the message ends with its header, so that no payload is seen.
TEST_F(OnvifEventPort, NotificationWithoutAKnownLengthIsAnEmptyOne)
{
    Watch(m_camera);
    OnvifNotification notification = Motion();
    for (const char* name : {"content-length", ""})
    {
        const std::string body = OnvifNotifyDocument(notification);
        const std::string length = *name != '\0' ? name + (": " + std::to_string(body.size())) + "\r\n" : "";
        Peer peer(m_port);
        peer.Send("POST / HTTP/1.1\r\n" + length + "\r\n");
        EXPECT_EQ(ACKNOWLEDGED, Post("x")); // the other one has been handled, or is being
        EXPECT_EQ("", peer.Drain());
        EXPECT_FALSE(peer.IsClosedNow());
    }
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
}

TEST_F(OnvifEventPort, LargeNotificationIsRead)
{
    const unsigned int token = Watch(m_camera);
    std::string body = OnvifNotifyDocument(Motion());
    body.insert(body.find("<wsnt:NotificationMessage>"), "<!--" + std::string(1000000, 'x') + "-->");
    EXPECT_EQ(ACKNOWLEDGED, Post(body));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

TEST_F(OnvifEventPort, EmptyNotificationGetsNoAnswerAndNoEnd)
{
    Peer peer(m_port);
    peer.Send("POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
    EXPECT_EQ(ACKNOWLEDGED, Post("x")); // the other one has been handled, or is being
    EXPECT_EQ("", peer.Drain());
    EXPECT_FALSE(peer.IsClosedNow());
}

TEST_F(OnvifEventPort, PeerThatEndsBeforeItsRequestIsClosed)
{
    Peer peer(m_port);
    peer.Send("POST / HTTP/1.1\r\nContent-Le");
    peer.ShutdownSend();
    EXPECT_EQ("", peer.ReadAll());
}

TEST_F(OnvifEventPort, AnswerWhereARequestIsExpectedStopsNothing)
{
    Peer peer(m_port);
    peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx");
    EXPECT_EQ(ACKNOWLEDGED, peer.ReadAll());
}

TEST_F(OnvifEventPort, SilentPeersDelayNobody)
{
    std::vector<std::unique_ptr<Peer>> silent;
    for (int i = 0; i < 8; ++i)
    {
        silent.push_back(std::make_unique<Peer>(m_port));
    }
    EXPECT_EQ(ACKNOWLEDGED, Post("x"));
}

TEST_F(OnvifEventPort, NoiseStopsNothing)
{
    SendNoise(m_port);
    EXPECT_EQ(ACKNOWLEDGED, Post("x"));
}

TEST_F(OnvifEventPort, EndlessHeaderIsClosed)
{
    Peer peer(m_port);
    peer.Send("POST / HTTP/1.1\r\nX: " + std::string(11 << 20, 'x'));
    EXPECT_TRUE(peer.WaitClosed());
    EXPECT_EQ(ACKNOWLEDGED, Post("x"));
}

TEST_F(OnvifEventPort, TenThousandConnectionsLeaveItServing)
{
    for (int i = 0; i < 10000; ++i)
    {
        Peer peer(m_port);
        ASSERT_TRUE(peer.IsOpen()) << i;
        peer.Reset(); // leaves no port behind that waits for its time
    }
    EXPECT_EQ(ACKNOWLEDGED, Post("x"));
}

// Pull points.

TEST_F(OnvifEventCtrol, AnswerOfAPullPointIsTold)
{
    const unsigned int token = WatchByPulling(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() == 1; }, [&] { m_control.CheckPass(); }));
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
    m_camera.SetValue("motion", "false");
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() == 1; }, [&] { m_control.CheckPass(); }));
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion off")));
}

TEST_F(OnvifEventCtrol, PullAsksForManyMessagesAtThePullPoint)
{
    WatchByPulling(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return m_camera.LastRequest().operation == "PullMessages"; }));
    const OnvifDeviceSimulator::Request request = m_camera.LastRequest();
    EXPECT_EQ("onvif/pull_1", request.path);
    const OnvifSoapRequest soap(request.soap);
    EXPECT_EQ("PT60S", soap.Text("Timeout"));
    EXPECT_EQ("1024", soap.Text("MessageLimit"));
}

// The term counts as milliseconds here: every pass drops the pull that is not answered yet and sends a new one.
TEST_F(OnvifEventCtrol, PullThatIsNotAnsweredIsSentAnewAtTheNextPass)
{
    m_camera.SetManners("PullMessages", Delivery(OnvifManners::SILENT));
    WatchByPulling(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() == 2; }));
    Pass(60);
    EXPECT_EQ(2u, EventOperations(m_camera).size());
    Pass(1);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() == 4; }));
    EXPECT_THAT(EventOperations(m_camera),
                ElementsAre("CreatePullPointSubscription", "PullMessages", "Renew", "PullMessages"));
}

TEST_F(OnvifEventCtrol, PullIsRenewedAtThePullPoint)
{
    m_camera.SetManners("PullMessages", Delivery(OnvifManners::SILENT));
    WatchByPulling(m_camera);
    Pass(61);
    const auto requests = m_camera.Requests();
    const auto renewal = std::find_if(requests.begin(), requests.end(),
                                      [](const auto& request) { return request.operation == "Renew"; });
    ASSERT_NE(requests.end(), renewal);
    EXPECT_EQ("onvif/pull_1", renewal->path);
}

TEST_F(OnvifEventCtrol, OversizedAnswerIsThrownAwayAndTheNextOneRead)
{
    OnvifManners oversized;
    oversized.padBytes = 40000;
    m_camera.SetManners("PullMessages", oversized);
    WatchByPulling(m_camera);
    EXPECT_TRUE(RepeatUntil([&] { return EventOperations(m_camera).size() >= 2; }));
    m_camera.SetManners("PullMessages", {});
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() == 1; }, [&] { Pass(61); }));
}

TEST_F(OnvifEventCtrol, CameraThatVanishesAndComesBackIsTold)
{
    auto camera = std::make_unique<OnvifDeviceSimulator>();
    const unsigned short port = camera->Port();
    const unsigned int token = WatchByPulling(*camera);
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() == 1; }, [&] { Pass(61); }));
    m_host.Take();
    camera.reset();
    Pass(61); // refused at once
    Pass(61); // delivers what came just before
    Pass(10001);
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion off")));
    camera = std::make_unique<OnvifDeviceSimulator>(OnvifSimulatorOptions(), port);
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() == 1; }, [&] { Pass(61); }));
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
}

// Callbacks.

TEST_F(OnvifEventCtrol, HostMayRemoveTheCameraFromItsCallback)
{
    const unsigned int token = Watch(m_camera);
    m_host.action = [&]
    {
        m_control.DelObserver(token);
    };
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Push(m_camera, Message(MOTION_TOPIC, "false"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on"))); // nothing after the removal
}

TEST_F(OnvifEventCtrol, HostMayRemoveACameraThatIsAskedFromItsCallback)
{
    const unsigned int token = WatchByPulling(m_camera);
    m_host.action = [&]
    {
        m_control.DelObserver(token);
    };
    EXPECT_TRUE(RepeatUntil([&] { return m_host.Count() == 1; }, [&] { Pass(61); }));
    const std::size_t operations = EventOperations(m_camera).size();
    Pass(61);
    EXPECT_EQ(operations, EventOperations(m_camera).size());
}

TEST_F(OnvifEventCtrol, HostMayRemoveTheCameraWhenSilenceEndsItsAlarms)
{
    const unsigned int token = Watch(m_camera);
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Push(m_camera, Message(INPUT_TOPIC, "true"));
    Pass();
    m_host.Take();
    m_host.action = [&]
    {
        m_control.DelObserver(token);
    };
    Pass(10001);
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "alarm-in 1 off")));
}

TEST_F(OnvifEventCtrol, HostMayAddAndReplaceFromItsCallback)
{
    OnvifDeviceSimulator other;
    const unsigned int otherToken = Login(other);
    const unsigned int token = Watch(m_camera);
    NotingObserver second;
    m_host.action = [&]
    {
        m_host.action = nullptr;
        m_control.AddObserver(otherToken, &second, "127.0.0.1", true, false);
        m_control.AddObserver(token, &second, "127.0.0.1", true, false);
    };
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), ElementsAre(Call(token, "motion on")));
    Push(m_camera, Message(MOTION_TOPIC, "true"));
    Push(other, Message(MOTION_TOPIC, "true"));
    Pass();
    EXPECT_THAT(m_host.Take(), IsEmpty());
    EXPECT_THAT(second.Take(), ElementsAre(Call(otherToken, "motion on"), Call(token, "motion on")));
}

TEST_F(OnvifEventCtrol, ObserversComeAndGoWhileEventsComeIn)
{
    ASSERT_TRUE(NET_SOCKET_StartListen(0, &m_control, htonl(INADDR_LOOPBACK), true));
    const unsigned short port = NET_SOCKET_GetListenPort(&m_control);
    OnvifDeviceSimulator pulled;
    const unsigned int pushToken = Login(m_camera);
    const unsigned int pullToken = Login(pulled);
    std::atomic<bool> running{true};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (int j = 0; j < 10; ++j)
                {
                    m_control.AddObserver(pushToken, &m_host, "127.0.0.1", true, false);
                    m_control.AddObserver(pullToken, &m_host, "127.0.0.1", false, true);
                    m_control.DelObserver(pushToken);
                }
            });
    }
    std::thread sender(
        [&]
        {
            for (unsigned int serial = 0; running; ++serial)
            {
                PostOnvifNotification(port,
                                      Notification("http://127.0.0.1:0/subscription_" + std::to_string(serial % 40),
                                                   Message(MOTION_TOPIC, serial % 2 == 0 ? "true" : "false")));
            }
        });
    std::thread checker(
        [&]
        {
            while (running)
            {
                Pass(100);
            }
        });
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    running = false;
    sender.join();
    checker.join();
    m_control.DelObserver(pushToken);
    m_control.DelObserver(pullToken);
}

// The check thread, on the real clock.

TEST(OnvifEventCtrolThread, WaitsBetweenTwoPassesAsLongAsHostsKnowIt)
{
    EXPECT_EQ(300u, COnvifEventCtrol::PASS_MS);
}

TEST(OnvifEventCtrolThread, TellsWithinAFewPassesAndStopsAtOnce)
{
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    NET_SOCKET_Initial(nullptr);
    COnvifEventCtrol control;
    unsigned short port = FreePort();
    while (!control.Start(port))
    {
        control.Stop();
        port = FreePort();
    }
    OnvifDeviceSimulator camera;
    unsigned int error = 0;
    const unsigned int token =
        CHttpClientManager::Instance().ClientLogin(0xFFFFFFFF, "127.0.0.1", camera.Port(), "admin", "secret", &error);
    NotingObserver host;
    control.AddObserver(token, &host, "127.0.0.1", true, false);
    const std::string address = camera.Value("subscribe.consumer");
    EXPECT_THAT(address, HasSubstr(":" + std::to_string(port) + "/subscription_0"));
    EXPECT_EQ(ACKNOWLEDGED, PostOnvifNotification(port, Notification(address, Message(MOTION_TOPIC, "true"))));
    EXPECT_TRUE(RepeatUntil([&] { return host.Count() == 1; }));
    EXPECT_TRUE(!control.Start(port)); // the port is taken, the thread runs already
    control.Stop();
    control.Start(port); // the records are still there
    PostOnvifNotification(port, Notification(address, Message(MOTION_TOPIC, "false")));
    EXPECT_TRUE(RepeatUntil([&] { return host.Count() == 2; }));
    control.Stop();
    control.DelObserver(token);
    CHttpClientManager::Instance().ClientLogout(token);
    NET_SOCKET_Quit();
}

// With interfaces of its own: the addresses are those of the machine, in the order of its table.
TEST(OnvifEventCtrolInterfaces, CameraIsGivenTheAddressOfTheInterfaceMostLikeIts)
{
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    if (!CNetworkNamespace::Enter() || !CNetworkNamespace::AddInterface("eth0", "10.1.0.5/24") ||
        !CNetworkNamespace::AddInterface("wlan0", "10.2.0.9/24") ||
        !CNetworkNamespace::AddInterface("bond0", "10.2.0.5/24"))
    {
        GTEST_SKIP() << "the kernel does not allow a network namespace here";
    }
    NET_SOCKET_Initial(nullptr);
    COnvifEventCtrol control;
    EXPECT_TRUE(control.Start(CHttpClientManager::NOTIFICATION_PORT));
    OnvifDeviceSimulator camera;
    unsigned int error = 0;
    const unsigned int token =
        CHttpClientManager::Instance().ClientLogin(0xFFFFFFFF, "127.0.0.1", camera.Port(), "admin", "secret", &error);
    NotingObserver host;
    control.AddObserver(token, &host, "10.2.0.9", true, false);
    EXPECT_EQ("http://10.2.0.5:6699/subscription_0", camera.Value("subscribe.consumer"));
    control.AddObserver(token, &host, "172.16.0.1", true, false);
    EXPECT_EQ("http://10.1.0.5:6699/subscription_1", camera.Value("subscribe.consumer"));
    control.Stop();
    control.DelObserver(token);
    CHttpClientManager::Instance().ClientLogout(token);
    NET_SOCKET_Quit();
}

// The address that a camera shall push to.

struct AddressCase
{
    const char* name;
    std::vector<const char*> interfaces;
    const char* device;
    const char* expected;
};

class OnvifEventCtrolAddress : public testing::TestWithParam<AddressCase>
{
};

TEST_P(OnvifEventCtrolAddress, IsTheOneMostLikeTheCameras)
{
    std::list<CPFHelper::__TNICInfo> interfaces;
    for (const char* address : GetParam().interfaces)
    {
        CPFHelper::__TNICInfo nic{};
        nic.IP = inet_addr(address);
        interfaces.push_back(nic);
    }
    EXPECT_EQ(GetParam().expected, COnvifEventCtrol::LocalAddressFor(interfaces, GetParam().device));
}

// clang-format off
const AddressCase ADDRESS_CASES[] = {
    {"SameNetwork",      {"192.168.1.5", "10.0.0.5"},    "192.168.1.20", "192.168.1.5"},
    {"SecondNetwork",    {"192.168.1.5", "10.0.0.5"},    "10.0.0.9",     "10.0.0.5"   },
    {"TieTakesTheFirst", {"192.168.1.5", "10.0.0.5"},    "172.16.0.1",   "192.168.1.5"}, // both share the "1"
    {"NothingShared",    {"192.168.1.5", "10.0.0.5"},    "200.1.1.1",    "192.168.1.5"},
    {"LongerMatch",      {"10.0.0.5",    "10.0.1.5"},    "10.0.1.77",    "10.0.1.5"   },
    {"NoCameraAddress",  {"10.0.0.5",    "10.0.1.5"},    "",             "10.0.0.5"   },
    {"NoInterface",      {},                             "127.0.0.1",    "127.0.0.1"  }, // what routing would use
    {"Nothing",          {},                             "",             "0.0.0.0"    },
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(All, OnvifEventCtrolAddress, testing::ValuesIn(ADDRESS_CASES),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
