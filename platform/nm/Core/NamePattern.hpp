#pragma once

#include <Vela/String.hpp>

namespace Vela::System::Nm::Internal
{

/// Checks a name or another short text of a notification: not empty, at most 255 bytes.
/// @throws ArgumentException
void CheckText(const char* parameterName, const String& text);

/// Checks the name of a notification: a text as above without "*".
/// @throws ArgumentException
void CheckNotificationName(const String& name);

/// Which notifications a subscription wants: a name, or the beginning of names followed by "*".
class NamePattern
{
public:
    /// @throws ArgumentException for an empty or too long text, and for "*" elsewhere than at the end
    explicit NamePattern(String patternText);

    [[nodiscard]] bool Matches(const String& name) const noexcept;
    [[nodiscard]] const String& GetText() const noexcept;

private:
    String text;
};

} // namespace Vela::System::Nm::Internal
