// The part of the system check that looks at component libraries.

#include "Check/FileKind.hpp"
#include "Library/LibraryProbe.hpp"
#include "SystemCheck.hpp"

#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/System/Commons/Io/FileTrust.hpp>

#include <Contract/Architecture.hpp>
#include <Contract/DynamicSection.hpp>
#include <Contract/LibraryNote.hpp>
#include <unistd.h>

namespace Vela::Kiroctl
{

namespace Contract = System::Kiro::Internal::Contract;
using System::Commons::Io::FileTrust;
using System::Commons::Io::TrustedFile;
using System::Kiro::Internal::Pm::SharedLibraryLoader;

void SystemCheck::CheckLibraries()
{
    std::set<String> used;
    for (const auto& [processName, process] : system.processes)
    {
        for (const auto& [name, library] : process->libraries)
        {
            used.insert(name);
        }
    }
    for (const auto& [name, library] : system.configuration.libraries.GetItems())
    {
        if (used.contains(name))
        {
            CheckLibrary(library);
        }
        else
        {
            record.Add(FindingCode::UnusedLibrary, library.position,
                       fmt::format("No component needs library '{}'.", name));
        }
    }
}

void SystemCheck::CheckLibrary(const Library& library)
{
    if (library.binaryPath.find("${") != String::npos)
    {
        return;
    }
    String path;
    try
    {
        path = SharedLibraryLoader::ProbeLibraryName(library.binaryPath);
    }
    catch (const Exception& exception)
    {
        // The loader looks for files and takes everything else for nothing.
        const bool isThere = ::access(library.binaryPath.c_str(), F_OK) == 0;
        record.Add(FindingCode::MissingLibrary, library.position,
                   isThere ? fmt::format("Library '{}' {}.", library.binaryPath, DescribeFileKind(library.binaryPath))
                           : exception.GetMessage());
        return;
    }
    FileTrust::Require(TrustedFile::Library, path);
    if (CheckLibraryFile(library, path) && mayLoadLibraries)
    {
        CheckComponentTypes(library, path);
    }
}

/// Answers whether the file shows nothing that keeps it from being loaded.
bool SystemCheck::CheckLibraryFile(const Library& library, const String& path)
{
    const auto read = Contract::ReadFrom(path);
    const auto architecture = Contract::Architecture::Read(read);
    const bool isForeign = architecture && *architecture != Contract::Architecture::GetOwn();
    try
    {
        Contract::CheckLibraryFile(path);
    }
    catch (const Exception& exception)
    {
        record.Add(isForeign ? FindingCode::WrongArchitecture : FindingCode::ContractMismatch, library.position,
                   exception.GetMessage());
        return false;
    }
    const auto section = Contract::DynamicSection::Read(read);
    if (!section)
    {
        record.Add(FindingCode::UnloadableLibrary, library.position,
                   fmt::format("Library '{}' is not a shared object.", path));
        return false;
    }
    const auto missing =
        mayLoadLibraries ? FindMissingLibraries(path, section->runPath, section->needed) : std::map<String, String>();
    for (const auto& [name, reason] : missing)
    {
        record.Add(FindingCode::MissingDependency, library.position,
                   fmt::format("Library '{}' needs '{}': {}", path, name, reason));
    }
    return missing.empty();
}

void SystemCheck::CheckComponentTypes(const Library& library, const String& path)
{
    std::vector<ProbedComponent> components;
    for (const auto& [processName, process] : system.processes)
    {
        for (const auto& [name, component] : process->components)
        {
            // A type that is missing in the document has been told.
            if (component->library == library.name && !component->type.empty())
            {
                components.push_back({name, component->type});
            }
        }
    }
    const LibraryFacts facts = ProbeLibrary(path, components, ProbeDepth::Types);
    if (!facts.failure.empty())
    {
        record.Add(FindingCode::UnloadableLibrary, library.position,
                   fmt::format("Library '{}' cannot be loaded: {}", path, facts.failure));
        return;
    }
    if (!facts.hasEntry)
    {
        record.Add(FindingCode::NoComponentLibrary, library.position,
                   fmt::format("Library '{}' has no entry function '{}' and so no components.", path,
                               SharedLibraryLoader::dlMainEntryName));
        return;
    }
    for (const ProbedComponent& component : components)
    {
        const auto& unknown = facts.unknownTypes;
        if (std::find(unknown.begin(), unknown.end(), component.type) != unknown.end())
        {
            const auto& configured = system.configuration.components.GetItems().at(component.name);
            record.Add(FindingCode::UnknownComponentType, configured.position,
                       fmt::format("Component '{}': library '{}' has no component type '{}'.", component.name,
                                   library.name, component.type));
        }
    }
}

} // namespace Vela::Kiroctl
