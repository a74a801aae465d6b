#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons
{

/// Finds the current name of a variable that is asked for by an old one.
class IDeprecatedNames
{
public:
    virtual ~IDeprecatedNames() = default;
    /// Writes the current name and answers true when `name` is an old one; otherwise leaves `currentName` alone.
    virtual bool ResolveDeprecatedVariableName(const String& name, String& currentName) const = 0;
};

/// The process's environment: the variables that the runtime defines, on top of those inherited from the process
/// that started this one. What is defined counts: a definition beats an inherited value, an override beats a default.
///
/// Thread-safe; one lock guards the definitions and the process environment itself, so nothing in the runtime may
/// call getenv or setenv directly.
class VELA_COMMONS_API Environment
{
public:
    /// Makes the application domain and the environment data when they are missing.
    static void Setup();
    /// Forgets all definitions, removes the environment data and undoes SetupSettings and SetupSecuritySettings.
    static void Dispose();

    /// Old names are looked up in `names` from now on; the object must live until Dispose.
    static void SetupSettings(const IDeprecatedNames& names);
    /// Where the security settings of the remoting library are read from; empty: there are none.
    static void SetupSecuritySettings(const String& path);
    static String GetSecuritySettingsPath();

    /// Reads a variable: an override, else a default, else the process environment; then the same for its current
    /// name when `name` is an old one. Answers false, leaving `value` alone, when there is none.
    static bool GetVariableValue(const String& name, String& value);
    /// The variable's value, or `fallback`.
    static String GetVariableValueOr(const String& name, const String& fallback);
    /// Reads a variable of the process environment alone and takes it out, so that no child process inherits what was
    /// meant for this process. Empty when there is none.
    static String TakeInheritedVariable(const char* name);
    /// Sets a variable at run time: its override when it has one, otherwise its default, and the process environment
    /// at once (that alone before Setup). Answers false for what no environment can hold: an empty name, "=" in the
    /// name, a NUL in name or value.
    static bool SetVariable(const String& name, const String& value);
    /// Publishes all definitions into the process environment, where child processes and other code find them.
    /// Nothing happens before Setup.
    /// @throws Exception when there is no memory for it
    static void RegisterEnvironmentVariables();

    /// Full path of the running executable.
    /// @throws Exception
    static String GetExecutablePath();
    /// `../lib` beside the directory of the running executable.
    static String GetLibrariesDirectory();

    /// Directory of the running executable, as a default of the platform.
    static constexpr const char* binDirectoryName = "VELA_PATH_BIN_DIR";
    /// Where a system keeps its sockets and its lock.
    static constexpr const char* runtimeDirectoryName = "VELA_PATH_RUNTIME_DIR";

private:
    static bool FindVariable(const String& name, String& value);
};

} // namespace Vela::System::Commons
