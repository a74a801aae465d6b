#pragma once

#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>

namespace Vela::System::Kiro::Internal
{

/// A process of a running system: the main process, which commands all others, or a child of it, which hosts
/// components and ends with its parent.
class VELA_KIRO_API MainApplicationBase : public ApplicationBase
{
public:
    static constexpr const char* startAsMainOptionName = "main";
    static constexpr const char* startAsMainOptionDescription = "startup as main process";
    static constexpr const char* startAsChildOptionName = "child";
    static constexpr const char* startAsChildOptionDescription = "startup as child process";

    /// The role unless the command line gives one: main, or else child.
    /// @throws InvalidOperationException when both roles are wanted
    MainApplicationBase(const String& name, bool isMainProcess, bool isChildProcess, bool loadSettings);
    ~MainApplicationBase() override;

    [[nodiscard]] ProcessKind GetProcessKind() const noexcept;

protected:
    void SetupInternal() override;
    void DisposeInternal() override;
    void BuildCommandLineInternal() override;

    /// Takes the role from the command line; the presence of an option counts, not its value.
    /// @throws InvalidOperationException when both roles are wanted
    void ProcessCommandLineInternal();
    void SetupTerminateHandler();
    /// Shuts the whole system down through the system manager's service; the request is latched for this process when
    /// the service cannot be reached. Never throws.
    void TerminateHandler(int signal);
    void SetupExceptionHandler() const;
    /// What the process does about an exception that nobody catches: says so and aborts.
    [[noreturn]] static void ExceptionHandler() noexcept;

private:
    void TieLifeToParent();

    ProcessKind processKind;
};

} // namespace Vela::System::Kiro::Internal
