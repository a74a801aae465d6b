#include <Vela/Exceptions.hpp>
#include <Vela/System/Commons/SafeString.hpp>

extern "C"
{
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
}

void SafeString::Copy(char* target, std::size_t capacity, const String& text)
{
    lastFailure = EOK;
    const errno_t result = strncpy_s(target, capacity, text.c_str(), text.size());
    if (result != EOK || lastFailure != EOK)
    {
        throw ArgumentException::ForParameter("arg", "Input string is too long");
    }
}

} // namespace Vela::System::Commons
