#include <Vela/AppDomainSingleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/EnvironmentData.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/SystemError.hpp>

#include <Environment/EnvironmentLock.hpp>
#include <stdlib.h>
#include <unistd.h>

namespace Vela::System::Commons
{

namespace
{

struct EnvironmentSettings
{
    const IDeprecatedNames* deprecatedNames = nullptr;
    String securitySettingsPath;
};

EnvironmentSettings& GetSettings()
{
    static auto& settings = *new EnvironmentSettings;
    return settings;
}

} // namespace

std::mutex& GetEnvironmentMutex()
{
    // Never destroyed: the environment is read to the very end of the process.
    static auto& mutex = *new std::mutex;
    return mutex;
}

std::vector<String> CopyProcessEnvironment()
{
    const std::lock_guard lock(GetEnvironmentMutex());
    std::vector<String> texts;
    for (char** text = environ; text != nullptr && *text != nullptr; ++text)
    {
        texts.emplace_back(*text);
    }
    return texts;
}

void Environment::Setup()
{
    AppDomain::CreateInstance();
    if (AppDomainSingleton<EnvironmentData>::TryGetInstance() == nullptr)
    {
        AppDomainSingleton<EnvironmentData>::CreateInstance();
    }
}

void Environment::Dispose()
{
    const std::lock_guard lock(GetEnvironmentMutex());
    AppDomainSingleton<EnvironmentData>::DisposeInstance();
    GetSettings() = {};
}

void Environment::SetupSettings(const IDeprecatedNames& names)
{
    const std::lock_guard lock(GetEnvironmentMutex());
    GetSettings().deprecatedNames = &names;
}

void Environment::SetupSecuritySettings(const String& path)
{
    const std::lock_guard lock(GetEnvironmentMutex());
    GetSettings().securitySettingsPath = path;
}

String Environment::GetSecuritySettingsPath()
{
    const std::lock_guard lock(GetEnvironmentMutex());
    return GetSettings().securitySettingsPath;
}

bool Environment::FindVariable(const String& name, String& value)
{
    const std::lock_guard lock(GetEnvironmentMutex());
    const auto* data = AppDomainSingleton<EnvironmentData>::TryGetInstance();
    if (const String* defined = data == nullptr ? nullptr : data->Find(name))
    {
        value = *defined;
        return true;
    }
    const char* inherited = ::getenv(name.c_str());
    if (inherited == nullptr)
    {
        return false;
    }
    value = inherited;
    return true;
}

bool Environment::GetVariableValue(const String& name, String& value)
{
    if (FindVariable(name, value))
    {
        return true;
    }
    const IDeprecatedNames* names = nullptr;
    {
        const std::lock_guard lock(GetEnvironmentMutex());
        names = GetSettings().deprecatedNames;
    }
    String currentName;
    return names != nullptr && names->ResolveDeprecatedVariableName(name, currentName) &&
           FindVariable(currentName, value);
}

String Environment::GetVariableValueOr(const String& name, const String& fallback)
{
    String value;
    return GetVariableValue(name, value) ? value : fallback;
}

String Environment::TakeInheritedVariable(const char* name)
{
    const std::lock_guard lock(GetEnvironmentMutex());
    const char* inherited = ::getenv(name);
    String value = inherited == nullptr ? "" : inherited;
    ::unsetenv(name);
    return value;
}

bool Environment::SetVariable(const String& name, const String& value)
{
    if (!EnvironmentData::CanHold(name, value))
    {
        return false;
    }
    const std::lock_guard lock(GetEnvironmentMutex());
    if (auto* data = AppDomainSingleton<EnvironmentData>::TryGetInstance())
    {
        data->Set(name, value);
    }
    return ::setenv(name.c_str(), value.c_str(), 1) == 0;
}

void Environment::RegisterEnvironmentVariables()
{
    const auto* data = AppDomainSingleton<EnvironmentData>::TryGetInstance();
    if (data == nullptr)
    {
        return;
    }
    const auto variables = data->GetVariables();
    const std::lock_guard lock(GetEnvironmentMutex());
    for (const auto& variable : variables)
    {
        if (::setenv(variable.name.c_str(), variable.value.c_str(), 1) != 0)
        {
            ThrowSystemError(fmt::format("Could not publish environment variable '{0}'", variable.name));
        }
    }
}

String Environment::GetExecutablePath()
{
    String path(256, '\0');
    for (;;)
    {
        const auto length = ::readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0)
        {
            ThrowSystemError("Could not read the path of the executable");
        }
        if (static_cast<std::size_t>(length) < path.size())
        {
            path.resize(static_cast<std::size_t>(length));
            return path;
        }
        path.resize(path.size() * 2);
    }
}

String Environment::GetLibrariesDirectory()
{
    return Io::Path::GetFullPath("../lib", Io::Path::GetDirectoryName(GetExecutablePath()));
}

} // namespace Vela::System::Commons
