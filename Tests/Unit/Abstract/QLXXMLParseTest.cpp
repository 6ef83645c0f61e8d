#include "QLXXMLParse.h"

#include "SysHelper.h"
#include "TempDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace
{

const std::string EMPTY_DOCUMENT = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
const std::string DECLARATION = EMPTY_DOCUMENT + "\n";
const _GUID GUID = {0x00C0FFEE, 0xBEEF, 0x0123, {0x01, 0x02, 0x03, 0x04, 0xAA, 0xBB, 0xCC, 0x0D}};
const char GUID_TEXT[] = "{00C0FFEE-BEEF-0123-0102-0304AABBCC0D}";

std::string Text(const CQLXXMLParse& document, const std::string& path)
{
    std::string text = "old";
    return document.GetValueStr(path, text) ? text : "(missing)" + text;
}

std::string NameOf(const CQLXXMLParse& document, unsigned int item)
{
    std::string name;
    return document.GetItemName(item, name) ? name : "(none)" + name;
}

std::string Repeat(const std::string& text, size_t count)
{
    std::string all;
    for (size_t i = 0; i < count; ++i)
    {
        all += text;
    }
    return all;
}

bool IsZero(const _GUID& guid)
{
    const _GUID zero = {};
    return std::memcmp(&zero, &guid, sizeof(guid)) == 0;
}

} // namespace

TEST(QLXXMLParse, EmptyDocumentHasADeclaration)
{
    CQLXXMLParse document;
    EXPECT_EQ(EMPTY_DOCUMENT, *document.GetDoc());
    EXPECT_EQ(0u, document.GetRootItem());
}

TEST(QLXXMLParse, ParsingConstructorsAddAMissingDeclaration)
{
    CQLXXMLParse text(std::string("<a/>"));
    EXPECT_EQ(DECLARATION + "<a/>\n", *text.GetDoc());
    CQLXXMLParse bytes("<a/><b/>", 4);
    EXPECT_EQ(DECLARATION + "<a/>\n", *bytes.GetDoc());
    CQLXXMLParse declared(std::string("<?xml version=\"1.0\"?><a/>"));
    EXPECT_EQ("<?xml version=\"1.0\"?>\n<a/>\n", *declared.GetDoc());
}

TEST(QLXXMLParse, LoadAddsNoDeclaration)
{
    CQLXXMLParse document;
    EXPECT_TRUE(document.LoadXML("<a/>"));
    EXPECT_EQ("<a/>\n", *document.GetDoc());
}

// A body that begins with a zero byte is no XML, not an empty text.
TEST(QLXXMLParse, ConstructorsTakeWhatIsNoXml)
{
    for (const std::string& xml : {std::string(), std::string("\0<a/>", 5), std::string("text"), std::string("<a>"),
                                   std::string("<a></b>"), std::string("<")})
    {
        CQLXXMLParse document(xml);
        EXPECT_EQ(EMPTY_DOCUMENT, *document.GetDoc()) << xml;
        EXPECT_EQ("(missing)", Text(document, "a")) << xml;
        CQLXXMLParse bytes(xml.data(), static_cast<unsigned int>(xml.size()));
        EXPECT_EQ(EMPTY_DOCUMENT, *bytes.GetDoc()) << xml;
    }
    CQLXXMLParse null(nullptr, 5);
    EXPECT_EQ(EMPTY_DOCUMENT, *null.GetDoc());
}

TEST(QLXXMLParse, FailedLoadLeavesAnEmptyDocument)
{
    CQLXXMLParse document(std::string("<a>1</a>"));
    EXPECT_FALSE(document.LoadXML("<b>"));
    EXPECT_EQ("(missing)", Text(document, "a"));
    EXPECT_EQ("(missing)", Text(document, "b"));
    EXPECT_TRUE(document.LoadXML("<c>2</c>"));
    EXPECT_EQ("2", Text(document, "c"));
}

TEST(QLXXMLParse, RefusesTooDeepNesting)
{
    CQLXXMLParse document;
    EXPECT_TRUE(document.LoadXML(Repeat("<a>", 90) + Repeat("</a>", 90)));
    EXPECT_FALSE(document.LoadXML(Repeat("<a>", 501) + Repeat("</a>", 501)));
    EXPECT_FALSE(document.LoadXML(Repeat("<a>", 1000000)));
    EXPECT_EQ(0u, document.GetRootItem());
}

// Memory and time to read a text grow with its length, not with its square.
TEST(QLXXMLParse, RefusesWhatCostsTooMuch)
{
    std::string attributes;
    for (int i = 0; i < 256; ++i)
    {
        attributes += " x" + std::to_string(i) + "=''";
    }
    CQLXXMLParse document;
    EXPECT_TRUE(document.LoadXML("<a" + attributes + "/>"));
    EXPECT_FALSE(document.LoadXML("<a" + attributes + " x=''/>"));
    EXPECT_TRUE(document.LoadXML("<a>" + Repeat("<b/>", 65535) + "</a>"));
    EXPECT_FALSE(document.LoadXML("<a>" + Repeat("<b/>", 65536) + "</a>"));
    EXPECT_TRUE(document.LoadXML("<a>" + Repeat("&#x", 64) + "</a>"));
    EXPECT_EQ(Repeat("&#x", 64), Text(document, "a"));
    EXPECT_FALSE(document.LoadXML("<a>" + Repeat("&#x", 65) + "</a>"));
    EXPECT_EQ(0u, document.GetRootItem());
}

// Blanks and line ends count, and an entity is its character.
TEST(QLXXMLParse, TextsAreReadAsTheyStand)
{
    const CQLXXMLParse document(std::string("<r><a>  x \t y\r\n </a><b>&lt;&#65;&#x42;&amp;&unknown;</b></r>"));
    EXPECT_EQ("  x \t y\n ", Text(document, "a"));
    EXPECT_EQ("<AB&&unknown;", Text(document, "b"));
}

TEST(QLXXMLParse, LoadsAndSavesFiles)
{
    const CTempDirectory directory;
    const std::string path = directory.Write("f.xml", "<a>1</a>");
    CQLXXMLParse document;
    EXPECT_TRUE(document.LoadFile(path));
    EXPECT_EQ("1", Text(document, "a"));
    document.SetValue("a", 2u);
    EXPECT_TRUE(document.SaveFile(""));
    EXPECT_EQ(DECLARATION + "<a>2</a>\n", directory.Read("f.xml"));
    EXPECT_TRUE(document.SaveFile(directory.Path("g.xml")));
    EXPECT_EQ(DECLARATION + "<a>2</a>\n", directory.Read("g.xml"));
    EXPECT_FALSE(document.SaveFile(directory.Path("missing/h.xml")));
}

TEST(QLXXMLParse, FailedFileLeavesAnEmptyDocument)
{
    const CTempDirectory directory;
    CQLXXMLParse document(std::string("<a/>"));
    EXPECT_FALSE(document.LoadFile(directory.Path("missing")));
    EXPECT_EQ(EMPTY_DOCUMENT, *document.GetDoc());
    EXPECT_FALSE(document.LoadFile(directory.Write("f", "<a>")));
    EXPECT_FALSE(document.LoadFile(directory.Write("f", "")));
    EXPECT_FALSE(document.LoadFile(directory.Path()));
}

struct PathCase
{
    const char* name;
    const char* path;
    const char* found; // text of the element
};

// In <r><a>A<b>B<b>BB</b></b><b>2</b></a><r>R</r></r>
const PathCase PATH_CASES[] = {
    {"Empty", "", "root"},
    {"Root", "r", "root"},
    {"WithTheRoot", "r/a", "A"},
    {"WithoutTheRoot", "a", "A"},
    {"Deeper", "r/a/b", "B"},
    {"FirstOfTwo", "a/b", "B"},
    // A component that names the place where the walk stands stays there.
    {"SameNameTwice", "a/b/b", "B"},
    {"RootTwice", "r/r", "root"},
    {"TrailingSeparators", "a/b//", "B"},
    {"RunOfSeparators", "a///b", "B"},
    {"LeadingSeparator", "/a", "(missing)"},
    {"OnlyASeparator", "/", "(missing)"},
    {"Unknown", "a/c", "(missing)"},
    {"BehindTheUnknown", "x/a", "(missing)"},
};

class Paths : public testing::TestWithParam<PathCase>
{
};

TEST_P(Paths, LeadToTheirElement)
{
    const CQLXXMLParse document(std::string("<r>root<a>A<b>B<b>BB</b></b><b>2</b></a><r>R</r></r>"));
    EXPECT_EQ(GetParam().found, Text(document, GetParam().path));
    EXPECT_EQ(std::string(GetParam().found) != "(missing)", document.GetFirstItem(GetParam().path) != 0);
}

INSTANTIATE_TEST_SUITE_P(QLXXMLParse, Paths, testing::ValuesIn(PATH_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(QLXXMLParse, RootsOwnNameIsTheRoot)
{
    const CQLXXMLParse document(std::string("<config><a/></config>"));
    EXPECT_NE(0u, document.GetRootItem());
    EXPECT_EQ(document.GetRootItem(), document.GetFirstItem("config"));
    EXPECT_EQ(document.GetRootItem(), document.GetFirstItem(""));
}

TEST(QLXXMLParse, ItemsWalkTheDocument)
{
    const CQLXXMLParse document(std::string("<r>t<a/><!-- c --><b/><a><c/></a></r>"));
    const unsigned int first = document.GetChildItem(document.GetRootItem());
    EXPECT_EQ("a", NameOf(document, first));
    const unsigned int second = document.GetNextSiblingItem(first);
    EXPECT_EQ("b", NameOf(document, second));
    const unsigned int third = document.GetNextSiblingItemByName(first, "a");
    EXPECT_EQ(third, document.GetNextSiblingItem(second));
    EXPECT_EQ("c", NameOf(document, document.GetChildItem(third)));
    EXPECT_EQ("c", NameOf(document, document.GetFirstItem(third, "c")));
    EXPECT_EQ(third, document.GetFirstItem(third, "a")); // its own name stays
    EXPECT_EQ(0u, document.GetNextSiblingItem(third));
    EXPECT_EQ(0u, document.GetNextSiblingItemByName(third, "a"));
    EXPECT_EQ(0u, document.GetChildItem(first));
}

TEST(QLXXMLParse, CountsChildElements)
{
    const CQLXXMLParse document(std::string("<r>t<a/><!-- c --><b/><a/></r>"));
    EXPECT_EQ(3u, document.GetChildrenLength("r", ""));
    EXPECT_EQ(2u, document.GetChildrenLength("r", "a"));
    EXPECT_EQ(3u, document.GetChildrenLength(document.GetRootItem(), ""));
    EXPECT_EQ(1u, document.GetChildrenLength(document.GetRootItem(), "b"));
    EXPECT_EQ(0u, document.GetChildrenLength("x", ""));
    EXPECT_EQ(0u, document.GetChildrenLength(0, ""));
}

TEST(QLXXMLParse, NoItemReadsAsNothing)
{
    const CQLXXMLParse document(std::string("<r><a>1</a></r>"));
    for (const unsigned int item : {0u, 99u})
    {
        EXPECT_EQ(0u, document.GetFirstItem(item, "a"));
        EXPECT_EQ(0u, document.GetFirstItem(item, ""));
        EXPECT_EQ(0u, document.GetChildItem(item));
        EXPECT_EQ(0u, document.GetNextSiblingItem(item));
        EXPECT_EQ(0u, document.GetNextSiblingItemByName(item, "a"));
        EXPECT_EQ("(none)", NameOf(document, item));
        std::string text = "old";
        EXPECT_FALSE(document.GetValueStr(item, text));
        EXPECT_EQ("", text);
        text = "old";
        EXPECT_FALSE(document.GetValueStr(item, "a", text));
        EXPECT_EQ("", text);
        text = "old";
        EXPECT_FALSE(document.GetXMLData(item, text));
        EXPECT_EQ("", text);
        text = "old";
        EXPECT_FALSE(document.GetChildrenXMLData(item, text));
        EXPECT_EQ("", text);
        std::map<std::string, std::string> attributes;
        EXPECT_DEATH(document.GetAttributes(item, attributes), "");
    }
}

TEST(QLXXMLParse, ItemOfADeletedElementIsNone)
{
    CQLXXMLParse document(std::string("<r><a><b><c/></b></a><d/></r>"));
    const unsigned int a = document.GetFirstItem("a");
    const unsigned int c = document.GetFirstItem("a/b/c");
    const unsigned int d = document.GetFirstItem("d");
    EXPECT_TRUE(document.DeleteValue("a"));
    EXPECT_EQ("(none)", NameOf(document, a));
    EXPECT_EQ("(none)", NameOf(document, c));
    EXPECT_EQ("d", NameOf(document, d));
    const unsigned int added = document.AddElement("e", "", false);
    EXPECT_NE(a, added);
    EXPECT_NE(c, added);
    EXPECT_EQ("(none)", NameOf(document, a));
}

TEST(QLXXMLParse, ItemsOfReplacedChildrenAreNone)
{
    CQLXXMLParse document(std::string("<r><a><b/></a><d/>t</r>"));
    const unsigned int b = document.GetFirstItem("a/b");
    const unsigned int d = document.GetFirstItem("d");
    const unsigned int r = document.GetRootItem();
    EXPECT_TRUE(document.DeleteChildrenValue("r"));
    EXPECT_EQ("(none)", NameOf(document, b));
    EXPECT_EQ("(none)", NameOf(document, d));
    EXPECT_EQ("r", NameOf(document, r));
    EXPECT_EQ(DECLARATION + "<r/>\n", *document.GetDoc());
}

TEST(QLXXMLParse, ItemsOfAFormerDocumentAreNone)
{
    CQLXXMLParse document(std::string("<r><a/></r>"));
    const unsigned int r = document.GetRootItem();
    const unsigned int a = document.GetFirstItem("a");
    EXPECT_TRUE(document.LoadXML("<r><a/></r>"));
    EXPECT_EQ("(none)", NameOf(document, r));
    EXPECT_EQ("(none)", NameOf(document, a));
    EXPECT_EQ("r", NameOf(document, document.GetRootItem()));
    EXPECT_NE(r, document.GetRootItem());
}

TEST(QLXXMLParse, DeletesByItem)
{
    CQLXXMLParse document(std::string("<r><a/><a><b/></a></r>"));
    const unsigned int second = document.GetNextSiblingItem(document.GetFirstItem("a"));
    EXPECT_TRUE(document.DeleteChildrenValue(second));
    EXPECT_TRUE(document.DeleteValue(document.GetFirstItem("a")));
    EXPECT_EQ(second, document.GetFirstItem("a"));
    EXPECT_TRUE(document.DeleteValue("")); // the root
    EXPECT_EQ(0u, document.GetRootItem());
}

// An empty text is a text node all the same, so an end tag is written.
TEST(QLXXMLParse, AddsElementsBelowDocumentRootAndItem)
{
    CQLXXMLParse document;
    const unsigned int root = document.AddElement("config", "", false);
    EXPECT_EQ(document.GetRootItem(), root);
    const unsigned int inner = document.AddElement("a/b", "1", false);
    EXPECT_EQ("b", NameOf(document, inner));
    document.AddElement("a", "x<y", true);
    document.AddElement(inner, "c", "<", false);
    EXPECT_EQ(DECLARATION +
                  "<config><a><b>1<c>&lt;</c>\n        </b>\n    </a>\n    <a><![CDATA[x<y]]></a>\n</config>\n",
              *document.GetDoc());
}

TEST(QLXXMLParse, AddOfAnEmptyPathDoesNothing)
{
    CQLXXMLParse document(std::string("<a/>"));
    EXPECT_EQ(0u, document.AddElement("", "1", false));
    EXPECT_EQ(0u, document.AddElement(document.GetRootItem(), "", "1", false));
    EXPECT_EQ(DECLARATION + "<a/>\n", *document.GetDoc());
}

TEST(QLXXMLParse, AddsValuesOfEveryType)
{
    CQLXXMLParse document(std::string("<r/>"));
    document.AddValue("s", "text", true);
    document.AddValue("u", 4294967295u);
    document.AddValue("g", GUID);
    document.AddValue_i32("i", -2147483647 - 1);
    document.AddValue_ui64("l", 18446744073709551615ULL);
    const unsigned int item = document.AddValue("n", "", false);
    document.AddValue(item, "s", "text", false);
    document.AddValue(item, "u", 7u);
    document.AddValue(item, "g", GUID);
    document.AddValue_i32(item, "i", -7);
    document.AddValue_ui64(item, "l", 7);
    std::string xml;
    EXPECT_TRUE(document.GetChildrenXMLData("r", xml));
    const std::string guid = GUID_TEXT;
    EXPECT_EQ("<s><![CDATA[text]]></s>\n\n<u>4294967295</u>\n\n<g>" + guid +
                  "</g>\n\n<i>-2147483648</i>\n\n<l>18446744073709551615</l>\n\n<n><s>text</s>\n    <u>7</u>\n    <g>" +
                  guid + "</g>\n    <i>-7</i>\n    <l>7</l>\n</n>\n",
              xml);
}

TEST(QLXXMLParse, SetsValuesOfEveryType)
{
    CQLXXMLParse document(std::string("<r><a/></r>"));
    const unsigned int item = document.GetFirstItem("a");
    EXPECT_TRUE(document.SetValue("a", "x<y", false));
    EXPECT_EQ("x<y", Text(document, "a"));
    EXPECT_TRUE(document.SetValue("a", 4294967295u));
    EXPECT_EQ("4294967295", Text(document, "a"));
    EXPECT_TRUE(document.SetValue("a", GUID));
    EXPECT_EQ(GUID_TEXT, Text(document, "a"));
    EXPECT_TRUE(document.SetValue_i32("a", -5));
    EXPECT_EQ("-5", Text(document, "a"));
    EXPECT_TRUE(document.SetValue_ui64("a", 18446744073709551615ULL));
    EXPECT_EQ("18446744073709551615", Text(document, "a"));
    EXPECT_TRUE(document.SetValue(item, "text", false));
    EXPECT_EQ("text", Text(document, "a"));
    EXPECT_TRUE(document.SetValue(item, 6u));
    EXPECT_EQ("6", Text(document, "a"));
    EXPECT_TRUE(document.SetValue(item, GUID));
    EXPECT_EQ(GUID_TEXT, Text(document, "a"));
    EXPECT_TRUE(document.SetValue_i32(item, -6));
    EXPECT_EQ("-6", Text(document, "a"));
    EXPECT_TRUE(document.SetValue_ui64(item, 6));
    EXPECT_EQ("6", Text(document, "a"));
}

TEST(QLXXMLParse, SetBelowAnItemTellsWhatIsMissing)
{
    CQLXXMLParse document(std::string("<r><a/></r>"));
    const unsigned int root = document.GetRootItem();
    EXPECT_TRUE(document.SetValue(root, "a", std::string("text"), false));
    EXPECT_EQ("text", Text(document, "a"));
    EXPECT_TRUE(document.SetValue(root, "a", 7u));
    EXPECT_EQ("7", Text(document, "a"));
    EXPECT_TRUE(document.SetValue(root, "a", GUID));
    EXPECT_EQ(GUID_TEXT, Text(document, "a"));
    EXPECT_TRUE(document.SetValue_i32(root, "a", -7));
    EXPECT_EQ("-7", Text(document, "a"));
    EXPECT_TRUE(document.SetValue_ui64(root, "a", 8));
    EXPECT_EQ("8", Text(document, "a"));
    EXPECT_FALSE(document.SetValue(root, "b", std::string("text"), false));
    EXPECT_FALSE(document.SetValue(root, "b", 7u));
    EXPECT_FALSE(document.SetValue(root, "b", GUID));
    EXPECT_FALSE(document.SetValue_i32(root, "b", -7));
    EXPECT_FALSE(document.SetValue_ui64(root, "b", 7));
}

TEST(QLXXMLParse, CDataFollowsTheLastSet)
{
    CQLXXMLParse document(std::string("<r><a><![CDATA[]]></a></r>"));
    std::string xml;
    document.SetValue("a", "x<y", true);
    EXPECT_TRUE(document.GetXMLData("a", xml));
    EXPECT_EQ("<a><![CDATA[x<y]]></a>\n", xml);
    document.SetValue("a", "x<y", false);
    EXPECT_TRUE(document.GetXMLData("a", xml));
    EXPECT_EQ("<a>x&lt;y</a>\n", xml);
}

TEST(QLXXMLParse, TextGoesInFrontOfAFirstChildThatIsNone)
{
    CQLXXMLParse document(std::string("<r><a><b/></a><c><!-- c --></c></r>"));
    document.SetValue("a", "1", false);
    document.SetValue("c", "2", false);
    EXPECT_EQ("1", Text(document, "a"));
    EXPECT_NE(0u, document.GetFirstItem("a/b"));
    std::string xml;
    document.GetXMLData("c", xml);
    EXPECT_EQ("<c>2<!-- c --></c>\n", xml);
}

TEST(QLXXMLParse, ReadsTexts)
{
    const CQLXXMLParse document(std::string("<config><a/><b>text</b><c><![CDATA[x<y]]></c></config>"));
    EXPECT_EQ("", Text(document, "config/a"));
    EXPECT_EQ("text", Text(document, "b"));
    EXPECT_EQ("x<y", Text(document, "c"));
    EXPECT_EQ("(missing)", Text(document, "d"));
}

struct NumberCase
{
    const char* name;
    const char* text;
    unsigned int dword;
    int i32;
    unsigned long long ui64;
};

const NumberCase NUMBER_CASES[] = {
    {"Empty", "", 0, 0, 0},
    {"Plain", "42", 42, 42, 42},
    {"Blanks", " 42 ", 42, 42, 42},
    {"Words", "forty", 0, 0, 0},
    {"NumberFirst", "42x", 42, 42, 42},
    {"Negative", "-1", 4294967295u, -1, 18446744073709551615ULL},
    {"LargestDword", "4294967295", 4294967295u, -1, 4294967295ULL},
    {"Largest64", "18446744073709551615", 4294967295u, -1, 18446744073709551615ULL},
};

class Numbers : public testing::TestWithParam<NumberCase>
{
};

TEST_P(Numbers, AreReadFromTextsAndAttributes)
{
    CQLXXMLParse document(std::string("<r><a/></r>"));
    document.SetValue("a", GetParam().text, false);
    document.SetAttribute("a", "n", std::string(GetParam().text));
    const unsigned int root = document.GetRootItem();
    const unsigned int item = document.GetFirstItem("a");
    unsigned int dword = 9;
    unsigned long long ui64 = 9;
    EXPECT_TRUE(document.GetValueDWORD("a", dword));
    EXPECT_EQ(GetParam().dword, dword);
    EXPECT_TRUE(document.GetValueDWORD(item, dword));
    EXPECT_EQ(GetParam().dword, dword);
    EXPECT_TRUE(document.GetValueDWORD(root, "a", dword));
    EXPECT_EQ(GetParam().dword, dword);
    EXPECT_TRUE(document.GetAttributeDWORD("a", "n", dword));
    EXPECT_EQ(GetParam().dword, dword);
    EXPECT_TRUE(document.GetAttributeDWORD(item, "n", dword));
    EXPECT_EQ(GetParam().dword, dword);
    EXPECT_TRUE(document.GetValue_ui64("a", ui64));
    EXPECT_EQ(GetParam().ui64, ui64);
    EXPECT_TRUE(document.GetValue_ui64(item, ui64));
    EXPECT_EQ(GetParam().ui64, ui64);
    EXPECT_TRUE(document.GetValue_ui64(root, "a", ui64));
    EXPECT_EQ(GetParam().ui64, ui64);
    EXPECT_TRUE(document.GetAttribute_ui64("a", "n", ui64));
    EXPECT_EQ(GetParam().ui64, ui64);
    EXPECT_TRUE(document.GetAttribute_ui64(item, "n", ui64));
    EXPECT_EQ(GetParam().ui64, ui64);
    if (GetParam().ui64 <= 0x7FFFFFFF || GetParam().i32 == -1)
    {
        int i32 = 9;
        EXPECT_TRUE(document.GetValue_i32("a", i32));
        EXPECT_EQ(GetParam().i32, i32);
        EXPECT_TRUE(document.GetValue_i32(item, i32));
        EXPECT_EQ(GetParam().i32, i32);
        EXPECT_TRUE(document.GetValue_i32(root, "a", i32));
        EXPECT_EQ(GetParam().i32, i32);
        EXPECT_TRUE(document.GetAttribute_i32("a", "n", i32));
        EXPECT_EQ(GetParam().i32, i32);
        EXPECT_TRUE(document.GetAttribute_i32(item, "n", i32));
        EXPECT_EQ(GetParam().i32, i32);
    }
}

INSTANTIATE_TEST_SUITE_P(QLXXMLParse, Numbers, testing::ValuesIn(NUMBER_CASES),
                         [](const auto& row) { return row.param.name; });

TEST(QLXXMLParse, MissingNumbersAreZero)
{
    const CQLXXMLParse document(std::string("<r><a/></r>"));
    unsigned int dword = 9;
    int i32 = 9;
    unsigned long long ui64 = 9;
    _GUID guid = GUID;
    EXPECT_FALSE(document.GetValueDWORD("x", dword));
    EXPECT_FALSE(document.GetValue_i32("x", i32));
    EXPECT_FALSE(document.GetValue_ui64("x", ui64));
    EXPECT_FALSE(document.GetValueGUID("x", guid));
    EXPECT_EQ(0u, dword);
    EXPECT_EQ(0, i32);
    EXPECT_EQ(0u, ui64);
    EXPECT_TRUE(IsZero(guid));
    dword = 9;
    i32 = 9;
    ui64 = 9;
    guid = GUID;
    std::string text = "old";
    EXPECT_FALSE(document.GetAttributeDWORD("a", "x", dword));
    EXPECT_FALSE(document.GetAttribute_i32("a", "x", i32));
    EXPECT_FALSE(document.GetAttribute_ui64("a", "x", ui64));
    EXPECT_FALSE(document.GetAttributeGUID("a", "x", guid));
    EXPECT_FALSE(document.GetAttributeStr("a", "x", text));
    EXPECT_EQ(0u, dword);
    EXPECT_EQ(0, i32);
    EXPECT_EQ(0u, ui64);
    EXPECT_TRUE(IsZero(guid));
    EXPECT_EQ("", text);
}

TEST(QLXXMLParse, ReadsGuids)
{
    CQLXXMLParse document(std::string("<r><a/><b/></r>"));
    _GUID guid = GUID;
    EXPECT_TRUE(document.GetValueGUID("a", guid)); // no text is the zero one
    EXPECT_TRUE(IsZero(guid));
    document.SetValue("a", GUID);
    document.SetAttribute("a", "g", GUID);
    EXPECT_TRUE(document.GetValueGUID("a", guid));
    EXPECT_EQ(0, std::memcmp(&GUID, &guid, sizeof(guid)));
    guid = _GUID();
    EXPECT_TRUE(document.GetValueGUID(document.GetRootItem(), "a", guid));
    EXPECT_EQ(0, std::memcmp(&GUID, &guid, sizeof(guid)));
    guid = _GUID();
    EXPECT_TRUE(document.GetValueGUID(document.GetFirstItem("a"), guid));
    EXPECT_EQ(0, std::memcmp(&GUID, &guid, sizeof(guid)));
    guid = _GUID();
    EXPECT_TRUE(document.GetAttributeGUID("a", "g", guid));
    EXPECT_EQ(0, std::memcmp(&GUID, &guid, sizeof(guid)));
    guid = _GUID();
    EXPECT_TRUE(document.GetAttributeGUID(document.GetFirstItem("a"), "g", guid));
    EXPECT_EQ(0, std::memcmp(&GUID, &guid, sizeof(guid)));
    // Whoever wrote the document, text that is no GUID is told and ends nothing.
    document.SetValue("b", "no guid", false);
    EXPECT_FALSE(document.GetValueGUID("b", guid));
    EXPECT_TRUE(IsZero(guid));
}

TEST(QLXXMLParse, SetsAndDeletesAttributes)
{
    CQLXXMLParse document(std::string("<r/>"));
    const unsigned int root = document.GetRootItem();
    EXPECT_TRUE(document.SetAttribute("r", "s", std::string("x\"y")));
    EXPECT_TRUE(document.SetAttribute("r", "u", 4294967295u));
    EXPECT_TRUE(document.SetAttribute("r", "g", GUID));
    EXPECT_TRUE(document.SetAttribute_i32("r", "i", -1));
    EXPECT_TRUE(document.SetAttribute_ui64("r", "l", 18446744073709551615ULL));
    std::map<std::string, std::string> attributes = {{"old", "1"}};
    EXPECT_TRUE(document.GetAttributes("r", attributes));
    EXPECT_THAT(attributes, testing::ElementsAre(testing::Pair("g", GUID_TEXT), testing::Pair("i", "-1"),
                                                 testing::Pair("l", "18446744073709551615"), testing::Pair("s", "x\"y"),
                                                 testing::Pair("u", "4294967295")));
    EXPECT_TRUE(document.SetAttribute(root, "s", std::string("2")));
    EXPECT_TRUE(document.SetAttribute(root, "u", 2u));
    EXPECT_TRUE(document.SetAttribute(root, "g", GUID));
    EXPECT_TRUE(document.SetAttribute_i32(root, "i", 2));
    EXPECT_TRUE(document.SetAttribute_ui64(root, "l", 2));
    EXPECT_TRUE(document.DeleteAttribute("r", "g"));
    EXPECT_TRUE(document.DeleteAttribute(root, "i"));
    EXPECT_TRUE(document.GetAttributes(root, attributes));
    EXPECT_THAT(attributes,
                testing::ElementsAre(testing::Pair("l", "2"), testing::Pair("s", "2"), testing::Pair("u", "2")));
    std::string text;
    EXPECT_TRUE(document.GetAttributeStr("r", "s", text));
    EXPECT_EQ("2", text);
    EXPECT_TRUE(document.GetAttributeStr(root, "l", text));
    EXPECT_EQ("2", text);
}

TEST(QLXXMLParse, PrintsFragments)
{
    const CQLXXMLParse document(std::string("<r><a x=\"1\"><b>1</b><!--c--><b/></a></r>"));
    std::string xml;
    EXPECT_TRUE(document.GetXMLData("a", xml));
    EXPECT_EQ("<a x=\"1\">\n    <b>1</b>\n    <!--c-->\n    <b/>\n</a>\n", xml);
    EXPECT_TRUE(document.GetXMLData(document.GetFirstItem("a/b"), xml));
    EXPECT_EQ("<b>1</b>\n", xml);
    EXPECT_TRUE(document.GetChildrenXMLData("a", xml));
    EXPECT_EQ("<b>1</b>\n\n<!--c-->\n<b/>\n", xml);
    EXPECT_TRUE(document.GetChildrenXMLData(document.GetFirstItem("a/b"), xml));
    EXPECT_EQ("1", xml);
    EXPECT_FALSE(document.GetXMLData("x", xml));
    EXPECT_EQ("", xml);
}

TEST(QLXXMLParse, ClonesAnotherDocumentsNodes)
{
    CQLXXMLParse document(std::string("<r><a><z/></a></r>"));
    EXPECT_TRUE(document.CloneValue("a", "<?xml version=\"1.0\"?><b x=\"1\">1<c/></b><!--d-->"));
    EXPECT_TRUE(document.CloneValue(document.GetFirstItem("a"), "<e/>"));
    std::string xml;
    document.GetXMLData("a", xml);
    EXPECT_EQ("<a>\n    <z/>\n    <b x=\"1\">1<c/></b>\n    <!--d-->\n    <e/>\n</a>\n", xml);
    EXPECT_NE(0u, document.GetFirstItem("a/b/c"));
}

TEST(QLXXMLParse, CloneOfWhatIsNoXmlChangesNothing)
{
    CQLXXMLParse document(std::string("<r><a/></r>"));
    const std::string before = *document.GetDoc();
    for (const std::string& xml : {std::string("<b>"), std::string(), std::string("text"), Repeat("<b>", 501)})
    {
        EXPECT_FALSE(document.CloneValue("a", xml));
    }
    EXPECT_EQ(before, *document.GetDoc());
}

TEST(QLXXMLParse, DocumentKeepsItsLayout)
{
    CQLXXMLParse document(std::string("<r>\n  <a>1</a><b><c/></b>\n</r>"));
    EXPECT_EQ(DECLARATION + "<r>\n    <a>1</a>\n    <b>\n        <c/>\n    </b>\n</r>\n", *document.GetDoc());
    EXPECT_EQ(document.GetDoc(), document.GetDoc());
}

TEST(QLXXMLParseDeathTest, WritesToWhatIsNotThereEndTheProcess)
{
    CQLXXMLParse document(std::string("<r/>"));
    const char* const MESSAGE = "Assertion .pXMLElement != 0. failed";
    EXPECT_DEATH(document.SetValue("x", "1", false), MESSAGE);
    EXPECT_DEATH(document.SetValue(0, 1u), MESSAGE);
    EXPECT_DEATH(document.SetValue(0, "x", 1u), MESSAGE);
    EXPECT_DEATH(document.SetAttribute("x", "a", 1u), MESSAGE);
    EXPECT_DEATH(document.SetAttribute(0, "a", 1u), MESSAGE);
    EXPECT_DEATH(document.AddElement(0, "x", "", false), MESSAGE);
    EXPECT_DEATH(document.DeleteValue("x"), MESSAGE);
    EXPECT_DEATH(document.DeleteValue(0), MESSAGE);
    EXPECT_DEATH(document.DeleteChildrenValue("x"), MESSAGE);
    EXPECT_DEATH(document.DeleteChildrenValue(0), MESSAGE);
    EXPECT_DEATH(document.DeleteAttribute("x", "a"), MESSAGE);
    EXPECT_DEATH(document.DeleteAttribute(0, "a"), MESSAGE);
    EXPECT_DEATH(document.CloneValue("x", "<a/>"), MESSAGE);
    EXPECT_DEATH(document.CloneValue(0, "<a/>"), MESSAGE);
    std::map<std::string, std::string> attributes;
    EXPECT_DEATH(document.GetAttributes("x", attributes), MESSAGE);
    EXPECT_DEATH(document.GetAttributes(0, attributes), MESSAGE);
}

TEST(QLXXMLParseDeathTest, EmptyArgumentsEndTheProcess)
{
    CQLXXMLParse document;
    EXPECT_DEATH(document.LoadXML(""), "xml.empty");
    EXPECT_DEATH(document.LoadFile(""), "path.empty");
    EXPECT_DEATH(document.SaveFile(""), "target.empty");
}
