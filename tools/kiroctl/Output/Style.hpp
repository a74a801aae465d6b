#pragma once

#include <string>
#include <string_view>

namespace Vela::Kiroctl
{

/// What a text means to the reader, not how it looks.
enum class Style
{
    Plain,
    Heading,
    Good,
    Warning,
    Bad,
    Faint,
};

/// The text as a terminal shows it in that style.
std::string Paint(std::string_view text, Style style);

} // namespace Vela::Kiroctl
