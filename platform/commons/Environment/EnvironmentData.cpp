#include <Vela/System/Commons/EnvironmentData.hpp>

#include <Environment/EnvironmentLock.hpp>

namespace Vela::System::Commons
{

bool EnvironmentData::CanHold(const String& name, const String& value)
{
    return !name.empty() && name.find_first_of(String("=\0", 2)) == String::npos && value.find('\0') == String::npos;
}

bool EnvironmentData::AddDefaultVariable(const String& name, const String& value)
{
    return Add(defaults, name, value);
}

bool EnvironmentData::AddOverriddenVariable(const String& name, const String& value)
{
    return Add(overrides, name, value);
}

std::vector<EnvironmentData::Variable> EnvironmentData::GetVariables() const
{
    const std::lock_guard lock(GetEnvironmentMutex());
    std::map<String, Variable> merged;
    for (const auto& [name, value] : overrides)
    {
        merged.emplace(name, Variable{name, value, true});
    }
    for (const auto& [name, value] : defaults)
    {
        merged.emplace(name, Variable{name, value, false});
    }
    std::vector<Variable> variables;
    variables.reserve(merged.size());
    for (auto& [name, variable] : merged)
    {
        variables.push_back(std::move(variable));
    }
    return variables;
}

bool EnvironmentData::Add(Definitions& definitions, const String& name, const String& value)
{
    if (!CanHold(name, value))
    {
        return false;
    }
    const std::lock_guard lock(GetEnvironmentMutex());
    definitions.insert_or_assign(name, value);
    return true;
}

const String* EnvironmentData::Find(const String& name) const
{
    for (const Definitions* definitions : {&overrides, &defaults})
    {
        if (const auto found = definitions->find(name); found != definitions->end())
        {
            return &found->second;
        }
    }
    return nullptr;
}

void EnvironmentData::Set(const String& name, const String& value)
{
    (overrides.contains(name) ? overrides : defaults).insert_or_assign(name, value);
}

} // namespace Vela::System::Commons
