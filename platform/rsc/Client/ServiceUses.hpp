#pragma once

#include <Vela/System/Rsc/ServiceUsage.hpp>

#include <mutex>
#include <set>
#include <vector>

namespace Vela::System::Rsc
{

/// Remembers which services were found, and by whom. Thread-safe.
class ServiceUses
{
public:
    /// What the calling thread has found. Nothing happens when it is known or there is no room.
    void Add(const ServiceProvider& provider, const String& interfaceName);
    [[nodiscard]] std::vector<UsedService> List() const;

    /// The component in whose lifecycle step the calling thread is; empty outside.
    static String GetActingComponent();

private:
    mutable std::mutex mutex;
    std::set<UsedService> uses;
};

} // namespace Vela::System::Rsc
