#include <Vela/Exceptions.hpp>

#include <array>

namespace Vela
{

namespace
{

constexpr std::array kindNames{
    "Exception",
    "InvalidOperationException",
    "ArgumentException",
    "ArgumentNullException",
    "NotExistException",
    "KeyNotFoundException",
    "InvalidConfigException",
    "XmlException",
    "NotImplementedException",
    "RscException",
};
static_assert(kindNames.size() == static_cast<std::size_t>(ExceptionKind::Rsc) + 1);

} // namespace

Exception::Exception(String messageText)
    : Exception(ExceptionKind::General, std::move(messageText))
{
}

Exception::Exception(ExceptionKind exceptionKind, String messageText, const String& detailText)
    : kind(exceptionKind)
    , message(std::move(messageText))
{
    SetDetail(detailText);
}

Exception::~Exception() = default;

ExceptionKind Exception::GetKind() const noexcept
{
    return kind;
}

const char* Exception::GetName() const noexcept
{
    return kindNames.at(static_cast<std::size_t>(kind));
}

const String& Exception::GetMessage() const noexcept
{
    return message;
}

const String& Exception::GetDetail() const noexcept
{
    return detail;
}

const String& Exception::GetInnerText() const noexcept
{
    return innerText;
}

String Exception::ToString() const
{
    String text = fmt::format("{}: {}", GetName(), whatText);
    if (!innerText.empty())
    {
        text += " ---> " + innerText;
    }
    return text;
}

void Exception::SetDetail(const String& text)
{
    detail = text;
    whatText = detail.empty() ? message : fmt::format("{} ({})", message, detail);
}

const char* Exception::what() const noexcept
{
    return whatText.c_str();
}

Exception& Exception::SetInnerText(String text)
{
    innerText = std::move(text);
    return *this;
}

InvalidOperationException::~InvalidOperationException() = default;
ArgumentException::~ArgumentException() = default;
ArgumentNullException::~ArgumentNullException() = default;
NotExistException::~NotExistException() = default;
KeyNotFoundException::~KeyNotFoundException() = default;
InvalidConfigException::~InvalidConfigException() = default;
XmlException::~XmlException() = default;
NotImplementedException::~NotImplementedException() = default;
RscException::~RscException() = default;

ArgumentException::ArgumentException(ExceptionKind kind, String message, const String& detail)
    : ExceptionOfKind(kind, std::move(message), detail)
{
}

ArgumentException ArgumentException::ForParameter(const String& parameterName, String message)
{
    return {ExceptionKind::Argument, std::move(message), fmt::format("argument '{}'", parameterName)};
}

ArgumentException ArgumentException::ForParameter(const String& parameterName, std::string_view value, String message)
{
    constexpr std::size_t longest = 64;
    const std::string_view end = value.size() > longest ? "..." : "";
    return {ExceptionKind::Argument, std::move(message),
            fmt::format("argument '{}': '{}{}'", parameterName, value.substr(0, longest), end)};
}

ArgumentNullException::ArgumentNullException(const String& parameterName)
    : ArgumentNullException("Value cannot be null.", fmt::format("argument '{}'", parameterName))
{
}

ArgumentNullException::ArgumentNullException(String message, const String& detail)
    : ArgumentException(ExceptionKind::ArgumentNull, std::move(message), detail)
{
}

InvalidConfigException::InvalidConfigException(ExceptionKind kind, String message, const String& detail)
    : ExceptionOfKind(kind, std::move(message), detail)
{
}

InvalidConfigException InvalidConfigException::At(const String& position, String message)
{
    return {ExceptionKind::InvalidConfig, std::move(message), position};
}

XmlException::XmlException(ExceptionKind kind, String message, const String& detail)
    : ExceptionOfKind(kind, std::move(message), detail)
{
}

XmlException XmlException::At(const String& position, String message)
{
    return {ExceptionKind::Xml, std::move(message), position};
}

} // namespace Vela
