#include <Vela/System/Nm/Severity.hpp>

#include <istream>
#include <ostream>

namespace Vela::System::Nm
{

const EnumDictionary<Severity>& GetEnumDictionary(Severity)
{
    static const EnumDictionary<Severity> dictionary{
        {Severity::Information, "Information"},
        {Severity::Warning, "Warning"},
        {Severity::Error, "Error"},
        {Severity::Fatal, "Fatal"},
    };
    return dictionary;
}

std::ostream& operator<<(std::ostream& stream, Severity severity)
{
    return WriteEnum(stream, severity);
}

std::istream& operator>>(std::istream& stream, Severity& severity)
{
    return ReadEnum(stream, severity);
}

} // namespace Vela::System::Nm
