#include <Config/Process.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

#include <tuple>

namespace Vela::System::Kiro::Internal::Sm::Config
{

void Process::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    position = reader.GetPosition();
    reader.GetAttributeValue(nameXmlName, name);
    reader.TryGetAttributeValue(localTcpPortXmlName, localTcpPort);
    reader.TryGetAttributeValue(processOwnerXmlName, processOwner);
    context.TryGetResolvedPath(reader, workingDirectoryXmlName, workingDirectory);
    context.TryGetResolvedPath(reader, settingsPathXmlName, settingsPath);
    context.TryGetResolvedPath(reader, binaryPathXmlName, binaryPath);
    reader.TryGetAttributeValue(coreXmlName, core);
    reader.TryGetAttributeValue(debugBreakXmlName, debugBreak);
    reader.TryGetAttributeValue(isExternalXmlName, isExternal);
    reader.TryGetAttributeValue(argsXmlName, args);
}

bool Process::Equals(const Process& other) const
{
    const auto fields = [](const Process& process)
    {
        return std::tie(process.name, process.localTcpPort, process.processOwner, process.workingDirectory,
                        process.settingsPath, process.binaryPath, process.core, process.debugBreak, process.isExternal,
                        process.args);
    };
    return fields(*this) == fields(other);
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
