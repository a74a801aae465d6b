#pragma once

#include "Offline/OfflineSystem.hpp"

#include <set>

namespace Vela::Kiroctl
{

/// Looks for what no loader can see: whether the pieces of a system fit together and what stands behind its paths.
class SystemCheck
{
public:
    /// @param mayLoad  whether libraries may be loaded, in helper processes, to ask them for their component types
    SystemCheck(const OfflineSystem& offlineSystem, LoadRecord& loadRecord, bool mayLoad);

    void Run();

private:
    using Library = System::Kiro::Internal::Sm::Config::Library;
    using FindingCode = LoadRecord::FindingCode;

    void CheckProcesses();
    void CheckProcess(const System::Kiro::Internal::Sm::Data::ProcessData& process);
    void CheckChildSettings(const System::Kiro::Internal::Sm::Data::ProcessData& process);
    void CheckComponents();
    [[nodiscard]] bool IsCopy(const System::Kiro::Internal::Sm::Config::Component& component) const;
    void CheckLibraries();
    void CheckLibrary(const Library& library);
    bool CheckLibraryFile(const Library& library, const String& path);
    void CheckComponentTypes(const Library& library, const String& path);
    void CheckVariables();

    const OfflineSystem& system;
    LoadRecord& record;
    const bool mayLoadLibraries;
    /// Settings documents that have been checked.
    std::set<String> checkedSettings;
};

} // namespace Vela::Kiroctl
