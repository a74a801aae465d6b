#include <Config/Component.hpp>
#include <Config/ReadItems.hpp>

#include <tuple>
#include <utility>

namespace Vela::System::Kiro::Internal::Sm::Config
{

Component::Component(String componentName, String componentType, String libraryName, const Settings& componentSettings)
    : name(std::move(componentName))
    , type(std::move(componentType))
    , library(std::move(libraryName))
    , settings(componentSettings)
{
}

void Component::ReadXml(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext& context)
{
    position = reader.GetPosition();
    reader.GetAttributeValue(nameXmlName, name);
    reader.GetAttributeValue(typeXmlName, type);
    reader.GetAttributeValue(libraryXmlName, library);
    reader.TryGetAttributeValue(processXmlName, process);
    reader.TryGetAttributeValue(isRequiredXmlName, isRequired);
    reader.TryGetAttributeValue(isEnabledXmlName, isEnabled);
    reader.TryGetAttributeValue(isFinalXmlName, isFinal);
    hasStartOrder = reader.TryGetAttributeValue(startOrderXmlName, startOrder);
    if (hasStartOrder && startOrder < 0)
    {
        reader.Raise(Commons::Diagnostics::FindingCode::InvalidValue,
                     reader.Error("The start order of component '{0}' must not be negative: {1}", name, startOrder));
    }
    ReadItems(reader, context, Settings::elementXmlName, [&] { settings.ReadXml(reader, context); });
}

bool Component::Equals(const Component& other) const
{
    const auto fields = [](const Component& component)
    {
        return std::tie(component.name, component.type, component.library, component.process, component.isStatic,
                        component.isRequired, component.isEnabled, component.isFinal, component.startOrder,
                        component.hasStartOrder);
    };
    return fields(*this) == fields(other) && settings.Equals(other.settings);
}

void Component::Overwrite(Commons::Xml::XmlReader& reader, Commons::Xml::XmlSerializationContext&,
                          const Component& other)
{
    if (isFinal)
    {
        throw reader.Error("Component '{0}' can not overwritten, because the flag '{1}' is set!", name, isFinalXmlName);
    }
    if (name != other.name)
    {
        throw reader.Error("Component '{0}' can not overwritten, because the names are diffrent!", name);
    }
    if (type != other.type)
    {
        throw reader.Error("Component '{0}' can not overwritten, because the types are diffrent!", name);
    }
    library = other.library;
    process = other.process;
    isRequired = other.isRequired;
    isEnabled = other.isEnabled;
    isFinal = other.isFinal;
    position = other.position;
}

} // namespace Vela::System::Kiro::Internal::Sm::Config
