#pragma once

#include <Sm/Data/ComponentData.hpp>
#include <Sm/Data/ProcessData.hpp>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>

namespace Vela::System::Kiro::Internal::Sm::Data
{

/// A component that takes part in the lifecycle, and how far it has come.
class ComponentExecutionData
{
public:
    virtual ~ComponentExecutionData() = default;

    std::uint32_t startOrder = std::numeric_limits<std::uint32_t>::max();
    std::shared_ptr<ProcessData> process;
    std::shared_ptr<ComponentData> component;
    /// Set before the calls of the settings phase, so that disposing also reaches a component set up half.
    bool isSettingsSetup = false;
    bool isConfigured = false;
    bool isStarted = false;
};

/// Components in the order in which they start; equal start orders keep the order in which they were created.
using ExecutionList = std::multimap<std::uint32_t, ComponentExecutionData>;

} // namespace Vela::System::Kiro::Internal::Sm::Data
