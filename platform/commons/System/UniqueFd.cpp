#include <Vela/System/Commons/UniqueFd.hpp>

#include <unistd.h>

namespace Vela::System::Commons
{

void UniqueFd::Reset(int descriptor) noexcept
{
    if (fd >= 0)
    {
        // Never repeated: after an interrupted close the number may belong to another thread already.
        ::close(fd);
    }
    fd = descriptor;
}

} // namespace Vela::System::Commons
