#pragma once

#include <Vela/String.hpp>

namespace Vela::System::Kiro::Internal::Sm::Data
{

/// A library that a process has to load.
class LibraryData
{
public:
    virtual ~LibraryData() = default;

    String name;
    String path;
    bool isLoaded = false;
};

} // namespace Vela::System::Kiro::Internal::Sm::Data
