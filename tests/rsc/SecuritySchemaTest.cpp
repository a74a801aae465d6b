#include "RscFixture.hpp"
#include "Security/AccessControl.hpp"

#include <Vela/Exceptions.hpp>

#include <CapturedLog.hpp>
#include <unistd.h>

namespace Vela::System::Rsc::Testing
{

namespace
{

using Vela::Testing::CapturedLog;
using Vela::Testing::StartedProcess;

enum class Loading
{
    Silent,
    Warns,
    Fails,
};

class SecuritySchema : public RscFixture
{
protected:
    /// Takes the document as a process that opens its endpoint does.
    Loading Load(const std::string& path)
    {
        const CapturedLog log(Commons::Diagnostics::LogLevel::Warning);
        Commons::Environment::SetupSecuritySettings(path);
        Loading loading = Loading::Silent;
        try
        {
            Open();
        }
        catch (const XmlException&)
        {
            loading = Loading::Fails;
        }
        RscManager::DisposeInstance();
        Commons::Environment::SetupSecuritySettings({});
        return loading == Loading::Silent && !log.GetText().empty() ? Loading::Warns : loading;
    }

    static bool Validate(const std::string& path)
    {
        StartedProcess validator("/usr/bin/xmllint",
                                 {"--noout", "--schema", VELA_SCHEMAS "/security-settings.xsd", path});
        const int code = validator.AwaitEnd();
        EXPECT_TRUE(code == 0 || code == 1 || code == 3) << validator.GetOutput();
        return code == 0;
    }
};

} // namespace

TEST_F(SecuritySchema, AgreesWithWhatTheRuntimeAccepts)
{
    struct Case
    {
        std::string content;
        Loading loading;
        bool isValid;
    };
    const auto grants = [](const std::string& grant)
    {
        return "<SecuritySettingsDocument><Grants>" + grant + "</Grants></SecuritySettingsDocument>";
    };
    const std::vector<Case> cases{
        {"<SecuritySettingsDocument/>", Loading::Silent, true},
        {"<SecuritySettingsDocument><Grants/><!-- none --><Grants/></SecuritySettingsDocument>", Loading::Silent, true},
        {grants(R"(<Grant user="root" service="S" operation="O"/><Grant group="0" service="S" operation="*"/>)"),
         Loading::Silent, true},
        {"<Other/>", Loading::Fails, false},
        {"<SecuritySettingsDocument>", Loading::Fails, false},
        {grants(R"(<Grant user="0" operation="O"/>)"), Loading::Fails, false},
        {grants(R"(<Grant user="0" service="S"/>)"), Loading::Fails, false},
        {grants(R"(<Grant user="0" service="" operation="O"/>)"), Loading::Fails, false},
        {grants(R"(<Grant user="0" service="S" operation=""/>)"), Loading::Fails, false},
        {grants(R"(<Grant user="" service="S" operation="O"/>)"), Loading::Fails, false},
        {grants(R"(<Grant group="" service="S" operation="O"/>)"), Loading::Fails, false},
        {grants(R"(<Grant user="0" service="S" operation="O" until="noon"/>)"), Loading::Warns, false},
        {grants(R"(<Grant user="0" service="S" operation="O"><Until/></Grant>)"), Loading::Warns, false},
        {grants(R"(<Grant user="0" service="S" operation="O">noon</Grant>)"), Loading::Warns, false},
        {grants("<Deny/>"), Loading::Warns, false},
        {"<SecuritySettingsDocument><Denials/></SecuritySettingsDocument>", Loading::Warns, false},
        {R"(<SecuritySettingsDocument default="deny"/>)", Loading::Warns, false},
        // What no schema can say.
        {grants(R"(<Grant user="0" group="0" service="S" operation="O"/>)"), Loading::Fails, true},
        {grants(R"(<Grant service="S" operation="O"/>)"), Loading::Fails, true},
        {grants(R"(<Grant user="no such user" service="S" operation="O"/>)"), Loading::Fails, true},
    };
    for (const Case& present : cases)
    {
        const std::string path = directory.Write("files/Security.settings", present.content);
        EXPECT_EQ(Load(path), present.loading) << present.content;
        EXPECT_EQ(Validate(path), present.isValid) << present.content;
    }
}

} // namespace Vela::System::Rsc::Testing
