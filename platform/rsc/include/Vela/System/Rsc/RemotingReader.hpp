#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/RscTypeCode.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace Vela::System::Rsc
{

/// Takes values out of a message that may be anything: whatever does not fit its type, its bound or the message is an
/// RscException, and nothing is allocated for what has not arrived. Not thread-safe; the message must outlive it.
class VELA_RSC_API RemotingReader
{
public:
    /// @param message  the bytes to read
    explicit RemotingReader(std::span<const std::byte> message);

    /// The next type code.
    /// @throws RscException when there is none
    RscTypeCode ReadTag();
    /// Reads a type code that must be `expected`.
    void ReadTag(RscTypeCode expected);

    /// A scalar without its type code; a bool must be 0 or 1.
    template <RscScalar T>
    T ReadRaw()
    {
        std::byte bytes[sizeof(T)];
        Take(bytes, sizeof(T));
        T value;
        if constexpr (std::same_as<T, bool>)
        {
            value = ToBool(bytes[0]);
        }
        else
        {
            ToNativeOrder(bytes, sizeof(T));
            std::memcpy(&value, bytes, sizeof(T));
        }
        return value;
    }

    /// A scalar with its type code.
    template <RscScalar T>
    T ReadValue()
    {
        ReadTag(GetTypeCode<T>());
        return ReadRaw<T>();
    }

    /// A text of at most `capacity` bytes, as RemotingWriter::WriteStringInternal writes it.
    String ReadStringInternal(std::size_t capacity, std::uint8_t encoding, bool withTag);

    /// Begins a structure, which must have `fieldCount` fields. Structures and arrays may be nested 32 deep.
    void ReadBeginStruct(std::size_t fieldCount);
    void ReadEndStruct() noexcept;
    /// Begins an array and answers how many elements it has.
    /// @param elementSize  memory that one element takes here; all elements of a message together are bounded
    std::size_t ReadBeginArray(std::size_t elementSize);
    void ReadEndArray() noexcept;
    /// Begins a response: true when a failure follows.
    bool ReadConfirmation();

    /// Bytes that are left.
    [[nodiscard]] std::size_t GetRemaining() const noexcept
    {
        return message.size() - position;
    }

    /// @throws RscException when anything is left
    void ReadEnd() const;

    /// Memory that all array elements of one message may take once they are read, in bytes.
    static constexpr std::size_t maxElementMemory = std::size_t{64} * 1024 * 1024;
    static constexpr unsigned maxDepth = 32;

private:
    void Take(std::byte* target, std::size_t count);
    static void ToNativeOrder(std::byte* bytes, std::size_t count);
    void Enter();
    bool ToBool(std::byte value) const;
    [[noreturn]] void Fail(const String& what) const;

    std::span<const std::byte> message;
    std::size_t position = 0;
    std::size_t elementMemory = 0;
    unsigned depth = 0;
};

} // namespace Vela::System::Rsc
