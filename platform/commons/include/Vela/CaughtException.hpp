#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <fmt/format.h>

#include <cstdint>
#include <utility>

namespace Vela
{

/// Thrown in place of an exception that is neither a platform nor a standard one and whose object had to be left
/// behind, in another process or in a library about to be unloaded. It deliberately has no base class: whoever
/// handles exceptions in three tiers meets it in the same tier as the original.
class VELA_COMMONS_API UnspecifiedException
{
public:
    explicit UnspecifiedException(String originalTypeName);
    [[nodiscard]] const String& GetTypeName() const noexcept;

private:
    String typeName;
};

/// The exception being handled, as texts: what every guard needs to log it, keep it, send it or throw it again after
/// its own code is gone.
///
/// @code
/// try { component->Start(); }
/// catch (...)
/// {
///     const auto failure = CaughtException::Current();
///     log.Error(failure.Describe("Exception occurs while starting component '{0}': {1}",
///                                "Unspecified exception occurs while starting component '{0}'", name));
/// }
/// @endcode
class VELA_COMMONS_API CaughtException
{
public:
    /// In which of the three tiers a guard meets the exception.
    enum class Tier : std::uint8_t
    {
        Platform = 0,
        Standard = 1,
        Unspecified = 2,
    };

    /// Call inside a catch block, or in a terminate handler: without a current exception the tier is Unspecified.
    static CaughtException Current() noexcept;
    /// From its parts, as they arrive from another process.
    CaughtException(Tier exceptionTier, ExceptionKind exceptionKind, String exceptionTypeName, String exceptionMessage,
                    String exceptionDetail, String exceptionInnerText);

    [[nodiscard]] Tier GetTier() const noexcept;
    /// Meaningful in the platform tier only.
    [[nodiscard]] ExceptionKind GetKind() const noexcept;
    /// Demangled name of the class of the original exception.
    [[nodiscard]] const String& GetTypeName() const noexcept;
    /// Message of a platform exception, what() of a standard one, empty otherwise.
    [[nodiscard]] const String& GetMessage() const noexcept;
    [[nodiscard]] const String& GetDetail() const noexcept;
    [[nodiscard]] const String& GetInnerText() const noexcept;
    /// Full text of a platform exception, what() of a standard one, "unspecified exception of type ..." otherwise.
    [[nodiscard]] String GetText() const;

    /// One message for all three tiers: `known`, formatted with the arguments and then the exception's text, for a
    /// platform or standard exception; `unspecified`, formatted with the arguments alone, for anything else.
    template <typename... Args>
    [[nodiscard]] String Describe(fmt::format_string<const Args&..., const String&> known,
                                  fmt::format_string<const Args&...> unspecified, const Args&... args) const
    {
        const String text = GetText();
        return tier == Tier::Unspecified ? fmt::format(unspecified, args...) : fmt::format(known, args..., text);
    }

    /// Throws the exception again from its texts: a platform exception as an object of the same class, a standard one
    /// as RethrownStandardException, anything else as UnspecifiedException.
    [[noreturn]] void Throw() const;

private:
    template <typename E>
    [[noreturn]] void ThrowAs() const;

    Tier tier;
    ExceptionKind kind;
    String typeName;
    String message;
    String detail;
    String innerText;
};

/// Stands for a standard exception whose object had to be left behind; what() is the original text.
class VELA_COMMONS_API RethrownStandardException : public std::exception
{
public:
    RethrownStandardException(String originalTypeName, String originalText);
    ~RethrownStandardException() override;
    [[nodiscard]] const String& GetTypeName() const noexcept;
    [[nodiscard]] const char* what() const noexcept override;

private:
    String typeName;
    String text;
};

/// Calls `function`; an exception out of it leaves as a copy whose code lives in the platform, so that the library
/// that threw the original may be unloaded.
template <typename Function>
decltype(auto) CallAcrossLibrary(Function&& function)
{
    try
    {
        return std::forward<Function>(function)();
    }
    catch (...)
    {
        // The original must be destroyed before the copy is on its way: its destructor may live in the library.
        const auto failure = CaughtException::Current();
        failure.Throw();
    }
}

} // namespace Vela
