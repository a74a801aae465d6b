#include "LoadRecord.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

namespace Vela::Kiroctl
{

namespace
{

using System::Commons::Diagnostics::Finding;
using System::Commons::Diagnostics::FindingCode;
using System::Commons::Xml::XmlPosition;

/// What may be the mere consequence of an attribute that is missing or was not understood.
bool IsConsequence(FindingCode code)
{
    return code == FindingCode::InvalidValue || code == FindingCode::DuplicateName ||
           code == FindingCode::DuplicateComponent || code == FindingCode::UnusedLibrary;
}

bool IsCause(FindingCode code)
{
    return code == FindingCode::MissingAttribute || code == FindingCode::InvalidAttribute;
}

using Place = std::pair<String, unsigned long>;

Place GetPlace(const XmlPosition& position)
{
    return {position.GetFile(), position.GetLine()};
}

} // namespace

void LoadRecord::OnFinding(Finding finding)
{
    if (findings.size() < maxFindings)
    {
        findings.push_back(std::move(finding));
    }
}

void LoadRecord::OnAttribute(const XmlPosition& position, const String& element, const String& attribute,
                             const String& value)
{
    attributes.push_back({position, element, attribute, value});
}

void LoadRecord::OnVariableUsed(const String& name)
{
    usedVariables.insert(name);
}

void LoadRecord::Add(FindingCode code, const XmlPosition& position, String text)
{
    OnFinding({code, std::move(text), position});
}

void LoadRecord::Add(const Json& written)
{
    for (const Json& finding : written)
    {
        OnFinding({static_cast<FindingCode>(finding.at("code").get<std::uint16_t>()), finding.at("text"),
                   XmlPosition::Parse(finding.at("position")), XmlPosition::Parse(finding.at("related"))});
    }
}

Json LoadRecord::WriteFindings() const
{
    Json written = Json::array();
    for (const Finding& finding : findings)
    {
        written.push_back({{"code", static_cast<std::uint16_t>(finding.code)},
                           {"text", finding.text},
                           {"position", finding.position.ToString()},
                           {"related", finding.related.ToString()}});
    }
    return written;
}

XmlPosition LoadRecord::FindPlace(const String& element, const String& attribute) const
{
    const auto found =
        std::find_if(attributes.rbegin(), attributes.rend(),
                     [&](const ReadAttribute& read) { return read.element == element && read.name == attribute; });
    return found == attributes.rend() ? XmlPosition() : found->position;
}

std::vector<Finding> LoadRecord::GetFindings() const
{
    std::set<Place> causes;
    for (const Finding& finding : findings)
    {
        if (IsCause(finding.code))
        {
            causes.insert(GetPlace(finding.position));
        }
    }
    std::vector<Finding> result;
    std::set<std::tuple<FindingCode, Place, String>> seen;
    for (const Finding& finding : findings)
    {
        const Place place = GetPlace(finding.position);
        if (!(IsConsequence(finding.code) && causes.contains(place)) &&
            seen.emplace(finding.code, place, finding.text).second)
        {
            result.push_back(finding);
        }
    }
    return result;
}

} // namespace Vela::Kiroctl
