#pragma once

#include "Offline/LoadRecord.hpp"
#include "Output/Output.hpp"

#include <string>
#include <vector>

namespace Vela::Kiroctl
{

/// What a check has found, for people and for programs.
class Report
{
public:
    /// @param fallbackFile  stands for the place of what no document says
    Report(std::vector<LoadRecord::Finding> reportFindings, std::string fallbackFile, bool isStrict);

    void Write(Output& output) const;
    /// Errors, and in a strict report warnings too.
    [[nodiscard]] bool HasFailed() const noexcept
    {
        return errors > 0;
    }

    /// All codes with what they mean.
    static void WriteCodes(Output& output);

private:
    using Finding = LoadRecord::Finding;
    using Severity = System::Commons::Diagnostics::FindingSeverity;

    [[nodiscard]] Severity GetSeverity(const Finding& finding) const;
    void WriteLine(Output& output, const Finding& finding) const;
    [[nodiscard]] Json ToJson(const Finding& finding) const;
    [[nodiscard]] std::string Summarise() const;

    const std::vector<Finding> findings;
    const std::string fallback;
    const bool strict;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    std::size_t notes = 0;
};

} // namespace Vela::Kiroctl
