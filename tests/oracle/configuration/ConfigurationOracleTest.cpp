// The configuration loader on real documents.

#include "../LogStream.hpp"
#include "ConfigurationModel.hpp"

#include <Config/KiroConfiguration.hpp>
#include <Config/KiroConfigurationLoader.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>

#include <TemporaryDirectory.hpp>
#include <fmt/format.h>

namespace Vela::Testing
{
namespace
{

using namespace System::Kiro::Internal::Sm::Config;

void AppendConfiguration(Trace& trace, const KiroConfiguration& configuration)
{
    for (const auto& [name, process] : configuration.processes.GetItems())
    {
        trace.push_back(DescribeProcess(name, process.binaryPath, process.isExternal));
    }
    for (const auto& [name, library] : configuration.libraries.GetItems())
    {
        trace.push_back(DescribeLibrary(name, library.binaryPath, library.GetDependencies().GetBinaryPaths()));
    }
    for (const auto* table : {&configuration.components.GetItems(), &configuration.components.GetMultiProcessItems()})
    {
        for (const auto& [name, component] : *table)
        {
            trace.push_back(
                DescribeComponent({name, component.type, component.library, component.process, component.settings.path},
                                  {component.isStatic, component.isRequired, component.isEnabled, component.isFinal},
                                  component.startOrder, component.hasStartOrder));
        }
    }
}

void Load(const ConfigurationCase& sample, const std::string& path, KiroConfiguration& configuration)
{
    if (sample.builtIns.empty())
    {
        KiroConfigurationLoader::Load(path, sample.isSingleProcess, true, configuration);
        return;
    }
    std::vector<KiroConfigurationLoader::StaticComponent> builtIns;
    for (const BuiltInComponent& builtIn : sample.builtIns)
    {
        builtIns.push_back({builtIn.name, builtIn.type});
    }
    KiroConfigurationLoader::AddStaticComponents(configuration, builtIns);
    KiroConfigurationLoader::Load(path, sample.isSingleProcess, false, configuration);
}

Trace Observe(const ConfigurationCase& sample, const TemporaryDirectory& directory, LogStream& log)
{
    for (const ConfigurationFile& file : sample.files)
    {
        directory.Write(file.path, sample.GetDocument(file));
    }
    log.Take();
    KiroConfiguration configuration;
    std::string failure;
    try
    {
        Load(sample, directory / sample.files.front().path, configuration);
    }
    catch (const Exception& exception)
    {
        failure = fmt::format("{}: {}", exception.GetName(), exception.GetMessage());
    }
    Trace trace;
    for (const LogLine& line : log.Take())
    {
        // Other warnings name what has no effect; the rules of the merge do not need them.
        if (line.message.find("was explicitly configured") != std::string::npos)
        {
            trace.push_back(line.level + ": " + line.message);
        }
    }
    if (failure.empty())
    {
        AppendConfiguration(trace, configuration);
    }
    else
    {
        trace.push_back(failure);
    }
    return trace;
}

} // namespace

TEST(ConfigurationOracle, HoldsForTheLoader)
{
    AppDomain::CreateInstance().SetApplicationName(ConfigurationCase::mainProcess);
    const TemporaryDirectory directory;
    LogStream log;
    ExpectNoDifference<ConfigurationCase>(
        {.generate = GenerateConfiguration,
         .predict = [&](const ConfigurationCase& sample)
         { return ConfigurationModel(sample, directory.GetPath().string()).Run(); },
         .observe = [&](const ConfigurationCase& sample) { return Observe(sample, directory, log); },
         .simplify = Simplify,
         .missing = {"Duplicated component name", "Process 'A' is already declared", "is already declared!",
                     "must not be empty", "Dependency '", "was explicitly configured", "@Zeta", "external", "[true, "}},
        5000);
}

} // namespace Vela::Testing
