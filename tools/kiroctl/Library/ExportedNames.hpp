#pragma once

#include <Vela/String.hpp>

#include <Contract/ReadBytes.hpp>

#include <vector>

namespace Vela::Kiroctl
{

/// The names that a shared object of either word size defines for others; read without executing it. None when the file
/// is not of this machine's byte order, or makes no sense.
std::vector<String> ReadExportedNames(const System::Kiro::Internal::Contract::ReadBytes& read);

} // namespace Vela::Kiroctl
