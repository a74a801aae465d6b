#pragma once

#include <Vela/String.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace Vela::System::Kiro::Internal::Contract
{

/// Fills `target` with the bytes of a file from `offset` on; answers false when the file does not have them all.
using ReadBytes = std::function<bool(std::uint64_t offset, std::span<std::byte> target)>;

/// Reads from a file, which stays open as long as the function lives. A file that cannot be opened has no bytes.
ReadBytes ReadFrom(const String& path);

/// A plain structure as it stands in the file; nothing when the file ends before it does.
template <typename T>
std::optional<T> ReadAt(const ReadBytes& read, std::uint64_t offset)
{
    T value{};
    return read(offset, std::as_writable_bytes(std::span(&value, 1))) ? std::optional(value) : std::nullopt;
}

} // namespace Vela::System::Kiro::Internal::Contract
