#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>
#include <Vela/System/Commons/Diagnostics/FindingCode.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Xml/XmlPosition.hpp>

#include <fmt/format.h>

#include <utility>

namespace Vela::System::Commons::Diagnostics
{

/// Something wrong with the documents or files of a system.
struct Finding
{
    FindingCode code{};
    String text;
    /// Nowhere when no document says it; line 0 when it concerns a whole file.
    Xml::XmlPosition position;
    /// Where the first of two things stands that contradict each other.
    Xml::XmlPosition related = {};
};

/// Watches documents being loaded, for a tool that wants to know everything about them.
///
/// Without an observer, which is the rule, loaders log their warnings and throw at the first error. With one, they hand
/// it both instead and go on as well as they can, leaving out what is wrong; what they have loaded then is good for
/// being examined and for nothing else. There is one observer per process, for loads on one thread.
class VELA_COMMONS_API LoadObserver
{
public:
    LoadObserver() = default;
    LoadObserver(const LoadObserver&) = delete;
    LoadObserver& operator=(const LoadObserver&) = delete;
    virtual ~LoadObserver();

    virtual void OnFinding(Finding finding) = 0;
    /// A loader has taken the value of an attribute.
    virtual void OnAttribute(const Xml::XmlPosition& position, const String& element, const String& attribute,
                             const String& value);
    /// A placeholder has been replaced by the value of a variable.
    virtual void OnVariableUsed(const String& name);

    /// The present observer; null when nobody watches.
    static LoadObserver* TryGet() noexcept;

    /// Makes an observer the present one while it lives.
    class VELA_COMMONS_API Scope
    {
    public:
        explicit Scope(LoadObserver& observer) noexcept;
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope();

    private:
        LoadObserver* const before;
    };
};

/// Throws an exception, unless there is an observer to tell. When it returns, the caller goes on without what failed.
template <typename E>
void Raise(FindingCode code, const Xml::XmlPosition& position, const E& exception, const Xml::XmlPosition& related = {})
{
    LoadObserver* observer = LoadObserver::TryGet();
    if (observer == nullptr)
    {
        throw exception;
    }
    observer->OnFinding({code, exception.GetMessage(), position, related});
}

/// Takes one step of a load. An exception of the platform passes, unless there is an observer to tell.
/// @param place  where it is wrong when the exception does not say it itself
/// @return false when the step failed
template <typename Step>
bool Attempt(FindingCode code, Step&& step, const Xml::XmlPosition& place = {})
{
    LoadObserver* observer = LoadObserver::TryGet();
    if (observer == nullptr)
    {
        step();
        return true;
    }
    try
    {
        step();
        return true;
    }
    catch (const Exception& exception)
    {
        const String& cause = exception.GetInnerText();
        const auto position = Xml::XmlPosition::Parse(exception.GetDetail());
        observer->OnFinding({code, exception.GetMessage() + (cause.empty() ? "" : " " + cause),
                             position.GetFile().empty() ? place : position});
        return false;
    }
}

/// Logs a warning, unless there is an observer to tell.
template <typename... Args>
void Warn(Logger& log, FindingCode code, const Xml::XmlPosition& position, fmt::format_string<const Args&...> format,
          const Args&... args)
{
    LoadObserver* observer = LoadObserver::TryGet();
    if (observer != nullptr)
    {
        observer->OnFinding({code, fmt::format(format, args...), position});
    }
    else if (log.IsEnabled(LogLevel::Warning))
    {
        log.Write(LogLevel::Warning, fmt::format(format, args...));
    }
}

/// The same; the log line ends with the position in parentheses.
template <typename... Args>
void WarnAt(Logger& log, FindingCode code, const Xml::XmlPosition& position, fmt::format_string<const Args&...> format,
            const Args&... args)
{
    LoadObserver* observer = LoadObserver::TryGet();
    if (observer != nullptr)
    {
        observer->OnFinding({code, fmt::format(format, args...), position});
    }
    else if (log.IsEnabled(LogLevel::Warning))
    {
        log.Write(LogLevel::Warning, fmt::format(format, args...) + " (" + position.ToString() + ")");
    }
}

} // namespace Vela::System::Commons::Diagnostics
