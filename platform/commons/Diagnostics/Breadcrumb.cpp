#include <Vela/System/Commons/Diagnostics/Breadcrumb.hpp>

#include <atomic>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

// Part of each thread from its start: other thread-local memory may be allocated on its first use, which a signal
// handler must not do.
thread_local const Breadcrumb* current __attribute__((tls_model("initial-exec"))) = nullptr;

} // namespace

Breadcrumb::Breadcrumb(const char* stepName, const char* subjectKind, const String& subjectName) noexcept
    : step(stepName)
    , kind(subjectKind)
    , subject(subjectName.c_str())
    , outer(current)
{
    std::atomic_signal_fence(std::memory_order_release);
    current = this;
}

Breadcrumb::~Breadcrumb()
{
    current = outer;
    std::atomic_signal_fence(std::memory_order_release);
}

const Breadcrumb* Breadcrumb::GetCurrent() noexcept
{
    return current;
}

} // namespace Vela::System::Commons::Diagnostics
