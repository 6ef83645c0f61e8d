// EventWorld.h: what tests of the event engines share: cameras, their notifications, and a host that notes its calls.
#pragma once

#include "AlarmStateObserver.h"
#include "FakeClock.h"
#include "HttpClientManager.h"
#include "NetSocket.h"
#include "OnvifDeviceSimulator.h"
#include "OnvifNotification.h"
#include "ShareSDK.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// Notes its calls as "7 motion on", "7 alarm-in 1 off" and so on. Any thread.
class NotingObserver : public CONVIFAlarmStateObserver
{
public:
    void OnMotionState(unsigned int token, bool state) override
    {
        Note(std::to_string(token) + (state ? " motion on" : " motion off"));
    }
    void OnAlarmInState(unsigned int token, unsigned int index, bool state) override
    {
        Note(std::to_string(token) + " alarm-in " + std::to_string(index) + (state ? " on" : " off"));
    }

    std::vector<std::string> Take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_calls, {});
    }
    std::size_t Count()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_calls.size();
    }

    /// Run on every call, by the thread that calls.
    std::function<void()> action;

private:
    void Note(const std::string& call)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_calls.push_back(call);
        }
        if (const std::function<void()> step = action) // a copy: the step may replace itself
        {
            step();
        }
    }

    std::mutex m_mutex;
    std::vector<std::string> m_calls;
};

/// Repeats a step until something is so, five seconds at most. @return whether it came about
inline bool RepeatUntil(
    const std::function<bool()>& isSo, const std::function<void()>& step = [] {})
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!isSo() && std::chrono::steady_clock::now() < deadline)
    {
        step();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return isSo();
}

/// Messages of a notification; a sum of them is sent in one.
class Messages
{
public:
    Messages() = default;
    Messages(const std::string& topic, const std::string& value, const std::string& reference = "")
        : list({{topic, value, reference}})
    {
    }
    Messages operator+(const Messages& other) const
    {
        Messages sum = *this;
        sum.list.insert(sum.list.end(), other.list.begin(), other.list.end());
        return sum;
    }

    std::vector<OnvifNotification::Message> list;
};

inline Messages Message(const std::string& topic, const std::string& value, const std::string& reference = "")
{
    return {topic, value, reference};
}

inline OnvifNotification Notification(const std::string& to, const Messages& messages)
{
    OnvifNotification notification;
    notification.to = to;
    notification.messages = messages.list;
    return notification;
}

inline constexpr const char* MOTION_TOPIC = ONVIF_MOTION_TOPIC;
inline constexpr const char* INPUT_TOPIC = ONVIF_INPUT_TOPIC;

/// A clock that stands still, and logins to simulated cameras.
class EventWorld : public testing::Test
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        ASSERT_TRUE(NET_SOCKET_Initial(nullptr));
    }
    void TearDown() override
    {
        for (const unsigned int token : m_tokens)
        {
            CHttpClientManager::Instance().ClientLogout(token);
        }
        NET_SOCKET_Quit();
    }

    /// @return the token
    unsigned int Login(const OnvifDeviceSimulator& camera)
    {
        unsigned int error = 0;
        const unsigned int token = CHttpClientManager::Instance().ClientLogin(0xFFFFFFFF, "127.0.0.1", camera.Port(),
                                                                              "admin", "secret", &error);
        EXPECT_EQ(0u, error);
        m_tokens.push_back(token);
        return token;
    }
    static std::string Call(unsigned int token, const char* text) { return std::to_string(token) + " " + text; }

    FakeClock m_clock;
    NotingObserver m_host;

private:
    std::vector<unsigned int> m_tokens;
};

inline OnvifManners Delivery(OnvifManners::DELIVERY delivery)
{
    OnvifManners manners;
    manners.delivery = delivery;
    return manners;
}

/// The operations that a camera was asked for since Forget, without those of a login.
inline std::vector<std::string> EventOperations(const OnvifDeviceSimulator& camera)
{
    static const std::vector<std::string> KNOWN = {"Subscribe", "Renew", "Unsubscribe", "CreatePullPointSubscription",
                                                   "PullMessages"};
    std::vector<std::string> operations;
    for (const std::string& operation : camera.Operations())
    {
        if (std::find(KNOWN.begin(), KNOWN.end(), operation) != KNOWN.end())
        {
            operations.push_back(operation);
        }
    }
    return operations;
}
