#include "Transport/EndpointName.hpp"

#include <fmt/format.h>

#include <cstdint>

namespace Vela::System::Rsc
{

namespace
{

constexpr const char* socketSuffix = ".socket";
constexpr const char* componentSuffix = ".component";

/// With the suffix and "/proc/self/fd/<number>/" in front a name must fit the 107 bytes of a socket's address.
constexpr std::size_t maxNameLength = 68;
constexpr std::size_t keptLength = 48;

bool IsPlain(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '_' || character == '-' ||
           character == '@';
}

/// FNV-1a.
std::uint64_t Hash(const String& text)
{
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char character : text)
    {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3U;
    }
    return hash;
}

String Escape(const String& name)
{
    String escaped;
    for (const char character : name)
    {
        if (IsPlain(character))
        {
            escaped += character;
        }
        else
        {
            escaped += fmt::format("%{:02X}", static_cast<unsigned char>(character));
        }
    }
    // "%~" comes out of no name by itself.
    return escaped.size() <= maxNameLength ? escaped
                                           : fmt::format("{}%~{:016x}", escaped.substr(0, keptLength), Hash(name));
}

} // namespace

String GetSocketFileName(const String& applicationName)
{
    return Escape(applicationName) + socketSuffix;
}

String GetComponentFileName(const String& componentName)
{
    return Escape(componentName) + componentSuffix;
}

bool IsSocketFileName(const String& fileName)
{
    return fileName.ends_with(socketSuffix);
}

bool IsComponentFileName(const String& fileName)
{
    return fileName.ends_with(componentSuffix);
}

} // namespace Vela::System::Rsc
