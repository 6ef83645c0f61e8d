// HttpWorld.h: the library's HTTP port as a host starts it, and clients of it.
#pragma once

#include "FakeDevice.h"
#include "NetServerSDK.h"
#include "Peer.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

inline const char NOT_FOUND[] = "HTTP/1.1 404 Not Found\r\n"
                                "Content-type: text/html\r\n"
                                "Content-Length: 0\r\n"
                                "Connection: close\r\n"
                                "AuthInfo: \r\n"
                                "\r\n";

/// Credentials admin and admin.
inline const char AUTHORIZED[] = "Authorization: Basic YWRtaW46YWRtaW4=\r\n";

class HttpWorld : public testing::Test
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        DescribeDevice();
        NET_SERVER_SetPolicy(NET_POLICY_NO_ANNOUNCE);
        ASSERT_EQ(1, NET_SERVER_Initial(2, 0, 0, &m_device, nullptr, "", "", 1, NETNS::DEV_TYPE_DEFAULT));
        StartOnFreePort();
    }
    void TearDown() override
    {
        NET_SERVER_Stop();
        NET_SERVER_Quit();
        NET_SERVER_SetPolicy(0);
    }

    /// A free port may be taken by another test in the moment between; then the next one is tried.
    void StartOnFreePort()
    {
        for (int attempt = 0; attempt < 20; ++attempt)
        {
            m_port = FreePort();
            NET_SERVER_Start(m_port, m_root.Path().c_str(), m_root.Path("server.xml").c_str());
            if (Ask("GET /probe HTTP/1.1\r\n\r\n") == NOT_FOUND)
            {
                return;
            }
        }
        FAIL() << "no port could be opened";
    }
    void DescribeDevice()
    {
        std::strcpy(m_device.deviceInfo.model, "M1");
        std::strcpy(m_device.deviceInfo.brand, "Brand");
        m_device.deviceInfo.softwareBuildDate = {2016, 1, 2};
    }

    std::string Ask(const std::string& request) const
    {
        Peer peer(m_port);
        peer.Send(request);
        return peer.ReadAll();
    }
    std::string Get(const std::string& url) const { return Ask("GET " + url + " HTTP/1.1\r\n" + AUTHORIZED + "\r\n"); }

    CTempDirectory m_root;
    CFakeDevice m_device;
    unsigned short m_port = 0;
};
