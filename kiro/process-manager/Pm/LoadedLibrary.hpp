#pragma once

#include <Pm/LibraryUsage.hpp>
#include <Pm/ShadowCopy.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Runtime/SharedLibrary.hpp>
#include <Vela/System/Kiro/ILibrary.hpp>

#include <cstdint>
#include <memory>

namespace Vela::System::Kiro::Internal::Pm
{

/// A component library in this process.
class LoadedLibrary
{
public:
    LoadedLibrary() = default;
    LoadedLibrary(LoadedLibrary&&) noexcept = default;
    LoadedLibrary& operator=(LoadedLibrary&&) noexcept = default;
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;
    virtual ~LoadedLibrary() = default;

    /// The file that was loaded; empty for a library that is linked into the executable.
    String path;
    /// The library's own object; null when it has no entry function.
    ILibrary* library = nullptr;
    /// Null for a library that is linked into the executable.
    std::unique_ptr<Commons::Runtime::SharedLibrary> sharedLibrary;
    /// How often the library was asked for.
    std::uint32_t referenceCount = 0;
    /// Where the file came from when it is a copy; otherwise null.
    std::unique_ptr<ShadowCopy> shadowCopy;
    /// Who may be running the library's code; never null.
    std::shared_ptr<LibraryUsage> usage = std::make_shared<LibraryUsage>();
};

} // namespace Vela::System::Kiro::Internal::Pm
