#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SafeString.hpp>

extern "C"
{
#include <safe_mem_lib.h>
#include <safe_str_lib.h>
}

namespace Vela::System::Commons
{

namespace
{

thread_local int lastFailure = EOK;

/// Remembers the failure instead of throwing: an exception cannot leave through the C code that calls this, where
/// that code is compiled without unwind tables.
void RememberFailure(const char*, void*, errno_t error)
{
    lastFailure = error;
}

const struct ConstraintHandlerInstaller
{
    ConstraintHandlerInstaller()
    {
        SafeString::InstallConstraintHandler();
    }
} installer;

} // namespace

void SafeString::InstallConstraintHandler()
{
    set_str_constraint_handler_s(&RememberFailure);
    set_mem_constraint_handler_s(&RememberFailure);
}

void SafeString::Copy(char* target, std::size_t capacity, std::string_view text)
{
    lastFailure = EOK;
    // One byte is kept for the end.
    const errno_t result = capacity > text.size() ? memcpy_s(target, capacity - 1, text.data(), text.size()) : ESNOSPC;
    if (result != EOK || lastFailure != EOK)
    {
        throw ArgumentException::ForParameter("arg", text, "Input string is too long");
    }
    target[text.size()] = '\0';
}

} // namespace Vela::System::Commons
