// Many threads of a host at once.
#include "OnvifFixture.h"

#include <atomic>
#include <thread>

namespace
{

constexpr int THREADS = 6;
constexpr int ROUNDS = 8;

class OnvifThreads : public OnvifFixture
{
protected:
    template <typename WORK>
    static void RunAtOnce(const WORK& work)
    {
        std::vector<std::thread> threads;
        for (int i = 0; i < THREADS; ++i)
        {
            threads.emplace_back(
                [&work, i]
                {
                    for (int round = 0; round < ROUNDS; ++round)
                    {
                        work(i);
                    }
                });
        }
        for (std::thread& thread : threads)
        {
            thread.join();
        }
    }
};

TEST_F(OnvifThreads, ShareOneLogin)
{
    Start();
    const unsigned int token = Login();
    ASSERT_NE(NO_LOGIN, token);
    RunAtOnce(
        [token](int thread)
        {
            const char* const KEYS[] = {"<devInfo/>",    "<dns/><streamCount/>", "<ipv4/>",
                                        "<serviceUrl/>", "<alarmin/>",           "<networkProtocols/>"};
            EXPECT_EQ("<", Get(token, KEYS[thread % 6]).substr(0, 1)); // "false: " or "null" otherwise
            EXPECT_EQ("<", Set(token, "<unsubscribe/>").substr(0, 1));
        });
}

// A refresh of the profiles beside commands that use them.
TEST_F(OnvifThreads, ShareTheProfilesOfALogin)
{
    Start();
    const unsigned int token = Login();
    RunAtOnce(
        [token](int thread)
        {
            if (thread == 0)
            {
                EXPECT_EQ("<profiles>", Get(token, "<profiles/>").substr(0, 10));
            }
            else
            {
                Get(token, "<presets/>");
                Get(token, "<motion/>");
                Set(token, "<ptzStop/>");
            }
        });
    EXPECT_EQ("<streamCount>1</streamCount>", Get(token, "<streamCount/>"));
}

TEST_F(OnvifThreads, LogInAndOut)
{
    Start();
    std::atomic<unsigned int> lastToken{0};
    RunAtOnce(
        [this, &lastToken](int)
        {
            unsigned int error = 0;
            const unsigned int token =
                ONVIF_CLIENT_Login(NEW_LOGIN, "127.0.0.1", m_simulator->Port(), "admin", "secret", &error);
            EXPECT_NE(NO_LOGIN, token);
            const unsigned int other = lastToken.exchange(token);
            Get(other, "<devInfo/>"); // of a thread that may be logging it out
            EXPECT_TRUE(ONVIF_CLIENT_Logout(token));
            EXPECT_TRUE(ONVIF_CLIENT_Logout(other));
        });
    EXPECT_EQ("null", Get(lastToken, "<devInfo/>"));
}

} // namespace
