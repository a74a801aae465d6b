#pragma once

#include <Config/Process.hpp>
#include <Vela/String.hpp>

#include <map>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// The processes of the system by name.
class Processes : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Processes";
    /// Marks the runtime's own executable in a binary path.
    static constexpr const char* applicationBinaryName = "Vela.System.Application";

    /// @throws XmlException "Process '{0}' is already declared!"
    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    [[nodiscard]] bool Equals(const Processes& other) const;

    /// Answers false, changing nothing, when there is a process of that name.
    bool AddItem(const Process& process);
    /// Drops a process that has nothing to do. One that is external or runs another executable stays; an unknown name
    /// means nothing.
    void RemoveUnusedProcess(const String& name);
    [[nodiscard]] const std::map<String, Process>& GetItems() const noexcept;

private:
    std::map<String, Process> items;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
