#include <Vela/System/Kiro/Testing/FakeServiceCalls.hpp>

#include <utility>

namespace Vela::System::Kiro::Testing
{

void FakeServiceCalls::Begin(const String& operation)
{
    Failure failure;
    {
        const std::lock_guard lock(mutex);
        ++counts[operation];
        const auto found = failures.find(operation);
        failure = found != failures.end() ? found->second : failureOfAll;
    }
    if (failure)
    {
        failure();
    }
}

std::size_t FakeServiceCalls::Count(const String& operation) const
{
    const std::lock_guard lock(mutex);
    const auto found = counts.find(operation);
    return found != counts.end() ? found->second : 0;
}

void FakeServiceCalls::SetFailure(const String& operation, Failure failure)
{
    const std::lock_guard lock(mutex);
    failures.insert_or_assign(operation, std::move(failure));
}

void FakeServiceCalls::SetFailureOfAll(Failure failure)
{
    const std::lock_guard lock(mutex);
    failureOfAll = std::move(failure);
}

void FakeServiceCalls::ClearFailures()
{
    const std::lock_guard lock(mutex);
    failures.clear();
    failureOfAll = nullptr;
}

} // namespace Vela::System::Kiro::Testing
