#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// What a component library and the runtime that loads it must agree on, and the note in the library's file that tells
/// what it was built with. The runtime reads the note before it loads the library, and refuses one of another contract.
namespace Vela::System::Kiro::BinaryContract
{

/// Counts the changes that libraries built before do not survive and that the layout hash does not see: another
/// signature of an operation, another size of a base class.
inline constexpr std::uint32_t contractVersion = 1;
/// Of the headers that a library is built with.
inline constexpr std::string_view sdkVersion = "24.0.8.148";
#ifdef __clang__
inline constexpr std::string_view compiler = __VERSION__;
#else
inline constexpr std::string_view compiler = "GCC " __VERSION__;
#endif

/// An interface between libraries and runtime.
struct Interface
{
    std::string_view name;
    /// In the order of their slots, which begins behind the destructors; separated by blanks.
    std::string_view operations;
};

inline constexpr std::array interfaces{
    Interface{"IApplication", "GetName"},
    Interface{"IComponent", "GetApplication GetLibrary GetName GetVersion GetCategory GetStartOrder IsSingleton "
                            "IsSystemComponent Initialize SubscribeServices LoadSettings SetupSettings PublishServices "
                            "LoadConfig SetupConfig ResetConfig Dispose PowerDown"},
    Interface{"IComponentFactory", "ContainsComponentType CreateComponent"},
    Interface{"IControllerComponent", "Start Stop"},
    Interface{"IEnvironmentVariablesProvider", "GetEnvironmentVariables OnEnvironmentVariablesTakenOver"},
    Interface{"ILibrary", "GetComponentFactory GetVersion"},
    Interface{"IRscServiceFactory", "GetName GetInterfaceName IsSecurityEnabled SetSecurityEnabled CreateServiceStub"},
    Interface{"IRscServiceLease", "GetService"},
    Interface{"IRscServiceProxy", "GetProcessName"},
    Interface{"IRscServiceStub", "Invoke Authorize GetOperationName IsSecure GetService"},
    Interface{"IRscTransaction", "BeginServiceInvocationRequest EndServiceInvocationRequest "
                                 "BeginServiceInvocationResponse EndServiceInvocationResponse MakeMalformedResponse"},
    Interface{"RscClient", "GetProcessName TryLease BeginTransaction"},
};

/// Tells one layout of the virtual function tables from another: FNV-1a over all names in their order.
constexpr std::uint64_t ComputeLayoutHash()
{
    std::uint64_t hash = 14695981039346656037U;
    const auto add = [&hash](std::string_view text)
    {
        for (const char character : text)
        {
            hash = (hash ^ static_cast<unsigned char>(character)) * 1099511628211U;
        }
    };
    for (const Interface& interface : interfaces)
    {
        add(interface.name);
        add(":");
        add(interface.operations);
        add(";");
    }
    return hash;
}

inline constexpr std::uint64_t layoutHash = ComputeLayoutHash();

/// The descriptor of the note, in the library's own byte order. Texts end with a NUL or with their array.
struct Description
{
    std::uint32_t contractVersion;
    /// In halves, since a note is aligned to four bytes.
    std::uint32_t layoutHashLow;
    std::uint32_t layoutHashHigh;
    std::array<char, 32> sdkVersion;
    std::array<char, 64> compiler;
};

inline constexpr std::string_view noteName = "Vela";
inline constexpr std::uint32_t noteType = 1;

/// The note as it stands in the file. vela_add_component_library adds it to each library.
struct Note
{
    std::uint32_t nameSize = noteName.size() + 1;
    std::uint32_t descriptionSize = sizeof(Description);
    std::uint32_t type = noteType;
    std::array<char, 8> name{};
    Description description{};
};

constexpr Note MakeNote(std::uint32_t version, std::uint64_t hash)
{
    const auto copy = [](std::string_view text, auto& target)
    {
        std::copy_n(text.begin(), std::min(text.size(), target.size()), target.begin());
    };
    Note note;
    copy(noteName, note.name);
    note.description.contractVersion = version;
    note.description.layoutHashLow = static_cast<std::uint32_t>(hash);
    note.description.layoutHashHigh = static_cast<std::uint32_t>(hash >> 32U);
    copy(sdkVersion, note.description.sdkVersion);
    copy(compiler, note.description.compiler);
    return note;
}

} // namespace Vela::System::Kiro::BinaryContract

/// Makes a constant a note of the file that it is linked into.
#define VELA_NOTE_SECTION __attribute__((section(".note.vela"), used, aligned(4)))
