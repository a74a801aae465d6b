#include "ProcessState.hpp"

#include <unistd.h>

#include <cstdlib>

namespace Vela::System::Kiro::Testing
{

ProcessState::ProcessState()
    : variables(GetVariables())
{
    ::pthread_sigmask(SIG_SETMASK, nullptr, &blockedSignals);
}

ProcessState::~ProcessState()
{
    for (const auto& [name, value] : GetVariables())
    {
        if (!variables.contains(name))
        {
            ::unsetenv(name.c_str());
        }
    }
    for (const auto& [name, value] : variables)
    {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    ::pthread_sigmask(SIG_SETMASK, &blockedSignals, nullptr);
}

ProcessState::Variables ProcessState::GetVariables()
{
    Variables result;
    for (char** entry = environ; *entry != nullptr; ++entry)
    {
        const String text = *entry;
        if (const std::size_t end = text.find('='); end != String::npos && end > 0)
        {
            result.emplace(text.substr(0, end), text.substr(end + 1));
        }
    }
    return result;
}

} // namespace Vela::System::Kiro::Testing
