#include "CapturedLog.hpp"
#include "ScopedTrustPolicy.hpp"
#include "TemporaryDirectory.hpp"
#include "ThrownMessage.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>
#include <Vela/System/Commons/UniqueFd.hpp>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

using namespace Vela;
using namespace Vela::System::Commons::Io;
using Vela::Testing::CapturedLog;
using Vela::Testing::GetThrownMessage;
using Vela::Testing::ScopedTrustPolicy;
using Vela::Testing::TemporaryDirectory;

namespace
{

class FileTrustTest : public testing::Test
{
protected:
    void SetMode(const String& name, mode_t mode) const
    {
        ASSERT_EQ(::chmod((directory / name).c_str(), mode), 0);
    }

    /// What is found, as "name reason, ...", names counting from the test's directory.
    [[nodiscard]] String Find(const String& path, int descriptor = -1) const
    {
        String text;
        for (const TrustFinding& finding : FileTrust::Examine(path, descriptor, ::geteuid()))
        {
            const String name = std::filesystem::path(finding.path).lexically_relative(directory.GetPath()).string();
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", name, finding.reason);
        }
        return text;
    }

    TemporaryDirectory directory;
    const String file = directory.Write("way/to/file", "text");
};

} // namespace

TEST_F(FileTrustTest, FindsWhoeverCanWriteIntoTheFileOrReplaceItOnItsWay)
{
    EXPECT_EQ(Find(file), "");
    EXPECT_EQ(Find(directory / "way/./to/../to//file"), "");
    SetMode("way/to/file", 0646);
    EXPECT_EQ(Find(file), "way/to/file is writable for everybody (mode 646)");
    SetMode("way/to/file", 0664);
    EXPECT_EQ(Find(file), fmt::format("way/to/file is writable for group {} (mode 664)", ::getegid()));
    SetMode("way/to/file", 0600);
    SetMode("way", 0777);
    EXPECT_EQ(Find(file), "way is writable for everybody (mode 777)");
    EXPECT_EQ(Find(directory / "way/to/missing"), "way is writable for everybody (mode 777)");
    // Like /tmp: others cannot replace what is not theirs.
    SetMode("way", 01777);
    EXPECT_EQ(Find(file), "");
}

TEST_F(FileTrustTest, FollowsLinksAsTheSystemDoes)
{
    std::filesystem::create_directory(directory / "open");
    std::filesystem::create_symlink("../way/to/file", directory / "open/relative");
    std::filesystem::create_symlink(directory / "open/relative", directory / "absolute");
    std::filesystem::create_symlink("loop", directory / "loop");
    EXPECT_EQ(Find(directory / "absolute"), "");
    EXPECT_EQ(Find(directory / "open/relative"), "");

    // Whoever writes here bends the link.
    SetMode("open", 0777);
    EXPECT_EQ(Find(directory / "absolute"), "open is writable for everybody (mode 777)");
    SetMode("open", 0755);
    SetMode("way/to", 0777);
    EXPECT_EQ(Find(directory / "absolute"), "way/to is writable for everybody (mode 777)");
    EXPECT_NE(Find(directory / "loop"), "");
}

TEST_F(FileTrustTest, TakesTheOpenFileForWhatItIsWhateverHasTakenItsPlace)
{
    SetMode("way/to/file", 0666);
    const System::Commons::UniqueFd opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    std::filesystem::rename(directory.Write("way/to/other", "good"), file);
    EXPECT_EQ(Find(file), "");
    EXPECT_EQ(Find(file, opened.Get()), "way/to/file is writable for everybody (mode 666)");
}

TEST_F(FileTrustTest, TrustsRootAndTheOwnUserOnly)
{
    EXPECT_TRUE(FileTrust::Examine("/etc/passwd").empty()) << "root's";
    if (::geteuid() != 0)
    {
        GTEST_SKIP() << "Only root can give files away.";
    }
    constexpr uid_t stranger = 1234;
    ASSERT_EQ(::chown((directory / "way").c_str(), stranger, stranger), 0);
    EXPECT_EQ(Find(file), "way belongs to user 1234");
    EXPECT_TRUE(FileTrust::Examine(file, -1, stranger).empty());
    std::filesystem::create_symlink(file, directory / "link");
    ASSERT_EQ(::chown((directory / "way").c_str(), 0, 0), 0);
    ASSERT_EQ(::lchown((directory / "link").c_str(), stranger, stranger), 0);
    EXPECT_EQ(Find(directory / "link"), "link belongs to user 1234");
}

TEST_F(FileTrustTest, IgnoresWarnsOrRefusesAsThePolicySays)
{
    SetMode("way", 0777);
    SetMode("way/to/file", 0666);
    const String text = fmt::format("Library '{}' can be changed by other users: '{}' is writable for everybody (mode "
                                    "777), '{}' is writable for everybody (mode 666).",
                                    file, directory / "way", file);
    {
        const CapturedLog log;
        const ScopedTrustPolicy policy(TrustedFile::Library, TrustPolicy::Ignore);
        FileTrust::Require(TrustedFile::Library, file);
        EXPECT_EQ(log.GetText(), "");
        FileTrust::SetPolicy(TrustedFile::Library, TrustPolicy::Warn);
        FileTrust::Require(TrustedFile::Library, file);
        EXPECT_TRUE(log.Contains(text));
        FileTrust::SetPolicy(TrustedFile::Library, TrustPolicy::Refuse);
        EXPECT_EQ(
            GetThrownMessage<InvalidOperationException>([this] { FileTrust::Require(TrustedFile::Library, file); }),
            text);
    }
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::Library), TrustPolicy::Warn);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::Document), TrustPolicy::Warn);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::SecuritySettings), TrustPolicy::Refuse);
    EXPECT_EQ(FileTrust::GetPolicy(TrustedFile::RuntimeDirectory), TrustPolicy::Refuse);
}
