#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlWriter.hpp>

#include <gtest/gtest.h>

using namespace Vela;
using namespace Vela::System::Commons::Xml;

TEST(XmlWriter, WritesNestedElements)
{
    XmlWriter writer;
    writer.WriteStartElement("a");
    writer.WriteAttribute("yes", true);
    writer.WriteStartElement("b");
    writer.WriteAttribute("text", "x");
    writer.WriteEndElement();
    EXPECT_THROW(writer.WriteAttribute("late", "x"), InvalidOperationException);
    writer.WriteEndElement();
    EXPECT_EQ(writer.GetText(), "<a yes=\"true\">\n    <b text=\"x\"/>\n</a>\n");
    EXPECT_THROW(writer.WriteEndElement(), InvalidOperationException);
}

TEST(XmlWriter, WritesValuesSoThatTheReaderReadsTheSame)
{
    const String value = "<a & \"b\" 'c'>\t\r\n ${X} \xC3\xA4";
    XmlWriter writer;
    writer.WriteStartElement("e");
    writer.WriteAttribute("v", value);
    EXPECT_THROW(writer.WriteAttribute("w", String("\x01")), ArgumentException);
    writer.WriteEndElement();

    XmlReader reader(std::make_shared<const XmlSource>(), writer.GetText());
    String text;
    ASSERT_TRUE(reader.ReadStartElement(text));
    EXPECT_TRUE(reader.TryGetAttributeValue("v", text));
    EXPECT_EQ(text, value);
    EXPECT_FALSE(reader.TryGetAttributeValue("w", text));
}
