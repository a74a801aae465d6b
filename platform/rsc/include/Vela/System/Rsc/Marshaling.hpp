#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>
#include <Vela/System/Rsc/RemotingReader.hpp>
#include <Vela/System/Rsc/RemotingWriter.hpp>
#include <Vela/System/Rsc/RscString.hpp>
#include <Vela/System/Rsc/RscVariant.hpp>

#include <array>
#include <cstddef>
#include <limits>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vela::System::Rsc
{

/// Makes a structure travel: specialise it beside the structure, naming the members in their order on the wire.
/// @code
/// template <>
/// struct StructFields<TankState>
/// {
///     static constexpr auto fields = std::tuple(&TankState::name, &TankState::level);
/// };
/// @endcode
template <typename T>
struct StructFields;

template <typename T>
concept RscStruct = requires
{
    StructFields<T>::fields;
};

/// How a type travels: scalars, enumerations (as their underlying type), String, RscString, RscVariant, structures with
/// StructFields, and vectors and arrays of all these.
template <typename T>
struct Marshaler;

template <typename T>
void WriteRemote(RemotingWriter& writer, const T& value)
{
    Marshaler<T>::Write(writer, value);
}

template <typename T>
void ReadRemote(RemotingReader& reader, T& value)
{
    Marshaler<T>::Read(reader, value);
}

/// One argument on its way to the service.
template <bool IsOut, typename T>
void WriteInArgument(RemotingWriter& writer, const T& argument)
{
    if constexpr (!IsOut)
    {
        WriteRemote(writer, argument);
    }
}

template <bool IsOut, typename T>
void ReadInArgument(RemotingReader& reader, T& argument)
{
    if constexpr (!IsOut)
    {
        ReadRemote(reader, argument);
    }
}

/// One argument on its way back.
template <bool IsOut, typename T>
void WriteOutArgument(RemotingWriter& writer, const T& argument)
{
    if constexpr (IsOut)
    {
        WriteRemote(writer, argument);
    }
}

template <bool IsOut, typename T>
void ReadOutArgument(RemotingReader& reader, T& argument)
{
    if constexpr (IsOut)
    {
        ReadRemote(reader, argument);
    }
}

template <RscScalar T>
struct Marshaler<T>
{
    static void Write(RemotingWriter& writer, T value)
    {
        writer.WriteValue(value);
    }

    static void Read(RemotingReader& reader, T& value)
    {
        value = reader.ReadValue<T>();
    }
};

template <typename T>
requires std::is_enum_v<T>
struct Marshaler<T>
{
    static void Write(RemotingWriter& writer, T value)
    {
        writer.WriteValue(static_cast<std::underlying_type_t<T>>(value));
    }

    static void Read(RemotingReader& reader, T& value)
    {
        value = static_cast<T>(reader.ReadValue<std::underlying_type_t<T>>());
    }
};

/// An unbounded text: the message's own bound holds.
template <>
struct Marshaler<String>
{
    static constexpr std::size_t capacity = std::numeric_limits<std::uint32_t>::max();

    static void Write(RemotingWriter& writer, const String& value)
    {
        writer.WriteStringInternal(value, capacity, utf8Encoding, true);
    }

    static void Read(RemotingReader& reader, String& value)
    {
        value = reader.ReadStringInternal(capacity, utf8Encoding, true);
    }
};

template <std::size_t N>
struct Marshaler<RscString<N>>
{
    static void Write(RemotingWriter& writer, const RscString<N>& value)
    {
        writer.WriteStringInternal(value.GetView(), N - 1, utf8Encoding, true);
    }

    static void Read(RemotingReader& reader, RscString<N>& value)
    {
        value = RscString<N>(reader.ReadStringInternal(N - 1, utf8Encoding, true));
    }
};

template <std::size_t N>
struct Marshaler<RscVariant<N>>
{
    static void Write(RemotingWriter& writer, const RscVariant<N>& variant)
    {
        std::visit([&writer](const auto& value) { WriteRemote(writer, value); }, variant.GetValue());
    }

    static void Read(RemotingReader& reader, RscVariant<N>& variant)
    {
        const RscTypeCode code = reader.ReadTag();
        if (code == RscTypeCode::String)
        {
            variant = RscVariant<N>(reader.ReadStringInternal(N, utf8Encoding, false));
        }
        else if (!ReadScalar<bool, std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                             std::int64_t, std::uint64_t, float, double>(reader, code, variant))
        {
            throw RscException("Malformed message: type code {} is no scalar and no text.", static_cast<int>(code));
        }
    }

private:
    template <typename... Scalars>
    static bool ReadScalar(RemotingReader& reader, RscTypeCode code, RscVariant<N>& variant)
    {
        return ((code == GetTypeCode<Scalars>() && (variant = RscVariant<N>(reader.ReadRaw<Scalars>()), true)) || ...);
    }
};

template <RscStruct T>
struct Marshaler<T>
{
    static constexpr std::size_t fieldCount = std::tuple_size_v<std::remove_cvref_t<decltype(StructFields<T>::fields)>>;

    static void Write(RemotingWriter& writer, const T& value)
    {
        writer.WriteBeginStruct(fieldCount);
        std::apply([&](auto... field) { (WriteRemote(writer, value.*field), ...); }, StructFields<T>::fields);
    }

    static void Read(RemotingReader& reader, T& value)
    {
        reader.ReadBeginStruct(fieldCount);
        std::apply([&](auto... field) { (ReadRemote(reader, value.*field), ...); }, StructFields<T>::fields);
        reader.ReadEndStruct();
    }
};

template <typename T>
struct Marshaler<std::vector<T>>
{
    static void Write(RemotingWriter& writer, const std::vector<T>& values)
    {
        writer.WriteBeginArray(values.size());
        for (const T& value : values)
        {
            WriteRemote<T>(writer, value);
        }
    }

    static void Read(RemotingReader& reader, std::vector<T>& values)
    {
        const std::size_t count = reader.ReadBeginArray(sizeof(T));
        values.clear();
        values.reserve(count);
        for (std::size_t i = 0; i < count; ++i)
        {
            T value{};
            ReadRemote(reader, value);
            values.push_back(std::move(value));
        }
        reader.ReadEndArray();
    }
};

template <typename T, std::size_t N>
struct Marshaler<std::array<T, N>>
{
    static void Write(RemotingWriter& writer, const std::array<T, N>& values)
    {
        writer.WriteBeginArray(N);
        for (const T& value : values)
        {
            WriteRemote(writer, value);
        }
    }

    static void Read(RemotingReader& reader, std::array<T, N>& values)
    {
        if (const std::size_t count = reader.ReadBeginArray(sizeof(T)); count != N)
        {
            throw RscException("Malformed message: {} elements instead of {}.", count, N);
        }
        for (T& value : values)
        {
            ReadRemote(reader, value);
        }
        reader.ReadEndArray();
    }
};

} // namespace Vela::System::Rsc
