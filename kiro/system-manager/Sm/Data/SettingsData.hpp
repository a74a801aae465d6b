#pragma once

namespace Vela::System::Kiro::Internal::Sm::Data
{

/// Settings of the system manager's own; there are none yet.
class SettingsData
{
public:
    virtual ~SettingsData() = default;
};

} // namespace Vela::System::Kiro::Internal::Sm::Data
