#pragma once

#include <Vela/System/Kiro/LibraryBase.hpp>

/// The library's one object: it says which components there are.
class HelloLibrary : public Vela::System::Kiro::LibraryBase
{
public:
    explicit HelloLibrary(Vela::AppDomain& appDomain);

    /// The object that the entry function made.
    static HelloLibrary& GetInstance();
};
