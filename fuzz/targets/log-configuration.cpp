#include <CheckedLog.hpp>
#include <Diagnostics/LogConfiguration.hpp>
#include <DocumentFiles.hpp>
#include <FuzzTarget.hpp>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Commons::Diagnostics;

/// Files and connections of the sinks are not opened.
bool Run(std::string_view input)
{
    static const DocumentFiles files{"Log.settings"};
    SetUpCheckedLog();
    files.Write(input);
    const auto load = [&]
    {
        LogConfiguration(LogLevel::Info, files.GetRootPath());
    };
    const auto refusal = GetRefusal(load);
    Require(!refusal || refusal->find(files.GetRootPath()) != refusal->npos, "a refusal names the file");
    Require(GetRefusal(load) == refusal, "the same file is read the same way again");
    return !refusal;
}

const FuzzTarget target("log-configuration", &Run);

} // namespace

} // namespace Vela::Fuzz
