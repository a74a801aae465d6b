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
         {std::vector<std::string>{"--help"}, {"check", "--help"}, {"plan", "--help"}, {"graph", "--help"}})
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

TEST_F(CommandLineTest, ShellsCompleteWhatTheToolKnows)
{
    system.directory.Write("bash", Run({"completion", "bash"}).output + R"(complete_words() {
  COMP_WORDS=(kiroctl "$@") COMP_CWORD=$#
  _kiroctl || echo files
  printf '%s ' "${COMPREPLY[@]}"
}
)");
    // In place of the shell's own functions, which need a terminal.
    system.directory.Write("zsh", R"(compdef() { :; }
_files() { echo files; }
_describe() { compadd -- ${commands%%:*}; }
compadd() { shift; for word in "$@"; do [[ $word != $PREFIX* ]] || printf '%s ' $word; done; }
)" + Run({"completion", "zsh"}).output +
                                      R"(complete_words() {
  words=(kiroctl "$@") CURRENT=$(($# + 1)) PREFIX=${@[-1]}
  _kiroctl
}
)");
    const auto complete = [this](const std::string& shell, const std::string& words)
    {
        StartedProcess process("/usr/bin/env", {shell, "-c", ". ./" + shell + " && complete_words " + words}, {},
                               system.directory.GetPath().string());
        EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
        return process.GetOutput();
    };
    for (const char* shell : {"bash", "zsh"})
    {
        EXPECT_EQ(complete(shell, "check --st"), "--strict ") << shell;
        EXPECT_EQ(complete(shell, "--json plan --order ''"), "start stop ") << shell;
        EXPECT_EQ(complete(shell, "--runtime-d"), "--runtime-dir ") << shell;
        EXPECT_NE(complete(shell, "''").find("check "), std::string::npos) << shell;
        EXPECT_NE(complete(shell, "plan --diff ''").find("files"), std::string::npos) << shell;
        // Every command of the help.
        std::istringstream help(Run({"--help"}).output);
        for (std::string line; std::getline(help, line) && !line.starts_with("Exit codes");)
        {
            const std::string name = line.substr(0, line.find(' ', 2));
            if (line.starts_with("  ") && name.size() > 2 && name[2] >= 'a' && name[2] <= 'z')
            {
                EXPECT_NE((" " + complete(shell, "''")).find(" " + name.substr(2) + " "), std::string::npos)
                    << shell << name;
            }
        }
    }
}

TEST_F(CommandLineTest, TheManualHasTheCommandsAndPleasesItsFormatter)
{
    const std::string page = system.directory.Write("kiroctl.1", Run({"manual"}).output);
    StartedProcess formatter("/usr/bin/env", {"groff", "-man", "-Tascii", "-ww", "-P-cbou", page});
    EXPECT_EQ(formatter.AwaitEnd(), 0);
    const std::string& text = formatter.GetOutput();
    EXPECT_EQ(text.find("warning:"), std::string::npos) << text;
    for (const char* part : {"kiroctl check", "--strict", "kiroctl plan", "start, stop", "EXIT STATUS", "NO_COLOR"})
    {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    }
}

TEST_F(CommandLineTest, CommonOptionsStandBeforeOrBehindTheCommand)
{
    EXPECT_EQ(Run({"--json", "version"}).output, Run({"version", "--json"}).output);
    EXPECT_EQ(Ask({"version"})["contract"], 1);
    EXPECT_NE(Run({"--version"}).output.find(Ask({"version"})["version"].get<std::string>()), std::string::npos);
}

} // namespace Vela::Testing
