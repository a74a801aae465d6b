#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Api.hpp>

#include <fmt/format.h>

#include <cstdint>
#include <exception>
#include <string_view>
#include <utility>

namespace Vela
{

/// The class of a platform exception as a number, so that it survives the way to another process.
/// The numbers travel on the wire: append, never renumber, and keep the table in CaughtException.cpp in step.
enum class ExceptionKind : std::uint8_t
{
    General = 0,
    InvalidOperation = 1,
    Argument = 2,
    ArgumentNull = 3,
    NotExist = 4,
    KeyNotFound = 5,
    InvalidConfig = 6,
    Xml = 7,
    NotImplemented = 8,
    Rsc = 9,
};

/// Root of the platform's exception family.
///
/// An exception has a message, an optional detail (where it happened, such as a file and a line) and, when it was
/// thrown because of another one, the full text of that one. It holds texts only, so it can be copied, sent to another
/// process and kept after the library that threw it is gone.
class VELA_COMMONS_API Exception : public std::exception
{
    friend class CaughtException;

public:
    /// Takes a text as it is: braces in it mean nothing.
    explicit Exception(String message);

    /// Formats the message with fmt.
    template <typename First, typename... Rest>
    explicit Exception(fmt::format_string<First, Rest...> format, First&& first, Rest&&... rest)
        : Exception(fmt::format(format, std::forward<First>(first), std::forward<Rest>(rest)...))
    {
    }

    Exception(const Exception&) = default;
    Exception(Exception&&) noexcept = default;
    Exception& operator=(const Exception&) = default;
    Exception& operator=(Exception&&) noexcept = default;
    ~Exception() override;

    [[nodiscard]] ExceptionKind GetKind() const noexcept;
    /// The unqualified class name, such as "InvalidOperationException".
    [[nodiscard]] const char* GetName() const noexcept;
    /// The message alone.
    [[nodiscard]] const String& GetMessage() const noexcept;
    /// Where or about what it happened; empty when the message says all.
    [[nodiscard]] const String& GetDetail() const noexcept;
    /// Full text of the exception that caused this one; empty when there was none.
    [[nodiscard]] const String& GetInnerText() const noexcept;
    /// The full text: name, message, detail and cause, on one line.
    [[nodiscard]] String ToString() const;
    /// Message and detail.
    [[nodiscard]] const char* what() const noexcept override;

    /// Records the cause; returns the exception itself, so that it can be thrown in the same statement.
    Exception& SetInnerText(String text);

protected:
    Exception(ExceptionKind exceptionKind, String messageText, const String& detailText = {});

private:
    void SetDetail(const String& text);

    ExceptionKind kind;
    String message;
    String detail;
    String innerText;
    String whatText;
};

/// Gives an exception class its kind and the two constructors of the family.
template <ExceptionKind Kind, typename Base = Exception>
class ExceptionOfKind : public Base
{
public:
    explicit ExceptionOfKind(String message)
        : Base(Kind, std::move(message))
    {
    }

    template <typename First, typename... Rest>
    explicit ExceptionOfKind(fmt::format_string<First, Rest...> format, First&& first, Rest&&... rest)
        : Base(Kind, fmt::format(format, std::forward<First>(first), std::forward<Rest>(rest)...))
    {
    }

protected:
    ExceptionOfKind(ExceptionKind kind, String message, const String& detail = {})
        : Base(kind, std::move(message), detail)
    {
    }
};

/// The object is not in a state that allows the operation.
class VELA_COMMONS_API InvalidOperationException : public ExceptionOfKind<ExceptionKind::InvalidOperation>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    ~InvalidOperationException() override;
};

/// An argument is not valid.
class VELA_COMMONS_API ArgumentException : public ExceptionOfKind<ExceptionKind::Argument>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    /// Names the parameter in the detail: "argument 'parameterName'".
    static ArgumentException ForParameter(const String& parameterName, String message);
    /// Shows what was given as well, or how it begins: "argument 'parameterName': 'value'".
    static ArgumentException ForParameter(const String& parameterName, std::string_view value, String message);
    ~ArgumentException() override;

protected:
    ArgumentException(ExceptionKind kind, String message, const String& detail);
};

/// An argument is null or empty that must not be. The message is "Value cannot be null."
class VELA_COMMONS_API ArgumentNullException : public ArgumentException
{
public:
    explicit ArgumentNullException(const String& parameterName);
    ArgumentNullException(String message, const String& detail);
    ~ArgumentNullException() override;
};

/// A file or another thing of the outside world does not exist.
class VELA_COMMONS_API NotExistException : public ExceptionOfKind<ExceptionKind::NotExist>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    ~NotExistException() override;
};

/// A table has no entry of that name.
class VELA_COMMONS_API KeyNotFoundException : public ExceptionOfKind<ExceptionKind::KeyNotFound>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    ~KeyNotFoundException() override;
};

/// The configuration contradicts itself.
class VELA_COMMONS_API InvalidConfigException : public ExceptionOfKind<ExceptionKind::InvalidConfig>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    /// The message and, as detail, the position in the document ("/etc/a.config:12, included from ...").
    static InvalidConfigException At(const String& position, String message);
    ~InvalidConfigException() override;

protected:
    InvalidConfigException(ExceptionKind kind, String message, const String& detail);
};

/// A document is malformed; the detail names file, line and the chain of includes.
class VELA_COMMONS_API XmlException : public ExceptionOfKind<ExceptionKind::Xml>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    /// The message and, as detail, the position as the reader words it ("/etc/a.config:12, included from ...").
    static XmlException At(const String& position, String message);
    ~XmlException() override;

protected:
    XmlException(ExceptionKind kind, String message, const String& detail);
};

/// The operation is part of an interface but has no meaning here.
class VELA_COMMONS_API NotImplementedException : public ExceptionOfKind<ExceptionKind::NotImplemented>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    ~NotImplementedException() override;
};

/// A remote call failed on its way: broken connection, refused, timed out, malformed.
class VELA_COMMONS_API RscException : public ExceptionOfKind<ExceptionKind::Rsc>
{
public:
    using ExceptionOfKind::ExceptionOfKind;
    ~RscException() override;
};

} // namespace Vela
