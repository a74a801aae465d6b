#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/TypeName.hpp>

#include <fmt/format.h>

#include <concepts>
#include <cstring>
#include <initializer_list>
#include <istream>
#include <ostream>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vela
{

/// Names of the values of an enumeration, ordered by value as they are given.
///
/// An enumeration is registered by a function beside it, found by its argument:
/// @code
/// const EnumDictionary<ProcessKind>& GetEnumDictionary(ProcessKind);
/// @endcode
/// The function holds the dictionary as a local static.
template <typename E>
class EnumDictionary
{
public:
    using Entry = std::pair<E, const char*>;

    EnumDictionary(std::initializer_list<Entry> list)
        : entries(list)
    {
    }

    [[nodiscard]] const std::vector<Entry>& GetEntries() const noexcept
    {
        return entries;
    }

private:
    std::vector<Entry> entries;
};

template <typename E>
concept EnumWithDictionary = std::is_enum_v<E> && requires(E value)
{
    {
        GetEnumDictionary(value)
        } -> std::same_as<const EnumDictionary<E>&>;
};

/// The name of a value, or null when it has none.
template <EnumWithDictionary E>
const char* FindEnumString(E value)
{
    for (const auto& [entry, name] : GetEnumDictionary(value).GetEntries())
    {
        if (entry == value)
        {
            return name;
        }
    }
    return nullptr;
}

/// The name of a value.
/// @throws Exception when the value has no name
template <EnumWithDictionary E>
String GetEnumString(E value)
{
    if (const char* name = FindEnumString(value))
    {
        return name;
    }
    throw Exception("Could not find enum string of enum '{}' for value '{}'.", GetTypeName<E>(),
                    static_cast<long long>(value));
}

/// Finds the value of a name, compared exactly; leaves `value` alone and answers false for an unknown one.
template <EnumWithDictionary E>
bool TryGetEnumValue(const char* text, E& value)
{
    for (const auto& [entry, name] : GetEnumDictionary(E{}).GetEntries())
    {
        if (std::strcmp(name, text) == 0)
        {
            value = entry;
            return true;
        }
    }
    return false;
}

/// The value of a name.
/// @throws Exception for an unknown name
template <EnumWithDictionary E>
E GetEnumValue(const String& text)
{
    E value{};
    if (!TryGetEnumValue(text.c_str(), value))
    {
        throw Exception("Invalid string for Enum '{0}' occurs: {1}", GetTypeName<E>(), text);
    }
    return value;
}

/// Body of an enumeration's output operator: the name, or the number of a value without one.
template <EnumWithDictionary E>
std::ostream& WriteEnum(std::ostream& stream, E value)
{
    if (const char* name = FindEnumString(value))
    {
        return stream << name;
    }
    return stream << static_cast<long long>(value);
}

/// Body of an enumeration's input operator: one word, which must be a name; otherwise the fail bit is set and the
/// value stays as it is.
template <EnumWithDictionary E>
std::istream& ReadEnum(std::istream& stream, E& value)
{
    String word;
    if (stream >> word && !TryGetEnumValue(word.c_str(), value))
    {
        stream.setstate(std::ios_base::failbit);
    }
    return stream;
}

} // namespace Vela

/// Enumerations with a dictionary print by name in messages too.
template <Vela::EnumWithDictionary E>
struct fmt::formatter<E> : fmt::formatter<Vela::String>
{
    template <typename Context>
    auto format(E value, Context& context) const
    {
        const char* name = Vela::FindEnumString(value);
        return fmt::formatter<Vela::String>::format(
            name != nullptr ? Vela::String(name) : std::to_string(static_cast<long long>(value)), context);
    }
};
