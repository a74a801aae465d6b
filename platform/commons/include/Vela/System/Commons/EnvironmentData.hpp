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

    /// Inserts or replaces a value that an override beats. Answers false for a name or value that no environment can
    /// hold.
    bool AddDefaultVariable(const String& name, const String& value);
    /// Inserts or replaces a value that beats every default. Answers false for a name or value that no environment can
    /// hold.
    bool AddOverriddenVariable(const String& name, const String& value);
    /// All variables with the value that counts, in name order.
    [[nodiscard]] std::vector<Variable> GetVariables() const;

private:
    friend class Environment;
    using Definitions = std::map<String, String>;

    static bool CanHold(const String& name, const String& value);
    static bool Add(Definitions& definitions, const String& name, const String& value);
    /// The value that counts, or null; under the lock.
    [[nodiscard]] const String* Find(const String& name) const;
    /// Replaces the override when there is one, otherwise the default; under the lock.
    void Set(const String& name, const String& value);

    Definitions defaults;
    Definitions overrides;
};

} // namespace Vela::System::Commons
