#pragma once

#include <Vela/String.hpp>

#include <Contract/ReadBytes.hpp>

#include <optional>
#include <vector>

namespace Vela::System::Kiro::Internal::Contract
{

/// What a shared object tells the dynamic loader, as it stands in the file.
struct DynamicSection
{
    /// The name under which others need it; empty when it has none.
    String name;
    /// The shared objects that it needs, in the order in which they are searched for symbols.
    std::vector<String> needed;
    /// Where they are looked for, separated by colons, with "$ORIGIN" as it is written.
    String runPath;

    /// Reads a file without executing anything of it; it may hold anything and be made for another processor.
    /// @return nothing when the file is not one of machine code of this machine's byte order, or has no such section
    static std::optional<DynamicSection> Read(const ReadBytes& read);
};

} // namespace Vela::System::Kiro::Internal::Contract
