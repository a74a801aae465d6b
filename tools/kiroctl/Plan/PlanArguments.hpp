#pragma once

#include "../CommandError.hpp"
#include "../Offline/DocumentArguments.hpp"
#include "PlanBuilder.hpp"

namespace Vela::Kiroctl
{

/// The arguments of the commands that show a plan.
struct PlanArguments
{
    void Declare(const CommandDeclaration& command)
    {
        DeclareDocuments(command, documents);
        command.AddFlag("--no-load", isLoadingForbidden,
                        "Do not construct components to ask for their own start orders");
    }

    /// @param option  what stands in place of documents
    /// @throws CommandError (Usage) when documents are named all the same
    void CheckUnused(const char* option) const
    {
        const SystemDocuments defaults;
        if (documents.settings != defaults.settings || documents.configuration != defaults.configuration ||
            isLoadingForbidden)
        {
            throw CommandError(ExitCode::Usage, "{} takes no documents.", option);
        }
    }

    [[nodiscard]] Json Build() const
    {
        return BuildPlan(documents, !isLoadingForbidden);
    }

    SystemDocuments documents;
    bool isLoadingForbidden = false;
};

} // namespace Vela::Kiroctl
