// How a pull connects, and how long each event engine waits for that, on a replaced clock.
#include "PullExchange.h"

#include "AlarmStateObserver.h"
#include "FakeSocketService.h"
#include "HttpClientManager.h"
#include "OnvifEventCtrol.h"
#include "PullSubscription.h"
#include "ShareSDK.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{

const Outgoing CONNECTED = {Outgoing::CONNECTED, {}};
const Outgoing PENDING = {Outgoing::PENDING, {}};
const Outgoing REFUSED = {Outgoing::REFUSED, {}};

std::string Soap(const std::string& body)
{
    return "HTTP/1.1 200 OK\r\n\r\n<?xml version=\"1.0\"?>"
           "<s:Envelope xmlns:s=\"http://www.w3.org/2003/05/soap-envelope\""
           " xmlns:tds=\"http://www.onvif.org/ver10/device/wsdl\" xmlns:mdw=\"http://www.onvif.org/ver10/media/wsdl\""
           " xmlns:ew=\"http://www.onvif.org/ver10/events/wsdl\" xmlns:ad=\"http://www.w3.org/2005/08/addressing\">"
           "<s:Body>" +
           body + "</s:Body></s:Envelope>";
}

/// A camera with a pull point and nothing else.
std::string CameraAnswer(const std::string& request)
{
    if (request.find("<tds:GetServices>") != std::string::npos)
    {
        return Soap("<tds:GetServicesResponse><tds:Service><tds:Namespace>http://www.onvif.org/ver10/events/wsdl"
                    "</tds:Namespace><tds:XAddr>http://10.0.0.5/events</tds:XAddr></tds:Service>"
                    "</tds:GetServicesResponse>");
    }
    if (request.find("<mdw:GetProfiles/>") != std::string::npos)
    {
        return Soap("<mdw:GetProfilesResponse/>");
    }
    if (request.find("<ew:CreatePullPointSubscription>") != std::string::npos)
    {
        return Soap("<ew:CreatePullPointSubscriptionResponse><ew:SubscriptionReference>"
                    "<ad:Address>http://10.0.0.5/pull</ad:Address></ew:SubscriptionReference>"
                    "</ew:CreatePullPointSubscriptionResponse>");
    }
    return "";
}

class PullExchange : public testing::Test
{
protected:
    PullExchange()
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        m_sockets.exchange = &CameraAnswer;
    }
    ~PullExchange() override { CHttpClientManager::Instance().ClientLogout(m_token); }

    bool Connect(std::deque<Outgoing> connects)
    {
        m_sockets.ScriptConnects(std::move(connects));
        return ConnectForPull(
            {"text", "10.0.0.5", 8080}, 7, [] { return true; }, m_id);
    }
    unsigned int Login()
    {
        unsigned int error = 0;
        m_token = CHttpClientManager::Instance().ClientLogin(0xFFFFFFFF, "10.0.0.5", 8080, "admin", "secret", &error);
        EXPECT_EQ(0u, error);
        return m_token;
    }
    std::vector<int> Polls(int connections)
    {
        std::vector<int> polls;
        for (int handle = 1; handle <= connections; ++handle)
        {
            polls.push_back(m_sockets.Polls(handle));
        }
        return polls;
    }

    class SilentObserver : public CONVIFAlarmStateObserver
    {
    public:
        void OnMotionState(unsigned int /*token*/, bool /*state*/) override {}
        void OnAlarmInState(unsigned int /*token*/, unsigned int /*index*/, bool /*state*/) override {}
    };

    FakeSocketService m_sockets;
    SilentObserver m_host;
    unsigned int m_token = 0;
    int m_id = 0;
};

TEST_F(PullExchange, ConnectsAtOnce)
{
    EXPECT_TRUE(Connect({CONNECTED}));
    EXPECT_EQ(1, m_id);
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("connect 10.0.0.5 8080"));
}

TEST_F(PullExchange, GivesUpAfterThreeAttempts)
{
    EXPECT_FALSE(Connect({PENDING, PENDING, PENDING, CONNECTED}));
    EXPECT_THAT(Polls(3), ElementsAre(7, 7, 7));
    EXPECT_EQ(7u * 50, m_sockets.LifetimeMs(1));
    EXPECT_EQ(3, m_id); // the last one stays known
    EXPECT_THAT(m_sockets.TakeCalls(),
                ElementsAre("connect 10.0.0.5 8080", "give up 1", "destroy 1", "connect 10.0.0.5 8080", "give up 2",
                            "destroy 2", "connect 10.0.0.5 8080", "give up 3", "destroy 3"));
}

TEST_F(PullExchange, ConnectsAtTheThirdAttempt)
{
    EXPECT_TRUE(Connect({REFUSED, PENDING, CONNECTED}));
    EXPECT_THAT(Polls(3), ElementsAre(1, 7, 1));
    EXPECT_EQ(3, m_id);
}

TEST_F(PullExchange, TriesThreeTimesWithoutASocketServiceToo)
{
    EXPECT_FALSE(Connect({}));
    EXPECT_EQ(3u, m_sockets.TakeCalls().size());
}

TEST_F(PullExchange, EndsBetweenAttemptsWhenItIsStopped)
{
    m_sockets.ScriptConnects({REFUSED, CONNECTED});
    int asked = 0;
    EXPECT_FALSE(ConnectForPull(
        {"text", "10.0.0.5", 8080}, 7, [&asked] { return ++asked == 1; }, m_id));
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("connect 10.0.0.5 8080", "give up 1", "destroy 1"));
}

TEST_F(PullExchange, SendsUntilAllIsGoneOrTheConnectionBreaks)
{
    const PULL_REQUEST request = {"0123456789", "10.0.0.5", 8080};
    const int whole = m_sockets.Connect({});
    m_sockets.ScriptSends(whole, {3, 0, -1, 2});
    EXPECT_TRUE(SendPull(whole, request));
    EXPECT_EQ("0123456789", m_sockets.Sent(whole));
    const int broken = m_sockets.Connect({});
    m_sockets.ScriptSends(broken, {3, 0}, true);
    EXPECT_FALSE(SendPull(broken, request));
    EXPECT_EQ("012", m_sockets.Sent(broken));
}

TEST_F(PullExchange, AsksNobodyForALoginThatIsGone)
{
    PULL_REQUEST request;
    EXPECT_FALSE(MakePullRequest(4711, "<Get><pullMessages/></Get>", request));
}

// A login without a path for its events is left as it was: a logout ends it.
TEST_F(PullExchange, AsksNobodyWithoutAPath)
{
    m_sockets.exchange = [](const std::string& request)
    {
        return request.find("<mdw:GetProfiles/>") != std::string::npos ? Soap("<mdw:GetProfilesResponse/>") : "";
    };
    const unsigned int token = Login();
    PULL_REQUEST request;
    EXPECT_FALSE(MakePullRequest(token, "<Get><pullMessages><token/></pullMessages></Get>", request));
    CHttpClientManager::Instance().ClientLogout(token);
    EXPECT_EQ(nullptr, CHttpClientManager::Instance().GetClient(token));
}

// The observer is bound before the request goes out, so that no byte of the answer is missed.
TEST_F(PullExchange, FirstEngineListensBeforeItSends)
{
    m_sockets.ScriptConnects({CONNECTED});
    COnvifEventCtrol control;
    control.AddObserver(Login(), &m_host, "10.0.0.5", false, true);
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("connect 10.0.0.5 8080", "register 1 1 1", "start 1", "send 1"));
    EXPECT_THAT(m_sockets.Sent(1), testing::StartsWith("POST /pull HTTP/1.1\r\n"));
    EXPECT_THAT(m_sockets.Sent(1), HasSubstr("<ew:MessageLimit>1024</ew:MessageLimit>"));
    control.DelObserver(m_token);
    EXPECT_THAT(m_sockets.TakeCalls(), ElementsAre("stop node 1", "unregister 1", "destroy 1"));
}

TEST_F(PullExchange, FirstEngineWaitsASecondForEachOfThreeConnections)
{
    m_sockets.ScriptConnects({PENDING, PENDING, PENDING});
    COnvifEventCtrol control;
    control.AddObserver(Login(), &m_host, "10.0.0.5", false, true);
    EXPECT_THAT(Polls(3), ElementsAre(20, 20, 20));
    EXPECT_EQ(1000u, m_sockets.LifetimeMs(1));
    control.DelObserver(m_token);
}

TEST_F(PullExchange, SecondEngineWaitsThreeQuartersOfASecond)
{
    m_sockets.ScriptConnects({PENDING, PENDING, PENDING});
    CPullSubscription subscription(Login(), &m_host);
    subscription.Start();
    EXPECT_TRUE(m_sockets.AwaitCall("destroy 3"));
    subscription.Stop();
    EXPECT_THAT(Polls(3), ElementsAre(15, 15, 15));
    EXPECT_EQ(750u, m_sockets.LifetimeMs(1));
}

TEST_F(PullExchange, SecondEngineWaitsForAnAnswerAsLongAsTheTerm)
{
    m_sockets.ScriptConnects({CONNECTED});
    CPullSubscription subscription(Login(), &m_host);
    subscription.Start();
    EXPECT_TRUE(m_sockets.AwaitDestroyed(1));
    subscription.Stop();
    EXPECT_EQ(60000u, m_sockets.LifetimeMs(1));
    EXPECT_EQ(240, m_sockets.Reads(1)); // every 250 ms
    EXPECT_THAT(m_sockets.Sent(1), HasSubstr("<ew:MessageLimit>2</ew:MessageLimit>"));
}

} // namespace
