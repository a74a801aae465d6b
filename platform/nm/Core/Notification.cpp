#include <Vela/System/Nm/Notification.hpp>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace Vela::System::Nm
{

namespace Internal
{

const NotificationValue& FindField(const std::vector<NotificationField>& fields, const char* name)
{
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [name](const NotificationField& field) { return field.name == name; });
    if (found == fields.end())
    {
        throw KeyNotFoundException("The notification's payload has no field '{0}'.", name);
    }
    return found->value;
}

void ThrowUnfitValue(const char* fieldName)
{
    throw InvalidOperationException("The value of the payload field '{0}' does not fit its type.", fieldName);
}

} // namespace Internal

String ToString(const NotificationValue& value)
{
    return std::visit([](const auto& stored) { return fmt::format("{}", stored); }, value);
}

String Notification::ToString() const
{
    String text = fmt::format("{} {} {} [{}, {}]", timeStamp.ToString(), severity, name, sender, process);
    const char* separator = ": ";
    for (const NotificationField& field : fields)
    {
        fmt::format_to(std::back_inserter(text), "{}{}={}", separator, field.name, Nm::ToString(field.value));
        separator = ", ";
    }
    return text;
}

std::size_t Notification::GetSize() const noexcept
{
    std::size_t size =
        sizeof(Notification) + name.capacity() + sender.capacity() + process.capacity() + payloadType.capacity();
    for (const NotificationField& field : fields)
    {
        const String* text = std::get_if<String>(&field.value);
        size += sizeof(NotificationField) + field.name.capacity() + (text != nullptr ? text->capacity() : 0);
    }
    return size;
}

void Notification::CheckPayloadType(const String& expected) const
{
    if (payloadType != expected)
    {
        throw InvalidOperationException("Notification '{0}' carries a payload of type '{1}', not '{2}'.", name,
                                        payloadType, expected);
    }
}

} // namespace Vela::System::Nm
