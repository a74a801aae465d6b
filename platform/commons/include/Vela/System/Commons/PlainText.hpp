#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <cstddef>
#include <string_view>

namespace Vela::System::Commons
{

/// A text from elsewhere, made fit for a line that people read: control characters other than tabs appear as `\xNN`, so
/// that they neither begin a line of their own nor command a terminal; what exceeds `maxSize` bytes is cut, with "..."
/// in its place.
VELA_COMMONS_API String MakePlainText(std::string_view text, std::size_t maxSize = String::npos);

} // namespace Vela::System::Commons
