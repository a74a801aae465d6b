#include <Vela/System/Kiro/ComponentCategory.hpp>

#include <istream>
#include <ostream>

namespace Vela::System::Kiro
{

const EnumDictionary<ComponentCategory>& GetEnumDictionary(ComponentCategory)
{
    static const EnumDictionary<ComponentCategory> dictionary{
        {ComponentCategory::None, "None"},
        {ComponentCategory::System, "System"},
        {ComponentCategory::Service, "Service"},
        {ComponentCategory::Custom, "Custom"},
    };
    return dictionary;
}

std::ostream& operator<<(std::ostream& stream, ComponentCategory category)
{
    return WriteEnum(stream, category);
}

std::istream& operator>>(std::istream& stream, ComponentCategory& category)
{
    return ReadEnum(stream, category);
}

} // namespace Vela::System::Kiro
