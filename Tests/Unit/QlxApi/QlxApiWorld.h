// QlxApiWorld.h: commands as requests of a client, in front of a fake device. Local to one test.
#pragma once

#include "QlxApiProtocolProc.h"

#include "AlarmServer.h"
#include "FakeDevice.h"
#include "QLXXMLParse.h"
#include "ShareSDK.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

inline const char AUTHORIZED[] = "Authorization: Basic YWRtaW46YWRtaW4=\r\n";   // admin:admin
inline const char UNAUTHORIZED[] = "Authorization: Basic YWRtaW46d3Jvbmc=\r\n"; // admin:wrong

/// What QlxApiWorld::Code tells beside error codes.
const int DONE = 0;
const int CHALLENGED = 401;
const int SILENT = -1; ///< no byte of an answer

class QlxApiWorld : public testing::Test
{
protected:
    void SetUp() override
    {
        SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
        CQLXApiProc::Instance().Init(4, &m_device);
    }
    void TearDown() override { CAlarmServer::Instance().Initial(0, 0, 0); }

    /// @param url  a command's word and what follows. @return the whole answer
    std::string Ask(const std::string& url, const std::string& body = "",
                    const std::string& authorization = AUTHORIZED) const
    {
        const CHttpProtocolAnalyse request("POST /" + url + " HTTP/1.1\r\n" + authorization + "\r\n" + body);
        const std::string word = request.GetUrl().substr(0, request.GetUrl().find('/'));
        CHttpProtocolAnalyse response;
        for (const QLX_API_COMMAND& row : QlxApiCommands())
        {
            if (word == row.word)
            {
                CQLXApiProc::Instance().ProcCmd("10.0.0.1", static_cast<QLX_API_CMD>(row.value), request, response);
            }
        }
        int length = 0;
        const char* const bytes = response.GetBuf(length);
        return std::string(bytes, static_cast<size_t>(length));
    }

    static std::string BodyOf(const std::string& answer)
    {
        const size_t end = answer.find("\r\n\r\n");
        return end == std::string::npos ? std::string() : answer.substr(end + 4);
    }

    /// The error code of the answer, or DONE, CHALLENGED, SILENT.
    int Code(const std::string& url, const std::string& body = "", const std::string& authorization = AUTHORIZED) const
    {
        const std::string answer = Ask(url, body, authorization);
        if (answer.empty())
        {
            return SILENT;
        }
        const std::string status = answer.substr(9, 3);
        if (status == "401")
        {
            EXPECT_EQ("", BodyOf(answer));
            return CHALLENGED;
        }
        int code = DONE;
        const CQLXXMLParse document(BodyOf(answer));
        document.GetAttribute_i32(document.GetRootItem(), "errorCode", code);
        EXPECT_EQ(code == DONE ? "200" : "400", status) << answer;
        return code;
    }

    /// The text of an element of the answer's document; "(none)" when it is not there.
    std::string Value(const std::string& answer, const std::string& path) const
    {
        const CQLXXMLParse document(BodyOf(answer));
        std::string text;
        return document.GetValueStr(path, text) ? text : "(none)";
    }
    std::string Attribute(const std::string& answer, const std::string& path, const std::string& name) const
    {
        const CQLXXMLParse document(BodyOf(answer));
        std::string text;
        return document.GetAttributeStr(path, name, text) ? text : "(none)";
    }
    static unsigned int Count(const std::string& answer, const std::string& path)
    {
        const CQLXXMLParse document(BodyOf(answer));
        return document.GetChildrenLength(path, "item");
    }

    /// The last line of the device's call log.
    std::string LastCall() const
    {
        const std::vector<std::string> log = m_device.CallLog();
        return log.empty() ? std::string() : log.back();
    }

    void OpenPtz()
    {
        m_device.integratedPtz = true;
        m_device.rs485Ptz = true;
    }

    CFakeDevice m_device;
};
