#pragma once

#include <Vela/String.hpp>

#include <vector>

namespace Vela::System::Commons::Configuration
{

/// The files that make up a configuration, in the order in which they are read.
struct ConfigurationSettings
{
    std::vector<String> files;
};

} // namespace Vela::System::Commons::Configuration
