#pragma once

#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Rsc/ServiceProvider.hpp>
#include <Vela/System/Rsc/ServiceUsage.hpp>

#include <array>
#include <mutex>
#include <set>
#include <vector>

namespace Vela::System::Rsc
{

/// Remembers which services were found, and by whom. Thread-safe.
class ServiceUses : private Commons::Diagnostics::Loggable<ServiceUses>
{
public:
    /// What the calling thread has found in a process.
    void Add(const ServiceProvider& provider, const String& interfaceName, const String& process);
    [[nodiscard]] std::vector<UsedService> List() const;

    /// The component in whose lifecycle step the calling thread is; empty outside.
    static String GetActingComponent();

private:
    /// User, process, provider and name of the service.
    using Use = std::array<String, 4>;

    mutable std::mutex mutex;
    std::set<Use> uses;
    bool isFull = false;
};

} // namespace Vela::System::Rsc
