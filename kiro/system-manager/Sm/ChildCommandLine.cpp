#include <Sm/ChildCommandLine.hpp>

#include <fmt/format.h>

namespace Vela::System::Kiro::Internal::Sm
{

String BuildChildArguments(const Data::ProcessData& process)
{
    using Commons::Runtime::QuoteArgument;
    String arguments = "--child=true --name=" + QuoteArgument(process.name);
    if (!process.settingsPath.empty())
    {
        arguments += " --settings=" + QuoteArgument(process.settingsPath);
    }
    // Core 0 is never passed: a child bound to core 0 is told so by its settings.
    if (process.core > 0)
    {
        arguments += fmt::format(" --core={0}", process.core);
    }
    if (process.localTcpPort > 0)
    {
        arguments += fmt::format(" --localTcpPort={0}", process.localTcpPort);
    }
    if (process.debugBreak)
    {
        arguments += " --debugBreak=true";
    }
    if (!process.args.empty())
    {
        arguments += fmt::format(" {0}", process.args);
    }
    return arguments;
}

} // namespace Vela::System::Kiro::Internal::Sm
