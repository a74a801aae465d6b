#include "Services/Failure.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/System/Rsc/RscClient.hpp>

#include <algorithm>

namespace Vela::System::Rsc
{

namespace
{

constexpr std::size_t maxTextSize = std::size_t{16} * 1024;

void WriteText(RemotingWriter& writer, const String& text)
{
    writer.WriteStringInternal(std::string_view(text).substr(0, maxTextSize), maxTextSize, utf8Encoding, true);
}

String ReadText(RemotingReader& reader)
{
    return reader.ReadStringInternal(maxTextSize, utf8Encoding, true);
}

} // namespace

RscException MakeCallFailure(const RscCall& call, const String& process, const String& why)
{
    return RscException("Call of operation '{0}' of service '{1}' in process '{2}' failed: {3}", call.operation.name,
                        call.serviceName, process, why);
}

void WriteFailure(RemotingWriter& writer, RscErrorCode code, const CaughtException& exception)
{
    writer.WriteConfirmation(true);
    writer.WriteRaw(static_cast<std::uint32_t>(code));
    writer.WriteRaw(static_cast<std::uint8_t>(exception.GetTier()));
    writer.WriteRaw(static_cast<std::uint8_t>(exception.GetKind()));
    WriteText(writer, exception.GetTypeName());
    WriteText(writer, exception.GetMessage());
    WriteText(writer, exception.GetDetail());
    WriteText(writer, exception.GetInnerText());
}

Failure ReadFailure(RemotingReader& reader)
{
    const auto code = static_cast<RscErrorCode>(reader.ReadRaw<std::uint32_t>());
    const auto tier = reader.ReadRaw<std::uint8_t>();
    const auto kind = reader.ReadRaw<std::uint8_t>();
    if (tier > static_cast<std::uint8_t>(CaughtException::Tier::Unspecified))
    {
        throw RscException("Malformed message: exception tier {}.", tier);
    }
    // A kind of a newer release arrives as the general exception.
    const bool isKnownKind = kind <= static_cast<std::uint8_t>(ExceptionKind::Rsc);
    const String typeName = ReadText(reader);
    const String message = ReadText(reader);
    const String detail = ReadText(reader);
    const String innerText = ReadText(reader);
    reader.ReadEnd();
    return {code, CaughtException(static_cast<CaughtException::Tier>(tier),
                                  isKnownKind ? static_cast<ExceptionKind>(kind) : ExceptionKind::General, typeName,
                                  message, detail, innerText)};
}

} // namespace Vela::System::Rsc
