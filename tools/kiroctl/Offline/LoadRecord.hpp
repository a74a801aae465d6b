#pragma once

#include "Output/Json.hpp"

#include <Vela/System/Commons/Diagnostics/LoadObserver.hpp>

#include <set>
#include <vector>

namespace Vela::Kiroctl
{

/// An attribute as a loader has read it.
struct ReadAttribute
{
    System::Commons::Xml::XmlPosition position;
    String element;
    String name;
    String value;
};

/// Everything that the loaders tell while documents are loaded.
class LoadRecord final : public System::Commons::Diagnostics::LoadObserver
{
public:
    using Finding = System::Commons::Diagnostics::Finding;
    using FindingCode = System::Commons::Diagnostics::FindingCode;
    using XmlPosition = System::Commons::Xml::XmlPosition;

    void OnFinding(Finding finding) override;
    void OnAttribute(const XmlPosition& position, const String& element, const String& attribute,
                     const String& value) override;
    void OnVariableUsed(const String& name) override;

    void Add(FindingCode code, const XmlPosition& position, String text);
    /// Findings of another process, as WriteFindings has written them.
    void Add(const Json& findings);
    [[nodiscard]] Json WriteFindings() const;

    /// In the order in which they were found, each once, without those that only follow from another one.
    [[nodiscard]] std::vector<Finding> GetFindings() const;
    [[nodiscard]] const std::vector<ReadAttribute>& GetAttributes() const noexcept
    {
        return attributes;
    }
    /// Where an attribute was read last; nowhere when it was not.
    [[nodiscard]] XmlPosition FindPlace(const String& element, const String& attribute) const;
    [[nodiscard]] bool IsVariableUsed(const String& name) const
    {
        return usedVariables.contains(name);
    }

private:
    /// Nobody reads more; a document may have millions of errors.
    static constexpr std::size_t maxFindings = 10'000;

    std::vector<Finding> findings;
    std::vector<ReadAttribute> attributes;
    std::set<String> usedVariables;
};

} // namespace Vela::Kiroctl
