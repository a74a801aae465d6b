#include <Vela/System/Kiro/Testing/LifecycleStep.hpp>

#include <ostream>

namespace Vela::System::Kiro::Testing
{

const EnumDictionary<LifecycleStep>& GetEnumDictionary(LifecycleStep)
{
    static const EnumDictionary<LifecycleStep> dictionary{
        {LifecycleStep::Create, "Create"},
        {LifecycleStep::Initialize, "Initialize"},
        {LifecycleStep::SubscribeServices, "SubscribeServices"},
        {LifecycleStep::LoadSettings, "LoadSettings"},
        {LifecycleStep::SetupSettings, "SetupSettings"},
        {LifecycleStep::PublishServices, "PublishServices"},
        {LifecycleStep::LoadConfig, "LoadConfig"},
        {LifecycleStep::SetupConfig, "SetupConfig"},
        {LifecycleStep::Start, "Start"},
        {LifecycleStep::PowerDown, "PowerDown"},
        {LifecycleStep::Stop, "Stop"},
        {LifecycleStep::ResetConfig, "ResetConfig"},
        {LifecycleStep::Dispose, "Dispose"},
        {LifecycleStep::Destroy, "Destroy"},
    };
    return dictionary;
}

std::ostream& operator<<(std::ostream& stream, LifecycleStep step)
{
    return WriteEnum(stream, step);
}

} // namespace Vela::System::Kiro::Testing
