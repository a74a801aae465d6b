#pragma once

#include <Vela/System/Kiro/IComponent.hpp>

#include <atomic>
#include <memory>
#include <utility>

namespace Vela::System::Kiro::Internal::Pm
{

/// Counts who may be running a library's code: its components, for as long as anybody holds one, and calls into its
/// factory. A library in use must not be unmapped. Thread-safe.
class LibraryUsage
{
public:
    /// One user of a library.
    class Hold
    {
    public:
        explicit Hold(std::shared_ptr<LibraryUsage> libraryUsage)
            : usage(std::move(libraryUsage))
        {
            usage->holds.fetch_add(1, std::memory_order_relaxed);
        }

        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        ~Hold()
        {
            usage->holds.fetch_sub(1, std::memory_order_release);
        }

    private:
        std::shared_ptr<LibraryUsage> usage;
    };

    [[nodiscard]] bool IsInUse() const noexcept
    {
        return holds.load(std::memory_order_acquire) > 0;
    }

    /// The same component; its library counts as used until the component has been destroyed.
    [[nodiscard]] static std::shared_ptr<IComponent> Attach(std::shared_ptr<Hold> hold,
                                                            std::shared_ptr<IComponent> component)
    {
        // The component is the last member, so it is gone before the hold is.
        struct Held
        {
            std::shared_ptr<Hold> hold;
            std::shared_ptr<IComponent> component;
        };

        auto held = std::make_shared<Held>(Held{std::move(hold), std::move(component)});
        IComponent* const target = held->component.get();
        return {std::move(held), target};
    }

private:
    std::atomic<unsigned> holds{0};
};

} // namespace Vela::System::Kiro::Internal::Pm
