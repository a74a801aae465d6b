#pragma once

#include <Vela/System/Commons/Diagnostics/Logger.hpp>

namespace Vela::System::Commons::Diagnostics
{

/// Gives a class its logger, `log`, whose category is the class's name. Derive privately:
/// @code
/// class Pump : private Loggable<Pump>
/// {
///     void Run() { log.Info("Pump '{0}' runs.", name); }
/// };
/// @endcode
template <typename T>
class Loggable
{
protected:
    Loggable() = default;
    ~Loggable() = default;

    static inline Logger& log = Logger::Get(typeid(T));
};

} // namespace Vela::System::Commons::Diagnostics
