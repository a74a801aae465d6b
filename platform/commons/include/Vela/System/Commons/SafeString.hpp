#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <cstddef>

namespace Vela::System::Commons
{

/// Bounds-checked string copies on safec, whose constraint failures become exceptions.
class VELA_COMMONS_API SafeString
{
public:
    /// Installs the handler that records a constraint failure of the bounds-checked functions, which then becomes an
    /// exception; happens by itself when the library is loaded, and may be repeated.
    static void InstallConstraintHandler();

    /// Copies a text with its terminating NUL into a buffer of `capacity` bytes.
    /// @throws ArgumentException "Input string is too long" (argument "arg") when the length reaches the capacity
    static void Copy(char* target, std::size_t capacity, const String& text);
};

} // namespace Vela::System::Commons
