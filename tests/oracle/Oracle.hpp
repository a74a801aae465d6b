#pragma once

#include "Random.hpp"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace Vela::Testing
{

/// What a case did, as texts in their order: calls, log lines, notifications, outcomes.
using Trace = std::vector<std::string>;

void Append(Trace& trace, const Trace& more);
/// Whether the text occurs in a line.
bool Contains(const Trace& trace, const std::string& text);

/// How many cases to compare, and which.
struct OracleRange
{
    /// The environment's VELA_ORACLE_SEED and VELA_ORACLE_COUNT beat the defaults, VELA_ORACLE_PERCENT makes the
    /// defaults smaller. A build with sanitizers compares a tenth.
    static OracleRange Get(std::uint64_t defaultCount);

    /// Whether it has all the cases that it has by default.
    [[nodiscard]] bool IsAnOrdinaryRun(std::uint64_t defaultCount) const
    {
        return firstSeed == defaultFirstSeed && count >= defaultCount;
    }

    static constexpr std::uint64_t defaultFirstSeed = 1;

    std::uint64_t firstSeed;
    std::uint64_t count;
};

/// Where two traces part, and what each of them says in all; empty when they are equal.
std::string DescribeDifference(const Trace& predicted, const Trace& observed);

/// Compares a model of the rules with the code that follows them, over random cases.
template <typename Case>
struct Oracle
{
    struct Failure
    {
        std::uint64_t seed = 0;
        Case smallest;
        std::string difference;
    };

    std::function<Case(Random&)> generate;
    /// What the model says.
    std::function<Trace(const Case&)> predict;
    /// What really happens.
    std::function<Trace(const Case&)> observe;
    /// Cases that are a little simpler than a case.
    std::function<std::vector<Case>(const Case&)> simplify;
    /// Texts in the traces of the model that have not occurred yet. In the end there are none, or the cases are poor.
    std::set<std::string> missing = {};

    /// The first case of the range in which model and reality differ, made as small as it goes.
    std::optional<Failure> FindDifference(const OracleRange& range)
    {
        for (std::uint64_t seed = range.firstSeed; seed < range.firstSeed + range.count; ++seed)
        {
            Random random(seed);
            const Case sample = generate(random);
            const Trace predicted = predict(sample);
            if (predicted != observe(sample))
            {
                const Case smallest = Shrink(sample);
                return Failure{seed, smallest, Differ(smallest)};
            }
            std::erase_if(missing, [&](const std::string& text) { return Contains(predicted, text); });
        }
        return std::nullopt;
    }

private:
    std::string Differ(const Case& sample) const
    {
        return DescribeDifference(predict(sample), observe(sample));
    }

    Case Shrink(Case sample) const
    {
        bool isSmaller = true;
        while (isSmaller)
        {
            isSmaller = false;
            for (Case& simpler : simplify(sample))
            {
                if (!Differ(simpler).empty())
                {
                    sample = std::move(simpler);
                    isSmaller = true;
                    break;
                }
            }
        }
        return sample;
    }
};

/// A test's expectation: no difference over the range, and nothing missing unless the range is short and not the
/// ordinary one.
template <typename Case>
void ExpectNoDifference(Oracle<Case> oracle, std::uint64_t defaultCount)
{
    const OracleRange range = OracleRange::Get(defaultCount);
    if (const auto failure = oracle.FindDifference(range))
    {
        ADD_FAILURE() << "Seed " << failure->seed << " (again with VELA_ORACLE_SEED=" << failure->seed
                      << " VELA_ORACLE_COUNT=1), made as small as it goes:\n"
                      << failure->smallest.Describe() << failure->difference;
    }
    else if (range.IsAnOrdinaryRun(defaultCount) || range.count >= 300)
    {
        EXPECT_THAT(oracle.missing, testing::IsEmpty()) << "The cases never came there.";
    }
}

/// The cases with one element of a list left out.
template <typename Case, typename T>
void AppendWithoutEach(std::vector<Case>& simpler, const Case& sample, std::vector<T> Case::*list)
{
    for (std::size_t index = 0; index < (sample.*list).size(); ++index)
    {
        Case copy = sample;
        (copy.*list).erase((copy.*list).begin() + static_cast<std::ptrdiff_t>(index));
        simpler.push_back(std::move(copy));
    }
}

} // namespace Vela::Testing
