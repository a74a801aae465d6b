#pragma once

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

    [[nodiscard]] Json Build() const
    {
        return BuildPlan(documents, !isLoadingForbidden);
    }

    SystemDocuments documents;
    bool isLoadingForbidden = false;
};

} // namespace Vela::Kiroctl
