#pragma once

#include <Vela/System/Rsc/Api.hpp>
#include <Vela/System/Rsc/RscTypeCode.hpp>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace Vela::System::Rsc
{

/// Puts values into a message: little endian, each behind its type code. What does not fit the message's bound is an
/// RscException. Not thread-safe.
class VELA_RSC_API RemotingWriter
{
public:
    /// @param maxSize  bytes that the message may reach, what stands in it already included
    explicit RemotingWriter(std::size_t maxSize);

    void WriteTag(RscTypeCode code)
    {
        WriteRaw(static_cast<std::uint8_t>(code));
    }

    /// A scalar without its type code.
    template <RscScalar T>
    void WriteRaw(T value)
    {
        std::byte* target = Grow(sizeof(T));
        std::memcpy(target, &value, sizeof(T));
        ToLittleEndian(target, sizeof(T));
    }

    /// A scalar with its type code.
    template <RscScalar T>
    void WriteValue(T value)
    {
        WriteTag(GetTypeCode<T>());
        WriteRaw(value);
    }

    /// A text: type code (when `withTag`), encoding, length in bytes (32 bits), bytes.
    /// @throws RscException when it is longer than `capacity`
    void WriteStringInternal(std::string_view text, std::size_t capacity, std::uint8_t encoding, bool withTag);

    /// Begins a structure of that many fields, which follow as values.
    void WriteBeginStruct(std::size_t fieldCount);
    /// Begins an array of that many elements, which follow as values.
    void WriteBeginArray(std::size_t elementCount);
    /// Begins a response: false when the result follows, true when a failure does.
    void WriteConfirmation(bool hasFailed);

    /// True once a value did not fit any more.
    [[nodiscard]] bool HasOverflowed() const noexcept
    {
        return hasOverflowed;
    }

    [[nodiscard]] std::span<const std::byte> GetData() const noexcept
    {
        return data;
    }

    /// Bytes as they are.
    void WriteBytes(std::span<const std::byte> bytes);
    /// Overwrites bytes that were written before.
    void Patch(std::size_t position, std::span<const std::byte> bytes);
    /// Drops everything behind a position.
    void Truncate(std::size_t size);
    /// Drops everything and sets a new bound; a moderate amount of memory is kept.
    void Reset(std::size_t newMaxSize);

private:
    std::byte* Grow(std::size_t count);
    static void ToLittleEndian(std::byte* bytes, std::size_t count);

    std::vector<std::byte> data;
    std::size_t maxSize;
    bool hasOverflowed = false;
};

} // namespace Vela::System::Rsc
