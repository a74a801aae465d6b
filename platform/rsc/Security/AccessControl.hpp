#pragma once

#include <Vela/String.hpp>
#include <Vela/System/Commons/Diagnostics/Loggable.hpp>
#include <Vela/System/Rsc/IRscAuthorizator.hpp>

#include <sys/types.h>

#include <memory>
#include <optional>
#include <vector>

namespace Vela::System::Rsc
{

/// Lets somebody call an operation.
struct Grant
{
    /// Exactly one of the two is set.
    std::optional<uid_t> user;
    std::optional<gid_t> group;
    String interfaceName;
    /// "*": all operations.
    String operationName;
};

/// Who may connect to this system's processes, and who may call the operations of services whose calls are authorised.
///
/// Without security settings that is the system's own user. With them exactly their grants count for authorised
/// services, for the system's own user too; all other services remain the system's own user's. For callers of other
/// users to come near the sockets at all, the system needs a runtime directory that they may enter.
class AccessControl final : public IRscAuthorizator, private Commons::Diagnostics::Loggable<AccessControl>
{
public:
    /// Only the system's own user.
    AccessControl() = default;
    explicit AccessControl(std::vector<Grant> givenGrants);
    /// Reads the security settings file.
    /// @throws XmlException, NotExistException
    static std::shared_ptr<const AccessControl> Load(const String& path);

    [[nodiscard]] bool IsAllowed(const RscCaller& caller, const String& interfaceName,
                                 const String& operationName) const override;
    /// Whether callers of other users may exist.
    [[nodiscard]] bool AdmitsOthers() const noexcept
    {
        return grants.has_value();
    }

    /// Whether anything at all is granted to a caller of another user.
    [[nodiscard]] bool MayConnect(const RscCaller& caller) const;

private:
    [[nodiscard]] static bool Matches(const Grant& grant, const RscCaller& caller);

    std::optional<std::vector<Grant>> grants;
};

} // namespace Vela::System::Rsc
