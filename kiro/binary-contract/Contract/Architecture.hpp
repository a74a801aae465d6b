#pragma once

#include <Vela/String.hpp>

#include <Contract/ReadBytes.hpp>

#include <cstdint>
#include <optional>

namespace Vela::System::Kiro::Internal::Contract
{

/// What a file of machine code is made for, as its ELF header says.
struct Architecture
{
    std::uint8_t wordClass = 0;
    std::uint8_t byteOrder = 0;
    std::uint16_t machine = 0;

    bool operator==(const Architecture&) const = default;
    /// "ARM (32-bit, little-endian)".
    [[nodiscard]] String ToString() const;
    [[nodiscard]] bool HasOwnByteOrder() const;

    /// Nothing when the file is no ELF file.
    static std::optional<Architecture> Read(const ReadBytes& read);
    /// The one of this process.
    static const Architecture& GetOwn();
    /// @param path  of a library, for the message
    /// @throws InvalidOperationException when the file is one of machine code, but not for this process
    static void RequireOwn(const String& path, const ReadBytes& read);
};

} // namespace Vela::System::Kiro::Internal::Contract
