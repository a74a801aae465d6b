#pragma once

#include "TestService.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/ServiceManager.hpp>

#include <fmt/format.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace Vela::System::Rsc::Testing
{

/// Is no standard exception.
struct Oddity
{
};

class TestServiceImpl final : public ITestService
{
public:
    /// @param processName  the process in which it lives
    /// @param whenWaiting  called when a Wait has begun
    explicit TestServiceImpl(
        String processName, std::function<void()> whenWaiting = [] {})
        : ownProcessName(std::move(processName))
        , onWait(std::move(whenWaiting))
    {
    }

    void Nothing() override
    {
        ++calls;
    }

    std::int32_t Add(std::int32_t left, std::int32_t right) const override
    {
        return left + right;
    }

    String Echo(const String& text) override
    {
        return text;
    }

    Everything Reflect(const Everything& everything) override
    {
        return everything;
    }

    Drawing Mirror(const Drawing& drawing) override
    {
        return drawing;
    }

    bool Split(const RscString<128>& text, RscString<128>& head, std::vector<RscString<128>>& rest) override
    {
        std::istringstream words(text.ToString());
        String word;
        words >> word;
        head = word;
        rest.clear();
        while (words >> word)
        {
            rest.emplace_back(word);
        }
        return !rest.empty();
    }

    String Describe(RscVariant<512> value) override
    {
        return fmt::format("{}:{}", static_cast<int>(value.GetType()), value.ToString());
    }

    void Fail(const String& what) override
    {
        ++calls;
        if (what == "platform")
        {
            KeyNotFoundException exception("no {0}", "key");
            exception.SetInnerText("the cause");
            throw exception;
        }
        if (what == "argument")
        {
            throw ArgumentException::ForParameter("what", "bad {}");
        }
        if (what == "standard")
        {
            throw std::out_of_range("far out");
        }
        throw Oddity();
    }

    std::int32_t Nest(const RscString<128>& processName, std::int32_t depth) override
    {
        if (depth == 0)
        {
            return 0;
        }
        const auto peer =
            ServiceManager::GetService(TestServiceProxyFactory(), ServiceProvider::Process(processName.ToString()));
        return peer->Nest(ownProcessName, depth - 1) + 1;
    }

    bool Wait(std::int32_t milliseconds) override
    {
        std::unique_lock lock(mutex);
        onWait();
        return condition.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return isReleased; });
    }

    void Release() override
    {
        const std::lock_guard lock(mutex);
        isReleased = true;
        condition.notify_all();
    }

    std::vector<Drawing> Many(std::uint32_t count) override
    {
        return std::vector<Drawing>(count);
    }

    std::uint64_t GetThread() override
    {
        return static_cast<std::uint64_t>(::syscall(SYS_gettid));
    }

    void Linger(std::int32_t milliseconds) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }

    std::atomic<int> calls{0};

private:
    const String ownProcessName;
    const std::function<void()> onWait;
    std::mutex mutex;
    std::condition_variable condition;
    bool isReleased = false;
};

} // namespace Vela::System::Rsc::Testing
