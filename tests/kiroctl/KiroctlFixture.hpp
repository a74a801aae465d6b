#pragma once

#include <StartedProcess.hpp>
#include <TestSystem.hpp>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Vela::Testing
{

/// Runs the built tool in the directory of a system.
class KiroctlTest : public testing::Test
{
protected:
    using Json = nlohmann::ordered_json;

    struct Result
    {
        int exitCode;
        /// Standard output and standard error.
        std::string output;
    };

    [[nodiscard]] Result Run(const std::vector<std::string>& arguments) const
    {
        StartedProcess tool(TestSystem::GetBuiltFile("bin/kiroctl"), arguments, system.environment,
                            system.directory.GetPath().string());
        const int exitCode = tool.AwaitEnd();
        return {exitCode, tool.GetOutput()};
    }

    /// Runs a command with --json and answers its document.
    [[nodiscard]] Json Ask(std::vector<std::string> arguments, int expectedExitCode = 0) const
    {
        arguments.emplace_back("--json");
        const Result result = Run(arguments);
        EXPECT_EQ(result.exitCode, expectedExitCode) << result.output;
        Json answer = Json::parse(result.output, nullptr, false);
        EXPECT_FALSE(answer.is_discarded()) << result.output;
        return answer;
    }

    /// The declaration of a library of the build tree.
    [[nodiscard]] static std::string Library(const std::string& name, const std::string& path)
    {
        return "<Library name=\"" + name + "\" binaryPath=\"" + path + "\"/>\n";
    }

    TestSystem system;
};

} // namespace Vela::Testing
