#pragma once

#include <Config/ConfigElement.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <cstdint>

namespace Vela::System::Kiro::Internal::Sm::Config
{

/// A process of the system, as it is configured. Paths are resolved and absolute, or empty.
class Process : public ConfigElement
{
public:
    static constexpr const char* elementXmlName = "Process";
    static constexpr const char* nameXmlName = "name";
    static constexpr const char* localTcpPortXmlName = "localTcpPort";
    static constexpr const char* processOwnerXmlName = "processOwner";
    static constexpr const char* workingDirectoryXmlName = "workingDirectory";
    static constexpr const char* settingsPathXmlName = "settingsPath";
    static constexpr const char* binaryPathXmlName = "binaryPath";
    static constexpr const char* coreXmlName = "core";
    static constexpr const char* debugBreakXmlName = "debugBreak";
    static constexpr const char* isExternalXmlName = "external";
    static constexpr const char* argsXmlName = "args";

    void ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context) override;
    /// Compares all that is configured, not where it was written.
    [[nodiscard]] bool Equals(const Process& other) const;

    String name;
    /// For calls between processes; 0 means none.
    std::int32_t localTcpPort = 0;
    String processOwner;
    String workingDirectory;
    /// Settings document of the process.
    String settingsPath;
    /// Executable; empty means the runtime's own.
    String binaryPath;
    /// Processor that the process is bound to.
    std::int32_t core = 0;
    /// The process waits for a debugger when it starts.
    bool debugBreak = false;
    /// The process is started by somebody else.
    bool isExternal = false;
    /// Further command-line arguments.
    String args;
    /// Where it was written.
    Commons::Xml::XmlPosition position;
};

} // namespace Vela::System::Kiro::Internal::Sm::Config
