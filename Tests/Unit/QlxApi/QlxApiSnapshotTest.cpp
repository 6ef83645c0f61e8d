// QlxApiSnapshotTest.cpp: the snapshot command, in front of a stream data manager of the test's own that stands in for
// the library's, so that a missing picture takes no time.
#include "QlxApiWorld.h"

#include "RTSP_DataManager.h"

#include <cstring>

namespace
{

const char* picture = nullptr; // null: none comes
unsigned int pictureLength = 0;
unsigned int askedChannel = 0;

} // namespace

CRTSP_DataManager::CRTSP_DataManager(unsigned int snapShotWaitMs)
    : m_snapShotTaken(false), m_snapShotWaitMs(snapShotWaitMs)
{
}
CRTSP_DataManager::~CRTSP_DataManager() = default;

CRTSP_DataManager& CRTSP_DataManager::Instance()
{
    static CRTSP_DataManager manager;
    return manager;
}

bool CRTSP_DataManager::GetSnapShot(unsigned int chn, char*& data, unsigned int& len)
{
    askedChannel = chn;
    if (picture == nullptr)
    {
        return false;
    }
    data = new char[pictureLength];
    std::memcpy(data, picture, pictureLength);
    len = pictureLength;
    return true;
}

using QlxApiSnapshot = QlxApiWorld;

TEST_F(QlxApiSnapshot, WithoutAPictureTheAnswerIsErrorOne)
{
    picture = nullptr;
    EXPECT_EQ("HTTP/1.1 400 Bad Request\r\n"
              "Content-type: text/html\r\n"
              "Content-Length: 130\r\n"
              "Connection: close\r\n"
              "AuthInfo: \r\n"
              "\r\n"
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<config version=\"1.0\" xmlns=\"http://www.qlx.example/ver10\" status=\"failed\" errorCode=\"1\"/>\n",
              Ask("GetSnapshot/7"));
    EXPECT_EQ(7u, askedChannel);
}

TEST_F(QlxApiSnapshot, PictureGoesOutAsItIs)
{
    picture = "\xFF\xD8\0<";
    pictureLength = 4;
    EXPECT_EQ(std::string("HTTP/1.1 200 OK\r\n"
                          "Content-type: image/png\r\n"
                          "Content-Length: 4\r\n"
                          "Connection: close\r\n"
                          "AuthInfo: \r\n"
                          "\r\n") +
                  std::string(picture, 4),
              Ask("GetSnapshot", "any body", ""));
    EXPECT_EQ(1u, askedChannel);
    EXPECT_TRUE(m_device.CallLog().empty()); // no right is asked for
}
