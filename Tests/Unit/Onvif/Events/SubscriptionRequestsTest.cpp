#include "SubscriptionRequests.h"

#include "EventWorld.h"

#include <cstring>

using testing::ElementsAre;

namespace
{

class SubscriptionRequests : public EventWorld
{
protected:
    OnvifDeviceSimulator m_camera;
    char m_address[ONVIF_ADDRESS_BYTES] = "untouched";
};

TEST_F(SubscriptionRequests, PullPointGivesItsAddress)
{
    const unsigned int token = Login(m_camera);
    EXPECT_TRUE(PullPoint(token, 60, m_address));
    EXPECT_EQ("http://127.0.0.1:" + std::to_string(m_camera.Port()) + "/onvif/pull_1", m_address);
    EXPECT_EQ("PT60S", m_camera.Value("pull.term"));
}

TEST_F(SubscriptionRequests, PullPointWithoutAnAddressFails)
{
    const unsigned int token = Login(m_camera);
    m_camera.SetAnswer("CreatePullPointSubscription", {"<ew:CreatePullPointSubscriptionResponse/>", "", "", ""});
    EXPECT_FALSE(PullPoint(token, 60, m_address));
    EXPECT_STREQ("untouched", m_address);
}

TEST_F(SubscriptionRequests, SubscribeTellsTheConsumer)
{
    const unsigned int token = Login(m_camera);
    EXPECT_TRUE(Subscribe(token, 60, "http://10.0.0.1:6699/subscription_5", m_address));
    EXPECT_EQ("http://10.0.0.1:6699/subscription_5", m_camera.Value("subscribe.consumer"));
    EXPECT_EQ("http://127.0.0.1:" + std::to_string(m_camera.Port()) + "/onvif/subscription_1", m_address);
}

TEST_F(SubscriptionRequests, FailureLeavesTheAddressAlone)
{
    const unsigned int token = Login(m_camera);
    m_camera.Refuse("Subscribe", "ter:NotAuthorized", "no");
    EXPECT_FALSE(Subscribe(token, 60, "http://10.0.0.1:6699/", m_address));
    EXPECT_STREQ("untouched", m_address);
    EXPECT_FALSE(Subscribe(token + 1000, 60, "http://10.0.0.1:6699/", m_address)); // no such login
    EXPECT_STREQ("untouched", m_address);
}

TEST_F(SubscriptionRequests, RenewGoesToTheAddress)
{
    const unsigned int token = Login(m_camera);
    EXPECT_TRUE(Renew(token, "http://any:1/the/path", 60));
    EXPECT_EQ("the/path", m_camera.LastRequest().path);
    EXPECT_EQ("PT60S", m_camera.Value("renew.term"));
}

TEST_F(SubscriptionRequests, UnsubscribeUsesTheSubscribeKey)
{
    const unsigned int token = Login(m_camera);
    m_camera.Forget();
    EXPECT_TRUE(Unsubscribe(token, "http://any:1/the/path"));
    EXPECT_THAT(EventOperations(m_camera), ElementsAre("Subscribe"));
}

TEST_F(SubscriptionRequests, PullDocument)
{
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><Get version=\"1.0\" systemType=\"ipc\"><pullMessages>"
              "<token>http://1.2.3.4/p</token><timeout>PT60S</timeout><messageLimit>1024</messageLimit>"
              "</pullMessages></Get>",
              PullMessagesDocument("http://1.2.3.4/p", 60, 1024));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?><Get version=\"1.0\" systemType=\"ipc\"><pullMessages>"
              "<token>a&amp;b&lt;c&gt;</token><timeout>PT5S</timeout><messageLimit>2</messageLimit>"
              "</pullMessages></Get>",
              PullMessagesDocument("a&b<c>", 5, 2));
}

} // namespace
