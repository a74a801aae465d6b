#include "Harness/Table.hpp"

#include <fmt/format.h>
#include <fmt/ostream.h>

namespace Vela::Benchmarks
{

namespace
{

/// Three significant digits, but whole numbers in full.
std::string Format(double value)
{
    return value < 1000 ? fmt::format("{:#.3g}", value) : fmt::format("{:.0f}", value);
}

} // namespace

void PrintTable(std::ostream& stream, const std::vector<Row>& rows)
{
    constexpr const char* line = "{:<40} {:>10} {:>10} {:<8} {:>7} {:>5}  {}\n";
    fmt::print(stream, fmt::runtime(line), "row", "measured", "floor", "unit", "ratio", "aim", "the floor is");
    for (const Row& row : rows)
    {
        fmt::print(stream, fmt::runtime(line), row.name, Format(row.comparison.measured), Format(row.comparison.floor),
                   row.unit, fmt::format("{:.2f}", row.comparison.ratio),
                   row.aim ? fmt::format("{:.2f}", *row.aim) : "", row.floor);
    }
}

} // namespace Vela::Benchmarks
