#pragma once

#include <Vela/String.hpp>

#include <optional>

namespace Vela::System::Kiro::Internal
{

/// The main process that has started this process as a child, as far as this one was told.
class ParentProcess
{
public:
    /// Takes what the parent said out of the environment: programs that this process starts are not its children.
    /// Whoever is no child was not meant.
    void TakeOver(bool isChild);

    /// Whether this process was started by a main process.
    [[nodiscard]] bool IsKnown() const noexcept
    {
        return !id.empty();
    }

    /// Its id, when it has ended. Nothing while it lives, and when it is not known.
    [[nodiscard]] std::optional<String> FindEnded() const;

private:
    String id;
};

} // namespace Vela::System::Kiro::Internal
