#pragma once

#include <Vela/String.hpp>

namespace Vela::Kiroctl
{

/// What stands at a path, to go on with a sentence: "does not exist", "is a directory", "is a device", "is a file" and
/// so on, links followed.
const char* DescribeFileKind(const String& path);

} // namespace Vela::Kiroctl
