#include <Settings/EnvironmentVariables.hpp>
#include <Vela/System/Commons/Configuration/PlaceholderExpression.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <CheckedLog.hpp>
#include <DocumentFiles.hpp>
#include <FuzzTarget.hpp>

#include <algorithm>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Kiro::Internal::Settings;
using System::Commons::Environment;
using System::Commons::Configuration::PlaceholderExpression;

/// Defines what the lines say, each a kind and name=value: 'o' an override, 'r' a redefinition, 'd' a current name for
/// an old one, 'D' both an override and that, any other a basic definition.
/// @return whether all could be added
bool Define(EnvironmentVariables& variables, std::string_view input)
{
    bool isDefined = true;
    while (!input.empty())
    {
        const std::string_view line = input.substr(0, input.find('\n'));
        input.remove_prefix(std::min(line.size() + 1, input.size()));
        const auto equals = line.find('=');
        if (equals == line.npos || equals == 0)
        {
            continue;
        }
        const char kind = line.front();
        const EnvironmentVariable variable(String(line.substr(1, equals - 1)), String(line.substr(equals + 1)),
                                           kind == 'o' || kind == 'D');
        isDefined = (kind == 'r' ? variables.AddRedefinedVariable(variable)
                                 : variables.AddVariable(variable, kind == 'd' || kind == 'D')) &&
                    isDefined;
    }
    return isDefined;
}

std::vector<String> GetValues(const EnvironmentVariables& variables)
{
    std::vector<String> values;
    for (const auto& [name, variable] : variables.GetVariables())
    {
        values.push_back(Environment::GetVariableValueOr(name, "(nothing)"));
    }
    return values;
}

/// Every value is what its text gives with the final values of the others.
void CheckValues(const EnvironmentVariables& variables)
{
    for (const auto& [name, variable] : variables.GetVariables())
    {
        const auto overriding = variables.GetOverriddenVariables().find(name);
        const EnvironmentVariable& counting =
            overriding == variables.GetOverriddenVariables().end() ? variable : overriding->second;
        String value;
        Require(Environment::GetVariableValue(name, value), "a variable that was published has a value");
        Require(value == counting.GetEffectiveValue(), "the value that counts is the one of the definition");
        Require(value == PlaceholderExpression::Resolve(counting.GetValue()),
                "a variable sees the final values of the others");
    }
}

void CheckPlaceholders(const String& text)
{
    Require(PlaceholderExpression::Resolve(PlaceholderExpression::Escape(text)) == text,
            "an escaped text means itself");
    const auto check = [&]
    {
        const String name = PlaceholderExpression::GetPlaceholderName(text);
        Require(name.empty() || text == "${" + name + "}", "a text that is one placeholder is its name");
    };
    GetRefusal(check);
}

bool Run(std::string_view input)
{
    SetUpCheckedLog();
    ClearEnvironment();
    Environment::Setup();
    CheckPlaceholders(String(input));
    EnvironmentVariables variables;
    Environment::SetupSettings(variables);
    bool isDefined = false;
    const auto publish = [&]
    {
        isDefined = Define(variables, input);
        if (isDefined)
        {
            variables.Publish(false);
        }
    };
    const bool isPublished = !GetRefusal(publish) && isDefined;
    if (isPublished)
    {
        CheckValues(variables);
        const auto values = GetValues(variables);
        Require(!GetRefusal([&] { variables.Publish(true); }), "what was published can be published again");
        Require(GetValues(variables) == values, "publishing again changes nothing");
    }
    Environment::Dispose();
    return isPublished;
}

const FuzzTarget target("environment", &Run);

} // namespace

} // namespace Vela::Fuzz
