#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <functional>
#include <thread>

namespace Vela::System::Commons::Threading
{

/// A named thread; the system shows the first 15 bytes of the name. An exception out of its function ends the process
/// through the terminate handler.
class VELA_COMMONS_API Thread
{
public:
    Thread() = default;
    /// @throws Exception when the system has no thread to give
    Thread(const String& name, std::function<void()> function);
    Thread(Thread&&) noexcept = default;
    /// Joins the thread that stood here.
    Thread& operator=(Thread&& other) noexcept;
    /// Joins.
    ~Thread();

    void Join();
    [[nodiscard]] bool IsJoinable() const noexcept;

    static void Sleep(int milliseconds);
    static void SetCurrentName(const String& name) noexcept;

private:
    std::thread thread;
};

} // namespace Vela::System::Commons::Threading
