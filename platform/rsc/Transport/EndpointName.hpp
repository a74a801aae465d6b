#pragma once

#include <Vela/String.hpp>

namespace Vela::System::Rsc
{

/// Names of the files in a runtime directory. Names of processes and components may hold anything and have any length:
/// bytes that a file name should not hold are written as %XX, and what is too long for a socket's address is cut and
/// made distinct by a hash.
String GetSocketFileName(const String& applicationName);
/// The link that leads from a component to the socket of its process.
String GetComponentFileName(const String& componentName);
bool IsSocketFileName(const String& fileName);
bool IsComponentFileName(const String& fileName);

/// The link that leads to the socket of the main process. It has no suffix, so it is nobody else's name.
inline constexpr const char* mainProcessFileName = "main-process";
/// The lock of the main process.
inline constexpr const char* lockFileName = "system-lock";
/// The secret that opens TCP endpoints.
inline constexpr const char* secretFileName = "system-secret";

} // namespace Vela::System::Rsc
