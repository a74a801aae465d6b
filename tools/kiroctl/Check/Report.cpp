#include "Report.hpp"

#include <Vela/System/Commons/PlainText.hpp>

#include <algorithm>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

using namespace System::Commons::Diagnostics;
using System::Commons::MakePlainText;
using System::Commons::Xml::XmlPosition;

std::string GetName(FindingCode code)
{
    return fmt::format("K{}", static_cast<unsigned>(code));
}

const char* GetName(FindingSeverity severity)
{
    return severity == FindingSeverity::Error ? "error" : severity == FindingSeverity::Warning ? "warning" : "note";
}

Style GetStyle(FindingSeverity severity)
{
    return severity == FindingSeverity::Error     ? Style::Bad
           : severity == FindingSeverity::Warning ? Style::Warning
                                                  : Style::Faint;
}

/// A line of 0 stands for the file as a whole.
std::string FormatPlace(const XmlPosition& position)
{
    const std::string file = MakePlainText(position.GetFile());
    return position.GetLine() == 0 ? file : fmt::format("{}:{}", file, position.GetLine());
}

Json WritePlace(const XmlPosition& position)
{
    return {{"file", position.GetFile()}, {"line", position.GetLine()}};
}

std::string Count(std::size_t number, const char* noun)
{
    return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

} // namespace

Report::Report(std::vector<Finding> reportFindings, std::string fallbackFile, bool isStrict)
    : findings(std::move(reportFindings))
    , fallback(std::move(fallbackFile))
    , strict(isStrict)
{
    for (const Finding& finding : findings)
    {
        const Severity severity = GetSeverity(finding);
        ++(severity == Severity::Error ? errors : severity == Severity::Warning ? warnings : notes);
    }
}

Report::Severity Report::GetSeverity(const Finding& finding) const
{
    const Severity severity = Describe(finding.code).severity;
    return strict && severity == Severity::Warning ? Severity::Error : severity;
}

void Report::Write(Output& output) const
{
    if (output.IsJson())
    {
        Json list = Json::array();
        for (const Finding& finding : findings)
        {
            list.push_back(ToJson(finding));
        }
        output.WriteJson({{"ok", !HasFailed()},
                          {"errors", errors},
                          {"warnings", warnings},
                          {"notes", notes},
                          {"findings", std::move(list)}});
        return;
    }
    for (const Finding& finding : findings)
    {
        WriteLine(output, finding);
    }
    output.WriteLine(output.Paint(Summarise(), errors > 0 ? Style::Bad : warnings > 0 ? Style::Warning : Style::Good));
}

std::string Report::Summarise() const
{
    if (findings.empty())
    {
        return "Nothing is wrong.";
    }
    return fmt::format("{}, {}, {}.", Count(errors, "error"), Count(warnings, "warning"), Count(notes, "note"));
}

void Report::WriteLine(Output& output, const Finding& finding) const
{
    const Severity severity = GetSeverity(finding);
    const std::string place = finding.position.GetFile().empty() ? fallback : FormatPlace(finding.position);
    std::string text = MakePlainText(finding.text);
    if (finding.related.GetLine() > 0)
    {
        text += fmt::format(" (first in {})", FormatPlace(finding.related));
    }
    for (const XmlPosition* from = &finding.position.GetIncludedFrom(); from->GetLine() > 0;
         from = &from->GetIncludedFrom())
    {
        text += fmt::format(" (included from {})", FormatPlace(*from));
    }
    output.WriteLine(fmt::format("{}: {} {} [{}]", place,
                                 output.Paint(fmt::format("{}:", GetName(severity)), GetStyle(severity)), text,
                                 GetName(finding.code)));
}

Json Report::ToJson(const Finding& finding) const
{
    Json json{{"code", GetName(finding.code)},
              {"severity", GetName(GetSeverity(finding))},
              {"file", finding.position.GetFile().empty() ? fallback : finding.position.GetFile()},
              {"line", finding.position.GetLine()},
              {"text", finding.text},
              {"includedFrom", Json::array()}};
    for (const XmlPosition* from = &finding.position.GetIncludedFrom(); from->GetLine() > 0;
         from = &from->GetIncludedFrom())
    {
        json["includedFrom"].push_back(WritePlace(*from));
    }
    if (finding.related.GetLine() > 0)
    {
        json["related"] = WritePlace(finding.related);
    }
    return json;
}

void Report::WriteCodes(Output& output)
{
    Json list = Json::array();
    Table table({{"CODE"}, {"SEVERITY"}, {"MEANING"}});
    for (const FindingDescription& description : findingDescriptions)
    {
        list.push_back({{"code", GetName(description.code)},
                        {"severity", GetName(description.severity)},
                        {"meaning", description.meaning}});
        table.AddRow({GetName(description.code),
                      {GetName(description.severity), GetStyle(description.severity)},
                      description.meaning});
    }
    if (output.IsJson())
    {
        output.WriteJson(list);
    }
    else
    {
        output.WriteTable(table);
    }
}

} // namespace Vela::Kiroctl
