#include "Security/AccessControl.hpp"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace Vela::System::Rsc
{

namespace
{

/// The groups of a user, as the system's user database has them.
std::vector<gid_t> GetGroups(uid_t user)
{
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 4096> texts{};
    if (::getpwuid_r(user, &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr)
    {
        return {};
    }
    int count = 64;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    while (::getgrouplist(found->pw_name, found->pw_gid, groups.data(), &count) < 0)
    {
        groups.resize(std::max(groups.size() * 2, static_cast<std::size_t>(count)));
        count = static_cast<int>(groups.size());
    }
    groups.resize(static_cast<std::size_t>(count));
    return groups;
}

} // namespace

AccessControl::AccessControl(std::vector<Grant> givenGrants)
    : grants(std::move(givenGrants))
{
}

bool AccessControl::IsAllowed(const RscCaller& caller, const String& interfaceName, const String& operationName) const
{
    if (!grants)
    {
        return caller.userId == ::geteuid();
    }
    return std::any_of(grants->begin(), grants->end(),
                       [&](const Grant& grant)
                       {
                           return grant.interfaceName == interfaceName &&
                                  (grant.operationName == "*" || grant.operationName == operationName) &&
                                  Matches(grant, caller);
                       });
}

bool AccessControl::MayConnect(const RscCaller& caller) const
{
    return caller.userId == ::geteuid() ||
           (grants && std::any_of(grants->begin(), grants->end(),
                                  [&caller](const Grant& grant) { return Matches(grant, caller); }));
}

bool AccessControl::Matches(const Grant& grant, const RscCaller& caller)
{
    if (grant.user)
    {
        return *grant.user == caller.userId;
    }
    const std::vector<gid_t> groups = GetGroups(caller.userId);
    return std::find(groups.begin(), groups.end(), *grant.group) != groups.end();
}

} // namespace Vela::System::Rsc
