#include <Vela/System/Kiro/Internal/ApplicationSetupKind.hpp>
#include <Vela/System/Kiro/Internal/ProcessKind.hpp>

namespace Vela::System::Kiro::Internal
{

const EnumDictionary<ApplicationSetupKind>& GetEnumDictionary(ApplicationSetupKind)
{
    static const EnumDictionary<ApplicationSetupKind> dictionary{
        {ApplicationSetupKind::None, "None"},
        {ApplicationSetupKind::Remoting, "Remoting"},
        {ApplicationSetupKind::NotificationManager, "NotificationManager"},
        {ApplicationSetupKind::ProcessManager, "ProcessManager"},
        {ApplicationSetupKind::SystemManager, "SystemManager"},
        {ApplicationSetupKind::SystemConfigurationManager, "SystemConfigurationManager"},
    };
    return dictionary;
}

std::ostream& operator<<(std::ostream& stream, ApplicationSetupKind kind)
{
    return WriteEnum(stream, kind);
}

std::istream& operator>>(std::istream& stream, ApplicationSetupKind& kind)
{
    return ReadEnum(stream, kind);
}

const EnumDictionary<ProcessKind>& GetEnumDictionary(ProcessKind)
{
    static const EnumDictionary<ProcessKind> dictionary{
        {ProcessKind::None, "None"},
        {ProcessKind::Main, "Main"},
        {ProcessKind::Child, "Child"},
    };
    return dictionary;
}

std::ostream& operator<<(std::ostream& stream, ProcessKind kind)
{
    return WriteEnum(stream, kind);
}

std::istream& operator>>(std::istream& stream, ProcessKind& kind)
{
    return ReadEnum(stream, kind);
}

} // namespace Vela::System::Kiro::Internal
