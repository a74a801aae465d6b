#include "Oracle.hpp"

#include <algorithm>

namespace Vela::Testing
{
namespace
{

struct Numbers
{
    std::vector<std::size_t> values;
};

/// Reality forgets the numbers from `limit` on that stand behind another one.
Oracle<Numbers> MakeOracle(std::size_t limit)
{
    return {.generate =
                [](Random& random)
            {
                Numbers numbers;
                numbers.values.resize(random.Below(20));
                std::generate(numbers.values.begin(), numbers.values.end(), [&] { return random.Below(100); });
                return numbers;
            },
            .predict =
                [](const Numbers& numbers)
            {
                Trace trace;
                for (const std::size_t value : numbers.values)
                {
                    trace.push_back(std::to_string(value));
                }
                return trace;
            },
            .observe =
                [limit](const Numbers& numbers)
            {
                Trace trace;
                for (const std::size_t value : numbers.values)
                {
                    if (trace.empty() || value < limit)
                    {
                        trace.push_back(std::to_string(value));
                    }
                }
                return trace;
            },
            .simplify =
                [](const Numbers& numbers)
            {
                std::vector<Numbers> simpler;
                AppendWithoutEach(simpler, numbers, &Numbers::values);
                return simpler;
            },
            .missing = {"97", "no number"}};
}

} // namespace

TEST(Oracle, FindsADifferenceAndMakesItsCaseSmall)
{
    auto oracle = MakeOracle(90);
    const auto failure = oracle.FindDifference({1, 1000});
    ASSERT_TRUE(failure);
    ASSERT_EQ(failure->smallest.values.size(), 2U);
    EXPECT_GE(failure->smallest.values[1], 90U);
    EXPECT_NE(failure->difference.find("> " + std::to_string(failure->smallest.values[1])), std::string::npos)
        << failure->difference;

    const auto again = oracle.FindDifference({failure->seed, 1});
    ASSERT_TRUE(again);
    EXPECT_EQ(again->smallest.values, failure->smallest.values);
    if (failure->seed > 1)
    {
        EXPECT_FALSE(oracle.FindDifference({1, failure->seed - 1}));
    }
}

TEST(Oracle, KnowsWhatItsCasesHaveNotReached)
{
    auto oracle = MakeOracle(100);
    EXPECT_FALSE(oracle.FindDifference({1, 1000}));
    EXPECT_THAT(oracle.missing, testing::ElementsAre("no number"));
}

} // namespace Vela::Testing
