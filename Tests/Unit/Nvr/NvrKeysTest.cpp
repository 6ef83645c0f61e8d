#include "NvrKeys.h"

#include "HttpClient.h"

#include <gtest/gtest.h>

#include <set>

namespace
{

bool HasTwins(const std::vector<NvrKey>& keys)
{
    std::set<std::string> names;
    for (const NvrKey& key : keys)
    {
        names.insert(key.name);
    }
    return names.size() != keys.size();
}

} // namespace

// The library ends the process on a key that it does not know. The socket service is down, so nothing waits.
TEST(NvrKeys, AreTheKeysOfTheLibrary)
{
    CHttpClient client("", "", "127.0.0.1", 1);
    for (const NvrKey& key : NvrGetKeys())
    {
        char* response = nullptr;
        client.GetCfg(std::string("<Get><") + key.name + "/></Get>", response, nullptr);
        delete[] response;
    }
    for (const NvrKey& key : NvrSetKeys())
    {
        std::string response;
        client.SetCfg(std::string("<Set><") + key.name + "/></Set>", response);
    }
    EXPECT_EQ(21U, NvrGetKeys().size());
    EXPECT_EQ(27U, NvrSetKeys().size());
    EXPECT_FALSE(HasTwins(NvrGetKeys()));
    EXPECT_FALSE(HasTwins(NvrSetKeys()));
}

TEST(NvrKeys, AreFoundAsTheyAreSpelled)
{
    ASSERT_NE(nullptr, FindNvrKey(NvrGetKeys(), "ipv4"));
    EXPECT_EQ(nullptr, FindNvrKey(NvrGetKeys(), "IPv4"));
    EXPECT_EQ(nullptr, FindNvrKey(NvrGetKeys(), ""));
    EXPECT_EQ(nullptr, FindNvrKey(NvrGetKeys(), "videoEncodeCfg"));
    EXPECT_EQ(nullptr, FindNvrKey(NvrSetKeys(), "videoEncoderCfg"));
}

TEST(NvrKeys, TellsWhatIsWrongWithTheKeysOfAGet)
{
    EXPECT_EQ("", GetKeysProblem({"ipv4", "dns"}));
    EXPECT_EQ("", GetKeysProblem({"pullMessages"}));
    EXPECT_EQ(0U, GetKeysProblem({"ipv4", "nix"}).find("'nix' is no key of a Get document; known are ipv4, dns,"));
    EXPECT_NE("", GetKeysProblem({"snapshotURI"}));
    EXPECT_NE("", GetKeysProblem({"pullMessages", "ipv4"}));
}

TEST(NvrKeys, MakesAGetDocument)
{
    EXPECT_EQ(
        "<Get version=\"1.0\" systemType=\"ipc\">\n"
        "    <ipv4>\n        <a>&lt;b&gt;</a>\n    </ipv4>\n"
        "    <profile>\n        <index>2</index>\n        <index>0</index>\n        <a>&lt;b&gt;</a>\n    </profile>\n"
        "    <streamURI>\n        <index>2</index>\n        <a>&lt;b&gt;</a>\n    </streamURI>\n"
        "</Get>\n",
        MakeGetDocument({"ipv4", "profile", "streamURI"}, {2, 0}, {{"a", "<b>"}}));
    EXPECT_EQ(
        "<Get version=\"1.0\" systemType=\"ipc\">\n    <profile>\n        <index>0</index>\n    </profile>\n</Get>\n",
        MakeGetDocument({"profile"}, {}, {}));
}

struct DocumentCase
{
    const char* document;
    const char* problem; // its beginning
};

class NvrSetDocument : public testing::TestWithParam<DocumentCase>
{
};

TEST_P(NvrSetDocument, IsCheckedBeforeTheLibrarySeesIt)
{
    const std::string problem = SetDocumentProblem(GetParam().document);
    EXPECT_EQ(0U, problem.find(GetParam().problem)) << problem;
    EXPECT_EQ(GetParam().problem[0] == '\0', problem.empty()) << problem;
}

// clang-format off
const DocumentCase DOCUMENT_CASES[] = {
    {"<Set><ipv4/></Set>",                        ""                                             },
    {"<?xml version=\"1.0\"?><Set><dns/></Set>",  ""                                             },
    {"<Set><!-- nothing --><dns/></Set>",         ""                                             },
    {"",                                          "line 0: not well-formed"                      },
    {"<Set>\n<dns>\n</Set>",                      "line "                                        },
    {"<Get><ipv4/></Get>",                        "the root element must be 'Set'"               },
    {"<a><Set><ipv4/></Set></a>",                 "the root element must be 'Set'"               },
    {"<Set/>",                                    "there is no key in it"                        },
    {"<Set>ipv4</Set>",                           "there is no key in it"                        },
    {"<Set>\n<ipv4/>\n<nix/>\n</Set>",            "line 3: 'nix' is no key of a Set document"    },
    {"<Set><x:ipv4/></Set>",                      "line 1: 'x:ipv4' is no key of a Set document" },
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Documents, NvrSetDocument, testing::ValuesIn(DOCUMENT_CASES));

TEST(NvrKeys, AreFoundInASetDocument)
{
    EXPECT_EQ((std::vector<std::string>{"dns", "motion"}), SetDocumentKeys("<Set><dns><ip/></dns><motion/></Set>"));
    EXPECT_TRUE(SetDocumentKeys("<Set/>").empty());
    EXPECT_TRUE(SetDocumentKeys("").empty());
}

TEST(NvrKeys, TellWhetherTheyNeedAProfile)
{
    EXPECT_TRUE(AnyNeedsProfile(NvrGetKeys(), {"dns", "presets"}));
    EXPECT_TRUE(AnyNeedsProfile(NvrGetKeys(), {"streamURI"}));
    EXPECT_TRUE(AnyNeedsProfile(NvrSetKeys(), {"ptzStop"}));
    EXPECT_FALSE(AnyNeedsProfile(NvrSetKeys(), {"dns", "motion"}));
    EXPECT_FALSE(AnyNeedsProfile(NvrSetKeys(), {"nix"}));
    EXPECT_FALSE(AnyNeedsProfile(NvrSetKeys(), {}));
}
