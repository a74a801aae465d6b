#pragma once

#include <Vela/Exceptions.hpp>
#include <Vela/String.hpp>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Vela::Fuzz
{

/// A function that takes any bytes and ends the process when something does not hold. Each source of a target defines
/// one object of this class.
class FuzzTarget
{
public:
    /// @return whether the input was read to its end; false when it was refused in order
    using Run = bool (*)(std::string_view input);

    FuzzTarget(const char* name, Run run);
    FuzzTarget(const FuzzTarget&) = delete;
    FuzzTarget& operator=(const FuzzTarget&) = delete;

    /// All targets that are linked into this process.
    static const std::vector<const FuzzTarget*>& GetAll();

    /// The name of its source, its seeds and its dictionary.
    const char* const name;
    const Run run;
};

/// What must hold whatever the input is; ends the process otherwise.
void Require(bool holds, std::string_view what);

/// Runs `action`, which may refuse its input by a platform exception; any other exception is a fault.
/// @return the text of the refusal, which says something
template <typename Action>
std::optional<String> GetRefusal(Action&& action)
{
    try
    {
        action();
        return std::nullopt;
    }
    catch (const Exception& exception)
    {
        Require(!exception.GetMessage().empty(), "a refusal says why");
        return exception.ToString();
    }
}

inline std::span<const std::byte> AsBytes(std::string_view input)
{
    return std::as_bytes(std::span(input));
}

} // namespace Vela::Fuzz
