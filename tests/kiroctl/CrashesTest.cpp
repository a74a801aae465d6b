// The records of crashes, as an operator reads them.

#include "KiroctlFixture.hpp"

namespace Vela::Testing
{
namespace
{

using CrashesTest = KiroctlTest;

TEST_F(CrashesTest, ListsAndShowsWhatASystemThatCouldNotStartHasLeft)
{
    EXPECT_EQ(Run({"crashes"}).output, "Nothing has crashed.\n");
    EXPECT_EQ(Ask({"crashes"}), Json::array());
    EXPECT_EQ(Run({"crashes", "last"}).exitCode, 4);

    system.WriteConfig("<Broken>");
    EXPECT_EQ(system.Start().AwaitEnd(), 1);
    const Json list = Ask({"crashes"});
    ASSERT_EQ(list.size(), 1U);
    const std::string name = list[0]["record"];
    EXPECT_EQ(list[0]["reason"], "failed set-up");
    EXPECT_EQ(list[0]["process"], "MainProcess");
    EXPECT_TRUE(list[0]["log"].is_array());
    EXPECT_EQ(Ask({"crashes", name}), list[0]);
    EXPECT_EQ(Ask({"crashes", "last"}), list[0]);

    const Result table = Run({"crashes"});
    EXPECT_NE(table.output.find("\n" + name + "  MainProcess  failed set-up  Loading the configuration"),
              std::string::npos)
        << table.output;
    const Result shown = Run({"crashes", "last"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_TRUE(shown.output.starts_with("reason: failed set-up\ntime: 20")) << shown.output;
    EXPECT_NE(shown.output.find("\nlog:\n  20"), std::string::npos) << shown.output;
}

TEST_F(CrashesTest, RefusesWhatIsNoRecord)
{
    // Made by somebody else: shown, but not obeyed.
    system.directory.Write("run/crashes/20240101T000000Z-1.txt", "reason: \x1b[2J\nno field\nlog:\n  \x07\n");
    const Result shown = Run({"crashes", "last"});
    EXPECT_EQ(shown.output, "reason: \\x1B[2J\nlog:\n  \\x07\n");
    for (const char* wrong : {"none.txt", "../../Default.kiro.settings", ""})
    {
        const Result result = Run({"crashes", std::string("x") + wrong});
        EXPECT_EQ(result.exitCode, 4) << result.output;
        EXPECT_TRUE(result.output.starts_with("kiroctl: There is no crash record")) << result.output;
    }
    EXPECT_EQ(Run({"crashes", "--runtime-dir", system.directory / "nowhere"}).exitCode, 3);
}

} // namespace
} // namespace Vela::Testing
