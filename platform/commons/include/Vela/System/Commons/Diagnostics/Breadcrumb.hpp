#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

namespace Vela::System::Commons::Diagnostics
{

/// Says what the calling thread is about to do for whom, as long as it lives, so that a crash or a look at the thread
/// can tell, and so that what the thread does is put down to the right component: services that it publishes or looks
/// up, for instance. They nest; the innermost counts. It costs a few writes to memory of the thread.
class VELA_COMMONS_API Breadcrumb
{
public:
    /// The kind of a subject that is a component.
    static constexpr const char* component = "component";

    /// The texts must live as long.
    /// @param stepName  what is done, such as "Initialize"
    /// @param subjectKind  what it is done to: `component`, or "library"
    /// @param subjectName  its name
    Breadcrumb(const char* stepName, const char* subjectKind, const String& subjectName) noexcept;
    Breadcrumb(const char* stepName, const char* subjectKind, String&& subjectName) = delete;
    Breadcrumb(const Breadcrumb&) = delete;
    Breadcrumb& operator=(const Breadcrumb&) = delete;
    ~Breadcrumb();

    /// The innermost one of the calling thread, null without any. Safe in a signal handler.
    [[nodiscard]] static const Breadcrumb* GetCurrent() noexcept;

    [[nodiscard]] const char* GetStep() const noexcept
    {
        return step;
    }

    [[nodiscard]] const char* GetKind() const noexcept
    {
        return kind;
    }

    [[nodiscard]] const char* GetSubject() const noexcept
    {
        return subject;
    }

private:
    const char* const step;
    const char* const kind;
    const char* const subject;
    const Breadcrumb* const outer;
};

} // namespace Vela::System::Commons::Diagnostics
