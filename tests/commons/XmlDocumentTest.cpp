#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Xml/MultiXmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlConfigDocument.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <CapturedLog.hpp>
#include <TemporaryDirectory.hpp>
#include <ThrownMessage.hpp>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace Vela;
using namespace Vela::System::Commons::Xml;
using System::Commons::Environment;
using Testing::CapturedLog;
using Testing::GetThrownMessage;
using Testing::TemporaryDirectory;

namespace
{

/// Collects the files of a document in the order in which they are read, and their path attributes.
class Recorder : public IXmlSerializable
{
public:
    void ReadXml(XmlReader& reader, XmlSerializationContext& context) override
    {
        files += context.GetFileName() + " ";
        String name;
        while (reader.ReadStartElement(name))
        {
            if (name == "Includes")
            {
                context.ReadIncludesElement(reader);
            }
            else if (name == "Path")
            {
                XmlPath path;
                context.TryGetPath(reader, "path", path);
                paths.push_back(path);
            }
            else
            {
                context.InvalidXmlElementOccurs(reader, name);
            }
            reader.ReadEndElement();
        }
    }

    void WriteXml(XmlWriter&, XmlSerializationContext&) override
    {
        throw NotImplementedException("WriteXml");
    }

    String files;
    std::vector<XmlPath> paths;
};

String Including(const std::vector<String>& paths)
{
    String text = "<D>\n<Includes>\n";
    for (const String& path : paths)
    {
        text += "<Include path=\"" + path + "\"/>\n";
    }
    return text + "</Includes>\n</D>";
}

} // namespace

class XmlDocumentTest : public testing::Test
{
protected:
    XmlDocumentTest()
    {
        Environment::Setup();
        Environment::SetVariable("DOC_DIR", directory.GetPath().string());
        Environment::SetVariable("DOC_REL", "rel");
        Environment::SetVariable("DOC_EMPTY", "");
    }

    ~XmlDocumentTest() override
    {
        Environment::Dispose();
    }

    String LoadMulti(const String& root)
    {
        MultiXmlConfigDocument("D", recorder).Load(directory / root);
        return recorder.files;
    }

    TemporaryDirectory directory;
    Recorder recorder;
};

TEST_F(XmlDocumentTest, ReadsIncludesAfterTheirFileDepthFirstAndWildcardsInByteOrder)
{
    directory.Write("root", Including({"a/first", "z*/*.xml", "${DOC_DIR}/last", "none/*.xml"}));
    directory.Write("a/first", Including({"../deep"}));
    directory.Write("deep", "<D/>");
    directory.Write("z1/b.xml", "<D/>");
    directory.Write("z1/B.xml", "<D/>");
    directory.Write("z1/.hidden.xml", "<E/>");
    directory.Write("z1/directory.xml/x", "<E/>");
    directory.Write("z0/c.xml", "<D/>");
    directory.Write("last", "<D/>");
    EXPECT_EQ(LoadMulti("root"), "root first deep c.xml B.xml b.xml last ");
}

TEST_F(XmlDocumentTest, ReadsAFileOnceByWhateverPathItIsNamed)
{
    directory.Write("root", Including({"loop/x", "./other", "loop/other", "o*"}));
    directory.Write("x", Including({"root", "loop/x", "other"}));
    directory.Write("other", "<D/>");
    std::filesystem::create_directory_symlink(".", directory / "loop");
    EXPECT_EQ(LoadMulti("root"), "root x other ");
}

TEST_F(XmlDocumentTest, TakesDirectoriesWithSpecialCharactersAsTheyAre)
{
    Environment::SetVariable("DOC_SPECIAL", "s[1]");
    directory.Write("d[$1]*$${DOC_REL}\\/root",
                    Including({"p?rt", "plain", "${DOC_SPECIAL}/in", "${DOC_SPECIAL}/*.xml"}));
    directory.Write("d[$1]*$${DOC_REL}\\/s[1]/in", "<D/>");
    directory.Write("d[$1]*$${DOC_REL}\\/s[1]/x.xml", "<D/>");
    directory.Write("d[$1]*$${DOC_REL}\\/part", "<D><Path path='x'/><Path path='${DOC_REL}/y'/></D>");
    directory.Write("d[$1]*$${DOC_REL}\\/plain", "<D/>");
    EXPECT_EQ(LoadMulti("d[$1]*$${DOC_REL}\\/root"), "root part plain in x.xml ");
    const std::vector<String> expected{"x", "rel/y"};
    for (std::size_t index = 0; index < expected.size(); ++index)
    {
        recorder.paths.at(index).Resolve();
        EXPECT_EQ(recorder.paths.at(index).Get(), directory / "d[$1]*$${DOC_REL}\\/" + expected.at(index));
    }
}

TEST_F(XmlDocumentTest, ReportsFilesThatCannotBeReadAtTheirInclude)
{
    const String root = directory.Write("root", Including({"part"}));
    const auto message = [&]
    {
        return GetThrownMessage<XmlException>([&] { LoadMulti("root"); });
    };
    const String part = directory / "part";

    EXPECT_EQ(message(), "Cannot read file '" + part + "': No such file or directory (" + root + ":3)");
    mkfifo(part.c_str(), 0600);
    EXPECT_EQ(message(), "Cannot read file '" + part + "': not a regular file (" + root + ":3)");
    std::filesystem::remove(part);
    directory.Write("part", "<D>\n<");
    EXPECT_EQ(message(), "The document is malformed: unclosed token. (" + part + ":2, included from " + root + ":3)");
    directory.Write("part", "<E/>");
    EXPECT_EQ(message(),
              "The root element is 'E', but 'D' is expected. (" + part + ":1, included from " + root + ":3)");
    directory.Write("root", Including({"${DOC_NONE}/x"}));
    EXPECT_EQ(message(), "The path '${DOC_NONE}/x' of an included file cannot be resolved: The environment variable "
                         "'DOC_NONE' in '${DOC_NONE}' is not defined. (" +
                             root + ":3)");
    directory.Write("root", Including({"${DOC_EMPTY}"}));
    EXPECT_EQ(message(), "The path of an included file must not be empty. (" + root + ":3)");
    EXPECT_THROW(LoadMulti("missing"), XmlException);
}

TEST_F(XmlDocumentTest, BoundsTheDepthOfIncludes)
{
    const int last = MultiXmlConfigDocument::maxIncludeDepth + 1;
    for (int index = 0; index < last; ++index)
    {
        directory.Write(std::to_string(index), Including({std::to_string(index + 1)}));
    }
    directory.Write(std::to_string(last), "<D/>");
    LoadMulti("1");
    EXPECT_THROW(LoadMulti("0"), XmlException);
}

TEST_F(XmlDocumentTest, ResolvesPathsAgainstTheirFileAndAgainWhenTheEnvironmentChanges)
{
    directory.Write("root", Including({"sub/part"}));
    directory.Write("sub/part", "<D><Path path='../x/./y'/><Path path='${DOC_REL}/z'/><Path path='${DOC_EMPTY}'/>"
                                "<Path path=''/><Path path='/abs/$$'/><Path path='p/${DOC_REL}/../q'/></D>");
    LoadMulti("root");
    EXPECT_EQ(recorder.paths.at(1).Get(), "${DOC_REL}/z");
    const auto resolved = [&]
    {
        std::vector<String> texts;
        for (XmlPath& path : recorder.paths)
        {
            path.Resolve();
            texts.push_back(path.Get());
        }
        return texts;
    };
    const String sub = directory / "sub";
    EXPECT_EQ(resolved(),
              (std::vector<String>{directory / "x/y", sub + "/rel/z", "", "", "/abs/$", sub + "/p/rel/../q"}));
    Environment::SetVariable("DOC_REL", "/new");
    EXPECT_EQ(resolved().at(1), "/new/z");
    EXPECT_EQ(XmlPath("Rsc.settings").Get(), "Rsc.settings");
}

TEST_F(XmlDocumentTest, InOneFileKnowsNoIncludes)
{
    const CapturedLog log;
    const String root = directory.Write("root", Including({"part"}));
    XmlConfigDocument("D", recorder).Load(root);
    EXPECT_EQ(recorder.files, "root ");
    EXPECT_TRUE(log.Contains("Element 'Includes' is not known here, it is skipped. (" + root + ":2)"));
    XmlConfigDocument("D", recorder).LoadText("/x/text", "<D><Path path='a'/></D>");
    EXPECT_EQ(recorder.paths.back().Get(), "/x/a");
}
