#pragma once

#include "Describe/CommandTree.hpp"

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace Vela::Kiroctl
{

/// What a value is like, beyond its type.
struct ValueRules
{
    /// What stands for it in the help.
    const char* name = nullptr;
    bool isRequired = false;
    /// The values that it takes; empty: any.
    std::vector<std::string> choices{};
};

/// What a number may be.
struct NumberRange
{
    int lowest;
    int highest;
};

/// How a command or subcommand tells what it takes. The library that reads command lines stays behind it: each source
/// that sees it takes longer to compile than all others of the tool together.
///
/// Names are "-n,--lines" for an option, "LIBRARY" for a positional argument. Targets must live as long as the command
/// line. A target's value is shown as the default, unless it is empty or out of range.
class CommandDeclaration
{
public:
    CommandDeclaration() = default;
    explicit CommandDeclaration(CLI::App& declaredApp) noexcept
        : app(&declaredApp)
    {
    }

    void AddText(const char* names, std::string& target, const char* meaning, const ValueRules& rules = {}) const;
    void AddNumber(const char* names, int& target, NumberRange range, const char* meaning,
                   const ValueRules& rules = {}) const;
    void AddFlag(const char* names, bool& target, const char* meaning) const;
    /// At most one subcommand can be named. Those of the command may stand behind the subcommand's options.
    [[nodiscard]] CommandDeclaration AddSubcommand(const char* name, const char* summary) const;
    void RequireSubcommand() const;
    /// Ends the help of the command.
    void SetFooter(const char* text) const;

    /// Whether the command line names this subcommand; known once it is read.
    [[nodiscard]] bool IsNamed() const;
    /// The whole tool with all its commands.
    [[nodiscard]] CommandDescription DescribeTool() const;

private:
    CLI::App* app = nullptr;
};

} // namespace Vela::Kiroctl
