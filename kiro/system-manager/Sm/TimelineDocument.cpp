#include <Sm/TimelineDocument.hpp>

#include <fmt/format.h>

#include <iterator>

namespace Vela::System::Kiro::Internal::Sm
{

namespace
{

String Quote(const String& text)
{
    String quoted = "\"";
    for (const char character : text)
    {
        if (static_cast<unsigned char>(character) < 0x20)
        {
            quoted += fmt::format("\\u{:04x}", static_cast<int>(character));
            continue;
        }
        if (character == '"' || character == '\\')
        {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

} // namespace

String MakeTimelineDocument(const Services::Internal::Timeline& timeline)
{
    String document = fmt::format("{{\"system\":{},\"origin\":{},\"dropped\":{},\"steps\":[", Quote(timeline.system),
                                  timeline.origin, timeline.dropped);
    const char* separator = "\n";
    for (const auto& step : timeline.steps)
    {
        fmt::format_to(std::back_inserter(document),
                       "{}{{\"phase\":{},\"step\":{},\"subject\":{},\"name\":{},\"process\":{},\"begin\":{},\"end\":{},"
                       "\"outcome\":{}}}",
                       separator, Quote(step.phase), Quote(step.step), Quote(step.subject), Quote(step.name),
                       Quote(step.process), step.begin, step.end, Quote(step.outcome));
        separator = ",\n";
    }
    return document + "]}\n";
}

} // namespace Vela::System::Kiro::Internal::Sm
