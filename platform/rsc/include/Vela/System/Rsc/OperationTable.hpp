#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Vela::System::Rsc
{

/// Whether a call gives up when its answer does not come within the call time-out.
enum class CallDeadline : std::uint8_t
{
    Default,
    None,
    /// None either, and one thread of the other process serves all such calls, unless one is made while another is in
    /// progress.
    NoneOnOneThread,
};

/// For operations that run component code and may take as long as that takes.
inline constexpr CallDeadline noDeadline = CallDeadline::None;
/// For those that must come one after the other on the same thread, too.
inline constexpr CallDeadline onOneThread = CallDeadline::NoneOnOneThread;

/// One row of an operation table.
template <std::uint16_t Number, auto Method>
struct OperationEntry
{
    static constexpr std::uint16_t number = Number;
    static constexpr auto method = Method;
    const char* name;
    CallDeadline deadline;
};

/// Makes a row: the operation's number on the wire (from 1, never reused), the member function and its name.
template <std::uint16_t Number, auto Method>
consteval OperationEntry<Number, Method> Operation(const char* name, CallDeadline deadline = CallDeadline::Default)
{
    static_assert(Number > 0, "operation numbers begin with 1");
    return {name, deadline};
}

/// Makes the table out of its rows, in ascending order of their numbers.
template <std::uint16_t... Numbers, auto... Methods>
consteval std::tuple<OperationEntry<Numbers, Methods>...> Operations(OperationEntry<Numbers, Methods>... entries)
{
    static_assert(
        []
        {
            constexpr std::array<unsigned, sizeof...(Numbers) + 1> numbers{0U, Numbers...};
            for (std::size_t i = 1; i < numbers.size(); ++i)
            {
                if (numbers[i - 1] >= numbers[i])
                {
                    return false;
                }
            }
            return true;
        }(),
        "operation numbers must ascend");
    return {entries...};
}

/// Describes a service interface once; stub, authorising stub and proxy all follow from it. Specialised beside the
/// interface:
/// @code
/// template <>
/// struct OperationTable<ITankService>
/// {
///     static constexpr const char* interfaceName = "Plant.ITankService";
///     static constexpr auto operations = Operations(
///         Operation<1, &ITankService::GetLevel>("GetLevel"),
///         Operation<2, &ITankService::Drain>("Drain", noDeadline));
/// };
/// @endcode
/// Arguments taken by value or by const reference travel to the service; arguments taken by reference are results,
/// which travel back behind the returned value.
template <typename Interface>
struct OperationTable;

/// What the type of a member function says about an operation.
template <typename Method>
struct MethodTraits;

template <typename C, typename R, typename... Args>
struct MethodTraits<R (C::*)(Args...)>
{
    using Interface = C;
    using Result = R;
    static_assert(!std::is_reference_v<R>, "a result travels by value");
    static_assert(!(std::is_pointer_v<std::remove_cvref_t<Args>> || ...), "a pointer cannot travel");
    static_assert(!(std::is_rvalue_reference_v<Args> || ...), "take arguments by value or by const reference");

    /// One object per argument, to hold it while it is read, handed over and written.
    using Storage = std::tuple<std::remove_cvref_t<Args>...>;

    template <std::size_t Index>
    using Argument = std::tuple_element_t<Index, std::tuple<Args...>>;
    template <std::size_t Index>
    static constexpr bool isOut =
        std::is_lvalue_reference_v<Argument<Index>> && !std::is_const_v<std::remove_reference_t<Argument<Index>>>;
    static constexpr auto indexes = std::index_sequence_for<Args...>{};
};

template <typename C, typename R, typename... Args>
struct MethodTraits<R (C::*)(Args...) const> : MethodTraits<R (C::*)(Args...)>
{
};

/// Calls `function` with the table's row for `number`; false when there is none.
template <typename Interface, typename Function>
constexpr bool VisitOperation(int number, Function&& function)
{
    return std::apply([&](const auto&... entry)
                      { return ((entry.number == number && (function(entry), true)) || ...); },
                      OperationTable<Interface>::operations);
}

/// The name of an operation, or null when the table does not have the number.
template <typename Interface>
constexpr const char* FindOperationName(int number)
{
    const char* name = nullptr;
    VisitOperation<Interface>(number, [&name](const auto& entry) { name = entry.name; });
    return name;
}

namespace Internal
{

/// Member functions are told apart as template arguments: comparing pointers to virtual ones is no constant expression.
template <auto Method>
struct MethodTag;

template <auto Left, auto Right>
inline constexpr bool isSameMethod = std::is_same_v<MethodTag<Left>, MethodTag<Right>>;

} // namespace Internal

/// A row without its types, as a call needs it.
struct OperationInfo
{
    std::uint16_t number = 0;
    const char* name = nullptr;
    CallDeadline deadline = CallDeadline::Default;
};

/// The row of a member function; a member function that is not in the table does not compile.
template <typename Interface, auto Method>
consteval OperationInfo GetOperationInfo()
{
    OperationInfo info;
    std::apply(
        [&info]<typename... Entries>(const Entries&... entry)
        {
            static_assert((Internal::isSameMethod<Entries::method, Method> || ...),
                          "the operation is not in the interface's operation table");
            ((info = Internal::isSameMethod<Entries::method, Method>
                         ? OperationInfo{Entries::number, entry.name, entry.deadline}
                         : info),
             ...);
        },
        OperationTable<Interface>::operations);
    return info;
}

} // namespace Vela::System::Rsc
