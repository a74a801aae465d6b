#pragma once

#include <Config/Component.hpp>
#include <Config/Processes.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>

#include <map>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// The components of the system by name: those of one process (or of none yet), and the generic ones, which are
/// declared once and copied into every process.
class Components : public ConfigElement, private Commons::Diagnostics::Loggable<Components>
{
public:
    static constexpr const char* elementXmlName = "Components";
    /// The process name that stands for every process.
    static constexpr const char* multiProcessIndicator = "*";
    /// Stands between a generic component's name and the name of its process.
    static constexpr const char* processSeparator = "@";

    using Map = std::map<String, Component>;

    /// @throws XmlException, InvalidConfigException
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const Components& other) const;

    /// Adds a component. When there is a built-in one of that name, it takes over process and settings path instead.
    /// @throws InvalidConfigException "Duplicated component name occurs: '{0}'"
    void AddItem(Component component);
    /// Whether a component of that type is configured in that process; if so, a warning says that it goes before the
    /// generic one.
    [[nodiscard]] bool HasItemInProcessYet(const String& type, const String& process) const;
    /// Gives a built-in component the process and the settings path of a definition, where it has them. Its type,
    /// library and flags are fixed.
    void CopyPropertiesOfStaticComponent(const Component& from, Component& to) const;
    /// Drops the processes in which no component is configured; generic components do not count.
    void ResolveEmptyProcessItems(Processes& processes) const;
    /// Copies every generic component into every process. A copy has name, type and library of the generic component
    /// and nothing else of it; a type that is configured in a process is not copied there.
    /// @param singleProcess  copy into the reference process only, the one with the application domain's name
    /// @throws Exception when there is no application domain
    void ResolveMultiProcessItems(const Processes& processes, bool singleProcess);

    [[nodiscard]] const Map& GetItems() const noexcept;
    /// The generic components.
    [[nodiscard]] const Map& GetMultiProcessItems() const noexcept;

private:
    bool AddToExisting(Map& map, const Component& component) const;
    void AddCopy(const Component& generic, const String& name, const String& process);
    void WarnOfIneffectiveDeclaration(const Component& generic, bool hasProcess) const;

    Map items;
    Map multiProcessItems;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
