#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace Vela::System::Rsc
{

/// SipHash-2-4: a keyed hash that nobody can compute or extend without the key.
std::uint64_t SipHash(const std::array<std::byte, 16>& key, std::span<const std::byte> message) noexcept;

} // namespace Vela::System::Rsc
