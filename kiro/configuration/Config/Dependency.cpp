#include <Config/Dependency.hpp>
#include <Vela/System/Commons/Xml/XmlReader.hpp>
#include <Vela/System/Commons/Xml/XmlSerializationContext.hpp>

namespace Vela::System::Kiro::Internal::Sm::Config
{

void Dependency::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    context.GetResolvedPath(reader, binaryPathXmlName, binaryPath);
    if (binaryPath.empty())
    {
        reader.Raise(Commons::Diagnostics::FindingCode::InvalidValue,
                     reader.Error("Dependency's binaryPath must not be empty."));
    }
}

bool Dependency::Equals(const Dependency& other) const
{
    return binaryPath == other.binaryPath;
}

const String& Dependency::GetBinaryPath() const noexcept
{
    return binaryPath;
}

void Dependency::SetBinaryPath(const String& path)
{
    binaryPath = path;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
