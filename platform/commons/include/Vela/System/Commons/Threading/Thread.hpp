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
    Thread(const String& name, std::function<void()> function);
    Thread(Thread&&) noexcept = default;
    Thread& operator=(Thread&&) noexcept = default;
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
