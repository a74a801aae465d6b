#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Diagnostics/LogLevel.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>

#include <CapturedLog.hpp>
#include <ThrownMessage.hpp>
#include <gtest/gtest.h>

#include <limits>

using namespace Vela;
using namespace Vela::System::Commons::Xml;
using System::Commons::Chrono::Duration;
using System::Commons::Diagnostics::LogLevel;
using Testing::CapturedLog;
using Testing::GetThrownMessage;

namespace
{

/// A reader on a text, its root element entered.
class Document : public XmlReader
{
public:
    explicit Document(const String& text)
        : XmlReader(std::make_shared<const XmlSource>(XmlSource{"/test.xml", {}}), text)
    {
        String root;
        ReadStartElement(root);
    }
};

/// Names of all elements in the order of the document, each with its end.
String ReadAll(XmlReader& reader)
{
    String text;
    String name;
    while (reader.ReadStartElement(name))
    {
        text += "<" + name + ">" + ReadAll(reader) + ";";
        reader.ReadEndElement();
    }
    return text;
}

String ReadAll(const String& text)
{
    XmlReader reader(std::make_shared<const XmlSource>(XmlSource{"/test.xml", {}}), text);
    return ReadAll(reader);
}

String Nested(std::size_t depth)
{
    String text;
    for (std::size_t level = 0; level < depth; ++level)
    {
        text += "<a>";
    }
    for (std::size_t level = 0; level < depth; ++level)
    {
        text += "</a>";
    }
    return text;
}

template <typename T>
String Refusal(const String& value)
{
    return GetThrownMessage<XmlException>(
        [&]
        {
            Document document("<e v='" + value + "'/>");
            T read{};
            document.TryGetAttributeValue("v", read);
        });
}

template <typename T>
T Accepted(const String& value)
{
    Document document("<e v='" + value + "'/>");
    T read{};
    EXPECT_TRUE(document.TryGetAttributeValue("v", read)) << value;
    return read;
}

} // namespace

TEST(XmlReader, WalksThroughElementsInTheirOrderWhateverTheirForm)
{
    EXPECT_EQ(ReadAll("<?xml version='1.0'?>\n<r>\n <a/><b><c/> <!-- x --> <d></d></b>\n</r>\n"),
              "<r><a>;<b><c>;<d>;;;");
    EXPECT_EQ(ReadAll("<r/>"), "<r>;");
    EXPECT_EQ(ReadAll("<n:r xmlns:n='urn:x'><n:a/><b xmlns='urn:y'/></n:r>"), "<r><a>;<b>;;");
}

TEST(XmlReader, SkipsWhatItsCallerDoesNotEnter)
{
    Document document("<r><a><x><y/></x></a><b/></r>");
    String name;
    ASSERT_TRUE(document.ReadStartElement(name));
    document.ReadEndElement();
    ASSERT_TRUE(document.ReadStartElement(name));
    EXPECT_EQ(name, "b");
    document.ReadEndElement();
    EXPECT_FALSE(document.ReadStartElement(name));
    document.ReadEndElement();
    EXPECT_THROW(document.ReadEndElement(), InvalidOperationException);
}

TEST(XmlReader, RefusesMalformedAndHostileDocumentsWithFileAndLine)
{
    EXPECT_EQ(GetThrownMessage<XmlException>([] { ReadAll("<r>\n<a>\n</r>"); }),
              "The document is malformed: mismatched tag. (/test.xml:3)");
    EXPECT_EQ(GetThrownMessage<XmlException>([] { ReadAll("\n<!DOCTYPE r [<!ENTITY e 'x'>]><r>&e;</r>"); }),
              "A document type declaration is not allowed in this document. (/test.xml:2)");
    EXPECT_EQ(GetThrownMessage<XmlException>([] { ReadAll(Nested(XmlReader::maxDepth + 1)); }),
              "Elements are nested deeper than 64. (/test.xml:1)");
    EXPECT_EQ(ReadAll(Nested(XmlReader::maxDepth)).size(), XmlReader::maxDepth * 4);
    EXPECT_EQ(GetThrownMessage<XmlException>([] { ReadAll(String(XmlReader::maxSize + 1, ' ')); }),
              "The document is larger than 16777216 bytes. (/test.xml:1)");
    for (const String& text : {String(), String(" "), String("<r"), String("<r/><r/>"), String("<r/>x"),
                               String("<r a='1' a='2'/>"), String("<r>&unknown;</r>"), String("<r>\0</r>", 8)})
    {
        EXPECT_THROW(ReadAll(text), XmlException) << text;
    }
}

TEST(XmlReader, NamesTheChainOfIncludesInItsErrors)
{
    const auto root = std::make_shared<const XmlSource>(XmlSource{"/root.xml", {}});
    const auto part = std::make_shared<const XmlSource>(XmlSource{"/part.xml", {root, 7}});
    XmlReader reader(part, "\n<r/>");
    String name;
    ASSERT_TRUE(reader.ReadStartElement(name));
    EXPECT_EQ(reader.Error("{0}", "text").ToString(), "XmlException: text (/part.xml:2, included from /root.xml:7)");
}

TEST(XmlReader, ReadsAttributesOfEveryType)
{
    EXPECT_EQ(Accepted<String>("a &lt; &quot;b&quot; &#x41;"), "a < \"b\" A");
    EXPECT_TRUE(Accepted<bool>("true") && Accepted<bool>("1"));
    EXPECT_FALSE(Accepted<bool>("false") || Accepted<bool>("0"));
    EXPECT_EQ(Accepted<std::int32_t>("+3"), 3);
    EXPECT_EQ(Accepted<std::int32_t>("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Accepted<std::uint32_t>("4294967295"), 4294967295U);
    EXPECT_EQ(Accepted<std::uint16_t>("65535"), 65535);
    EXPECT_EQ(Accepted<std::int64_t>("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Accepted<double>("-2.5e-1"), -0.25);
    EXPECT_EQ(Accepted<Duration>("2s").GetMilliseconds().count(), 2000);
    EXPECT_EQ(Accepted<LogLevel>("Warning"), LogLevel::Warning);
}

TEST(XmlReader, RefusesAttributesThatDoNotFitTheirType)
{
    for (const char* text : {"", "+", "+-1", "++1", "0x3", "3.0", " 3", "3 ", "2147483648", "-2147483649"})
    {
        EXPECT_EQ(Refusal<std::int32_t>(text),
                  fmt::format("Cast of attribute v to int32 failed value: {} (/test.xml:1)", text));
    }
    EXPECT_EQ(Refusal<std::uint16_t>("65536"), "Cast of attribute v to uint16 failed value: 65536 (/test.xml:1)");
    EXPECT_EQ(Refusal<std::uint32_t>("-1"), "Cast of attribute v to uint32 failed value: -1 (/test.xml:1)");
    EXPECT_EQ(Refusal<double>("nan"), "Cast of attribute v to double failed value: nan (/test.xml:1)");
    EXPECT_EQ(Refusal<bool>("True"), "Cast of attribute v to bool failed value: True (/test.xml:1)");
    EXPECT_EQ(Refusal<Duration>("5 parsec"), "TryGetAttributeValueDuration failed for attribute 'v' in element 'e': "
                                             "invalid duration format in value '5 parsec' (/test.xml:1)");
    EXPECT_EQ(Refusal<LogLevel>("Loud"), "Invalid string for Enum 'Vela::System::Commons::Diagnostics::LogLevel' "
                                         "occurs: Loud (/test.xml:1)");
}

TEST(XmlReader, TellsMissingOptionalAndMandatoryAttributesApart)
{
    Document document("<n:e xmlns:n='urn:x' n:v='1'/>");
    std::int32_t value = 42;
    EXPECT_FALSE(document.TryGetAttributeValue("v", value));
    EXPECT_EQ(value, 42);
    EXPECT_EQ(GetThrownMessage<XmlException>([&] { document.GetAttributeValue("v", value); }),
              "GetAttributeValue failed for mandatory attribute: v elementName: e (/test.xml:1)");
}

TEST(XmlReader, WarnsOfEverythingThatNobodyReads)
{
    const CapturedLog log;
    Document document("<r used='1' xmlns:n='urn:x' n:foreign='1'\n unused='1'>\n<child deep='1'><x/>t</child>\n text\n"
                      "<skipped a='1'>t<b/></skipped></r>");
    String text;
    document.TryGetAttributeValue("used", text);
    ASSERT_TRUE(document.ReadStartElement(text));
    document.ReadEndElement();
    ASSERT_TRUE(document.ReadStartElement(text));
    document.SkipElement();
    document.ReadEndElement();
    document.ReadEndElement();

    const String warnings = log.GetText();
    EXPECT_EQ(std::count(warnings.begin(), warnings.end(), '\n'), 5) << warnings;
    for (const char* expected :
         {"Attribute 'unused' of element 'r' is not known, it is ignored. (/test.xml:1)",
          "Attribute 'deep' of element 'child' is not known, it is ignored. (/test.xml:3)",
          "Element 'x' is not known inside 'child', it is skipped. (/test.xml:3)",
          "Text inside element 'child' is ignored. (/test.xml:3)", "Text inside element 'r' is ignored. (/test.xml:4)"})
    {
        EXPECT_NE(warnings.find(expected), String::npos) << expected << "\n" << warnings;
    }
}
