#include "KiroctlFixture.hpp"

namespace Vela::Testing
{

namespace
{

using CommandLineTest = KiroctlTest;

} // namespace

TEST_F(CommandLineTest, WrongUsageIsOneLineAndItsOwnExitCode)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{}, "kiroctl: A command is required (see 'kiroctl --help')\n"},
        {{"chekc"}, "kiroctl: There is no command 'chekc' (see 'kiroctl --help')\n"},
        {{"version", "--nonsense"},
         "kiroctl: The following argument was not expected: --nonsense (see 'kiroctl version --help')\n"},
        {{"version", "--runtime-dir"},
         "kiroctl: --runtime-dir: 1 required DIR missing (see 'kiroctl version --help')\n"},
    };
    for (const auto& [arguments, message] : cases)
    {
        const Result result = Run(arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.output, message);
    }
}

TEST_F(CommandLineTest, HelpFitsATerminalAndListsEveryExitCode)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"check", "--help"}, {"version", "--help"}})
    {
        const Result help = Run(arguments);
        EXPECT_EQ(help.exitCode, 0);
        std::istringstream lines(help.output);
        for (std::string line; std::getline(lines, line);)
        {
            EXPECT_LE(line.size(), 80U) << line;
        }
    }
    const std::string help = Run({"--help"}).output;
    for (const char* code : {"  0  ", "  1  ", "  2  ", "  3  ", "  4  ", "  5  ", "  6  "})
    {
        EXPECT_NE(help.find(code), std::string::npos) << code;
    }
}

TEST_F(CommandLineTest, CommonOptionsStandBeforeOrBehindTheCommand)
{
    EXPECT_EQ(Run({"--json", "version"}).output, Run({"version", "--json"}).output);
    EXPECT_EQ(Ask({"version"})["contract"], 1);
    EXPECT_NE(Run({"--version"}).output.find(Ask({"version"})["version"].get<std::string>()), std::string::npos);
}

} // namespace Vela::Testing
