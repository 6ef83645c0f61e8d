#include "ControlRequest.h"

#include <gtest/gtest.h>

namespace
{

ControlRequest Read(const std::string& message)
{
    return ReadControlRequest(message.data(), message.size());
}

const std::string HEADER = "POST /camera HTTP/1.1\r\nHost: camera\r\nAuthorization: Basic YWRtaW46YTpi\r\n\r\n";

} // namespace

TEST(ControlRequest, ReadsLoginAndWords)
{
    const ControlRequest request = Read(HEADER + "ORBIT-700  sensor 0\tclose \r\n");
    EXPECT_TRUE(request.isControl);
    EXPECT_EQ("admin", request.user);
    EXPECT_EQ("a:b", request.password); // the first colon ends the name
    EXPECT_EQ((std::vector<std::string>{"sensor", "0", "close"}), request.words);
}

TEST(ControlRequest, HeaderNamesAndTheSchemeAreReadInAnyCase)
{
    const ControlRequest request =
        Read("POST / HTTP/1.1\r\nAUTHORIZATION:basic   YWRtaW46YTpi\r\n\r\nORBIT-700 status");
    EXPECT_EQ("admin", request.user);
}

TEST(ControlRequest, OtherMessagesAreNone)
{
    for (const std::string& message :
         {std::string(), std::string("POST / HTTP/1.1\r\n"), "GET" + HEADER.substr(4) + "ORBIT-700 status",
          HEADER + "the mark ORBIT-700 is not in front", HEADER, HEADER + "queryQRInfo",
          HEADER + "ORBIT-700 " + std::string(200, 'x')})
    {
        EXPECT_FALSE(Read(message).isControl) << message;
    }
}

TEST(ControlRequest, ALoginThatCannotBeReadIsNone)
{
    for (const char* line :
         {"Authorization: Basic", "Authorization: Basic *", "Authorization: Basic YWRtaW4=", "X: Basic YWRtaW46YTpi"})
    {
        const ControlRequest request = Read(std::string("POST / HTTP/1.1\r\n") + line + "\r\n\r\nORBIT-700 status");
        EXPECT_TRUE(request.isControl);
        EXPECT_EQ("", request.user) << line;
        EXPECT_EQ("", request.password) << line;
    }
}

TEST(ControlRequest, AMessageThatIsCutAnywhereIsReadSafely)
{
    const std::string whole = HEADER + "ORBIT-700 status";
    for (std::size_t length = 0; length < whole.size(); ++length)
    {
        const std::vector<char> exact(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        ReadControlRequest(exact.data(), exact.size());
    }
}
