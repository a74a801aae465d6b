#pragma once

#include <string>

namespace Vela
{

/// The platform's text type: bytes, UTF-8 by convention.
using String = std::string;

} // namespace Vela
