// NetSocketSimpleClientTest.cpp: one request and its answer.
#include "NetSocketFixture.h"

#include <functional>
#include <thread>

namespace
{

/// A peer for one exchange, on a thread of its own.
class NetSocketSimpleClient : public NetSocketFixture
{
protected:
    void TearDown() override
    {
        NetSocketFixture::TearDown();
        EndServer();
    }
    /// Lets the peer close and waits for its thread.
    void EndServer()
    {
        m_mayClose.Open();
        if (m_server.joinable())
        {
            m_server.join();
        }
    }
    void Serve(std::function<void(TcpPeer&)> behaviour)
    {
        m_server = std::thread(
            [this, behaviour = std::move(behaviour)]
            {
                TcpPeer peer = m_acceptor.Accept();
                behaviour(peer);
            });
    }
    int Exchange(const char* endMark, unsigned int room = 64, unsigned int timeoutMs = 10000)
    {
        m_buffer.assign(room, '#');
        return NET_SOCKET_SimpleClientComm("127.0.0.1", m_acceptor.Port(), "request", 7, &m_buffer[0], room, endMark,
                                           timeoutMs);
    }
    std::string Text() const { return m_buffer.c_str(); }

    TcpAcceptor m_acceptor;
    Gate m_mayClose;
    Gate m_connected;
    std::thread m_server;
    std::string m_buffer;
};

TEST_F(NetSocketSimpleClient, EndsWithTheMark)
{
    Serve(
        [&](TcpPeer& peer)
        {
            EXPECT_EQ("request", peer.Read(7));
            peer.Send("<s:Envelope v=\"1\">body</s:Enve");
            peer.Send("lope>\r\n0\r\n\r\n"); // as behind the last chunk of an answer in chunks
            m_mayClose.Await();
        });
    EXPECT_EQ(35, Exchange(":Envelope>"));
    EXPECT_EQ("<s:Envelope v=\"1\">body</s:Envelope>", Text());
}

// An opening tag without attributes ends as the closing one does.
TEST_F(NetSocketSimpleClient, TakesTheMarkInAClosingTagOnly)
{
    const std::string answer = "<Envelope><s:Envelope>/s:Envelope><a:Envelope>body</soap:Envelope>";
    Serve(
        [&](TcpPeer& peer)
        {
            peer.Read(7);
            peer.Send(answer.substr(0, 21));
            peer.Send(answer.substr(21));
            m_mayClose.Await();
        });
    EXPECT_EQ(static_cast<int>(answer.size()), Exchange(":Envelope>", 128));
    EXPECT_EQ(answer, Text());
}

TEST_F(NetSocketSimpleClient, MarkIsFoundAcrossReads)
{
    Serve(
        [&](TcpPeer& peer)
        {
            for (const char* part : {"answer E", "N", "D"})
            {
                peer.Send(part);
            }
            m_mayClose.Await();
        });
    EXPECT_EQ(10, Exchange("END"));
    EXPECT_EQ("answer END", Text());
}

TEST_F(NetSocketSimpleClient, WithoutAMarkEndsWithTheConnection)
{
    for (const char* mark : {static_cast<const char*>(nullptr), ""})
    {
        Serve(
            [](TcpPeer& peer)
            {
                peer.Read(7);
                peer.Send("all of it");
            });
        EXPECT_EQ(9, Exchange(mark));
        EXPECT_EQ("all of it", Text());
        EndServer();
    }
}

TEST_F(NetSocketSimpleClient, BufferIsFilledUpToItsLastByteButOne)
{
    Serve(
        [](TcpPeer& peer)
        {
            peer.Read(7);
            peer.Send("0123456789");
        });
    EXPECT_EQ(4, Exchange("no such mark", 5));
    EXPECT_EQ(std::string("0123\0", 5), m_buffer);
}

TEST_F(NetSocketSimpleClient, RoomForNothingReceivesNothing)
{
    Serve([](TcpPeer& peer) { peer.ReadAll(); });
    EXPECT_EQ(0, Exchange("END", 1));
    EXPECT_EQ(std::string(1, '\0'), m_buffer);
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("127.0.0.1", m_acceptor.Port(), "x", 1, nullptr, 5, "", 10));
    char byte = '#';
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("127.0.0.1", m_acceptor.Port(), "x", 1, &byte, 0, "", 10));
    EXPECT_EQ('#', byte);
}

TEST_F(NetSocketSimpleClient, NoConnectionIsMinusOne)
{
    char buffer[16] = "##";
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("127.0.0.1", FreePort(), "x", 1, buffer, sizeof(buffer), "", 10000));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("no address", 80, "x", 1, buffer, sizeof(buffer), "", 10000));
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm(nullptr, 80, "x", 1, buffer, sizeof(buffer), "", 10000));
}

TEST_F(NetSocketSimpleClient, TimeLimitHoldsForTheConnect)
{
    StalledPort stalled;
    char buffer[16];
    const Stopwatch watch;
    EXPECT_EQ(-1, NET_SOCKET_SimpleClientComm("127.0.0.1", stalled.Port(), "x", 1, buffer, sizeof(buffer), "", 100));
    EXPECT_GE(watch.ElapsedMs(), 100);
    EXPECT_LT(watch.ElapsedMs(), 5000);
}

TEST_F(NetSocketSimpleClient, TimeLimitHoldsForTheWholeAlsoWhenDataKeepsComing)
{
    Serve(
        [](TcpPeer& peer)
        {
            while (peer.Send("."))
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        });
    const Stopwatch watch;
    const int received = Exchange("END", 100000, 150);
    EXPECT_GT(received, 0);
    EXPECT_EQ(std::string(static_cast<std::size_t>(received), '.'), Text());
    EXPECT_GE(watch.ElapsedMs(), 150);
    EXPECT_LT(watch.ElapsedMs(), 5000);
}

TEST_F(NetSocketSimpleClient, QuitEndsARunningExchange)
{
    Serve(
        [&](TcpPeer& peer)
        {
            EXPECT_EQ("request", peer.Read(7));
            m_connected.Open();
            peer.ReadAll();
        });
    std::thread quitter(
        [&]
        {
            m_connected.Await();
            NET_SOCKET_Quit();
        });
    const Stopwatch watch;
    EXPECT_EQ(0, Exchange("END", 64, 60000));
    EXPECT_LT(watch.ElapsedMs(), 30000);
    quitter.join();
}

TEST_F(NetSocketSimpleClient, LargeRequestIsSentWhole)
{
    const std::string request(4 * 1024 * 1024, 'q');
    Serve(
        [&](TcpPeer& peer)
        {
            EXPECT_EQ(request.size(), peer.Read(request.size()).size());
            peer.Send("got itEND");
        });
    char buffer[64];
    EXPECT_EQ(9, NET_SOCKET_SimpleClientComm("127.0.0.1", m_acceptor.Port(), request.data(),
                                             static_cast<unsigned int>(request.size()), buffer, sizeof(buffer), "END",
                                             10000));
    EXPECT_STREQ("got itEND", buffer);
    EndServer();
}

// A peer may judge by the head and not read the rest.
TEST_F(NetSocketSimpleClient, AnswerInFrontOfAnUnreadRequestCounts)
{
    const std::string request(16 * 1024 * 1024, 'q');
    Serve(
        [&](TcpPeer& peer)
        {
            peer.Send("too longEND");
            m_mayClose.Await();
        });
    char buffer[64];
    EXPECT_EQ(11, NET_SOCKET_SimpleClientComm("127.0.0.1", m_acceptor.Port(), request.data(),
                                              static_cast<unsigned int>(request.size()), buffer, sizeof(buffer), "END",
                                              10000));
}

} // namespace
