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

    /// Nothing when the file is no ELF file.
    static std::optional<Architecture> Read(const ReadBytes& read);
    /// The one of this process.
    static const Architecture& GetOwn();
};

} // namespace Vela::System::Kiro::Internal::Contract
