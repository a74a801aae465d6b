#include <Config/Library.hpp>
#include <Config/ReadItems.hpp>

#include <utility>

namespace Vela::System::Kiro::Internal::Sm::Config
{

Library::Library(String libraryName, String libraryBinaryPath)
    : name(std::move(libraryName))
    , binaryPath(std::move(libraryBinaryPath))
{
}

void Library::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    position = reader.GetPosition();
    reader.GetAttributeValue(nameXmlName, name);
    context.GetResolvedPath(reader, binaryPathXmlName, binaryPath);
    ReadItems(reader, context, Dependencies::elementXmlName, [&] { dependencies.ReadXml(reader, context); });
}

bool Library::Equals(const Library& other) const
{
    return name == other.name && binaryPath == other.binaryPath && dependencies.Equals(other.dependencies);
}

const Dependencies& Library::GetDependencies() const noexcept
{
    return dependencies;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
