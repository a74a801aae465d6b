#pragma once

#include <map>
#include <set>
#include <string>

namespace Vela::Kiroctl
{

/// What a template is filled with.
struct TemplateValues
{
    /// For "@name@".
    std::map<std::string, std::string> texts;
    /// For the lines "@if name", "@else" and "@end", which stand alone and may be nested.
    std::set<std::string> conditions;
};

/// The text with its values; "@" that names no value stays as it is.
/// @throws CommandError for conditions that do not fit together
std::string RenderTemplate(const std::string& text, const TemplateValues& values);

} // namespace Vela::Kiroctl
