#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons::Runtime
{

/// A shared object loaded at run time, with all its symbols bound and none of them visible to others.
class VELA_COMMONS_API SharedLibrary
{
public:
    SharedLibrary() = default;
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;
    /// Unloads.
    ~SharedLibrary();

    /// @throws InvalidOperationException when it is loaded already; Exception with the loader's own text
    void Load(const String& libraryPath);
    /// The address of a symbol that the library itself defines; null when it has none of that name.
    [[nodiscard]] void* GetFunctionAddress(const char* symbolName) const;
    /// Nothing happens when it is not loaded.
    void Unload() noexcept;
    /// Keeps the code mapped to the end of the process: for a library that a call is still running in.
    void Abandon() noexcept;

private:
    void* handle = nullptr;
    String path;
};

} // namespace Vela::System::Commons::Runtime
