#pragma once

#include "Output/Json.hpp"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace Vela::Kiroctl
{

/// What a helper process has brought back.
struct HelperResult
{
    /// Nothing when it did not come to its end.
    std::optional<Json> answer;
    /// Why not: "crashed (Segmentation fault)", "did not answer within 10 s", or the text of an exception.
    std::string failure;
};

/// Does something in a copy of this process, which may crash, hang or exit there, or change whatever a process has:
/// this one is not touched. What it writes to standard output and standard error is discarded. Not for a process that
/// has other threads.
HelperResult RunInHelper(const std::function<Json()>& action,
                         std::chrono::milliseconds limit = std::chrono::seconds(10));

} // namespace Vela::Kiroctl
