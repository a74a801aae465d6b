#pragma once

#include "Harness/Statistics.hpp"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Vela::Benchmarks
{

/// A line of the table.
struct Row
{
    std::string name;
    std::string unit;
    Comparison comparison;
    /// What the floor is, in words.
    std::string floor;
    /// The ratio that is to be reached, where there is one.
    std::optional<double> aim = std::nullopt;
};

void PrintTable(std::ostream& stream, const std::vector<Row>& rows);

} // namespace Vela::Benchmarks
