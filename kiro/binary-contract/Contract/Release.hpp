#pragma once

#include <Vela/String.hpp>

#include <Contract/DynamicSection.hpp>

namespace Vela::System::Kiro::Internal::Contract
{

/// Refuses a library that was linked with the framework's libraries of another major version. The dynamic loader would
/// look for these in vain or, where both versions are installed, load a second runtime into the process.
/// @param path  for the message
/// @throws InvalidOperationException, naming both versions
void CheckRelease(const String& path, const DynamicSection& section);

} // namespace Vela::System::Kiro::Internal::Contract
