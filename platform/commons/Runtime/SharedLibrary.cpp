#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Io/File.hpp>
#include <Vela/System/Commons/Runtime/SharedLibrary.hpp>

#include <Runtime/LibraryFile.hpp>
#include <dlfcn.h>
#include <link.h>

#include <utility>

namespace Vela::System::Commons::Runtime
{

SharedLibrary::~SharedLibrary()
{
    Unload();
}

void SharedLibrary::Load(const String& libraryPath)
{
    if (handle != nullptr)
    {
        throw InvalidOperationException("Library '{0}' is loaded already", path);
    }
    // A bare name would be looked up in the system's directories, not in the working directory.
    const bool isBareName = libraryPath.find('/') == String::npos && Io::File::Exists(libraryPath);
    const String file = isBareName ? "./" + libraryPath : libraryPath;
    if (IsCutOff(file))
    {
        throw Exception("Could not load library '{0}': the file is cut off", libraryPath);
    }
    handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
    {
        const char* reason = ::dlerror();
        throw Exception("Could not load library '{0}': {1}", libraryPath, reason == nullptr ? "unknown error" : reason);
    }
    path = libraryPath;
}

void* SharedLibrary::GetFunctionAddress(const char* symbolName) const
{
    void* address = handle == nullptr ? nullptr : ::dlsym(handle, symbolName);
    if (address == nullptr)
    {
        return nullptr;
    }
    // The lookup goes on into the libraries that this one depends on; a symbol found there is not its own.
    link_map* own = nullptr;
    link_map* definer = nullptr;
    Dl_info info{};
    const bool isKnown = ::dlinfo(handle, RTLD_DI_LINKMAP, &own) == 0 &&
                         ::dladdr1(address, &info, reinterpret_cast<void**>(&definer), RTLD_DL_LINKMAP) != 0;
    return isKnown && own == definer ? address : nullptr;
}

void SharedLibrary::Unload() noexcept
{
    if (void* loaded = std::exchange(handle, nullptr))
    {
        ::dlclose(loaded);
    }
}

void SharedLibrary::Abandon() noexcept
{
    handle = nullptr;
}

} // namespace Vela::System::Commons::Runtime
