#include "Transport/DirectoryWatch.hpp"

#include "Transport/RuntimeDirectory.hpp"

#include <fmt/format.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace Vela::System::Rsc
{

using namespace std::chrono_literals;

namespace
{

/// Without a watch (the system's number of them is limited) the directory is looked at this often.
constexpr auto pollingInterval = 20ms;

} // namespace

void DirectoryWatch::Begin(const RuntimeDirectory& directory)
{
    if (!descriptor.IsValid())
    {
        descriptor.Reset(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    }
    const String path = fmt::format("/proc/self/fd/{}", directory.GetDescriptor());
    directoryWatch = ::inotify_add_watch(descriptor.Get(), path.c_str(), IN_CREATE | IN_MOVED_TO);
}

void DirectoryWatch::End() noexcept
{
    ::inotify_rm_watch(descriptor.Get(), std::exchange(directoryWatch, -1));
    Drain();
}

WaitResult DirectoryWatch::WaitForFile(Clock::time_point deadline, std::span<const int> wakeDescriptors)
{
    if (directoryWatch >= 0)
    {
        const WaitResult result = WaitForInput(descriptor.Get(), deadline, wakeDescriptors);
        Drain();
        return result;
    }
    const auto next = std::min(deadline, Clock::now() + pollingInterval);
    const WaitResult result = WaitForInput(-1, next, wakeDescriptors);
    return result == WaitResult::TimedOut && next < deadline ? WaitResult::Changed : result;
}

void DirectoryWatch::Drain() const noexcept
{
    alignas(inotify_event) std::array<std::byte, 4096> events;
    while (::read(descriptor.Get(), events.data(), events.size()) > 0)
    {
    }
}

WaitResult WaitForInput(int descriptor, std::chrono::steady_clock::time_point deadline,
                        std::span<const int> wakeDescriptors)
{
    std::vector<pollfd> descriptors;
    descriptors.push_back({descriptor, POLLIN, 0});
    for (const int wakeDescriptor : wakeDescriptors)
    {
        descriptors.push_back({wakeDescriptor, POLLIN, 0});
    }
    for (;;)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        const int timeout = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 1'000'000));
        const int ready = ::poll(descriptors.data(), descriptors.size(), timeout);
        if (ready > 0)
        {
            const bool isWoken = std::any_of(descriptors.begin() + 1, descriptors.end(),
                                             [](const pollfd& entry) { return entry.revents != 0; });
            return isWoken ? WaitResult::Woken : WaitResult::Changed;
        }
        if (ready == 0 && left <= 0ms)
        {
            return WaitResult::TimedOut;
        }
    }
}

} // namespace Vela::System::Rsc
