#pragma once

#include <Vela/System/Rsc/IRscService.hpp>
#include <Vela/System/Rsc/OperationTable.hpp>
#include <Vela/System/Rsc/RscServiceProxy.hpp>
#include <Vela/System/Rsc/RscString.hpp>

#include <cstdint>

namespace Vela::Testing
{

/// The service that a recorder publishes when its script says so.
class IRecordingService : public System::Rsc::IRscService
{
public:
    using Text = System::Rsc::RscString<512>;

    /// Name of the component.
    virtual Text GetName() = 0;
    /// How many steps the component has taken.
    virtual std::uint32_t GetStepCount() = 0;
    /// Carries out an action, worded as in a script: "hang", "throw platform Out of ink".
    virtual void Act(const Text& action) = 0;
};

} // namespace Vela::Testing

template <>
struct Vela::System::Rsc::OperationTable<Vela::Testing::IRecordingService>
{
    using Service = Testing::IRecordingService;
    static constexpr const char* interfaceName = "Vela.Testing.IRecordingService";
    static constexpr auto operations =
        Operations(Operation<1, &Service::GetName>("GetName"), Operation<2, &Service::GetStepCount>("GetStepCount"),
                   Operation<3, &Service::Act>("Act", noDeadline));
};

namespace Vela::Testing
{

class RecordingServiceProxy : public System::Rsc::RscServiceProxyBase<IRecordingService>
{
public:
    using RscServiceProxyBase::RscServiceProxyBase;

    Text GetName() override
    {
        return Invoke<&IRecordingService::GetName>();
    }

    std::uint32_t GetStepCount() override
    {
        return Invoke<&IRecordingService::GetStepCount>();
    }

    void Act(const Text& action) override
    {
        Invoke<&IRecordingService::Act>(action);
    }
};

using RecordingServiceProxyFactory = System::Rsc::RscServiceProxyFactory<IRecordingService, RecordingServiceProxy>;

} // namespace Vela::Testing
