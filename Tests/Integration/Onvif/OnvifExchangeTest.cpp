// One exchange with cameras of all manners: what counts as an answer, and how long it may take.
#include "HttpClient.h"
#include "OnvifFixture.h"
#include "Peer.h"

#include <chrono>

namespace
{

using Clock = std::chrono::steady_clock;

const std::string DEV_INFO = "<devInfo><status>success</status><manufacturer>Test Works</manufacturer>"
                             "<model>TW-1</model></devInfo>";

class OnvifExchange : public OnvifFixture
{
protected:
    OnvifExchange() { Connect({}); }

    void Connect(const OnvifSimulatorOptions& options)
    {
        Start(options);
        m_client = std::make_unique<CHttpClient>("admin", "secret", "127.0.0.1", m_simulator->Port());
    }

    /// @return the result, and the answer behind it
    std::string DeviceInformation()
    {
        std::string answer;
        const int result = m_client->GetDeviceInformation(answer);
        return std::to_string(result) + Inner(answer);
    }
    std::string DeviceInformation(const OnvifManners& manners)
    {
        m_simulator->SetManners(manners);
        return DeviceInformation();
    }
    /// The answer to a device information, with the line of a new chunk in front of each of these places of it.
    std::string DeviceInformationInChunksAt(const std::vector<std::string>& places)
    {
        std::string body = RenderOnvifAnswer({"<tds:GetDeviceInformationResponse><tds:Manufacturer>Works"
                                              "</tds:Manufacturer><tds:Model>TW-1</tds:Model>"
                                              "</tds:GetDeviceInformationResponse>",
                                              "", "", ""},
                                             {});
        for (const std::string& place : places)
        {
            body.insert(body.find(place), "\r\n2c\r\n"); // how much a chunk announces is not looked at
        }
        OnvifManners manners;
        manners.delivery = OnvifManners::RAW;
        manners.raw = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1b\r\n" + body + "\r\n0\r\n\r\n";
        return DeviceInformation(manners);
    }
    /// An exchange with a limit of its own.
    int Ask(int timeoutMs)
    {
        std::string request = "<s:Envelope/>";
        std::string answer;
        return m_client->MakeUpSend("onvif/device_service", request, answer, timeoutMs);
    }

    std::unique_ptr<CHttpClient> m_client;
};

TEST_F(OnvifExchange, TakesAnAnswerInSmallPieces)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::PIECES;
    manners.pieceBytes = 1;
    EXPECT_EQ("0" + DEV_INFO, DeviceInformation(manners));
}

TEST_F(OnvifExchange, TakesAnAnswerInOneChunk)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::CHUNKED;
    EXPECT_EQ("0" + DEV_INFO, DeviceInformation(manners));
}

// The head is not read, so the lines of further chunks stay in the document. Between elements they do no harm.
TEST_F(OnvifExchange, TakesAnAnswerInChunksThatEndBetweenElements)
{
    EXPECT_EQ(
        "0<devInfo><status>success</status><manufacturer>Works</manufacturer><model>TW-1</model></devInfo>",
        DeviceInformationInChunksAt({"<tds:Manufacturer>", "<tds:Model>", "</tds:GetDeviceInformationResponse>"}));
}

TEST_F(OnvifExchange, LeavesTheLineOfAChunkInAValue)
{
    EXPECT_EQ("0<devInfo><status>success</status><manufacturer>Works</manufacturer><model>TW2c-1</model></devInfo>",
              DeviceInformationInChunksAt({"-1</tds:Model>"}));
}

// As of a document that is cut, nothing is left of one that a chunk breaks.
TEST_F(OnvifExchange, FindsNothingInAnAnswerWithAChunkThatEndsInATag)
{
    EXPECT_EQ("0<devInfo><status>success</status></devInfo>", DeviceInformationInChunksAt({"s:Model>TW"}));
    EXPECT_EQ("0<devInfo><status>success</status></devInfo>", DeviceInformationInChunksAt({"Manufacturer>Works"}));
}

// The end is not seen then, but the camera's closing is.
TEST_F(OnvifExchange, FindsNothingInAnAnswerWithAChunkThatEndsInTheLastTag)
{
    EXPECT_EQ("0<devInfo><status>success</status></devInfo>", DeviceInformationInChunksAt({"lope>"}));
}

TEST_F(OnvifExchange, TakesAnAnswerWithoutALengthOrWithAWrongOne)
{
    OnvifManners manners;
    manners.announcesLength = false;
    EXPECT_EQ("0" + DEV_INFO, DeviceInformation(manners));
    for (const long long length : {0LL, 10LL, 1LL << 40})
    {
        manners.announcesLength = true;
        manners.contentLength = length;
        EXPECT_EQ("0" + DEV_INFO, DeviceInformation(manners)) << length;
    }
}

TEST_F(OnvifExchange, DoesNotLookAtTheStatusOfADocument)
{
    for (const int status : {400, 404, 500})
    {
        OnvifManners manners;
        manners.status = status;
        EXPECT_EQ("0" + DEV_INFO, DeviceInformation(manners)) << status;
    }
}

TEST_F(OnvifExchange, TellsAFaultWithStatus400InTheAnswer)
{
    m_simulator->Refuse("GetDeviceInformation", "ter:ActionNotSupported", "No");
    EXPECT_EQ("0<devInfo><status>fail<errorCode>5</errorCode><description>No</description></status></devInfo>",
              DeviceInformation());
}

TEST_F(OnvifExchange, TellsARefusedLoginByTheStatusLineBesideADocument)
{
    OnvifManners manners;
    manners.status = 401;
    EXPECT_EQ("401", DeviceInformation(manners));
    manners.html = "<html>401 Unauthorized</html>";
    EXPECT_EQ("6", DeviceInformation(manners));
}

TEST_F(OnvifExchange, TakesNoPageForAnAnswer)
{
    OnvifManners manners;
    manners.status = 404;
    manners.html = "<?xml version=\"1.0\"?><html><body>Not here</body></html>";
    EXPECT_EQ("6", DeviceInformation(manners));
}

TEST_F(OnvifExchange, TakesNoDocumentWithoutADeclaration)
{
    OnvifSimulatorOptions options;
    options.dialect.declaration = false;
    Connect(options);
    EXPECT_EQ("4", DeviceInformation());
}

TEST_F(OnvifExchange, HasNoAnswerFromAClosedConnection)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::CLOSED;
    EXPECT_EQ("4", DeviceInformation(manners));
}

TEST_F(OnvifExchange, HasNoAnswerFromAClosedPort)
{
    m_simulator.reset();
    EXPECT_EQ("4", DeviceInformation());
}

// A document that is cut is good for no field, and has no fault either.
TEST_F(OnvifExchange, FindsNothingInATruncatedAnswer)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::TRUNCATED;
    EXPECT_EQ("0<devInfo><status>success</status></devInfo>", DeviceInformation(manners));
}

TEST_F(OnvifExchange, TakesAnAnswerThatJustFillsTheBuffer)
{
    constexpr std::size_t BUFFER = 8192;
    OnvifManners manners;
    manners.delivery = OnvifManners::RAW;
    manners.raw =
        "HTTP/1.1 200 OK\r\n\r\n" + RenderOnvifAnswer({"<tds:GetDeviceInformationResponse><tds:Model>A</tds:Model>"
                                                       "</tds:GetDeviceInformationResponse>",
                                                       "", "", ""},
                                                      {});
    const std::size_t model = manners.raw.find("A</tds:Model>");
    manners.raw.insert(model, BUFFER - manners.raw.size(), 'A');
    EXPECT_EQ("0<devInfo><status>success</status><model>AAAA", DeviceInformation(manners).substr(0, 45));
    manners.raw.insert(model, 1, 'A');
    EXPECT_EQ("0<devInfo><status>success</status></devInfo>", DeviceInformation(manners));
}

TEST_F(OnvifExchange, CutsAnOversizedAnswer)
{
    OnvifManners manners;
    manners.padBytes = 1000000;
    EXPECT_EQ("0<devInfo><status>success</status></devInfo>", DeviceInformation(manners));
}

TEST_F(OnvifExchange, TakesNoEndlessHeaderForAnAnswer)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::RAW;
    manners.raw = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 2000; ++i)
    {
        manners.raw += "X-Header: and one more of them\r\n";
    }
    EXPECT_EQ("6", DeviceInformation(manners));
}

TEST_F(OnvifExchange, StopsReadingAtAZeroByte)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::RAW;
    manners.raw = std::string("HTTP/1.1 200 OK\r\n\r\n\0<?xml version=\"1.0\"?><s:Envelope></s:Envelope>", 63);
    EXPECT_EQ("6", DeviceInformation(manners));
}

TEST_F(OnvifExchange, EndsInItsTimeWhenNothingComes)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::SILENT;
    m_simulator->SetManners(manners);
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(4, Ask(100));
    const auto took = Clock::now() - begin;
    EXPECT_GE(took, std::chrono::milliseconds(99));
    EXPECT_LT(took, std::chrono::milliseconds(2000)); // well below the camera's patience of ten seconds
}

// What still comes does not put the end off.
TEST_F(OnvifExchange, EndsInItsTimeWhileTheAnswerTrickles)
{
    OnvifManners manners;
    manners.delivery = OnvifManners::TRICKLE;
    m_simulator->SetManners(manners);
    const Clock::time_point begin = Clock::now();
    EXPECT_EQ(6, Ask(200)); // the head came
    EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(2000));
}

TEST_F(OnvifExchange, TakesAnAnswerThatComesLate)
{
    OnvifManners manners;
    manners.delayMs = 60;
    EXPECT_EQ("0" + DEV_INFO, DeviceInformation(manners));
}

TEST_F(OnvifExchange, RemembersWhereItSentAServiceThatTheDeviceDidNotTell)
{
    std::string answer;
    m_client->Unsubscribe("", answer);
    EXPECT_EQ("onvif/device_service", m_simulator->LastRequest().path);
    EXPECT_EQ("onvif/device_service", m_client->GetServiceTable()["events"]);
    m_client->SetServiceTable({{"device", "somewhere/else"}});
    m_client->Unsubscribe("", answer);
    EXPECT_EQ("somewhere/else", m_simulator->LastRequest().path);
    EXPECT_EQ("somewhere/else", m_client->GetServiceTable()["events"]);
}

TEST_F(OnvifExchange, LeavesTabsOfValuesOut)
{
    std::string answer;
    m_client->SetDNS("<Set><dns><dhcp>fal\tse</dhcp></dns></Set>", answer);
    EXPECT_EQ("false", OnvifSoapRequest(m_simulator->LastRequest().soap).Text("FromDHCP"));
}

// The name loses its TAB on the way; what the password's TAB was digested into stays.
TEST_F(OnvifExchange, LeavesTabsOfTheUserOutButNotOfThePassword)
{
    OnvifSimulatorOptions options;
    options.password = "se\tcret";
    Start(options);
    m_client = std::make_unique<CHttpClient>("ad\tmin", "se\tcret", "127.0.0.1", m_simulator->Port());
    EXPECT_EQ("0" + DEV_INFO, DeviceInformation());
}

// The device counts the bytes that come.
TEST_F(OnvifExchange, AnnouncesTheLengthWithoutTabs)
{
    DeviceInformation();
    const OnvifDeviceSimulator::Request request = m_simulator->LastRequest();
    EXPECT_NE(std::string::npos,
              request.http.find("\r\nContent-Length: " + std::to_string(request.soap.size()) + "\r\n"));
    EXPECT_EQ(std::string::npos, request.soap.find('\t'));
}

// A request without its key is sent all the same, and fails at the device.
TEST_F(OnvifExchange, SendsAnEmptyRequest)
{
    std::string answer;
    EXPECT_EQ(401, m_client->SetDNS("<Set/>", answer));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>", m_simulator->LastRequest().soap);
    EXPECT_EQ("", answer);
}

TEST_F(OnvifExchange, HasANonceOfItsOwnEachTime)
{
    for (int i = 0; i < 20; ++i)
    {
        EXPECT_EQ("0" + DEV_INFO, DeviceInformation()); // the camera takes no nonce twice
    }
}

// That the simulated camera looks at what it is sent.
TEST_F(OnvifExchange, IsNotRepeatedByAThirdParty)
{
    EXPECT_EQ("0" + DEV_INFO, DeviceInformation());
    const std::string request = m_simulator->LastRequest().http;
    Peer peer(m_simulator->Port());
    peer.Send(request);
    EXPECT_EQ("HTTP/1.1 401 Unauthorized\r\n", peer.ReadUntil("\r\n"));
}

TEST_F(OnvifExchange, RefusesNoAddressOrBuffer)
{
    char buffer[16];
    EXPECT_EQ(-1, m_client->SendHttpReq(nullptr, "x", 1, buffer, sizeof(buffer), 100));
    EXPECT_EQ(-1, m_client->SendHttpReq("path", "x", 1, nullptr, 16, 100));
    EXPECT_TRUE(m_simulator->Requests().empty());
}

} // namespace
