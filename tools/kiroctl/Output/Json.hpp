#pragma once

#include <nlohmann/json.hpp>

namespace Vela::Kiroctl
{

/// Answers keep the order in which they were put together: what matters most comes first.
using Json = nlohmann::ordered_json;

} // namespace Vela::Kiroctl
