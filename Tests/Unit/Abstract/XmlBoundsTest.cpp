#include "XmlBounds.h"

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

const size_t MANY = 1000000;

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
    EXPECT_TRUE(XmlIsWithin({GetParam().depth, MANY, MANY, MANY}, GetParam().xml));
    if (GetParam().depth > 0)
    {
        EXPECT_FALSE(XmlIsWithin({GetParam().depth - 1, MANY, MANY, MANY}, GetParam().xml));
    }
}

INSTANTIATE_TEST_SUITE_P(XmlNesting, XmlNesting, testing::ValuesIn(DEPTH_CASES),
                         [](const auto& row) { return row.param.name; });

struct CountCase
{
    const char* name;
    const char* xml;
    size_t count;
};

// Each costs memory, whatever it is; a closing tag is none of its own.
const CountCase NODE_CASES[] = {
    {"Element", "<a></a>", 1},
    {"EmptyElement", "<a/>", 1},
    {"Siblings", "<a><b/><b/>text</a>", 3},
    {"Attributes", "<a x='1' y=\"2\"/>", 3},
    {"Declaration", "<?xml version='1.0'?><a/>", 2},
    {"Comment", "<a><!-- <b/> --></a>", 2},
    {"CData", "<a><![CDATA[<b/>]]></a>", 2},
    {"UnknownMarkup", "<!DOCTYPE a><a/>", 2},
    {"CutInAQuote", "<a x='1' y='", 3},
    {"CutInAComment", "<a><!-- <b>", 2},
};

class XmlNodes : public testing::TestWithParam<CountCase>
{
};

TEST_P(XmlNodes, AreCounted)
{
    EXPECT_TRUE(XmlIsWithin({MANY, GetParam().count, MANY, MANY}, GetParam().xml));
    EXPECT_FALSE(XmlIsWithin({MANY, GetParam().count - 1, MANY, MANY}, GetParam().xml));
}

INSTANTIATE_TEST_SUITE_P(XmlBounds, XmlNodes, testing::ValuesIn(NODE_CASES),
                         [](const auto& row) { return row.param.name; });

const CountCase ATTRIBUTE_CASES[] = {
    {"One", "<a x='1'/>", 1},
    {"OfTheElementWithMost", "<a x='1'><b x='1' y='2' z='3'/><c x='1'/></a>", 3},
    {"QuotesInTheOther", "<a x=\"'''\" y='\"\"'/>", 2},
    {"QuotesInText", "<a x='1'>'''\"\"</a>", 1},
    {"CutInTheLast", "<a x='1' y='2", 2},
};

class XmlAttributes : public testing::TestWithParam<CountCase>
{
};

TEST_P(XmlAttributes, AreCountedByElement)
{
    EXPECT_TRUE(XmlIsWithin({MANY, MANY, GetParam().count, MANY}, GetParam().xml));
    EXPECT_FALSE(XmlIsWithin({MANY, MANY, GetParam().count - 1, MANY}, GetParam().xml));
}

INSTANTIATE_TEST_SUITE_P(XmlBounds, XmlAttributes, testing::ValuesIn(ATTRIBUTE_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(XmlBounds, ReferencesWithoutAnEndAreCounted)
{
    const XML_BOUNDS two = {MANY, MANY, MANY, 2};
    EXPECT_TRUE(XmlIsWithin(two, "<a>&#x41;&#65;&#x10FFFF;&#0000000000000000000000000065;</a>"));
    EXPECT_TRUE(XmlIsWithin(two, "<a>&#x&#</a>"));
    EXPECT_FALSE(XmlIsWithin(two, "<a>&#x&#&#</a>"));
    EXPECT_FALSE(XmlIsWithin(two, "<a x='&#x'>&#<b>&#" + std::string(32, '1') + ";</b></a>"));
    EXPECT_TRUE(XmlIsWithin(two, "<a>&&& & &amp &lt &</a>"));
}

TEST(XmlBounds, ThoseOfDocuments)
{
    EXPECT_EQ(500u, XML_DOCUMENT_BOUNDS.nesting);
    EXPECT_EQ(65536u, XML_DOCUMENT_BOUNDS.nodes);
    EXPECT_EQ(256u, XML_DOCUMENT_BOUNDS.attributes);
    EXPECT_EQ(64u, XML_DOCUMENT_BOUNDS.openReferences);
}

TEST(XmlBounds, ManyElementsSideBySideAreNotDeep)
{
    EXPECT_TRUE(XmlIsWithin({2, MANY, MANY, MANY}, "<a>" + Repeat("<b></b>", 10000) + "</a>"));
}
