#pragma once

#include <Vela/String.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace Vela::Kiroctl
{

/// A component that a library is asked for.
struct ProbedComponent
{
    String name;
    String type;
};

/// What a component says of itself once it is constructed.
struct ComponentFacts
{
    std::uint32_t startOrder = 0;
    bool hasCategory = true;
    bool isSystemComponent = false;
    bool isController = false;
};

/// What a library tells when the runtime's own loader has loaded it, in a helper process.
struct LibraryFacts
{
    /// Why it cannot be loaded; empty when it can.
    String failure;
    /// Whether it has components at all.
    bool hasEntry = false;
    String version;
    /// All that it has; nothing when it makes components in a way of its own, and so does not tell.
    std::optional<std::vector<String>> componentTypes;
    /// The types asked for that it does not have.
    std::vector<String> unknownTypes;
    /// By name: those that were to be constructed and could be.
    std::map<String, ComponentFacts> components;
    /// By name: why a component could not be constructed.
    std::map<String, String> failedComponents;
};

enum class ProbeDepth
{
    /// Load the library and ask for types.
    Types,
    /// Construct the components besides, as the runtime does first of all.
    Components,
};

/// @param path  the library's file, as the loader probes it
LibraryFacts ProbeLibrary(const String& path, const std::vector<ProbedComponent>& components, ProbeDepth depth);

/// The shared objects among `needed` that a process of the runtime would not find, each with the loader's own words.
/// @param path  the library that needs them
/// @param runPath  where it wants them to be looked for
std::map<String, String> FindMissingLibraries(const String& path, const String& runPath,
                                              const std::vector<String>& needed);

} // namespace Vela::Kiroctl
