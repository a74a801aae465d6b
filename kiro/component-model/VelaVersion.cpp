#include <Vela/VelaVersion.hpp>

namespace Vela
{

const BasicVersion& VelaVersion::GetCurrent()
{
    static const BasicVersion current("2024.0.8 LTS", 24, 0, 8, 148);
    return current;
}

} // namespace Vela
