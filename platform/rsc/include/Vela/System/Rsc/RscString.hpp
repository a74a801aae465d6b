#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/SafeString.hpp>

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

namespace Vela::System::Rsc
{

/// A text in a fixed buffer of N bytes, the terminating NUL included; empty by default.
template <std::size_t N>
class RscString
{
    static_assert(N > 1);

public:
    RscString() = default;

    /// @throws ArgumentException "Input string is too long" (argument "arg", the text) when its length reaches N
    RscString(std::string_view arg)
    {
        Commons::SafeString::Copy(buffer.data(), N, arg);
        length = static_cast<std::uint32_t>(arg.size());
    }

    RscString(const String& arg)
        : RscString(std::string_view(arg))
    {
    }

    RscString(const char* arg)
        : RscString(std::string_view(arg))
    {
    }

    [[nodiscard]] String ToString() const
    {
        return {buffer.data(), length};
    }

    /// Valid as long as this object is.
    [[nodiscard]] std::string_view GetView() const noexcept
    {
        return {buffer.data(), length};
    }

    [[nodiscard]] bool IsEmpty() const noexcept
    {
        return length == 0;
    }

    bool operator==(const RscString& other) const noexcept
    {
        return GetView() == other.GetView();
    }

    auto operator<=>(const RscString& other) const noexcept
    {
        return GetView() <=> other.GetView();
    }

    friend std::ostream& operator<<(std::ostream& stream, const RscString& text)
    {
        return stream << text.GetView();
    }

private:
    std::array<char, N> buffer{};
    std::uint32_t length = 0;
};

} // namespace Vela::System::Rsc
