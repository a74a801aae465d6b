#include <CheckedLog.hpp>
#include <DocumentFiles.hpp>
#include <FuzzTarget.hpp>
#include <Security/AccessControl.hpp>

#include <limits>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Rsc;

constexpr const char* interfaceName = "Plant.ITankService";

RscCaller MakeCaller(uid_t user)
{
    RscCaller caller;
    caller.userId = user;
    return caller;
}

void Check(const AccessControl& accessControl, std::string_view text)
{
    // The last one is nobody's: it stands for no user at all.
    for (const uid_t user : {uid_t{0}, uid_t{1}, uid_t{65534}, std::numeric_limits<uid_t>::max()})
    {
        const RscCaller caller = MakeCaller(user);
        const bool isAllowed = accessControl.IsAllowed(caller, interfaceName, "Fill");
        Require(!isAllowed || accessControl.MayConnect(caller), "who may call may connect");
        Require(!isAllowed || text.find("Grant") != text.npos, "nothing is allowed without a grant");
        Require(!accessControl.IsAllowed(caller, "Of another service", "Fill") || text.find("another") != text.npos ||
                    text.find("&#") != text.npos,
                "an interface that is not named is not granted");
    }
}

bool Run(std::string_view input)
{
    static const DocumentFiles files{"Security.settings"};
    SetUpCheckedLog();
    files.Write(input);
    std::shared_ptr<const AccessControl> accessControl;
    if (GetRefusal([&] { accessControl = AccessControl::Load(files.GetRootPath()); }))
    {
        return false;
    }
    Require(accessControl->AdmitsOthers(), "a file that was read counts");
    Check(*accessControl, input);
    return true;
}

const FuzzTarget target("security-settings", &Run);

} // namespace

} // namespace Vela::Fuzz
