// NetServerDataProcTest.cpp: what becomes of one request.
#include "NetServerDataProc.h"

#include "AlarmServer.h"
#include "FakeDevice.h"
#include "HttpProtocolAnalyse.h"
#include "QlxApiProtocolProc.h"
#include "ShareSDK.h"
#include "TempDirectory.h"

#include <climits>
#include <memory>
#include <string>
#include <utility>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

const char NOT_FOUND[] = "HTTP/1.1 404 Not Found\r\n"
                         "Content-type: text/html\r\n"
                         "Content-Length: 0\r\n"
                         "Connection: close\r\n"
                         "AuthInfo: \r\n"
                         "\r\n";

std::string Ok(const std::string& type, const std::string& body)
{
    return "HTTP/1.1 200 OK\r\nContent-type: " + type + "\r\nContent-Length: " + std::to_string(body.size()) +
           "\r\nConnection: close\r\nAuthInfo: \r\n\r\n" + body;
}

class NetServerDataProc : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(SHARESDK_LogToFile(m_logDirectory.Path("log").c_str(), 1000000, 1));
        Initial("", "", 1);
        m_proc.Start(m_root.Path().c_str());
    }
    void TearDown() override { SHARESDK_LogToConsole(); }

    void Initial(const char* oldVersion, const char* newVersion, unsigned int flags)
    {
        EXPECT_EQ(1, m_proc.Initial(2, 0, 0, &m_device, oldVersion, newVersion, flags));
    }
    std::string Ask(const std::string& message)
    {
        const CHttpProtocolAnalyse request(message);
        CHttpProtocolAnalyse response;
        m_result = m_proc.AnalysisRequest("10.0.0.1", request, response);
        int length = 0;
        const char* bytes = response.GetBuf(length);
        return {bytes, static_cast<std::size_t>(length)};
    }
    std::string Get(const std::string& url)
    {
        return Ask("GET " + url + " HTTP/1.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\n\r\n");
    }
    std::string Log() const { return m_logDirectory.Read("log"); }

    CTempDirectory m_logDirectory;
    CTempDirectory m_root;
    CFakeDevice m_device;
    CNetServerDataProc& m_proc = CNetServerDataProc::Instance();
    int m_result = -1;
};

TEST_F(NetServerDataProc, FileIsServedWithTheTypeOfItsExtension)
{
    m_root.Write("a.css", "b { }");
    EXPECT_EQ(Ok("text/css", "b { }"), Get("/a.css"));
    EXPECT_EQ(1, m_result);
    m_root.Write("a.png", std::string("\0\x89PNG\0", 6));
    EXPECT_EQ(Ok("image/png", std::string("\0\x89PNG\0", 6)), Get("/a.png"));
}

// No type knows scripts: the line stays and its value is empty.
TEST_F(NetServerDataProc, ScriptHasAnEmptyType)
{
    m_root.Write("a.js", "x");
    EXPECT_EQ(Ok("", "x"), Get("/a.js"));
}

TEST_F(NetServerDataProc, ChangedFileIsSeenAtOnce)
{
    m_root.Write("a.txt", "one");
    EXPECT_EQ(Ok("text/plain", "one"), Get("/a.txt"));
    m_root.Write("a.txt", "three");
    EXPECT_EQ(Ok("text/plain", "three"), Get("/a.txt"));
}

TEST_F(NetServerDataProc, FileOfTwoMegabytesIsServedWhole)
{
    const std::string content(2000000, 'x');
    m_root.Write("big.txt", content);
    EXPECT_TRUE(Ok("text/plain", content) == Get("/big.txt"));
}

TEST_F(NetServerDataProc, RootServesIndexHtmInFrontOfIndexHtml)
{
    m_root.Write("index.html", "long");
    EXPECT_EQ(Ok("text/html", "long"), Get("/"));
    m_root.Write("index.htm", "short");
    EXPECT_EQ(Ok("text/html", "short"), Get("/"));
    EXPECT_EQ(0, m_device.Calls("GetWebFile"));
}

TEST_F(NetServerDataProc, HostIsAskedOnceForAMissingIndexHtml)
{
    EXPECT_EQ(NOT_FOUND, Get("/"));
    EXPECT_EQ(0, m_result);
    EXPECT_EQ(1, m_device.Calls("GetWebFile"));
    EXPECT_EQ(1, m_device.Calls("FreeBuffer"));
    m_device.webFiles[m_root.Path("index.html")] = "unpacked";
    EXPECT_EQ(Ok("text/html", "unpacked"), Get("/"));
    EXPECT_EQ(2, m_device.Calls("GetWebFile"));
    EXPECT_EQ(0, m_device.BuffersOut());
}

TEST_F(NetServerDataProc, HostMayUnpackAMissingFile)
{
    m_device.webFiles[m_root.Path("late.css")] = "late";
    EXPECT_EQ(Ok("text/css", "late"), Get("/late.css"));
    EXPECT_EQ(Ok("text/css", "late"), Get("/late.css"));
    EXPECT_EQ(1, m_device.Calls("GetWebFile"));
}

TEST_F(NetServerDataProc, MissingFileIsNotFound)
{
    EXPECT_EQ(NOT_FOUND, Get("/missing.png"));
    EXPECT_EQ(1, m_device.Calls("GetWebFile"));
}

TEST_F(NetServerDataProc, EmptyFileIsNotFound)
{
    m_root.Write("empty.txt", "");
    EXPECT_EQ(NOT_FOUND, Get("/empty.txt"));
}

// Opening them could wait for ever, or have effects of its own.
TEST_F(NetServerDataProc, PipesDirectoriesSocketsLinksAndDevicesAreNotFound)
{
    ASSERT_EQ(0, mkfifo(m_root.Path("pipe.txt").c_str(), 0600));
    ASSERT_EQ(0, mkdir(m_root.Path("dir.d").c_str(), 0700));
    const std::string target = m_root.Write("target.txt", "x");
    ASSERT_EQ(0, symlink(target.c_str(), m_root.Path("link.txt").c_str()));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string socketPath = m_root.Path("socket.txt");
    ASSERT_LT(socketPath.size(), sizeof(address.sun_path));
    socketPath.copy(address.sun_path, socketPath.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(0, bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)));
    for (const char* url : {"/pipe.txt", "/dir.d", "/link.txt", "/socket.txt", "/../../../../../../dev/zero"})
    {
        EXPECT_EQ(NOT_FOUND, Get(url)) << url;
    }
    close(fd);
}

// The path is a plain concatenation.
TEST_F(NetServerDataProc, PathMayLeaveTheRoot)
{
    ASSERT_EQ(0, mkdir(m_root.Path("web").c_str(), 0700));
    m_proc.Start(m_root.Path("web").c_str());
    m_root.Write("secret.txt", "x");
    EXPECT_EQ(Ok("text/plain", "x"), Get("/../secret.txt"));
}

TEST_F(NetServerDataProc, DecodedUrlNamesTheFile)
{
    m_root.Write("a b.txt", "x");
    EXPECT_EQ(Ok("text/plain", "x"), Get("/a%20b.txt?version=1"));
}

TEST_F(NetServerDataProc, ZeroByteInAPathIsNotFound)
{
    m_root.Write("a.txt", "x");
    EXPECT_EQ(NOT_FOUND, Get("/a.txt%00.png"));
    EXPECT_EQ(0, m_device.Calls("GetWebFile"));
}

// The host would only be asked for a file that is missing; this one is there, but no response can hold it.
TEST_F(NetServerDataProc, HugeFileIsNotFoundAndNotAskedOfTheHost)
{
    const std::string file = m_root.Write("a.txt", "x");
    for (const off_t size : {off_t{INT_MAX} - 4095, off_t{INT_MAX} + 1, off_t{5368709120}})
    {
        ASSERT_EQ(0, truncate(file.c_str(), size));
        EXPECT_EQ(NOT_FOUND, Get("/a.txt")) << size;
    }
    EXPECT_EQ(0, m_device.Calls("GetWebFile"));
}

TEST_F(NetServerDataProc, RootMayEndInASlash)
{
    m_root.Write("a.txt", "x");
    m_proc.Start((m_root.Path() + "/").c_str());
    EXPECT_EQ(Ok("text/plain", "x"), Get("/a.txt"));
}

// A root that is no more than the slash behind it would be the whole file system.
TEST_F(NetServerDataProc, WithoutARootNoFileIsServed)
{
    const std::string file = m_root.Write("a.txt", "x");
    m_proc.Start("");
    EXPECT_EQ(NOT_FOUND, Get(file));
    EXPECT_EQ("", Log());
    m_proc.Start(nullptr);
    EXPECT_EQ(NOT_FOUND, Get(file));
    EXPECT_THAT(Log(), HasSubstr(" ASSERT\n"));
    EXPECT_EQ(0, m_device.Calls("GetWebFile"));
}

TEST_F(NetServerDataProc, NullDeviceAndVersionsAreLogged)
{
    m_root.Write("a.txt", "x");
    EXPECT_EQ(1, m_proc.Initial(1, 0, 0, nullptr, nullptr, nullptr, 0));
    const std::string log = Log();
    std::size_t asserts = 0;
    for (std::size_t at = log.find(" ASSERT\n"); at != std::string::npos; at = log.find(" ASSERT\n", at + 1))
    {
        ++asserts;
    }
    EXPECT_EQ(3u, asserts);
    EXPECT_EQ(Ok("text/plain", "x"), Get("/a.txt"));
    EXPECT_EQ(NOT_FOUND, Get("/missing.txt"));
    EXPECT_EQ(NOT_FOUND, Get("/queryQRInfo"));
}

TEST_F(NetServerDataProc, CommandIsTheFirstWordAndTheChannelFollows)
{
    EXPECT_THAT(Get("/GetDeviceInfo"), StartsWith("HTTP/1.1 200 OK\r\nContent-type: text/html\r\n"));
    EXPECT_EQ(1, m_result);
    EXPECT_THAT(Get("/GetDeviceInfo/2"), StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_THAT(Get("/GetDeviceInfo/2/x"), StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(3, m_device.Calls("GetDevInfo"));
}

TEST_F(NetServerDataProc, CommandWordsAreMatchedExactly)
{
    for (const char* url :
         {"/getdeviceinfo", "/GetDeviceInf", "/GetDeviceInfoX", "/x/GetDeviceInfo", "/%20GetDeviceInfo"})
    {
        EXPECT_EQ(NOT_FOUND, Get(url)) << url;
    }
    EXPECT_EQ(0, m_device.Calls("GetDevInfo"));
}

TEST_F(NetServerDataProc, LongWordIsInNoTable)
{
    EXPECT_EQ(NOT_FOUND, Get("/" + std::string(63, 'x')));
    EXPECT_EQ(NOT_FOUND, Get("/" + std::string(64, 'x')));
    EXPECT_EQ(NOT_FOUND, Get("/GetDeviceInfo" + std::string(100000, 'x')));
}

TEST_F(NetServerDataProc, UrlWithADotIsAFileAndNoCommand)
{
    EXPECT_EQ(NOT_FOUND, Get("/GetDeviceInfo.xml"));
    EXPECT_EQ(0, m_device.Calls("GetDevInfo"));
    EXPECT_EQ(1, m_device.Calls("GetWebFile"));
}

TEST_F(NetServerDataProc, KnownWordWithoutAnOperationIsAnApiError)
{
    const std::string answer = Get("/GetProfileInfo");
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 400 Bad Request\r\n"));
    EXPECT_THAT(answer, HasSubstr("errorCode=\"1\""));
}

TEST_F(NetServerDataProc, OnvifIsNotFoundWithoutAHostCall)
{
    EXPECT_EQ(NOT_FOUND, Ask("POST /onvif/device_service HTTP/1.1\r\nContent-Length: 9\r\n\r\nORBIT-700"));
    EXPECT_EQ(NOT_FOUND, Get("/onvif"));
    EXPECT_EQ(NOT_FOUND, Get("/onvifqueryQRInfo"));
    EXPECT_EQ(0u, m_device.CallOrder().size());
    // Compared exactly: another spelling is the host's, marked as it is.
    Ask("POST /Onvif HTTP/1.1\r\nContent-Length: 9\r\n\r\nORBIT-700");
    EXPECT_EQ(1, m_device.Calls("ProcHttpData"));
}

TEST_F(NetServerDataProc, MarkedRequestIsHandedToTheHostWhole)
{
    m_device.httpAnswer = "by the host";
    const std::string message = "POST /unknown HTTP/1.1\r\nContent-Length: 12\r\n\r\n<ORBIT-700/>";
    // The URL has no extension that would say otherwise, and holds no dot: it counts as XML.
    EXPECT_EQ(Ok("text/xml", "by the host"), Ask(message));
    EXPECT_EQ(message, m_device.lastHttpMessage);
    EXPECT_EQ(0, m_device.BuffersOut());
}

/// Notes whether what it is to fill in is empty.
class CLookingDevice : public CFakeDevice
{
public:
    NETNS::DEV_RET ProcHttpData(const char* message, int len, char*& body, int& bodyLen, int& status) override
    {
        isEmpty = body == nullptr && bodyLen == 0 && status == 0;
        return CFakeDevice::ProcHttpData(message, len, body, bodyLen, status);
    }
    NETNS::DEV_RET GetWebFile(const char* path, char*& buffer, int& len) override
    {
        isEmpty = buffer == nullptr && len == 0;
        return CFakeDevice::GetWebFile(path, buffer, len);
    }

    bool isEmpty = false;
};

TEST_F(NetServerDataProc, HostGetsEmptyOutputsToFill)
{
    CLookingDevice device;
    m_proc.Initial(2, 0, 0, &device, "", "", 1);
    Get("/ORBIT-700");
    EXPECT_TRUE(std::exchange(device.isEmpty, false));
    Get("/missing.txt");
    EXPECT_TRUE(device.isEmpty);
}

TEST_F(NetServerDataProc, MarkerMayStandAnywhereInTheMessage)
{
    m_device.httpAnswer = "x";
    EXPECT_EQ(Ok("text/xml", "x"), Ask("GET /ORBIT-700 HTTP/1.1\r\n\r\n"));
    EXPECT_EQ(Ok("text/xml", "x"), Ask("GET /a HTTP/1.1\r\nX: ORBIT-700\r\n\r\n"));
    EXPECT_EQ(Ok("image/png", "x"), Ask("GET /queryQRInfo?id=5 HTTP/1.1\r\n\r\n"));
    EXPECT_EQ(NOT_FOUND, Ask("POST /unknown HTTP/1.1\r\nContent-Length: 4\r\n\r\nbody"));
    EXPECT_EQ(NOT_FOUND, Ask("GET /orbit-700 HTTP/1.1\r\n\r\n"));
    // A zero byte ends the text that is searched.
    EXPECT_EQ(NOT_FOUND, Ask("POST /a HTTP/1.1\r\nContent-Length: 10\r\n\r\n" + std::string("\0ORBIT-700", 10)));
}

TEST_F(NetServerDataProc, HostsStatusAndMissingBodyGoOut)
{
    m_device.httpStatus = 403;
    m_device.httpAnswerIsNull = true;
    EXPECT_THAT(Ask("GET /ORBIT-700 HTTP/1.1\r\n\r\n"),
                StartsWith("HTTP/1.1 403 Forbidden\r\nContent-type: text/html\r\n"));
    EXPECT_EQ(0, m_device.Calls("FreeBuffer"));
}

TEST_F(NetServerDataProc, WithTheApiSwitchedOffOnlyFilesAndMarkedRequestsAreServed)
{
    Initial("", "", 0xFFFFFFFE);
    m_root.Write("a.txt", "x");
    m_device.httpAnswer = "host";
    EXPECT_EQ(NOT_FOUND, Get("/GetDeviceInfo"));
    EXPECT_EQ(NOT_FOUND, Get("/onvif"));
    EXPECT_EQ(Ok("text/plain", "x"), Get("/a.txt"));
    EXPECT_EQ(Ok("text/xml", "host"), Get("/ORBIT-700"));
    // A marked command is the host's too, since it is no command any more.
    EXPECT_EQ(Ok("text/xml", "host"), Ask("GET /GetDeviceInfo HTTP/1.1\r\nX: ORBIT-700\r\n\r\n"));
}

TEST_F(NetServerDataProc, AlarmsAreCountedAlsoWithTheApiSwitchedOff)
{
    for (const unsigned int flags : {0u, 1u})
    {
        const unsigned int alarmOuts = 3 + flags;
        const unsigned int sensors = 5 + flags;
        EXPECT_EQ(1, m_proc.Initial(2, alarmOuts, sensors, &m_device, "", "", flags));
        EXPECT_EQ(alarmOuts, CAlarmServer::Instance().GetAlarmOutNum());
        EXPECT_EQ(sensors, CAlarmServer::Instance().GetSensorNum());
    }
}

TEST_F(NetServerDataProc, VersionTextIsStampedIntoFiles)
{
    Initial("v0.0", "v2.7", 1);
    m_root.Write("a.txt", "v0.0 a.js?v0.0v0.0 v0.1");
    EXPECT_EQ(Ok("text/plain", "v2.7 a.js?v2.7v2.7 v0.1"), Get("/a.txt"));
}

struct PatchCase
{
    const char* name;
    std::string text;
    const char* oldVersion;
    const char* newVersion;
    int result;
    std::string patched;
};

class NetServerDataProcPatch : public testing::TestWithParam<PatchCase>
{
};

TEST_P(NetServerDataProcPatch, OverwritesInPlace)
{
    std::string text = GetParam().text;
    // Exactly as many bytes as there are: a read behind them is an error of the sanitizer's.
    const std::unique_ptr<char[]> bytes(new char[text.size()]);
    text.copy(bytes.get(), text.size());
    SHARESDK_SetLogLevel(SHARESDK_LOG_NONE);
    EXPECT_EQ(GetParam().result,
              CNetServerDataProc::ModifyFileVertionInfo(bytes.get(), static_cast<unsigned int>(text.size()),
                                                        GetParam().oldVersion, GetParam().newVersion));
    SHARESDK_SetLogLevel(SHARESDK_LOG_ALL);
    EXPECT_EQ(GetParam().patched, std::string(bytes.get(), text.size()));
}

const PatchCase PATCH_CASES[] = {
    {"Equal", "v1 v1", "v1", "v1", 0, "v1 v1"},
    {"Absent", "nothing", "v1", "v2", -1, "nothing"},
    {"Nothing", "", "v1", "v2", -1, ""},
    {"All", "v1 v1", "v1", "v2", 0, "v2 v2"},
    {"AtTheEnd", "xv1", "v1", "v2", 0, "xv2"},
    {"CutAtTheEnd", "xv", "v1", "v2", -1, "xv"},
    {"EmptyOld", "abc", "", "v2", 0, "abc"},
    {"BothEmpty", "abc", "", "", 0, "abc"},
    {"NullOld", "abc", nullptr, "v2", 0, "abc"},
    {"NullNew", "abc", "abc", nullptr, 0, "abc"},
    {"BehindAZeroByte", std::string("v1\0v1", 5), "v1", "v2", 0, std::string("v2\0v1", 5)},
    // As many bytes as the old text has, whatever the new one's length: the file keeps its size.
    {"NewLonger", "v1 v1", "v1", "v123", 0, "v1 v1"},
    {"NewLongerDiffers", "v1 v1", "v1", "w123", 0, "w1 w1"},
    {"NewShorter", "v1.0 v1.0", "v1.0", "v2", 0, std::string("v2\0\0 v1.0", 9)},
    {"NewEmpty", "v1 v1", "v1", "", 0, std::string("\0\0 v1", 5)},
    // The search begins anew behind each replacement, so what a replacement joins together is found.
    {"Joined", "aab", "ab", "ba", 0, "baa"},
};

INSTANTIATE_TEST_SUITE_P(All, NetServerDataProcPatch, testing::ValuesIn(PATCH_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(NetServerDataProc, VersionsOfDifferentLengthAreLogged)
{
    char text[] = "v1";
    CNetServerDataProc::ModifyFileVertionInfo(text, 2, "v1", "w22");
    EXPECT_THAT(Log(), HasSubstr(" ASSERT\n"));
}

} // namespace
