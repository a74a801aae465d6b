#pragma once

#include <Vela/String.hpp>

#include <boost/program_options/options_description.hpp>
#include <boost/program_options/variables_map.hpp>

#include <optional>

namespace Vela::System::Kiro::Internal
{

/// Declares the options of a process and reads them; each of the two happens once.
class CommandLine
{
public:
    CommandLine();

    /// Adds the options that every host has. Answers false, without doing anything, when they are there already.
    bool Build();
    /// @throws boost::program_options::error
    void Parse(int argc, char** argv);

    /// Whether the option stood on the command line or has a default.
    [[nodiscard]] bool Has(const char* option) const;

    /// The option's value, or nothing when it is absent.
    /// @throws boost::bad_any_cast when it is of another type
    template <typename T>
    [[nodiscard]] std::optional<T> Find(const char* option) const
    {
        return Has(option) ? std::optional<T>(values[option].template as<T>()) : std::nullopt;
    }

    boost::program_options::options_description description;
    boost::program_options::variables_map values;

private:
    bool isBuilt = false;
    bool isParsed = false;
};

} // namespace Vela::System::Kiro::Internal
