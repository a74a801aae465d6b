#include "ProjectNames.hpp"

#include "../CommandError.hpp"

#include <algorithm>
#include <set>
#include <string_view>

namespace Vela::Kiroctl
{

namespace
{

const std::set<std::string_view> keywords{
    "alignas",     "alignof",  "and",        "and_eq",    "asm",       "auto",         "bitand",
    "bitor",       "bool",     "break",      "case",      "catch",     "char",         "char16_t",
    "char32_t",    "char8_t",  "class",      "co_await",  "co_return", "co_yield",     "compl",
    "concept",     "const",    "const_cast", "consteval", "constexpr", "constinit",    "continue",
    "decltype",    "default",  "delete",     "do",        "double",    "dynamic_cast", "else",
    "enum",        "explicit", "export",     "extern",    "false",     "float",        "for",
    "friend",      "goto",     "if",         "inline",    "int",       "long",         "mutable",
    "namespace",   "new",      "noexcept",   "not",       "not_eq",    "nullptr",      "operator",
    "or",          "or_eq",    "private",    "protected", "public",    "register",     "reinterpret_cast",
    "requires",    "return",   "short",      "signed",    "sizeof",    "static",       "static_assert",
    "static_cast", "struct",   "switch",     "template",  "this",      "thread_local", "throw",
    "true",        "try",      "typedef",    "typeid",    "typename",  "union",        "unsigned",
    "using",       "virtual",  "void",       "volatile",  "wchar_t",   "while",        "xor",
    "xor_eq",
};

/// Namespaces and targets that are there already.
const std::set<std::string_view> takenLibraries{"Vela", "std",  "fmt",   "testing", "boost",  "install",
                                                "test", "help", "clean", "all",     "package"};

/// What the sources use themselves.
const std::set<std::string_view> takenClasses{
    "ComponentBase",   "ComponentHost", "ComponentLibrary",     "Dispose",    "Entry",          "GetMessage",
    "HostedComponent", "IComponent",    "IControllerComponent", "Initialize", "IRscService",    "LibraryBase",
    "LifecycleStep",   "LoadConfig",    "LoadSettings",         "Loggable",   "OperationTable", "PowerDown",
    "PublishServices", "ResetConfig",   "RscServiceProxyBase",  "SetMessage", "SetupConfig",    "SetupSettings",
    "Start",           "Stop",          "SubscribeServices",
};

bool IsIdentifier(std::string_view name)
{
    constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr std::string_view others = "0123456789_";
    constexpr std::size_t longest = 100;
    // Names with an underscore in front, or with two of them, belong to the compiler.
    return !name.empty() && name.size() <= longest && letters.find(name.front()) != letters.npos &&
           std::ranges::all_of(name, [&](char c)
                               { return letters.find(c) != letters.npos || others.find(c) != others.npos; }) &&
           name.find("__") == name.npos && !keywords.contains(name);
}

void CheckIdentifier(const char* what, const std::string& name)
{
    if (!IsIdentifier(name))
    {
        throw CommandError(ExitCode::Usage, "The {} '{}' is no C++ name.", what, name);
    }
}

void CheckClass(const char* what, const std::string& name)
{
    CheckIdentifier(what, name);
    if (name.front() < 'A' || name.front() > 'Z')
    {
        throw CommandError(ExitCode::Usage, "The {} '{}' must begin with a capital letter.", what, name);
    }
    if (takenClasses.contains(name))
    {
        throw CommandError(ExitCode::Usage, "The {} cannot be named '{}': the name is taken.", what, name);
    }
}

} // namespace

void CheckProjectNames(const ProjectNames& names)
{
    CheckIdentifier("library", names.library);
    if (takenLibraries.contains(names.library))
    {
        throw CommandError(ExitCode::Usage, "The library cannot be named '{}': the name is taken.", names.library);
    }
    CheckClass("component type", names.component);
    if (names.interface.empty())
    {
        return;
    }
    CheckClass("interface", names.interface);
    if (names.interface == names.component || names.interface == names.component + "Settings" ||
        names.component == names.interface + "Proxy" || names.component == names.interface + "ProxyFactory")
    {
        throw CommandError(ExitCode::Usage, "The interface '{}' and the component type '{}' need different names.",
                           names.interface, names.component);
    }
}

} // namespace Vela::Kiroctl
