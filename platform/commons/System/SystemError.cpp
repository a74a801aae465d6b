#include <Vela/System/Commons/SystemError.hpp>

#include <system_error>

namespace Vela::System::Commons
{

String GetErrorText(int errorNumber)
{
    return std::generic_category().message(errorNumber);
}

void ThrowSystemError(const String& what, int errorNumber)
{
    throw Exception("{0}: {1}", what, GetErrorText(errorNumber));
}

} // namespace Vela::System::Commons
