#include "XmlNesting.h"

#include "Limits.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string Repeat(const std::string& text, size_t count)
{
    std::string all;
    for (size_t i = 0; i < count; ++i)
    {
        all += text;
    }
    return all;
}

struct DepthCase
{
    const char* name;
    const char* xml;
    size_t depth;
};

const DepthCase DEPTH_CASES[] = {
    {"Empty", "", 0},
    {"NoXml", "a > b", 0},
    {"One", "<a/>", 1},
    {"Two", "<a><b/></a>", 2},
    {"Siblings", "<a><b/><b/><b></b><b x='1'/></a>", 2},
    {"DeepestInTheMiddle", "<a><b><c/></b><b/></a>", 3},
    {"WhiteSpace", "< a>\n< b >< / b ></ a>", 2},
    {"Declaration", "<?xml version='1.0'?><a/>", 1},
    {"Comment", "<a><!-- <b><c><d> --></a>", 1},
    {"CData", "<a><![CDATA[<b><c>]]></a>", 1},
    {"UnknownMarkup", "<!DOCTYPE a><a/>", 1},
    {"QuotedMarkup", "<a x='<b></a>' y=\"></a>\"><b><c/></b></a>", 3},
    {"QuoteInAQuote", "<a x=\"'\"><b/></a>", 2},
    {"SlashInAValue", "<a x='/'><b y='/'/><b/></a>", 2},
    {"ClosingTooOften", "</a></a><b><c/></b>", 2},
    {"CutInATag", "<a><b", 2},
    {"CutInAQuote", "<a><b x='", 2},
    {"CutInAComment", "<a><!-- <b>", 1},
    {"OnlyABracket", "<", 1},
};

class XmlNesting : public testing::TestWithParam<DepthCase>
{
};

} // namespace

TEST_P(XmlNesting, IsJudgedAtTheDepthAndOneBelow)
{
    EXPECT_FALSE(XmlNestsDeeperThan(GetParam().xml, GetParam().depth));
    if (GetParam().depth > 0)
    {
        EXPECT_TRUE(XmlNestsDeeperThan(GetParam().xml, GetParam().depth - 1));
    }
}

INSTANTIATE_TEST_SUITE_P(XmlNesting, XmlNesting, testing::ValuesIn(DEPTH_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(XmlNesting, LimitOfDocumentsIs500)
{
    EXPECT_EQ(500u, LIMIT_XML_NESTING);
    const std::string fits = Repeat("<a>", 500) + Repeat("</a>", 500);
    const std::string deeper = Repeat("<a>", 501) + Repeat("</a>", 501);
    EXPECT_FALSE(XmlNestsDeeperThan(fits, LIMIT_XML_NESTING));
    EXPECT_TRUE(XmlNestsDeeperThan(deeper, LIMIT_XML_NESTING));
}

TEST(XmlNesting, ManyElementsSideBySideAreNotDeep)
{
    EXPECT_FALSE(XmlNestsDeeperThan("<a>" + Repeat("<b></b>", 10000) + "</a>", 2));
}
