#pragma once

#include <nlohmann/json.hpp>

#include <string>

// Compiled once, in Json.cpp.
extern template class nlohmann::basic_json<nlohmann::ordered_map>;

namespace Vela::Kiroctl
{

/// Answers keep the order in which they were put together: what matters most comes first.
using Json = nlohmann::ordered_json;

/// The text with the replacement character in place of what is no UTF-8.
std::string RepairText(const std::string& text);

/// Whether a value is a text that says something.
inline bool HasText(const Json& value)
{
    return value.is_string() && !value.get_ref<const std::string&>().empty();
}

} // namespace Vela::Kiroctl
