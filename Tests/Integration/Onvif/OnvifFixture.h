// OnvifFixture.h: what the tests of the ONVIF client share.
#pragma once

#include "NetSocket.h"
#include "OnvifDeviceSimulator.h"
#include "OnvifSDK.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

inline constexpr unsigned int NEW_LOGIN = 0xFFFFFFFF;
inline constexpr unsigned int NO_LOGIN = 0xFFFFFFFF;

/// A camera, and logins to it through the exported functions.
class OnvifFixture : public testing::Test
{
protected:
    OnvifFixture() { ONVIF_CLIENT_Initial(); }
    ~OnvifFixture() override
    {
        m_simulator.reset();
        ONVIF_CLIENT_Quit();
    }

    OnvifDeviceSimulator& Start(const OnvifSimulatorOptions& options = {})
    {
        m_simulator = std::make_unique<OnvifDeviceSimulator>(options);
        m_simulator->SetAnswer("GetProfiles", PROFILES);
        return *m_simulator;
    }
    unsigned int Login(const char* user = "admin", const char* password = "secret")
    {
        return ONVIF_CLIENT_Login(NEW_LOGIN, "127.0.0.1", m_simulator->Port(), user, password, &m_error);
    }

    /// @return the answer, behind "false: " when the call failed; "null" for none
    static std::string Get(unsigned int token, const std::string& keys)
    {
        char* response = nullptr;
        int length = 0;
        const bool good = ONVIF_CLIENT_GetCfg(
            token, ("<Get version=\"1.0\" systemType=\"ipc\">" + keys + "</Get>").c_str(), response, &length);
        const std::string answer = response != nullptr ? response : "null";
        ONVIF_CLIENT_DelResponseBuff(response);
        return (good ? "" : "false: ") + Inner(answer);
    }
    static std::string Set(unsigned int token, const std::string& keys)
    {
        char* response = nullptr;
        const bool good = ONVIF_CLIENT_SetCfg(
            token, ("<Set version=\"1.0\" systemType=\"ipc\">" + keys + "</Set>").c_str(), response);
        const std::string answer = response != nullptr ? response : "null";
        ONVIF_CLIENT_DelResponseBuff(response);
        return (good ? "" : "false: ") + Inner(answer);
    }

    /// What is in an answer below its root, without the blanks between elements.
    static std::string Inner(const std::string& answer)
    {
        std::string inner;
        bool blank = false;
        for (const char c : answer)
        {
            blank = c == '\n' || (blank && c == ' ');
            inner += blank ? "" : std::string(1, c);
        }
        const std::string head = R"(<?xml version="1.0" encoding="UTF-8"?>)";
        const std::size_t begin = inner.find('>', head.size()) + 1;
        return inner.compare(0, head.size(), head) == 0 ? inner.substr(begin, inner.rfind("</") - begin) : inner;
    }

    /// What the camera was asked: the operation, the category if it has one, and the path.
    std::vector<std::string> Calls() const
    {
        std::vector<std::string> calls;
        for (const OnvifDeviceSimulator::Request& request : m_simulator->Requests())
        {
            const std::string category = OnvifSoapRequest(request.soap).Text("Category");
            calls.push_back(request.operation + (category.empty() ? "" : " " + category) + " at " + request.path);
        }
        return calls;
    }

    /// One profile with a video source and a PTZ configuration.
    static const OnvifAnswer PROFILES;

    std::unique_ptr<OnvifDeviceSimulator> m_simulator;
    unsigned int m_error = 12345;
};

inline const OnvifAnswer OnvifFixture::PROFILES = {
    "<mdw:GetProfilesResponse><mdw:Profiles token=\"P1\"><tt:Name>Main</tt:Name>"
    "<tt:VideoSourceConfiguration token=\"VSC1\"><tt:SourceToken>VS1</tt:SourceToken></tt:VideoSourceConfiguration>"
    "<tt:VideoEncoderConfiguration token=\"VEC1\"><tt:Name>Encoder</tt:Name><tt:Encoding>H264</tt:Encoding>"
    "</tt:VideoEncoderConfiguration><tt:PTZConfiguration token=\"PTZ1\"/></mdw:Profiles></mdw:GetProfilesResponse>",
    "", "", ""};
