#include "Security/SipHash.hpp"

#include <bit>

namespace Vela::System::Rsc
{

namespace
{

/// Up to eight bytes, little endian.
std::uint64_t Load(std::span<const std::byte> bytes) noexcept
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        value |= std::to_integer<std::uint64_t>(bytes[i]) << (8 * i);
    }
    return value;
}

struct State
{
    std::uint64_t v0;
    std::uint64_t v1;
    std::uint64_t v2;
    std::uint64_t v3;

    void Mix(int rounds) noexcept
    {
        for (int round = 0; round < rounds; ++round)
        {
            v0 += v1;
            v2 += v3;
            v1 = std::rotl(v1, 13) ^ v0;
            v3 = std::rotl(v3, 16) ^ v2;
            v0 = std::rotl(v0, 32);
            v2 += v1;
            v0 += v3;
            v1 = std::rotl(v1, 17) ^ v2;
            v3 = std::rotl(v3, 21) ^ v0;
            v2 = std::rotl(v2, 32);
        }
    }

    void Absorb(std::uint64_t word) noexcept
    {
        v3 ^= word;
        Mix(2);
        v0 ^= word;
    }
};

} // namespace

std::uint64_t SipHash(const std::array<std::byte, 16>& key, std::span<const std::byte> message) noexcept
{
    const std::span<const std::byte> keyBytes(key);
    const std::uint64_t k0 = Load(keyBytes.first(8));
    const std::uint64_t k1 = Load(keyBytes.last(8));
    State state{k0 ^ 0x736f6d6570736575U, k1 ^ 0x646f72616e646f6dU, k0 ^ 0x6c7967656e657261U, k1 ^ 0x7465646279746573U};

    const std::uint64_t length = static_cast<std::uint64_t>(message.size()) << 56U;
    while (message.size() >= 8)
    {
        state.Absorb(Load(message.first(8)));
        message = message.subspan(8);
    }
    state.Absorb(length | Load(message));
    state.v2 ^= 0xff;
    state.Mix(4);
    return state.v0 ^ state.v1 ^ state.v2 ^ state.v3;
}

} // namespace Vela::System::Rsc
