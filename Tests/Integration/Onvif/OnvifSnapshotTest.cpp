// The snapshot receiver against web servers of all manners.
#include "HttpClient.h"
#include "OnvifFixture.h"
#include "PFHelper.h"

#include <atomic>
#include <future>

namespace
{

const std::string PICTURE = "\xff\xd8 a picture \xff\xd9";

class OnvifSnapshot : public OnvifFixture
{
protected:
    OnvifSnapshot()
    {
        m_simulator = std::make_unique<OnvifDeviceSimulator>();
        m_client = std::make_unique<CHttpClient>("admin", "secret", "127.0.0.1", m_simulator->Port());
    }
    ~OnvifSnapshot() override { delete[] m_data; }

    std::string Url(const std::string& path) const
    {
        return "http://camera.example:" + std::to_string(m_simulator->Port()) + path;
    }

    /// The picture of a server that answers so.
    std::string Fetch(const std::string& answer)
    {
        OnvifManners manners;
        manners.delivery = OnvifManners::RAW;
        manners.raw = answer;
        return Fetch(manners);
    }
    std::string Fetch(const OnvifManners& manners)
    {
        m_simulator->SetManners(manners);
        return FetchUrl(Url("/a.jpg"));
    }
    std::string FetchUrl(const std::string& url)
    {
        delete[] m_data;
        m_data = nullptr;
        m_size = -1;
        m_result = m_client->GetSnapshotData(url, m_data, m_size);
        return m_data != nullptr ? std::string(m_data, static_cast<std::size_t>(m_size)) : "none";
    }

    std::unique_ptr<CHttpClient> m_client;
    char* m_data = nullptr;
    int m_size = -1;
    int m_result = -1;
};

/// Passes time from the second look at the clock on.
class JumpingClock
{
public:
    JumpingClock()
    {
        Looks() = 0;
        CPFHelper::ReplaceTickCount([]() -> unsigned int { return 1 + 2000 * Looks()++; });
    }
    ~JumpingClock() { CPFHelper::ReplaceTickCount(nullptr); }
    JumpingClock(const JumpingClock&) = delete;
    JumpingClock& operator=(const JumpingClock&) = delete;

private:
    static std::atomic<unsigned int>& Looks()
    {
        static std::atomic<unsigned int> looks{0};
        return looks;
    }
};

std::string Answer(const std::string& length, const std::string& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\n" + length + "\r\n" + body;
}

} // namespace

TEST_F(OnvifSnapshot, LooksLikeABrowserAtTheAddressOfTheLogin)
{
    EXPECT_EQ(PICTURE, Fetch(Answer("Content-Length: 15\r\n", PICTURE)));
    EXPECT_EQ(0, m_result);
    const std::string port = std::to_string(m_simulator->Port());
    EXPECT_EQ("GET /a.jpg HTTP/1.1\r\nHost: camera.example:" + port +
                  "\r\nAuthorization: Basic YWRtaW46c2VjcmV0\r\nAccept: text/html, application/xhtml+xml, */*\r\n"
                  "Accept-Language: zh-CN,ja;q=0.8,zh;q=0.6,en-US;q=0.4,en;q=0.2\r\n"
                  "Accept-Encoding: gzip, deflate\r\nUser-Agent: ApiTool\r\n\r\n",
              m_simulator->LastRequest().http);
}

struct UrlCase
{
    const char* rest; // behind the port
    const char* path;
};

TEST_F(OnvifSnapshot, TakesPortAndPathOfTheUrl)
{
    const UrlCase cases[] = {
        {"", ""}, {"/", ""}, {"/a/b.jpg?c=d:e", "a/b.jpg?c=d:e"}, {"//a", "/a"}, {"/a.jpg\n ", "a.jpg"}};
    for (const UrlCase& one : cases)
    {
        FetchUrl("\n" + Url(one.rest));
        EXPECT_EQ(one.path, m_simulator->LastRequest().path) << one.rest;
    }
}

TEST_F(OnvifSnapshot, FindsNoCameraAtAPortThatIsNone)
{
    for (const char* url : {"http://camera.example:0/a", "http://camera.example:65536/a", "http://camera.example:x/a",
                            "http://camera.example:99999999999999999999/a", "/", "//", "a"})
    {
        EXPECT_EQ("none", FetchUrl(url)) << url;
        EXPECT_EQ(0, m_result);
        EXPECT_EQ(0, m_size);
    }
}

TEST_F(OnvifSnapshot, DoesNothingWithoutAUrl)
{
    FetchUrl("");
    EXPECT_EQ(1, m_result);
    EXPECT_EQ(-1, m_size);
    EXPECT_TRUE(m_simulator->Requests().empty());
}

TEST_F(OnvifSnapshot, CutsALongUrlAtTheEndOfTheRequest)
{
    std::promise<std::string> came;
    m_simulator->SetHook([&came](const OnvifDeviceSimulator::Request& request) { came.set_value(request.http); });
    {
        const JumpingClock clock; // the request has no end, so the server says nothing
        FetchUrl(Url("/" + std::string(20000, 'x')));
    }
    EXPECT_EQ(0, m_result);
    const std::string http = came.get_future().get();
    EXPECT_EQ(8191U, http.size());
    EXPECT_EQ(0U, http.find("GET /xxxx"));
}

TEST_F(OnvifSnapshot, TakesWhateverBodyTheAnswerHas)
{
    EXPECT_EQ("<html>", Fetch("HTTP/1.1 404 Not Found\r\nContent-Length: 6\r\n\r\n<html>"));
    EXPECT_EQ("abc", Fetch("HTTP/1.1 200 OK\nContent-Length: 3\r\n\nabc")) << "a head with bare line ends";
}

TEST_F(OnvifSnapshot, CutsABodyAtItsLength)
{
    EXPECT_EQ("abc", Fetch(Answer("Content-Length: 3\r\n", "abcdef")));
    EXPECT_EQ("abc", Fetch(Answer("Content-Length:3\r\n", "abcdef")));
}

TEST_F(OnvifSnapshot, TakesABodyInPieces)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::PIECES;
    manners.pieceBytes = 1000;
    manners.html = std::string(100000, 'p');
    EXPECT_EQ(manners.html, Fetch(manners));
}

TEST_F(OnvifSnapshot, TakesAllThatCameWhenNoLengthIsTold)
{
    for (const char* length : {"", "Content-Length: 0\r\n", "Content-Length: many\r\n", "Content-Length: -5\r\n",
                               "content-length: 3\r\n", "Content-Length:\r\n"})
    {
        EXPECT_EQ("abcdef", Fetch(Answer(length, "abcdef"))) << length;
    }
}

TEST_F(OnvifSnapshot, TakesAMebibyteAtMostWhenNoLengthIsTold)
{
    Fetch(Answer("", std::string(1048576 + 1000, 'p')));
    EXPECT_EQ(1048576, m_size);
}

TEST_F(OnvifSnapshot, TakesWhatCameOfATruncatedBody)
{
    EXPECT_EQ("abc", Fetch(Answer("Content-Length: 100\r\n", "abc")));
    EXPECT_EQ(3, m_size);
}

TEST_F(OnvifSnapshot, TakesNothingThatIsLargerThanAnyPicture)
{
    for (const char* length : {"67108865", "4294967296", "18446744073709551616", "99999999999999999999999999"})
    {
        EXPECT_EQ("none", Fetch(Answer(std::string("Content-Length: ") + length + "\r\n", "abc"))) << length;
        EXPECT_EQ(0, m_result);
        EXPECT_EQ(0, m_size);
    }
    EXPECT_EQ("abc", Fetch(Answer("Content-Length: 67108864\r\n", "abc")));
}

TEST_F(OnvifSnapshot, TakesNothingWithoutTheEndOfAHead)
{
    for (const std::string& answer : {std::string(), std::string("HTTP/1.1 200 OK\r\n"), std::string(8191, 'h'),
                                      std::string(100000, 'h'), std::string(8190, 'h') + "\r\n\r\nabc"})
    {
        EXPECT_EQ("none", Fetch(answer));
        EXPECT_EQ(0, m_result);
        EXPECT_EQ(0, m_size);
    }
}

TEST_F(OnvifSnapshot, TakesAHeadThatFillsItsRoom)
{
    EXPECT_EQ("abc", Fetch(std::string(8187, 'h') + "\r\n\r\nabc"));
    EXPECT_EQ("none", Fetch(std::string(8188, 'h') + "\r\n\r\nabc"));
}

TEST_F(OnvifSnapshot, EndsWithTheTimeOfASilentServer)
{
    OnvifManners silent;
    silent.delivery = OnvifManners::SILENT;
    const JumpingClock clock;
    EXPECT_EQ("none", Fetch(silent));
    EXPECT_EQ(0, m_result);
}

// A camera behind address translation tells an address that is not reachable; that of the login is.
TEST_F(OnvifSnapshot, ReachesACameraBehindAddressTranslation)
{
    m_simulator.reset();
    OnvifSimulatorOptions options;
    options.announcedHost = "camera.example:1";
    m_simulator = std::make_unique<OnvifDeviceSimulator>(options);
    const unsigned int token = Login();
    ASSERT_NE(NO_LOGIN, token);
    m_simulator->SetAnswer("GetSnapshotUri",
                           {"<mdw:GetSnapshotUriResponse><mdw:MediaUri><tt:Uri>" + Url("/picture/1.jpg") +
                                "</tt:Uri></mdw:MediaUri></mdw:GetSnapshotUriResponse>",
                            "", "", ""});
    char* picture = nullptr;
    int length = 0;
    EXPECT_TRUE(ONVIF_CLIENT_GetCfg(token, "<Get><snapshotURI><index>0</index></snapshotURI></Get>", picture, &length));
    EXPECT_EQ(m_simulator->Value("snapshot.picture"), std::string(picture, static_cast<std::size_t>(length)));
    ONVIF_CLIENT_DelResponseBuff(picture);
}

// Port 80 when the URL has none, whatever the port of the SOAP services is.
TEST_F(OnvifSnapshot, AsksPort80WhenTheUrlHasNone)
{
    FetchUrl("http://camera.example/a.jpg");
    EXPECT_TRUE(m_simulator->Requests().empty());
    EXPECT_EQ(0, m_result);
}
