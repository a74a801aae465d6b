// The benchmark works: each of its rows is measured and printed. What the figures are is nobody's business here.
#include <StartedProcess.hpp>
#include <TestSystem.hpp>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>

namespace Vela::Testing
{

namespace
{

struct Group
{
    std::string name;
    int rows;

    friend void PrintTo(const Group& group, std::ostream* stream)
    {
        *stream << group.name;
    }
};

class Benchmark : public testing::TestWithParam<Group>
{
};

StartedProcess Start(const std::vector<std::string>& arguments)
{
    return StartedProcess(TestSystem::GetBuiltFile("bin/kiro-bench"), arguments);
}

} // namespace

TEST_P(Benchmark, MeasuresAndPrintsItsRows)
{
    StartedProcess process = Start({"--quick", GetParam().name});
    ASSERT_EQ(process.AwaitEnd(), 0) << process.GetOutput();

    // Name, measured value, floor, unit where there is one, ratio, aim where there is one, the floor in words.
    const std::regex row("^" + GetParam().name + R"(: .+? +[0-9.]+ +[0-9.]+ [a-zA-Z ]+ [0-9]+\.[0-9]{2} .*[a-z].*$)");
    std::istringstream output(process.GetOutput());
    int rows = 0;
    for (std::string line; std::getline(output, line);)
    {
        rows += std::regex_match(line, row) ? 1 : 0;
    }
    EXPECT_EQ(rows, GetParam().rows) << process.GetOutput();
}

INSTANTIATE_TEST_SUITE_P(Rows, Benchmark,
                         testing::Values(Group{"rpc", 5}, Group{"clients", 6}, Group{"start", 3},
                                         Group{"components", 9}, Group{"load", 1}, Group{"idle", 2}, Group{"log", 2},
                                         Group{"notify", 2}),
                         [](const auto& group) { return group.param.name; });

TEST(BenchmarkCommandLine, PrintsOneRemoteCallOnOneLine)
{
    StartedProcess process = Start({"rpc", "--line", "--quick"});
    ASSERT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
    std::istringstream line(process.GetOutput());
    double median = 0;
    double slow = 0;
    double mean = 0;
    double perSecond = 0;
    line >> median >> slow >> mean >> perSecond;
    ASSERT_TRUE(line) << process.GetOutput();
    EXPECT_LE(median, slow);
    EXPECT_GT(mean, 0);
    EXPECT_NEAR(mean * perSecond / 1e6, 1, 0.05);
    EXPECT_EQ(process.CountOutput("\n"), 1);
}

TEST(BenchmarkCommandLine, ExplainsItselfWhenARowIsUnknown)
{
    StartedProcess process = Start({"rpcs"});
    EXPECT_EQ(process.AwaitEnd(), 2);
    EXPECT_TRUE(process.HasOutput("usage: kiro-bench")) << process.GetOutput();
}

} // namespace Vela::Testing
