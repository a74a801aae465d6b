#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <map>
#include <vector>

namespace Vela::System::Commons
{

/// The environment variables that this process defines; an app-domain singleton made by Environment::Setup.
/// Thread-safe, under the lock of Environment.
class VELA_COMMONS_API EnvironmentData
{
public:
    struct Variable
    {
        String name;
        String value;
        bool isOverridden;
    };

    /// Inserts or replaces a value that an override beats. Answers false for a name that no environment can hold.
    bool AddDefaultVariable(const String& name, const String& value);
    /// Inserts or replaces a value that beats every default. Answers false for a name that no environment can hold.
    bool AddOverriddenVariable(const String& name, const String& value);
    /// All variables with the value that counts, in name order.
    [[nodiscard]] std::vector<Variable> GetVariables() const;

private:
    friend class Environment;
    [[nodiscard]] const String* Find(const String& name) const;

    std::map<String, String> defaults;
    std::map<String, String> overrides;
};

} // namespace Vela::System::Commons
