#include <Host/CommandLine.hpp>
#include <Vela/System/Kiro/Internal/ApplicationBase.hpp>

#include <boost/program_options/errors.hpp>
#include <boost/program_options/parsers.hpp>
#include <boost/program_options/positional_options.hpp>
#include <boost/program_options/value_semantic.hpp>

#include <cstdint>

namespace Vela::System::Kiro::Internal
{

namespace po = boost::program_options;

namespace
{

/// The conversion to an unsigned number takes "-1" for the largest one.
void RefuseNegativePort(const po::parsed_options& parsed)
{
    for (const po::option& option : parsed.options)
    {
        if (option.string_key == ApplicationBase::gatewayPortOptionName && !option.value.empty() &&
            option.value.front().starts_with('-'))
        {
            throw po::validation_error(po::validation_error::invalid_option_value, option.string_key,
                                       option.value.front());
        }
    }
}

} // namespace

CommandLine::CommandLine()
    : description("Allowed options")
{
    description.add_options()(ApplicationBase::helpOptionName, ApplicationBase::helpOptionDescription);
}

bool CommandLine::Build()
{
    if (isBuilt)
    {
        return false;
    }
    isBuilt = true;
    using Host = ApplicationBase;
    // clang-format off
    description.add_options()
        (Host::applicationOptionName, po::value<String>(), Host::applicationOptionDescription)
        (Host::localTcpPortOptionName, po::value<std::int32_t>(), Host::localTcpPortOptionDescription)
        (Host::settingsOptionName, po::value<String>()->default_value(Host::defaultSettings), Host::settingsOptionDescription)
        (Host::configOptionName, po::value<String>()->default_value(Host::defaultConfig), Host::configOptionDescription)
        (Host::coreOptionName, po::value<std::int32_t>()->default_value(Host::defaultCore), Host::coreOptionDescription)
        (Host::debugBreakOptionName, po::value<bool>()->default_value(false), Host::debugBreakOptionDescription)
        (Host::gatewayPortOptionName, po::value<std::uint16_t>(), Host::gatewayPortOptionDescription)
        (Host::logLevelOptionName, po::value<String>(), Host::logLevelOptionDescription)
        (Host::singleProcessOptionName, po::value<bool>(), Host::singleProcessOptionDescription)
        (Host::velaVersionOptionName, Host::velaVersionOptionDescription);
    // clang-format on
    return true;
}

void CommandLine::Parse(int argc, char** argv)
{
    if (isParsed)
    {
        return;
    }
    isParsed = true;
    // With an empty list of positional arguments a stray word is an error instead of being passed over.
    const auto parsed =
        po::command_line_parser(argc, argv).options(description).positional(po::positional_options_description()).run();
    RefuseNegativePort(parsed);
    po::store(parsed, values);
    po::notify(values);
}

bool CommandLine::Has(const char* option) const
{
    return values.count(option) != 0;
}

} // namespace Vela::System::Kiro::Internal
