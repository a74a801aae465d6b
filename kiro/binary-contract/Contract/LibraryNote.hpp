#pragma once

#include <Vela/String.hpp>

#include <Contract/ReadBytes.hpp>

#include <cstdint>
#include <optional>

namespace Vela::System::Kiro::Internal::Contract
{

/// What a component library was built with, as the note in its file says.
struct LibraryNote
{
    std::uint32_t contractVersion = 0;
    std::uint64_t layoutHash = 0;
    String sdkVersion;
    String compiler;

    /// Reads the note without executing anything of the library, whose file may hold anything and be made for another
    /// processor.
    /// @param path  for messages
    /// @return nothing when there is no note, and when the file is not one of machine code of this machine's byte order
    /// @throws InvalidOperationException when the note is malformed
    static std::optional<LibraryNote> Read(const String& path, const ReadBytes& read);
    /// @throws InvalidOperationException, naming the values of both sides, when this runtime has another contract
    void CheckContract(const String& path) const;
};

/// Refuses a library whose file shows already that it cannot work in this process. One without a note passes.
/// @throws InvalidOperationException as the two operations above, Architecture::RequireOwn and CheckRelease do
void CheckLibraryFile(const String& path);

} // namespace Vela::System::Kiro::Internal::Contract
