#pragma once

#include <string>

namespace Vela::Kiroctl
{

/// The names that a new library is made of.
struct ProjectNames
{
    /// Also the namespace of its classes.
    std::string library;
    std::string component;
    /// Empty: the component has no service.
    std::string interface;
};

/// Whether the generated sources compile with these names.
/// @throws CommandError (Usage) that says what is wrong with which name
void CheckProjectNames(const ProjectNames& names);

} // namespace Vela::Kiroctl
