#include <Vela/CaughtException.hpp>
#include <Vela/TypeName.hpp>

#include <cxxabi.h>

namespace Vela
{

namespace
{

String GetCurrentTypeName() noexcept
{
    try
    {
        const std::type_info* type = abi::__cxa_current_exception_type();
        return type == nullptr ? String("unknown") : GetTypeName(*type);
    }
    catch (...)
    {
        return "unknown";
    }
}

} // namespace

UnspecifiedException::UnspecifiedException(String originalTypeName)
    : typeName(std::move(originalTypeName))
{
}

const String& UnspecifiedException::GetTypeName() const noexcept
{
    return typeName;
}

RethrownStandardException::RethrownStandardException(String originalTypeName, String originalText)
    : typeName(std::move(originalTypeName))
    , text(std::move(originalText))
{
}

RethrownStandardException::~RethrownStandardException() = default;

const String& RethrownStandardException::GetTypeName() const noexcept
{
    return typeName;
}

const char* RethrownStandardException::what() const noexcept
{
    return text.c_str();
}

CaughtException CaughtException::Current() noexcept
{
    if (abi::__cxa_current_exception_type() == nullptr)
    {
        return {Tier::Unspecified, ExceptionKind::General, "none", {}, {}, {}};
    }
    try
    {
        throw;
    }
    catch (const Exception& exception)
    {
        return {Tier::Platform,         exception.GetKind(),   GetCurrentTypeName(),
                exception.GetMessage(), exception.GetDetail(), exception.GetInnerText()};
    }
    catch (const RethrownStandardException& exception)
    {
        return {Tier::Standard, ExceptionKind::General, exception.GetTypeName(), exception.what(), {}, {}};
    }
    catch (const std::exception& exception)
    {
        return {Tier::Standard, ExceptionKind::General, GetCurrentTypeName(), exception.what(), {}, {}};
    }
    catch (const UnspecifiedException& exception)
    {
        return {Tier::Unspecified, ExceptionKind::General, exception.GetTypeName(), {}, {}, {}};
    }
    catch (...)
    {
        return {Tier::Unspecified, ExceptionKind::General, GetCurrentTypeName(), {}, {}, {}};
    }
}

CaughtException::CaughtException(Tier exceptionTier, ExceptionKind exceptionKind, String exceptionTypeName,
                                 String exceptionMessage, String exceptionDetail, String exceptionInnerText)
    : tier(exceptionTier)
    , kind(exceptionKind)
    , typeName(std::move(exceptionTypeName))
    , message(std::move(exceptionMessage))
    , detail(std::move(exceptionDetail))
    , innerText(std::move(exceptionInnerText))
{
}

CaughtException::Tier CaughtException::GetTier() const noexcept
{
    return tier;
}

ExceptionKind CaughtException::GetKind() const noexcept
{
    return kind;
}

const String& CaughtException::GetTypeName() const noexcept
{
    return typeName;
}

const String& CaughtException::GetMessage() const noexcept
{
    return message;
}

const String& CaughtException::GetDetail() const noexcept
{
    return detail;
}

const String& CaughtException::GetInnerText() const noexcept
{
    return innerText;
}

String CaughtException::GetText() const
{
    switch (tier)
    {
    case Tier::Platform:
        return Exception(kind, message, detail).SetInnerText(innerText).ToString();
    case Tier::Standard:
        return message;
    case Tier::Unspecified:
        break;
    }
    return fmt::format("unspecified exception of type '{}'", typeName);
}

template <typename E>
void CaughtException::ThrowAs() const
{
    E exception{String(message)};
    exception.SetDetail(detail);
    exception.SetInnerText(innerText);
    throw exception;
}

void CaughtException::Throw() const
{
    if (tier == Tier::Standard)
    {
        throw RethrownStandardException(typeName, message);
    }
    if (tier == Tier::Unspecified)
    {
        throw UnspecifiedException(typeName);
    }
    switch (kind)
    {
    case ExceptionKind::General:
        break;
    case ExceptionKind::InvalidOperation:
        ThrowAs<InvalidOperationException>();
    case ExceptionKind::Argument:
        ThrowAs<ArgumentException>();
    case ExceptionKind::ArgumentNull:
        ThrowAs<ArgumentNullException>();
    case ExceptionKind::NotExist:
        ThrowAs<NotExistException>();
    case ExceptionKind::KeyNotFound:
        ThrowAs<KeyNotFoundException>();
    case ExceptionKind::InvalidConfig:
        ThrowAs<InvalidConfigException>();
    case ExceptionKind::Xml:
        ThrowAs<XmlException>();
    case ExceptionKind::NotImplemented:
        ThrowAs<NotImplementedException>();
    case ExceptionKind::Rsc:
        ThrowAs<RscException>();
    }
    ThrowAs<Exception>();
}

} // namespace Vela
