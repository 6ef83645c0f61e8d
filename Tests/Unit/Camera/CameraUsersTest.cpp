#include "CameraUsers.h"

#include <gtest/gtest.h>

namespace
{

/// The text of an HTTP request, as the library writes it around what the client sent.
std::string Verify(const std::string& name, const std::string& password, const std::string& ip = "192.168.1.7")
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo>\t<username>" + name + "</username>\t<password>" +
           password + "</password>\t<ip>" + ip + "</ip></userinfo>";
}

/// The same of an RTSP request: without the tabs.
std::string RtspVerify(const std::string& name, const std::string& password)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><userinfo><username>" + name + "</username><password>" +
           password + "</password><ip>10.0.0.2</ip></userinfo>";
}

CCameraUsers TwoUsers()
{
    return CCameraUsers({{"admin", "secret"}, {"guest", "a<b&c>\"'"}});
}

} // namespace

TEST(CameraUsers, KnowsUsersByNameAndPassword)
{
    const CCameraUsers users = TwoUsers();
    EXPECT_TRUE(users.IsKnown(Verify("admin", "secret").c_str()));
    EXPECT_TRUE(users.IsKnown(RtspVerify("admin", "secret").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("admin", "Secret").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("admin", "secret1").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("admin", "secre").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("Admin", "secret").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("guest", "secret").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("", "").c_str()));
}

TEST(CameraUsers, TakesPasswordsThatAreNoXml)
{
    EXPECT_TRUE(TwoUsers().IsKnown(Verify("guest", "a<b&c>\"'").c_str()));
    EXPECT_FALSE(TwoUsers().IsKnown(Verify("guest", "a&lt;b&amp;c>\"'").c_str()));
}

// A client writes the name and the password: none of these tricks stands for knowing one.
TEST(CameraUsers, IsNotFooledByMarkupInANameOrPassword)
{
    const CCameraUsers users = TwoUsers();
    EXPECT_FALSE(users.IsKnown(Verify("admin</username>", "secret").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("admin", "x</password><password>").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("admin<!--", "-->").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("admin", "</password></userinfo>").c_str()));
    EXPECT_FALSE(users.IsKnown(Verify("x", "y", "<username>admin</username>").c_str()));
    EXPECT_FALSE(users.IsKnown((Verify("admin", "secret") + "<x/>").c_str()));
    EXPECT_FALSE(users.IsKnown(("<x/>" + Verify("admin", "secret")).c_str()));
}

TEST(CameraUsers, KnowsNobodyInATextCutAnywhere)
{
    const CCameraUsers users = TwoUsers();
    const std::string whole = Verify("admin", "secret");
    for (std::size_t length = 0; length < whole.size(); ++length)
    {
        EXPECT_FALSE(users.IsKnown(whole.substr(0, length).c_str())) << length;
    }
    EXPECT_FALSE(users.IsKnown(nullptr));
}

TEST(CameraUsers, AnIPv6AddressIsAnAddress)
{
    EXPECT_TRUE(TwoUsers().IsKnown(Verify("admin", "secret", "fe80::1").c_str()));
    EXPECT_TRUE(TwoUsers().IsKnown(Verify("admin", "secret", "").c_str()));
}

TEST(CameraUsers, NamesTheUserOfAText)
{
    const CCameraUsers users = TwoUsers();
    EXPECT_EQ("admin", users.NameOf(Verify("admin", "secret").c_str()));
    EXPECT_EQ("guest", users.NameOf(Verify("guest", "a<b&c>\"'").c_str()));
    EXPECT_EQ("", users.NameOf(Verify("admin", "wrong").c_str()));
}

TEST(CameraUsers, KnowsNamesWithTheirOwnPasswordsOnly)
{
    const CCameraUsers users = TwoUsers();
    EXPECT_TRUE(users.IsKnown("admin", "secret"));
    EXPECT_FALSE(users.IsKnown("guest", "secret"));
    EXPECT_FALSE(users.IsKnown("", ""));
}

TEST(CameraUsers, ReplacedUsersHoldAtOnce)
{
    CCameraUsers users = TwoUsers();
    users.Replace({{"admin", "new"}});
    EXPECT_FALSE(users.IsKnown(Verify("admin", "secret").c_str()));
    EXPECT_TRUE(users.IsKnown(Verify("admin", "new").c_str()));
    EXPECT_EQ(1U, users.List().size());
}
