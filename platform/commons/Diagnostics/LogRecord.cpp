#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Environment.hpp>
#include <Vela/System/Commons/Io/Path.hpp>
#include <Vela/System/Commons/PlainText.hpp>

#include <Diagnostics/LogRecord.hpp>
#include <fmt/compile.h>
#include <unistd.h>

#include <iterator>
#include <string_view>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

void AppendIndented(String& line, std::string_view text)
{
    while (text.ends_with('\n') || text.ends_with('\r'))
    {
        text.remove_suffix(1);
    }
    for (;;)
    {
        const std::size_t end = text.find('\n');
        std::string_view part = text.substr(0, end);
        if (part.ends_with('\r'))
        {
            part.remove_suffix(1);
        }
        line += MakePlainText(part);
        if (end == std::string_view::npos)
        {
            return;
        }
        line += "\n    ";
        text.remove_prefix(end + 1);
    }
}

} // namespace

String FormatLine(const LogRecord& record, const String& processName)
{
    const char* level = FindEnumString(record.level);
    String line;
    line.reserve(record.text.size() + record.category.size() + processName.size() + 64);
    fmt::format_to(std::back_inserter(line), FMT_COMPILE("{} {}[{}] {:<5} {}: "), record.time.ToString(), processName,
                   ::getpid(), level == nullptr ? "" : level, record.category);
    AppendIndented(line, record.text);
    line += '\n';
    return line;
}

String GetLogProcessName()
{
    if (const auto* domain = Singleton<AppDomain>::TryGetInstance())
    {
        String name = domain->GetApplicationName();
        if (!name.empty())
        {
            return name;
        }
    }
    return Io::Path::GetFileName(Environment::GetExecutablePath());
}

} // namespace Vela::System::Commons::Diagnostics
