#include "Oracle.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

namespace Vela::Testing
{

namespace
{

std::uint64_t GetNumber(const char* variable, std::uint64_t fallback)
{
    const char* text = std::getenv(variable);
    return text == nullptr ? fallback : std::stoull(text);
}

std::string Join(const Trace& trace, std::size_t mark)
{
    std::string text;
    for (std::size_t index = 0; index < trace.size(); ++index)
    {
        text += fmt::format("  {} {}\n", index == mark ? '>' : ' ', trace[index]);
    }
    return text;
}

} // namespace

void Append(Trace& trace, const Trace& more)
{
    trace.insert(trace.end(), more.begin(), more.end());
}

bool Contains(const Trace& trace, const std::string& text)
{
    return std::any_of(trace.begin(), trace.end(),
                       [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

OracleRange OracleRange::Get(std::uint64_t defaultCount)
{
#ifdef VELA_SANITIZED
    defaultCount = std::max<std::uint64_t>(defaultCount / 10, 1);
#endif
    defaultCount = std::max<std::uint64_t>(defaultCount * GetNumber("VELA_ORACLE_PERCENT", 100) / 100, 1);
    return {GetNumber("VELA_ORACLE_SEED", defaultFirstSeed), GetNumber("VELA_ORACLE_COUNT", defaultCount)};
}

std::string DescribeDifference(const Trace& predicted, const Trace& observed)
{
    if (predicted == observed)
    {
        return {};
    }
    const auto [expected, found] = std::mismatch(predicted.begin(), predicted.end(), observed.begin(), observed.end());
    const auto mark = static_cast<std::size_t>(expected - predicted.begin());
    return "The model says:\n" + Join(predicted, mark) + "Really:\n" + Join(observed, mark);
}

} // namespace Vela::Testing
