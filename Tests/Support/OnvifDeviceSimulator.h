// OnvifDeviceSimulator.h: an ONVIF camera on loopback, for tests and for the test program netserver-onvif-simulator.
//
// It reads requests by itself (no code of the library), checks the WS-Security digest, the nonce and the time of each,
// keeps what it is told, and answers in the dialect and with the manners that a test chooses. Its operations are
// tables, one for each family: see OnvifSimulatorTables.h.
//
// Any thread. It runs a few threads of its own until it is destroyed.
#pragma once

#include "OnvifSimulatorSoap.h"

#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

struct OnvifOperationRow;

/// How one answer travels.
struct OnvifManners
{
    enum DELIVERY
    {
        WHOLE,
        PIECES,    ///< some bytes at a time
        CHUNKED,   ///< Transfer-Encoding: chunked, the document in one chunk
        TRUNCATED, ///< half of the document, then the end of the connection
        SILENT,    ///< nothing; the connection stays open until the client closes
        TRICKLE,   ///< a byte every 10 ms, without an end, behind the head
        CLOSED,    ///< the end of the connection at once
        RAW,       ///< `raw` instead of an HTTP answer
    };
    DELIVERY delivery = WHOLE;
    int status = 200;
    unsigned int pieceBytes = 7;
    unsigned int delayMs = 0;     ///< before the answer
    std::size_t padBytes = 0;     ///< blanks behind the body's element
    std::string html;             ///< an error page instead of a document
    std::string raw;              ///< bytes of RAW
    bool announcesLength = true;  ///< Content-Length
    long long contentLength = -1; ///< the length announced instead of the true one
};

struct OnvifSimulatorOptions
{
    std::string user = "admin"; ///< empty, with an empty password: nobody is checked
    std::string password = "secret";
    bool requiresBasic = false; ///< HTTP Basic too
    bool digestIsChecked = true;
    int createdWindowSeconds = 60;
    int clockOffsetSeconds = 0; ///< of the camera's clock
    int faultStatus = 400;      ///< of faults
    int refusalStatus = 401;    ///< of refused credentials
    std::string refusalHtml;    ///< the page of a refusal instead of a fault

    bool hasGetServices = true;
    bool hasAllCapabilities = true;      ///< of GetCapabilities "All"
    bool hasCategoryCapabilities = true; ///< of GetCapabilities with a category
    /// The services that it has, by our prefix, with their paths.
    std::map<std::string, std::string> services = {{"tds", "onvif/device_service"},    {"mdw", "onvif/media_service"},
                                                   {"ptzw", "onvif/ptz_service"},      {"img", "onvif/imaging_service"},
                                                   {"ana", "onvif/analytics_service"}, {"ew", "onvif/event_service"},
                                                   {"dio", "onvif/deviceio_service"}};
    std::set<std::string> unlisted; ///< services that GetServices leaves out
    std::string announcedHost;      ///< the host of its addresses, as behind address translation; empty: its own
    bool subscriptionPolicy = true;
    bool pullPoint = true;
    OnvifDialect dialect;
};

class OnvifDeviceSimulator
{
public:
    /// A request as it came.
    struct Request
    {
        std::string http;      ///< the whole of it
        std::string path;      ///< without leading "/"
        std::string operation; ///< local name; empty for what is no SOAP
        std::string soap;
    };

    explicit OnvifDeviceSimulator(OnvifSimulatorOptions options = {}, unsigned short port = 0);
    ~OnvifDeviceSimulator();
    OnvifDeviceSimulator(const OnvifDeviceSimulator&) = delete;
    OnvifDeviceSimulator& operator=(const OnvifDeviceSimulator&) = delete;

    unsigned short Port() const { return m_port; }

    /// What came so far.
    std::vector<Request> Requests() const;
    std::vector<std::string> Operations() const;
    Request LastRequest() const;
    void Forget();

    /// How operations are answered from now on.
    void SetManners(const OnvifManners& manners);
    void SetManners(const std::string& operation, const OnvifManners& manners);
    /// An operation is answered with this instead of its table's answer.
    void SetAnswer(const std::string& operation, const OnvifAnswer& answer);
    /// An operation is answered with a fault.
    void Refuse(const std::string& operation, const std::string& subcode, const std::string& reason);

    /// Runs on a thread of the camera when a request has come, before it is answered.
    void SetHook(std::function<void(const Request&)> hook);

    /// What the camera keeps, by name; see the tables.
    std::string Value(const std::string& name) const;
    void SetValue(const std::string& name, const std::string& value);

private:
    void Run();
    void Serve(int connection);
    Request ReadRequest(int connection) const;
    OnvifAnswer Answer(const Request& request, const OnvifSoapRequest& soap);
    OnvifAnswer AnswerByTable(const Request& request, const OnvifSoapRequest& soap);
    const OnvifOperationRow* FindRow(const Request& request) const;
    bool HasBasic(const Request& request) const;
    bool IsPicture(const Request& request) const;
    std::string PictureAnswer(const Request& request) const;
    bool MayPass(const Request& request, const OnvifSoapRequest& soap);
    bool DigestIsRight(const OnvifSoapRequest& soap);
    void Deliver(int connection, const OnvifAnswer& answer, const OnvifManners& manners, bool refused);
    bool SendBytes(int connection, const std::string& bytes) const;
    void WaitForClose(int connection) const;
    void Trickle(int connection, const std::string& head) const;
    void Pause(unsigned int ms) const;

    const OnvifSimulatorOptions m_options;
    int m_listener = -1;
    int m_quit = -1; // readable when it ends
    unsigned short m_port = 0;
    std::vector<std::thread> m_threads;

    mutable std::mutex m_mutex; // for all that follows
    std::vector<Request> m_requests;
    OnvifManners m_manners;
    std::map<std::string, OnvifManners> m_mannersByOperation;
    std::map<std::string, OnvifAnswer> m_answers;
    std::map<std::string, std::string> m_values;
    std::set<std::string> m_nonces;
    std::function<void(const Request&)> m_hook;
};
