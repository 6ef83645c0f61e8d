#include "OnvifXmlParse.h"

#include "SysHelper.h"
#include "TempDirectory.h"

#include <gtest/gtest.h>

namespace
{

const std::string SOAP = "http://www.w3.org/2003/05/soap-envelope";
const std::string SCHEMA = "http://www.onvif.org/ver10/schema";

/// A document whose root binds `x` to a namespace and holds an element of that prefix.
std::string Bound(const std::string& uri)
{
    return "<root xmlns:x=\"" + uri + "\"><x:e>found</x:e></root>";
}

std::string ValueAt(const COnvifXmlParse& document, const std::string& path)
{
    std::string value;
    return document.GetValueStr(path, value) ? value : "missing";
}

struct NamespaceCase
{
    const char* prefix;
    const char* uri;
};

// clang-format off
const NamespaceCase NAMESPACES[] = {
    {"s",     "http://www.w3.org/2003/05/soap-envelope"},
    {"tds",   "http://www.onvif.org/ver10/device/wsdl"},
    {"tt",    "http://www.onvif.org/ver10/schema"},
    {"dis",   "http://schemas.xmlsoap.org/ws/2005/04/discovery"},
    {"ad",    "http://www.w3.org/2005/08/addressing"},
    {"addis", "http://schemas.xmlsoap.org/ws/2004/08/addressing"},
    {"nt",    "http://www.onvif.org/ver10/network/wsdl"},
    {"http",  "http://schemas.xmlsoap.org/wsdl/http"},
    {"ana",   "http://www.onvif.org/ver20/analytics/wsdl"},
    {"ew",    "http://www.onvif.org/ver10/events/wsdl"},
    {"img",   "http://www.onvif.org/ver20/imaging/wsdl"},
    {"dio",   "http://www.onvif.org/ver10/deviceIO/wsdl"},
    {"tp",    "http://docs.oasis-open.org/wsn/topics"},
    {"tp",    "http://www.onvif.org/ver10/event/topics"},     // never "et"
    {"ptzw",  "http://www.onvif.org/ver20/ptz/wsdl"},
    {"mdw",   "http://www.onvif.org/ver10/media/wsdl"},
    {"sto",   "http://www.onvif.org/ver10/storage/wsdl"},
    {"adw",   "http://www.w3.org/2006/05/addressing/wsdl"},
    {"wsdl",  "http://schemas.xmlsoap.org/wsdl/"},
    {"wsdl",  "http://schemas.xmlsoap.org/wsdl"},
    {"wsn",   "http://docs.oasis-open.org/wsn/b-2"},
    {"wsse",  "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-secext-1.0.xsd"},
    {"wsu",   "http://docs.oasis-open.org/wss/2004/01/oasis-200401-wss-wssecurity-utility-1.0.xsd"},
    {"ter",   "http://www.onvif.org/ver10/error"},
};
// clang-format on

TEST(OnvifXmlParse, KnowsEachNamespaceByTheEndOfItsUri)
{
    for (const NamespaceCase& one : NAMESPACES)
    {
        const COnvifXmlParse document(Bound(one.uri));
        EXPECT_EQ("found", ValueAt(document, std::string("root/") + one.prefix + ":e")) << one.uri;
        std::string name;
        EXPECT_TRUE(document.GetItemName(document.GetChildItem(document.GetRootItem()), name));
        EXPECT_EQ(std::string(one.prefix) + ":e", name) << one.uri;
    }
}

TEST(OnvifXmlParse, KnowsNoOtherNamespace)
{
    for (const char* uri : {"http://www.onvif.org/ver10/device/wsdl/", "http://schemas.xmlsoap.org/soap/envelope/", "",
                            "http://www.onvif.org/ver10/schema2", "http://schemas.xmlsoap.org/wsdl/soap", "/ptz/wsdl",
                            "ver10/schema", "ww.onvif.org/ver10/schema", "http://ww.w3.org/2005/08/addressing",
                            "http://example.org/ws/2004/08/addressing", "http://example.org/ver10/error",
                            "http://example.org/wsdl", "http://www.onvif.org/ver10/ptz/wsdl"})
    {
        const COnvifXmlParse document(Bound(uri));
        for (const NamespaceCase& one : NAMESPACES)
        {
            EXPECT_EQ("missing", ValueAt(document, std::string("root/") + one.prefix + ":e")) << uri << one.prefix;
        }
        EXPECT_EQ("found", ValueAt(document, "root/x:e")) << uri;
    }
}

TEST(OnvifXmlParse, TakesAUriInCapitals)
{
    EXPECT_EQ("found", ValueAt(COnvifXmlParse(Bound("HTTP://WWW.ONVIF.ORG/VER10/DEVICEIO/WSDL")), "root/dio:e"));
}

TEST(OnvifXmlParse, KeepsStandardPrefixesOfADocumentThatDeclaresNothing)
{
    const COnvifXmlParse document("<s:Envelope><s:Body><tds:X>1</tds:X></s:Body></s:Envelope>");
    EXPECT_EQ("1", ValueAt(document, "s:Envelope/s:Body/tds:X"));
}

TEST(OnvifXmlParse, ReadsTheDevicesPrefixesByTheStandardOnes)
{
    const COnvifXmlParse document("<env:Envelope xmlns:env=\"" + SOAP + "\" xmlns:s=\"" + SCHEMA +
                                  "\"><env:Body><s:X>1</s:X></env:Body></env:Envelope>");
    EXPECT_EQ("1", ValueAt(document, "s:Envelope/s:Body/tt:X"));
    EXPECT_EQ("1", ValueAt(document, "s:Envelope/s:Body/tt:X/"));
    EXPECT_EQ("missing", ValueAt(document, "s:Envelope/s:Body/s:X"));
}

// SOAP 1.1 ends in "/envelope/".
TEST(OnvifXmlParse, LeavesThePrefixOfAnOlderEnvelope)
{
    const COnvifXmlParse document("<SOAP-ENV:Envelope xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\">"
                                  "<SOAP-ENV:Body>1</SOAP-ENV:Body></SOAP-ENV:Envelope>");
    EXPECT_EQ("missing", ValueAt(document, "s:Envelope/s:Body"));
    EXPECT_EQ("1", ValueAt(document, "SOAP-ENV:Envelope/SOAP-ENV:Body"));
}

TEST(OnvifXmlParse, SeesDeclarationsOfTheRootOnly)
{
    const COnvifXmlParse document("<s:Envelope xmlns:s=\"" + SOAP + "\"><s:Body xmlns:a=\"" + SCHEMA +
                                  "\"><a:X>1</a:X></s:Body></s:Envelope>");
    EXPECT_EQ("missing", ValueAt(document, "s:Envelope/s:Body/tt:X"));
    EXPECT_EQ("1", ValueAt(document, "s:Envelope/s:Body/a:X"));
}

TEST(OnvifXmlParse, TakesTheLaterOfTwoPrefixesForOneNamespace)
{
    const COnvifXmlParse document("<root xmlns:b=\"" + SCHEMA + "\" xmlns:a=\"" + SCHEMA +
                                  "\"><a:e>a</a:e><b:e>b</b:e></root>");
    EXPECT_EQ("b", ValueAt(document, "root/tt:e"));
}

TEST(OnvifXmlParse, GivesTheSmallerOfTwoStandardPrefixesThatShareOne)
{
    // "tds" is bound to a namespace, and "ana" is the device's prefix for another one: both stand for "ana" then.
    const COnvifXmlParse document("<ana:root xmlns:ana=\"http://www.onvif.org/ver10/device/wsdl\"/>");
    std::string name;
    EXPECT_TRUE(document.GetItemName(document.GetRootItem(), name));
    EXPECT_EQ("ana:root", name);
}

// Documents without a prefix are not supported: this is what becomes of them.
TEST(OnvifXmlParse, DoesNotSupportAPlainDeclaration)
{
    const COnvifXmlParse document("<root xmlns=\"" + SCHEMA + "\"><e>a:b</e></root>");
    EXPECT_EQ("missing", ValueAt(document, "root/tt:e"));
    EXPECT_EQ("a:b", ValueAt(document, "root/e"));
    std::string name;
    EXPECT_TRUE(document.GetItemName(document.GetRootItem(), name));
    EXPECT_EQ("ttroot", name);
}

TEST(OnvifXmlParse, FindsDeclarationsAnywhereInTheNameOfAnAttribute)
{
    const COnvifXmlParse document("<root oddXMLNS:x=\"" + SCHEMA + "\" odderxmlnsy=\"" + SOAP +
                                  "\"><x:e>1</x:e><y:e>2</y:e></root>");
    EXPECT_EQ("1", ValueAt(document, "root/tt:e"));
    EXPECT_EQ("2", ValueAt(document, "root/s:e"));
}

TEST(OnvifXmlParse, KeepsThePrefixesOfAnEarlierDocumentThatTheNextDoesNotDeclare)
{
    COnvifXmlParse document(Bound(SCHEMA));
    EXPECT_TRUE(document.LoadXML("<root xmlns:y=\"" + SOAP + "\"><x:e>1</x:e><y:e>2</y:e></root>"));
    EXPECT_EQ("1", ValueAt(document, "root/tt:e"));
    EXPECT_EQ("2", ValueAt(document, "root/s:e"));
}

TEST(OnvifXmlParse, WhatCannotBeParsedIsEmpty)
{
    COnvifXmlParse document;
    EXPECT_FALSE(document.LoadXML("<a><b></a>"));
    EXPECT_EQ("missing", ValueAt(document, "a"));
    for (const char* text : {"", "<?xml version=\"1.0\"?>", "no document"})
    {
        EXPECT_EQ(0u, COnvifXmlParse(text).GetRootItem()) << text;
    }
}

TEST(OnvifXmlParse, LoadsAFile)
{
    const CTempDirectory directory;
    COnvifXmlParse document;
    EXPECT_TRUE(document.LoadFile(directory.Write("document.xml", Bound(SCHEMA))));
    EXPECT_EQ("found", ValueAt(document, "root/tt:e"));
    EXPECT_FALSE(document.LoadFile(directory.Path("missing.xml")));
}

TEST(OnvifXmlParse, GivesValuesThatLookLikeNamesStandardPrefixes)
{
    const COnvifXmlParse document("<root xmlns:env=\"" + SOAP + "\" xmlns:x=\"" + SCHEMA +
                                  "\"><code>env:Sender</code><time>2026-11-21T13:30:00Z</time><plain>env</plain>"
                                  "<url>http://10.0.0.1:80/env:a/x:b</url></root>");
    EXPECT_EQ("s:Sender", ValueAt(document, "root/code"));
    EXPECT_EQ("2026-11-21T13:30:00Z", ValueAt(document, "root/time"));
    EXPECT_EQ("env", ValueAt(document, "root/plain"));
    EXPECT_EQ("http://10.0.0.1:80/s:a/tt:b", ValueAt(document, "root/url")); // piece by piece, as a path
    std::string value;
    EXPECT_TRUE(document.GetValueStr(document.GetFirstItem("root/code"), value));
    EXPECT_EQ("s:Sender", value);
    EXPECT_TRUE(document.GetValueStr(document.GetRootItem(), "code", value));
    EXPECT_EQ("s:Sender", value);
    EXPECT_FALSE(document.GetValueStr(0u, value));
}

TEST(OnvifXmlParse, ChangesPrefixesComponentByComponent)
{
    const COnvifXmlParse document("<r xmlns:x=\"" + SCHEMA + "\" xmlns:env=\"" + SOAP + "\"/>");
    struct PathCase
    {
        const char* standard;
        const char* document;
    };
    for (const PathCase& one :
         {PathCase{"tt:a/s:b", "x:a/env:b"}, PathCase{"/tt:a/", "/x:a/"}, PathCase{"", ""},
          PathCase{"a//tt:b", "a//x:b"}, PathCase{"tt:a:s", "x:a:s"}, PathCase{"q:a", "q:a"}, PathCase{"tt/s", "tt/s"}})
    {
        std::string path = one.standard;
        document.ChangeNamespaces(path);
        EXPECT_EQ(one.document, path);
        document.ChangeNamespacesToStandard(path);
        EXPECT_EQ(one.standard, path);
    }
}

TEST(OnvifXmlParse, SearchesInLoweredText)
{
    EXPECT_EQ(2, COnvifXmlParse::InsensitiveFind("abCDcd", "cd", 0));
    EXPECT_EQ(4, COnvifXmlParse::InsensitiveFind("abCDcd", "cd", 3));
    EXPECT_EQ(-1, COnvifXmlParse::InsensitiveFind("abcd", "CD", 0)); // what is looked for is not lowered
    EXPECT_EQ(-1, COnvifXmlParse::InsensitiveFind("ab", "cd", 7));
    EXPECT_EQ(4, COnvifXmlParse::InsensitiveRightFind("abCDcD", "cd"));
    EXPECT_EQ(-1, COnvifXmlParse::InsensitiveRightFind("ab", "abc"));
    EXPECT_TRUE(COnvifXmlParse::CheckNamespace("a/B", "/b"));
    EXPECT_TRUE(COnvifXmlParse::CheckNamespace("/b/b", "/b"));
    EXPECT_FALSE(COnvifXmlParse::CheckNamespace("a/b/", "/b"));
    EXPECT_FALSE(COnvifXmlParse::CheckNamespace("b", "/b")); // shorter by one
    EXPECT_FALSE(COnvifXmlParse::CheckNamespace("", "/b"));
}

TEST(OnvifXmlParse, WritesByStandardPrefixes)
{
    _GUID guid{};
    CSysHelper::ReadGuid("{01234567-89AB-CDEF-0123-456789ABCDEF}", guid);
    COnvifXmlParse document("<x:r xmlns:x=\"" + SCHEMA + "\"><x:a/><x:b/></x:r>");
    const unsigned int root = document.GetRootItem();
    EXPECT_NE(0u, document.AddValue("tt:text", "t", true));
    EXPECT_NE(0u, document.AddValue("tt:number", 7u));
    EXPECT_NE(0u, document.AddValue("tt:guid", guid));
    EXPECT_NE(0u, document.AddValue_i32("tt:i32", -7));
    EXPECT_NE(0u, document.AddValue_ui64("tt:ui64", 1ULL << 40));
    EXPECT_NE(0u, document.AddValue(root, "tt:below/tt:text", "t", false));
    EXPECT_NE(0u, document.AddValue(root, "tt:n", 8u));
    EXPECT_NE(0u, document.AddValue(root, "tt:g", guid));
    EXPECT_NE(0u, document.AddValue_i32(root, "tt:i", -8));
    EXPECT_NE(0u, document.AddValue_ui64(root, "tt:u", 1ULL << 41));
    EXPECT_TRUE(document.SetAttribute("tt:a", "tt:name", "untranslated"));
    EXPECT_TRUE(document.SetAttribute("tt:a", "dword", 9u));
    EXPECT_TRUE(document.SetAttribute_i32("tt:a", "i32", -9));
    EXPECT_TRUE(document.SetAttribute_ui64("tt:a", "ui64", 1ULL << 42));
    EXPECT_TRUE(document.SetAttribute("tt:b", "guid", guid));
    EXPECT_TRUE(document.SetValue("tt:b", "text", false));
    EXPECT_EQ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<x:r xmlns:x=\"http://www.onvif.org/ver10/schema\">\n"
              "    <x:a tt:name=\"untranslated\" dword=\"9\" i32=\"-9\" ui64=\"4398046511104\"/>\n"
              "    <x:b guid=\"{01234567-89AB-CDEF-0123-456789ABCDEF}\">text</x:b>\n"
              "    <x:text><![CDATA[t]]></x:text>\n"
              "    <x:number>7</x:number>\n"
              "    <x:guid>{01234567-89AB-CDEF-0123-456789ABCDEF}</x:guid>\n"
              "    <x:i32>-7</x:i32>\n"
              "    <x:ui64>1099511627776</x:ui64>\n"
              "    <x:below>\n"
              "        <x:text>t</x:text>\n"
              "    </x:below>\n"
              "    <x:n>8</x:n>\n"
              "    <x:g>{01234567-89AB-CDEF-0123-456789ABCDEF}</x:g>\n"
              "    <x:i>-8</x:i>\n"
              "    <x:u>2199023255552</x:u>\n"
              "</x:r>\n",
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + *document.GetDoc());
}

TEST(OnvifXmlParse, SetsAndDeletesByStandardPrefixes)
{
    _GUID guid{};
    COnvifXmlParse document("<x:r xmlns:x=\"" + SCHEMA + "\"><x:a><x:c>1</x:c></x:a><x:d k=\"v\">1</x:d></x:r>");
    const unsigned int root = document.GetRootItem();
    EXPECT_TRUE(document.SetValue("tt:d", 5u));
    EXPECT_EQ("5", ValueAt(document, "tt:d"));
    EXPECT_TRUE(document.SetValue_i32("tt:d", -5));
    EXPECT_TRUE(document.SetValue_ui64("tt:d", 1ULL << 40));
    EXPECT_EQ("1099511627776", ValueAt(document, "tt:d"));
    EXPECT_TRUE(document.SetValue("tt:d", guid));
    EXPECT_TRUE(document.SetValue(root, "tt:d", "below", false));
    EXPECT_EQ("below", ValueAt(document, "tt:d"));
    EXPECT_TRUE(document.SetValue(root, "tt:d", 6u));
    EXPECT_TRUE(document.SetValue(root, "tt:d", guid));
    EXPECT_TRUE(document.SetValue_i32(root, "tt:d", -6));
    EXPECT_TRUE(document.SetValue_ui64(root, "tt:d", 66));
    EXPECT_EQ("66", ValueAt(document, "tt:d"));
    EXPECT_FALSE(document.SetValue(root, "tt:missing", "x", false));
    EXPECT_TRUE(document.DeleteAttribute("tt:d", "k"));
    EXPECT_TRUE(document.DeleteChildrenValue("tt:a"));
    EXPECT_TRUE(document.DeleteValue("tt:d"));
    EXPECT_EQ("<x:r xmlns:x=\"http://www.onvif.org/ver10/schema\">\n    <x:a/>\n</x:r>\n", *document.GetDoc());
}

TEST(OnvifXmlParse, ReadsTypesByStandardPrefixes)
{
    const std::string GUID = "{01234567-89AB-CDEF-0123-456789ABCDEF}";
    const COnvifXmlParse document("<x:r xmlns:x=\"" + SCHEMA + "\"><x:n a=\"12\" g=\"" + GUID + "\">34</x:n><x:g>" +
                                  GUID + "</x:g><x:n>2</x:n></x:r>");
    const unsigned int root = document.GetRootItem();
    unsigned int dword = 0;
    int i32 = 0;
    unsigned long long ui64 = 0;
    _GUID guid{};
    std::string text;
    std::map<std::string, std::string> attributes;
    EXPECT_TRUE(document.GetValueDWORD("tt:n", dword) && dword == 34);
    EXPECT_TRUE(document.GetValue_i32("tt:n", i32) && i32 == 34);
    EXPECT_TRUE(document.GetValue_ui64("tt:n", ui64) && ui64 == 34);
    EXPECT_TRUE(document.GetValueGUID("tt:g", guid) && guid.Data1 == 0x01234567);
    EXPECT_TRUE(document.GetValueDWORD(root, "tt:n", dword) && dword == 34);
    EXPECT_TRUE(document.GetValue_i32(root, "tt:n", i32) && i32 == 34);
    EXPECT_TRUE(document.GetValue_ui64(root, "tt:n", ui64) && ui64 == 34);
    EXPECT_TRUE(document.GetValueGUID(root, "tt:g", guid) && guid.Data4[7] == 0xEF);
    EXPECT_TRUE(document.GetAttributeStr("tt:n", "a", text) && text == "12");
    EXPECT_TRUE(document.GetAttributeDWORD("tt:n", "a", dword) && dword == 12);
    EXPECT_TRUE(document.GetAttribute_i32("tt:n", "a", i32) && i32 == 12);
    EXPECT_TRUE(document.GetAttribute_ui64("tt:n", "a", ui64) && ui64 == 12);
    EXPECT_TRUE(document.GetAttributeGUID("tt:n", "g", guid) && guid.Data2 == 0x89AB);
    EXPECT_TRUE(document.GetAttributes("tt:n", attributes) && attributes.size() == 2);
    EXPECT_EQ(3u, document.GetChildrenLength("tt:r", ""));
    EXPECT_EQ(2u, document.GetChildrenLength("tt:r", "x:n")); // this name is not translated
    const unsigned int first = document.GetFirstItem(root, "tt:n");
    EXPECT_EQ(first, document.GetFirstItem("tt:r/tt:n"));
    const unsigned int next = document.GetNextSiblingItemByName(first, "tt:n");
    EXPECT_TRUE(document.GetValueStr(next, text) && text == "2");
    EXPECT_EQ(0u, document.GetNextSiblingItemByName(next, "tt:n"));
}

TEST(OnvifXmlParse, NeitherClonesNorPrintsParts)
{
    const std::string text = "<x:r xmlns:x=\"" + SCHEMA + "\"><x:a/></x:r>";
    COnvifXmlParse document(text);
    const unsigned int root = document.GetRootItem();
    std::string xml = "untouched";
    EXPECT_FALSE(document.CloneValue("tt:a", "<b/>"));
    EXPECT_FALSE(document.CloneValue(root, "<b/>"));
    EXPECT_FALSE(document.GetXMLData("tt:a", xml));
    EXPECT_FALSE(document.GetXMLData(root, xml));
    EXPECT_FALSE(document.GetChildrenXMLData("tt:r", xml));
    EXPECT_FALSE(document.GetChildrenXMLData(root, xml));
    EXPECT_EQ("untouched", xml);
    EXPECT_EQ("<x:r xmlns:x=\"http://www.onvif.org/ver10/schema\">\n    <x:a/>\n</x:r>\n", *document.GetDoc());
}

} // namespace
