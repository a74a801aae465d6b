#pragma once

#include <Vela/System/Commons/Api.hpp>

#include <cstddef>
#include <string_view>

namespace Vela::System::Commons
{

/// Bounds-checked string copies on safec, whose constraint failures become exceptions.
class VELA_COMMONS_API SafeString
{
public:
    /// Installs the handler that records a constraint failure of the bounds-checked functions, which then becomes an
    /// exception; happens by itself when the library is loaded, and may be repeated.
    static void InstallConstraintHandler();

    /// Copies a text, and NULs that it holds with it, into a buffer of `capacity` bytes, and puts a terminating NUL
    /// behind it.
    /// @throws ArgumentException "Input string is too long" (argument "arg", the text) when its length reaches the
    ///         capacity
    static void Copy(char* target, std::size_t capacity, std::string_view text);
};

} // namespace Vela::System::Commons
