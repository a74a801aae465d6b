// The settings loader on real documents, and the platform's environment behind it.

#include "../LogStream.hpp"
#include "EnvironmentModel.hpp"

#include <Settings/KiroSettings.hpp>
#include <Settings/KiroSettingsLoader.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <TemporaryDirectory.hpp>
#include <fmt/format.h>

#include <cstdlib>

namespace Vela::Testing
{
namespace
{

using namespace System::Kiro::Internal::Settings;
using System::Commons::Environment;

/// What settings and environment do with a case.
class RealEnvironment
{
public:
    RealEnvironment(const TemporaryDirectory& documents, LogStream& logStream)
        : directory(documents)
        , log(logStream)
    {
        for (const std::string& name : EnvironmentCase::names)
        {
            ::unsetenv(name.c_str());
        }
        Environment::Setup();
    }

    RealEnvironment(const RealEnvironment&) = delete;
    RealEnvironment& operator=(const RealEnvironment&) = delete;

    ~RealEnvironment()
    {
        Environment::Dispose();
    }

    Trace Run(const EnvironmentCase& sample)
    {
        log.Take();
        SetOutside(sample.outside);
        for (const SettingsFile& file : sample.files)
        {
            directory.Write(file.path, sample.GetDocument(file));
        }
        bool isGood =
            RunGuarded([&] { KiroSettingsLoader::Load(directory / sample.files.front().path, settings, false); });
        for (const Publication& publication : sample.publications)
        {
            SetOutside(publication.outside);
            isGood = isGood && RunGuarded([&] { settings.ResolveAndPublish(publication.isReset); });
        }
        return trace;
    }

private:
    static void SetOutside(const std::map<std::string, std::string>& outside)
    {
        for (const auto& [name, value] : outside)
        {
            ::setenv(name.c_str(), value.c_str(), 1);
        }
    }

    bool RunGuarded(const std::function<void()>& action)
    {
        std::string outcome;
        try
        {
            action();
        }
        catch (const Exception& exception)
        {
            outcome = fmt::format("{}: {}", exception.GetName(), exception.GetMessage());
        }
        for (const LogLine& line : log.Take())
        {
            if (line.category.ends_with(".EnvironmentVariables"))
            {
                trace.push_back(line.level + ": " + line.message);
            }
        }
        if (!outcome.empty())
        {
            trace.push_back(outcome);
        }
        AppendVariables();
        return outcome.empty();
    }

    void AppendVariables()
    {
        for (const std::string& name : EnvironmentCase::names)
        {
            const char* inherited = std::getenv(name.c_str());
            String current = "(none)";
            settings.GetEnvironmentVariables().ResolveDeprecatedVariableName(name, current);
            trace.push_back(fmt::format("{}={} process={} current name={}", name,
                                        Environment::GetVariableValueOr(name, "(none)"),
                                        inherited == nullptr ? "(none)" : inherited, current));
        }
    }

    const TemporaryDirectory& directory;
    LogStream& log;
    KiroSettings settings;
    Trace trace;
};

} // namespace

TEST(EnvironmentOracle, HoldsForTheSettings)
{
    AppDomain::CreateInstance();
    const TemporaryDirectory directory;
    LogStream log;
    ExpectNoDifference<EnvironmentCase>(
        {.generate = GenerateEnvironment,
         .predict = [&](const EnvironmentCase& sample)
         { return EnvironmentModel(sample, directory.GetPath().string()).Run(); },
         .observe = [&](const EnvironmentCase& sample) { return RealEnvironment(directory, log).Run(sample); },
         .simplify = Simplify,
         .missing = {"but values are equal", "was defined twice with different values", "is already defined!",
                     "this is not supported", "redefined twice with", "overriden twice with",
                     "without a basic definition!", "does not have a base definition", "because it does not exists",
                     "circular dependency", "in a circle", "OLD=", "current name=B"}},
        5000);
}

} // namespace Vela::Testing
