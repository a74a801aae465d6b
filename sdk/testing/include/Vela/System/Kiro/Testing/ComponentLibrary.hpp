#pragma once

#include <Vela/String.hpp>

#include <map>

namespace Vela::System::Kiro::Testing
{

/// Tells the kit where a component library lies, as long as the object lives. vela_add_component_test adds one such
/// object to the test's executable for each library that it names.
class ComponentLibrary
{
public:
    /// @param path  of the shared object
    ComponentLibrary(const String& name, const String& path);
    ComponentLibrary(const ComponentLibrary&) = delete;
    ComponentLibrary& operator=(const ComponentLibrary&) = delete;
    ~ComponentLibrary();

    /// The paths of all libraries by their names.
    [[nodiscard]] static const std::map<String, String>& GetAll();

private:
    static std::map<String, String>& GetTable();

    const String libraryName;
};

} // namespace Vela::System::Kiro::Testing
