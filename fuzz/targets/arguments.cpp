#include <Vela/System/Commons/Runtime/Process.hpp>

#include <FuzzTarget.hpp>

namespace Vela::Fuzz
{

namespace
{

using System::Commons::Runtime::QuoteArgument;
using System::Commons::Runtime::SplitArguments;

bool Run(std::string_view input)
{
    const String text(input);
    Require(SplitArguments(QuoteArgument(text)) == std::vector{text}, "a quoted text is one argument");

    std::vector<String> arguments;
    if (GetRefusal([&] { arguments = SplitArguments(text); }))
    {
        return false;
    }
    String joined;
    for (const String& argument : arguments)
    {
        joined += QuoteArgument(argument) + ' ';
    }
    Require(SplitArguments(joined) == arguments, "arguments that were joined are split again");
    return true;
}

const FuzzTarget target("arguments", &Run);

} // namespace

} // namespace Vela::Fuzz
