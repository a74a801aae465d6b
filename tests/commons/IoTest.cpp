#include "TemporaryDirectory.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/Directory.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SafeString.hpp>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

using namespace Vela;
using namespace Vela::System::Commons;
using namespace Vela::System::Commons::Io;
using Vela::Testing::TemporaryDirectory;

TEST(Path, SplitsDirectoryNameAndTitle)
{
    struct Case
    {
        const char* path;
        const char* directory;
        const char* name;
        const char* title;
    };
    const Case cases[] = {
        {"/a/b.so", "/a", "b.so", "b"},
        {"/a", "/", "a", "a"},
        {"a", "", "a", "a"},
        {"/a/", "/a", "", ""},
        {"", "", "", ""},
        {"/", "/", "", ""},
        {"a.b/c", "a.b", "c", "c"},
        {"x/.rc", "x", ".rc", ".rc"},
        {"lib.so.1", "", "lib.so.1", "lib.so"},
        {"a/..", "a", "..", ".."},
    };
    for (const auto& [path, directory, name, title] : cases)
    {
        EXPECT_EQ(Path::GetDirectoryName(path), directory) << path;
        EXPECT_EQ(Path::GetFileName(path), name) << path;
        EXPECT_EQ(Path::GetFileTitle(path), title) << path;
    }
}

TEST(Path, CombinesAndMakesAbsolute)
{
    EXPECT_EQ(Path::Combine("/a", "b"), "/a/b");
    EXPECT_EQ(Path::Combine("/a/", "b"), "/a/b");
    EXPECT_EQ(Path::Combine("", "b"), "b");
    EXPECT_EQ(Path::Combine("/a", "/b"), "/b");
    EXPECT_EQ(Path::GetFullPath("../x//./y", "/a/b"), "/a/x/y");
    EXPECT_EQ(Path::GetFullPath("../../../x", "/a"), "/x");
    EXPECT_EQ(Path::GetFullPath("/..", "/a"), "/");
    EXPECT_EQ(Path::GetFullPath("x"), Path::Combine(Directory::GetCurrent(), "x"));
}

TEST(File, CopiesContentsAndPermissionsOverAnExistingTarget)
{
    const TemporaryDirectory directory;
    const String contents(200'000, 'x');
    const String source = directory.Write("source", contents);
    ASSERT_EQ(::chmod(source.c_str(), 0750), 0);
    const String target = directory / "new/deep/target";
    EXPECT_THROW(File::Copy(source, target, false, false), Exception);
    File::Copy(source, target, true, true);
    EXPECT_EQ(directory.Read("new/deep/target"), contents);
    struct stat status
    {
    };
    ASSERT_EQ(::stat(target.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0750U);

    directory.Write("source", "short");
    std::ifstream mapped(target);
    EXPECT_THROW(File::Copy(source, target, true, false), Exception);
    File::Copy(source, target, false, false);
    EXPECT_EQ(directory.Read("new/deep/target"), "short");
    const String old{std::istreambuf_iterator<char>(mapped), std::istreambuf_iterator<char>()};
    EXPECT_EQ(old, contents) << "who has the old file open keeps it whole";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory / "new/deep"), {}), 1) << "nothing left over";
}

TEST(File, SaysWhatIsWrong)
{
    const TemporaryDirectory directory;
    const String missing = directory / "missing";
    try
    {
        File::Copy(missing, directory / "target", false, true);
        FAIL();
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "Could not read file '" + missing + "': No such file or directory");
    }
    EXPECT_THROW(File::Copy(directory.GetPath(), directory / "target", false, true), Exception);
    EXPECT_FALSE(File::Exists(directory / "target"));
    EXPECT_FALSE(File::Exists(directory.GetPath())) << "a directory is no file";
    EXPECT_FALSE(File::Delete(missing));
    EXPECT_THROW(File::Delete(directory.GetPath()), Exception);
    EXPECT_TRUE(File::Delete(directory.Write("file", "")));
}

TEST(Directory, CreatesAndDeletesWithoutFollowingLinks)
{
    const TemporaryDirectory directory;
    const String kept = directory.Write("outside/kept", "kept");
    const String tree = directory / "tree/a/b";
    Directory::Create(tree);
    Directory::Create(tree);
    EXPECT_TRUE(Directory::Exists(tree));
    EXPECT_FALSE(Directory::Exists(kept));
    ASSERT_EQ(::symlink((directory / "outside").c_str(), (tree + "/link").c_str()), 0);
    Directory::Delete(directory / "tree");
    EXPECT_FALSE(Directory::Exists(directory / "tree"));
    EXPECT_TRUE(File::Exists(kept));
    Directory::Delete(directory / "tree");
    EXPECT_THROW(Directory::Create(kept + "/below"), Exception);
    EXPECT_THROW(Directory::Create(kept), Exception);
}

TEST(SafeString, CopiesWhatFitsWithItsEndAndRefusesTheRest)
{
    char buffer[8];
    SafeString::Copy(buffer, sizeof(buffer), "1234567");
    EXPECT_STREQ(buffer, "1234567");
    SafeString::Copy(buffer, sizeof(buffer), "");
    EXPECT_STREQ(buffer, "");
    SafeString::Copy(buffer, sizeof(buffer), std::string_view("a\0b", 3));
    EXPECT_EQ(std::string_view(buffer, 4), std::string_view("a\0b\0", 4));
    try
    {
        SafeString::Copy(buffer, sizeof(buffer), "12345678");
        FAIL();
    }
    catch (const ArgumentException& exception)
    {
        EXPECT_STREQ(exception.what(), "Input string is too long (argument 'arg': '12345678')");
    }
}
