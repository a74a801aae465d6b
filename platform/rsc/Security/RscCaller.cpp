#include "Security/CallerScope.hpp"

#include <Vela/AppDomain.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/PlainText.hpp>
#include <Vela/System/Rsc/RscCaller.hpp>

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

namespace Vela::System::Rsc
{

namespace
{

thread_local const RscCaller* currentCaller = nullptr;

} // namespace

CallerScope::CallerScope(const RscCaller& newCaller) noexcept
    : previous(std::exchange(currentCaller, &newCaller))
{
}

CallerScope::~CallerScope()
{
    currentCaller = previous;
}

RscCaller GetOwnCaller()
{
    const AppDomain* domain = Singleton<AppDomain>::TryGetInstance();
    return {::geteuid(), ::getpid(), domain == nullptr ? String() : domain->GetApplicationName()};
}

RscCaller RscCaller::GetCurrent()
{
    return currentCaller != nullptr ? *currentCaller : GetOwnCaller();
}

String RscCaller::ToString() const
{
    // The name is the caller's own choice.
    constexpr std::size_t maxNameSize = 128;
    return fmt::format("process '{}' (pid {}, uid {})", Commons::MakePlainText(processName, maxNameSize), processId,
                       userId);
}

} // namespace Vela::System::Rsc
