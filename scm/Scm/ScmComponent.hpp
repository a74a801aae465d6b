#pragma once

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Kiro/ComponentBase.hpp>
#include <Vela/System/Kiro/IEnvironmentVariablesProvider.hpp>

#include <Scm/ScmSettings.hpp>

#include <map>

namespace Vela::System::Scm
{

/// The system configuration manager: tells the whole system, through environment variables, which of its features,
/// components and packages are switched on. The one component that every main process has.
class ScmComponent : public Kiro::ComponentBase,
                     public Kiro::IEnvironmentVariablesProvider,
                     private Commons::Diagnostics::Loggable<ScmComponent>
{
public:
    ScmComponent(Kiro::IApplication& application, Kiro::ILibrary& library, const String& name);

    /// A missing file means that nothing is configured.
    /// @throws XmlException for a file that is not valid
    void LoadSettings(const String& settingsPath) override;
    void Dispose() override;

    [[nodiscard]] std::map<String, String> GetEnvironmentVariables() const override;
    void OnEnvironmentVariablesTakenOver() override;

private:
    ScmSettings settings;
};

} // namespace Vela::System::Scm
