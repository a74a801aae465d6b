#include "FuzzTarget.hpp"

#include <cstdio>
#include <cstdlib>

namespace Vela::Fuzz
{

namespace
{

std::vector<const FuzzTarget*>& GetTargets()
{
    static std::vector<const FuzzTarget*> targets;
    return targets;
}

} // namespace

FuzzTarget::FuzzTarget(const char* targetName, Run function)
    : name(targetName)
    , run(function)
{
    GetTargets().push_back(this);
}

const std::vector<const FuzzTarget*>& FuzzTarget::GetAll()
{
    return GetTargets();
}

void Require(bool holds, std::string_view what)
{
    if (!holds)
    {
        std::fprintf(stderr, "This does not hold: %.*s\n", static_cast<int>(what.size()), what.data());
        std::abort();
    }
}

} // namespace Vela::Fuzz
