#pragma once

#include <Vela/String.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>

namespace Vela::System::Kiro::Testing
{

/// The calls of a fake service: counts them and lets them fail. Thread-safe.
class FakeServiceCalls
{
public:
    /// Throws what a failed call is to throw.
    using Failure = std::function<void()>;

    /// Counts a call and lets it fail when it has to.
    void Begin(const String& operation);
    [[nodiscard]] std::size_t Count(const String& operation) const;

    void SetFailure(const String& operation, Failure failure);
    void SetFailureOfAll(Failure failure);
    void ClearFailures();

private:
    mutable std::mutex mutex;
    std::map<String, std::size_t> counts;
    std::map<String, Failure> failures;
    Failure failureOfAll;
};

} // namespace Vela::System::Kiro::Testing
