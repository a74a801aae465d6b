#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace Vela::Kiroctl
{

/// Help that reads well on 80 columns: what an option means stands beside it, broken into lines.
class HelpFormatter final : public CLI::Formatter
{
public:
    HelpFormatter();

    [[nodiscard]] std::string make_option(const CLI::Option* option, bool isPositional) const override;
    [[nodiscard]] std::string make_subcommand(const CLI::App* command) const override;
};

} // namespace Vela::Kiroctl
