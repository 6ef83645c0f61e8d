#include "HttpProtocolAnalyse.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace
{

std::string BufOf(const CHttpProtocolAnalyse& message)
{
    int length = -1;
    const char* const bytes = message.GetBuf(length);
    return std::string(bytes, static_cast<size_t>(length));
}

std::string PayLoadOf(const CHttpProtocolAnalyse& message)
{
    int length = -1;
    const char* const bytes = message.GetPayLoad(length);
    return std::string(bytes, static_cast<size_t>(length));
}

std::string TypeOf(const std::string& url)
{
    CHttpProtocolAnalyse response;
    response.SetURL(url);
    return response.GetMimeType();
}

struct UrlCase
{
    const char* name;
    const char* message;
    std::string url;
};

const UrlCase URL_CASES[] = {
    {"Root", "GET / HTTP/1.1\r\n\r\n", ""},
    {"Word", "GET /GetDeviceInfo HTTP/1.1\r\n\r\n", "GetDeviceInfo"},
    {"TwoWords", "GET /GetDeviceInfo/2 HTTP/1.1\r\n\r\n", "GetDeviceInfo/2"},
    {"PercentAndQuery", "GET /a%20b?x=1 HTTP/1.1\r\n\r\n", "a b"},
    {"EscapedQuery", "GET /a%3Fb HTTP/1.1\r\n\r\n", "a"},
    {"Plus", "GET /a+b HTTP/1.1\r\n\r\n", "a b"},
    {"UpperCaseDigits", "GET /%4A%5F%2F HTTP/1.1\r\n\r\n", "J_/"},
    // Lower-case digits decode wrongly, except where the first one has its bit 1 set anyway.
    {"LowerCaseDigits", "GET /%4a%5f HTTP/1.1\r\n\r\n", "\x6A\x7F"},
    {"LowerCaseDigitsThatAreRight", "GET /%2f%2e%6f%7e%c3 HTTP/1.1\r\n\r\n", "/.o~\xC3"},
    {"OtherDigits", "GET /%zz HTTP/1.1\r\n\r\n", "\x73"},
    {"PercentCutShort", "GET /a% HTTP/1.1\r\n\r\n", std::string("a\xD9", 2)},
    {"PercentCutAfterOne", "GET /a%4 HTTP/1.1\r\n\r\n", std::string("a\xC9", 2)},
    {"ZeroByte", "GET /a%00b HTTP/1.1\r\n\r\n", std::string("a\0b", 3)},
    {"QueryKept", "GET /queryQRInfo?x=1 HTTP/1.1\r\n\r\n", "queryQRInfo?x=1"},
    {"MethodIsNotRead", "anything before/it HTTP/1.1\r\n\r\n", "it"},
    {"AbsoluteForm", "GET http://a/b HTTP/1.1\r\n\r\n", "/a/b"},
    {"NoSlash", "GET it HTTP/1.1\r\n\r\n", ""},
    {"SlashBehindTheVersion", "GET HTTP/1.1\r\n\r\n", ""},
    {"NoVersion", "GET /a\r\n\r\n", ""},
    {"NoHeaderEnd", "GET /a HTTP/1.1\r\n", ""},
    {"VersionInTheNextLine", "GET /a\r\nX: b HTTP\r\n\r\n", "a\r\nX: b"},
    {"Response", "HTTP/1.1 200 OK\r\n\r\n", ""},
};

class Urls : public testing::TestWithParam<UrlCase>
{
};

} // namespace

TEST_P(Urls, AreRead)
{
    EXPECT_EQ(GetParam().url, CHttpProtocolAnalyse(std::string(GetParam().message)).GetUrl());
}

INSTANTIATE_TEST_SUITE_P(HttpProtocolAnalyse, Urls, testing::ValuesIn(URL_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(HttpProtocolAnalyse, CommandIsAUrlWithoutADot)
{
    EXPECT_TRUE(CHttpProtocolAnalyse(std::string("GET /GetDeviceInfo HTTP/1.1\r\n\r\n")).IsRequestCmd());
    EXPECT_FALSE(CHttpProtocolAnalyse(std::string("GET /GetDeviceInfo HTTP/1.1\r\n\r\n")).IsRequestFile());
    EXPECT_TRUE(CHttpProtocolAnalyse(std::string("GET /GetDeviceInfo.xml HTTP/1.1\r\n\r\n")).IsRequestFile());
    EXPECT_TRUE(CHttpProtocolAnalyse(std::string("GET / HTTP/1.1\r\n\r\n")).IsRequestFile());
    EXPECT_FALSE(CHttpProtocolAnalyse(std::string("GET / HTTP/1.1\r\n\r\n")).IsRequestCmd());
}

TEST(HttpProtocolAnalyse, ResponseBeginsWithItsVersion)
{
    EXPECT_TRUE(CHttpProtocolAnalyse(std::string("HTTP/1.1 200 OK\r\n\r\n")).IsResponse());
    EXPECT_FALSE(CHttpProtocolAnalyse(std::string("HTTP/1.1 200 OK\r\n")).IsResponse()); // no header
    EXPECT_FALSE(CHttpProtocolAnalyse(std::string("GET /HTTP HTTP/1.1\r\n\r\n")).IsResponse());
    EXPECT_FALSE(CHttpProtocolAnalyse().IsResponse());
}

TEST(HttpProtocolAnalyse, PayLoadStandsBehindTheHeader)
{
    const std::string message("POST /a HTTP/1.1\r\n\r\na\0b", 23);
    const CHttpProtocolAnalyse request(message);
    EXPECT_EQ(std::string("a\0b", 3), PayLoadOf(request));
    EXPECT_EQ(message, BufOf(request));
}

TEST(HttpProtocolAnalyse, MessageWithoutAHeaderIsAllPayLoad)
{
    EXPECT_EQ("noise", PayLoadOf(CHttpProtocolAnalyse("noise and more", 5)));
}

TEST(HttpProtocolAnalyse, NothingIsAnEmptyTextAndNeverNull)
{
    int length = 9;
    EXPECT_STREQ("", CHttpProtocolAnalyse().GetBuf(length));
    EXPECT_EQ(0, length);
    length = 9;
    EXPECT_STREQ("", CHttpProtocolAnalyse().GetPayLoad(length));
    EXPECT_EQ(0, length);
    EXPECT_EQ("", BufOf(CHttpProtocolAnalyse(nullptr, 5)));
    EXPECT_EQ("", BufOf(CHttpProtocolAnalyse("a", 0)));
    EXPECT_EQ("", BufOf(CHttpProtocolAnalyse("a", -1)));
    EXPECT_EQ("", PayLoadOf(CHttpProtocolAnalyse(std::string("GET / HTTP/1.1\r\n\r\n"))));
}

TEST(HttpProtocolAnalyse, CopiesAreDeep)
{
    CHttpProtocolAnalyse copy(std::string("old"));
    {
        const CHttpProtocolAnalyse request(std::string("POST /a HTTP/1.1\r\n\r\nbody"));
        copy = request;
    }
    EXPECT_EQ("a", copy.GetUrl());
    EXPECT_EQ("body", PayLoadOf(copy));
    const CHttpProtocolAnalyse second(copy);
    copy = CHttpProtocolAnalyse();
    EXPECT_EQ("", BufOf(copy));
    EXPECT_EQ("POST /a HTTP/1.1\r\n\r\nbody", BufOf(second));
    const CHttpProtocolAnalyse& self = copy;
    copy = self;
    EXPECT_EQ("", BufOf(copy));
}

TEST(HttpProtocolAnalyse, ReadsBasicCredentials)
{
    const CHttpProtocolAnalyse request(
        std::string("GET /a HTTP/1.1\r\nAuthorization: Basic YWRtaW46YWRtaW4=\r\nHost: a\r\n\r\n"));
    std::string info;
    EXPECT_TRUE(request.GetVerifyInfo(info));
    EXPECT_EQ("YWRtaW46YWRtaW4=", info);
}

TEST(HttpProtocolAnalyse, CredentialsCountAsTheyAreSpelledAndInTheHeaderOnly)
{
    std::string info = "old";
    for (const char* message : {"GET /a HTTP/1.1\r\n\r\n", "GET /a HTTP/1.1\r\nauthorization: Basic YQ==\r\n\r\n",
                                "GET /a HTTP/1.1\r\nAuthorization: Digest YQ==\r\n\r\n",
                                "POST /a HTTP/1.1\r\n\r\nAuthorization: Basic YQ==\r\n", "Authorization: Basic YQ=="})
    {
        EXPECT_FALSE(CHttpProtocolAnalyse(std::string(message)).GetVerifyInfo(info)) << message;
    }
    EXPECT_EQ("old", info);
}

TEST(HttpProtocolAnalyse, BuildsAResponseByteForByte)
{
    CHttpProtocolAnalyse response;
    EXPECT_EQ(1, response.SetResPackage(200, "body", 4, ""));
    EXPECT_EQ("HTTP/1.1 200 OK\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 4\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n"
              "body",
              BufOf(response));
    EXPECT_EQ("body", PayLoadOf(response));
    EXPECT_TRUE(response.IsResponse());
}

TEST(HttpProtocolAnalyse, BuildsAHeaderOnly)
{
    CHttpProtocolAnalyse response;
    response.SetURL("a.png");
    response.SetResPackage(200, "body", 4, "");
    response.SetResponseHeader(404);
    EXPECT_EQ("HTTP/1.1 404 Not Found\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 0\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n",
              BufOf(response));
    EXPECT_EQ("", PayLoadOf(response));
}

TEST(HttpProtocolAnalyse, AddsALineBehindTheLastOne)
{
    CHttpProtocolAnalyse response;
    response.SetResPackage(401, nullptr, 0, "");
    response.SetHeaderLine("WWW-Authenticate: Basic realm=\"Web Service\"");
    EXPECT_EQ("HTTP/1.1 401 Unauthorized\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 0\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "WWW-Authenticate: Basic realm=\"Web Service\"\r\n"
              "\r\n",
              BufOf(response));
    EXPECT_EQ("", PayLoadOf(response));
}

TEST(HttpProtocolAnalyse, AddedLineLeavesThePayLoad)
{
    CHttpProtocolAnalyse response(std::string("HTTP/1.1 200 OK\r\nA: b\r\n\r\n") + std::string("x\0y", 3));
    response.SetHeaderLine("C: d");
    EXPECT_EQ(std::string("HTTP/1.1 200 OK\r\nA: b\r\nC: d\r\n\r\n") + std::string("x\0y", 3), BufOf(response));
    EXPECT_EQ(std::string("x\0y", 3), PayLoadOf(response));
}

TEST(HttpProtocolAnalyse, AddedLineReplacesAllLineEndsOfTheHeader)
{
    CHttpProtocolAnalyse response(std::string("HTTP/1.1 200 OK\r\nA: b\n\r\r\n\r\nxy"));
    response.SetHeaderLine("C: d");
    EXPECT_EQ("HTTP/1.1 200 OK\r\nA: b\r\nC: d\r\n\r\nxy", BufOf(response));
}

// The length is told and kept even when the host hands out no bytes; they are zeroed.
TEST(HttpProtocolAnalyse, LengthWithoutABodyGivesZeroBytes)
{
    CHttpProtocolAnalyse response;
    response.SetResPackage(200, nullptr, 3, "");
    const std::string bytes = BufOf(response);
    EXPECT_NE(std::string::npos, bytes.find("Content-Length: 3\r\n"));
    EXPECT_EQ(std::string("\r\n\r\n\0\0\0", 7), bytes.substr(bytes.size() - 7));
    EXPECT_EQ("", PayLoadOf(response));
}

TEST(HttpProtocolAnalyse, NegativeLengthCountsAsNone)
{
    CHttpProtocolAnalyse response;
    response.SetResPackage(200, "body", INT_MIN, "");
    const std::string bytes = BufOf(response);
    EXPECT_NE(std::string::npos, bytes.find("Content-Length: 0\r\n"));
    EXPECT_EQ("\r\n\r\n", bytes.substr(bytes.size() - 4));
}

TEST(HttpProtocolAnalyse, AuthInfoIsSentAndCut)
{
    CHttpProtocolAnalyse response;
    response.SetResPackage(200, "b", 1, "someone");
    EXPECT_NE(std::string::npos, BufOf(response).find("\r\nAuthInfo: someone\r\n\r\nb"));
    response.SetURL("a.jad");
    response.SetResPackage(200, "b", 1, std::string(5000, 'x'));
    EXPECT_NE(std::string::npos, BufOf(response).find("\r\nAuthInfo: " + std::string(512, 'x') + "\r\n\r\nb"));
}

struct StatusCase
{
    int code;
    const char* line;
};

const StatusCase STATUS_CASES[] = {
    {200, "HTTP/1.1 200 OK\r\n"},
    {302, "HTTP/1.1 302 Found\r\n"},
    {400, "HTTP/1.1 400 Bad Request\r\n"},
    {401, "HTTP/1.1 401 Unauthorized\r\n"},
    {403, "HTTP/1.1 403 Forbidden\r\n"},
    {404, "HTTP/1.1 404 Not Found\r\n"},
    {408, "HTTP/1.1 408 Request Timeout\r\n"},
    {500, "HTTP/1.1 500 Internal Server Error\r\n"},
    {501, "HTTP/1.1 501 Not Implemented\r\n"},
};

class Statuses : public testing::TestWithParam<StatusCase>
{
};

TEST_P(Statuses, HaveTheirWords)
{
    CHttpProtocolAnalyse response;
    response.SetResponseHeader(GetParam().code);
    const std::string line = GetParam().line;
    EXPECT_EQ(line, BufOf(response).substr(0, line.size()));
    EXPECT_EQ(GetParam().code, response.GetStatusCode());
}

INSTANTIATE_TEST_SUITE_P(HttpProtocolAnalyse, Statuses, testing::ValuesIn(STATUS_CASES),
                         [](const auto& row) { return std::to_string(row.param.code); });

TEST(HttpDefine, StatusTableHoldsNineRows)
{
    using HTTP_DEFINE::g_HTTPStatusMap;
    EXPECT_EQ(9u, g_HTTPStatusMap.size());
    EXPECT_EQ("", g_HTTPStatusMap.at(200).description);
    EXPECT_EQ("Directories must end with a slash.", g_HTTPStatusMap.at(302).description);
    EXPECT_EQ("Unsupported method.", g_HTTPStatusMap.at(400).description);
    EXPECT_EQ("The requested method is not recognized by this server.", g_HTTPStatusMap.at(401).description);
    EXPECT_EQ("", g_HTTPStatusMap.at(403).description);
    EXPECT_EQ("The requested URL was not found on this server.", g_HTTPStatusMap.at(404).description);
    EXPECT_EQ("No request appeared within a reasonable time period.", g_HTTPStatusMap.at(408).description);
    EXPECT_EQ("Internal Server Error", g_HTTPStatusMap.at(500).description);
    EXPECT_EQ("The requested method is not recognized by this server.", g_HTTPStatusMap.at(501).description);
}

TEST(HttpDefine, ContentTypesStandInTheOrderOfLookup)
{
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"", "application/octet-stream"},
        {".avi", "video/x-msvideo"},
        {".cod", "application/vnd.rim.cod"},
        {".css", "text/css"},
        {".gif", "image/gif"},
        {".htm.html", "text/html"},
        {".jad", "text/vnd.sun.j2me.app-descriptor"},
        {".jpg.jpeg", "image/jpeg"},
        {".mid.midi", "audio/midi"},
        {".mp3", "audio/mpeg"},
        {".mpe.mpeg", "video/mpeg"},
        {".png", "image/png"},
        {".qt.mov", "video/quicktime"},
        {".txt.h.c.cc.cpp", "text/plain"},
        {".wav", "audio/wav"},
        {".xml", "text/xml"},
    };
    const auto& map = HTTP_DEFINE::g_ContentTypeMap;
    EXPECT_EQ(expected, (std::vector<std::pair<std::string, std::string>>(map.begin(), map.end())));
}

struct TypeCase
{
    const char* name;
    const char* url;
    const char* type;
};

const TypeCase TYPE_CASES[] = {
    {"Html", "index.html", "text/html"},
    {"Htm", "index.htm", "text/html"},
    {"Empty", "", "text/html"},
    {"Command", "GetDeviceInfo", "text/xml"},
    {"Jpeg", "a/b.jpeg", "image/jpeg"},
    {"Cpp", "a.cpp", "text/plain"},
    {"LastDot", "a.b.css", "text/css"},
    // A part of a run of extensions is enough, and the first run that has it wins.
    {"C", "a.c", "application/vnd.rim.cod"},
    {"H", "a.h", "text/html"},
    {"DotAtTheEnd", "a.", "video/x-msvideo"},
    {"Js", "a.js", ""},
    {"UpperCase", "a.CSS", ""},
    {"DotInADirectory", "a.d/file", ""},
};

class MimeTypes : public testing::TestWithParam<TypeCase>
{
};

TEST_P(MimeTypes, FollowTheExtension)
{
    EXPECT_EQ(GetParam().type, TypeOf(GetParam().url));
    CHttpProtocolAnalyse response;
    response.SetURL(GetParam().url);
    response.SetResPackage(200, "", 0, "");
    EXPECT_NE(std::string::npos, BufOf(response).find("\r\nContent-type: " + std::string(GetParam().type) + "\r\n"));
}

INSTANTIATE_TEST_SUITE_P(HttpProtocolAnalyse, MimeTypes, testing::ValuesIn(TYPE_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(HttpProtocolAnalyse, OtherStatusIsAlwaysHtml)
{
    CHttpProtocolAnalyse response;
    response.SetURL("a.css");
    for (const int status : {302, 400, 401, 403, 404, 408, 500, 501})
    {
        response.SetResPackage(status, "", 0, "");
        EXPECT_NE(std::string::npos, BufOf(response).find("\r\nContent-type: text/html\r\n")) << status;
    }
}

TEST(HttpProtocolAnalyse, PicturesOfTwoNamesArePngWhateverTheStatus)
{
    for (const char* url : {"queryQRInfo?x=1", "GetSnapshot/1", "a/GetSnapshot.css"})
    {
        CHttpProtocolAnalyse response;
        response.SetURL(url);
        response.SetResPackage(404, "", 0, "");
        EXPECT_NE(std::string::npos, BufOf(response).find("\r\nContent-type: image/png\r\n")) << url;
    }
}

TEST(HttpProtocolAnalyseDeathTest, MistakesEndTheProcess)
{
    CHttpProtocolAnalyse response;
    EXPECT_DEATH(response.SetResponseHeader(418), "strIter != HTTP_DEFINE::g_HTTPStatusMap.end\\(\\)");
    EXPECT_DEATH(response.SetHeaderLine("A: b"), "header.empty");
}

TEST(HttpProtocolAnalyse, BuildsAClientsRequest)
{
    CHttpProtocolAnalyse request;
    request.SetHTTPConfig("GetDeviceInfo", "body", 4, "YQ==");
    EXPECT_EQ("GET /GetDeviceInfo HTTP/1.1\r\n"
              "Authorization: Basic YQ==\r\n"
              "Content-type: text/xml\r\n"
              "Content-Length:4\r\n"
              "\r\n"
              "body",
              BufOf(request));
    EXPECT_EQ("GetDeviceInfo", request.GetUrl());
    request.SetHTTPConfig("a", nullptr, 4, "");
    EXPECT_EQ("", PayLoadOf(request));
}

TEST(HttpProtocolAnalyse, ReadsTheStatusCodeOfAResponse)
{
    EXPECT_EQ(404, CHttpProtocolAnalyse(std::string("HTTP/1.1 404 Not Found\r\n\r\n")).GetStatusCode());
    EXPECT_EQ(0, CHttpProtocolAnalyse(std::string("HTTP\r\n\r\n")).GetStatusCode());
    EXPECT_EQ(0, CHttpProtocolAnalyse().GetStatusCode());
}

TEST(HttpProtocolAnalyse, ExtraLineGoesInAndOut)
{
    CHttpProtocolAnalyse request(std::string("GET / HTTP/1.1\r\nA: b\r\n\r\n"));
    request.SetHeaderExtra("Session:", 4294967295u);
    EXPECT_EQ("GET / HTTP/1.1\r\nA: b\r\nSession: 4294967295\r\n\r\n", BufOf(request));
    unsigned int value = 7;
    EXPECT_TRUE(request.GetHeaderExtra("Session:", value));
    EXPECT_EQ(4294967295u, value);
    EXPECT_FALSE(request.GetHeaderExtra("A:", value));
    EXPECT_FALSE(request.GetHeaderExtra("B:", value));
}
