#include "RawClient.hpp"
#include "RscFixture.hpp"
#include "Transport/Messages.hpp"

#include <Vela/Exceptions.hpp>

#include <CapturedLog.hpp>
#include <ScopedTrustPolicy.hpp>
#include <ThrownMessage.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

namespace Vela::System::Rsc::Testing
{

using Vela::Testing::CapturedLog;
using Vela::Testing::GetThrownMessage;

namespace
{

class SecuredService : public RscFixture
{
protected:
    ~SecuredService() override
    {
        Commons::Environment::SetupSecuritySettings({});
    }

    /// A settings file that switches the test service's security on.
    std::string WriteSettings()
    {
        return directory.Write("files/Rsc.settings", R"(<RscSettingsDocument>
            <Services><Service name="Vela.Testing.ITestService" security="true"/></Services></RscSettingsDocument>)");
    }

    std::string WriteGrants(const std::string& grants)
    {
        return directory.Write("files/Security.settings",
                               "<SecuritySettingsDocument><Grants>" + grants + "</Grants></SecuritySettingsDocument>");
    }

    static std::string MakeGrant(const std::string& who, const std::string& operation)
    {
        return fmt::format(R"(<Grant {} service="Vela.Testing.ITestService" operation="{}"/>)", who, operation);
    }

    static std::string OwnUser()
    {
        return fmt::format(R"(user="{}")", ::geteuid());
    }

    void OpenSecured(const std::string& grants)
    {
        Commons::Environment::SetupSecuritySettings(WriteGrants(grants));
        RscManager::CreateInstance(ownName, 0, WriteSettings(), false);
        PublishOwn();
    }
};

} // namespace

TEST_F(SecuredService, RefusesWhatIsNotGrantedBeforeItReachesTheService)
{
    const CapturedLog log;
    OpenSecured(MakeGrant(OwnUser(), "Nothing") + MakeGrant(R"(user="1234567")", "Fail"));
    const auto own = GetService(ownName);
    own->Nothing();
    EXPECT_EQ(GetThrownMessage<RscException>([&] { own->Fail("platform"); }),
              fmt::format("Operation 'Fail' of service 'Vela.Testing.ITestService' is not allowed to process 'Tester' "
                          "(pid {}, uid {}).",
                          ::getpid(), ::geteuid()));
    EXPECT_EQ(ownService.calls, 1);
    const String lines = log.GetText();
    const auto line = lines.find("Refused operation 'Fail' of service 'Vela.Testing.ITestService' to process 'Tester'");
    ASSERT_NE(line, String::npos);
    EXPECT_EQ(lines.find("Refused", line + 1), String::npos) << "one line for one refusal";

    Peer& peer =
        StartPeer("Peer", {"settings=" + WriteSettings(), "security=" + directory / "files/Security.settings"});
    const auto remote = GetService("Peer");
    remote->Nothing();
    EXPECT_THROW(remote->Fail("platform"), RscException);
    EXPECT_THROW(remote->Add(1, 2), RscException);
    peer.Await("Refused operation 'Fail' of service 'Vela.Testing.ITestService' to process 'Tester'");
    EXPECT_NE(peer.End().find("after 1 calls"), std::string::npos);
}

TEST_F(SecuredService, DoesNotLetTheRefusedFillTheLog)
{
    const CapturedLog log;
    OpenSecured(MakeGrant(OwnUser(), "Nothing"));
    const auto service = GetService(ownName);
    for (int i = 0; i < 50; ++i)
    {
        EXPECT_THROW(service->Add(1, 2), RscException);
    }
    EXPECT_EQ(log.Count("Refused operation 'Add'"), 20U);
    EXPECT_THROW(service->Fail("platform"), RscException);
    EXPECT_EQ(log.Count("Refused operation 'Fail'"), 1U) << "it hides nothing else";
    RscManager::DisposeInstance();
    EXPECT_TRUE(log.Contains(fmt::format("30 more warnings about operation 'Add' of service "
                                         "'Vela.Testing.ITestService' of process {} were left out.",
                                         ::getpid())));
}

TEST_F(SecuredService, AuthorisesTheCallerAndNotWhoeverIsBehindIt)
{
    // A call that comes from another process and calls on is a call of this process.
    OpenSecured(MakeGrant(OwnUser(), "*"));
    StartPeer("Peer");
    EXPECT_EQ(GetService("Peer")->Nest(ownName, 4), 4);
}

TEST_F(SecuredService, IsTheOwnUsersWithoutSecuritySettings)
{
    RscManager::CreateInstance(ownName, 0, WriteSettings(), false);
    PublishOwn();
    EXPECT_TRUE(ownFactory.IsSecurityEnabled());
    EXPECT_EQ(GetService(ownName)->Add(1, 2), 3);
    StartPeer("Peer", {"settings=" + WriteSettings()});
    EXPECT_EQ(GetService("Peer")->Add(1, 2), 3);
}

TEST_F(SecuredService, GrantsToGroups)
{
    OpenSecured(MakeGrant(fmt::format(R"(group="{}")", ::getegid()), "Add") +
                MakeGrant(R"(group="1234567")", "Nothing"));
    const auto service = GetService(ownName);
    EXPECT_EQ(service->Add(1, 2), 3);
    EXPECT_THROW(service->Nothing(), RscException);
}

TEST_F(SecuredService, DoesNotStartWithSettingsThatItCannotFollow)
{
    const auto open = [this](const std::string& grants)
    {
        OpenSecured(grants);
    };
    EXPECT_NE(GetThrownMessage<XmlException>([&] { open(MakeGrant(R"(user="no such user")", "*")); })
                  .find("The system has no user 'no such user'."),
              String::npos);
    EXPECT_THROW(open(MakeGrant(R"(group="no such group")", "*")), XmlException);
    EXPECT_THROW(open(MakeGrant("", "*")), XmlException);
    EXPECT_THROW(open(MakeGrant(R"(user="0" group="0")", "*")), XmlException);
    EXPECT_THROW(open(R"(<Grant user="0"/>)"), XmlException);
    Commons::Environment::SetupSecuritySettings(directory / "missing");
    EXPECT_THROW(Open(), NotExistException);
    EXPECT_EQ(ListFiles(), std::vector<std::string>{"files"});
}

TEST_F(SecuredService, DoesNotStartWhereOthersCouldDecideWhatHoldsOrTakeItsPlace)
{
    using Commons::Io::TrustedFile;
    using Commons::Io::TrustPolicy;
    using Vela::Testing::ScopedTrustPolicy;

    const std::string grants = WriteGrants(MakeGrant(OwnUser(), "*"));
    std::filesystem::permissions(grants, std::filesystem::perms(0666));
    Commons::Environment::SetupSecuritySettings(grants);
    EXPECT_NE(GetThrownMessage<InvalidOperationException>([this] { Open(); })
                  .find(fmt::format("Security settings file '{}' can be changed by other users: '{}' is writable for "
                                    "everybody (mode 666).",
                                    grants, grants)),
              String::npos);
    {
        const CapturedLog log;
        const ScopedTrustPolicy accept(TrustedFile::SecuritySettings, TrustPolicy::Warn);
        Open();
        RscManager::DisposeInstance();
        EXPECT_TRUE(log.Contains("Security settings file '" + grants + "' can be changed by other users"));
    }
    std::filesystem::permissions(grants, std::filesystem::perms(0600));

    std::filesystem::create_directories(directory / "shared/run");
    std::filesystem::permissions(directory / "shared", std::filesystem::perms(0777));
    std::filesystem::permissions(directory / "shared/run", std::filesystem::perms(0700));
    Commons::Environment::SetVariable(Commons::Environment::runtimeDirectoryName, directory / "shared/run");
    EXPECT_NE(GetThrownMessage<InvalidOperationException>([this] { Open(); })
                  .find("Runtime directory '" + directory / "shared/run" + "' can be changed by other users"),
              String::npos);
    const ScopedTrustPolicy accept(TrustedFile::RuntimeDirectory, TrustPolicy::Ignore);
    EXPECT_NO_THROW(Open());
}

TEST_F(SecuredService, TakesOtherUsersForWhatIsGrantedToThem)
{
    if (::geteuid() != 0)
    {
        GTEST_SKIP() << "Only root can act as another user.";
    }
    constexpr uid_t otherUser = 65534;
    std::filesystem::permissions(directory.GetPath(), std::filesystem::perms(0711));
    StartPeer("Strict");
    const std::string security = "security=" + WriteGrants(MakeGrant(fmt::format(R"(user="{}")", otherUser), "Add"));
    Peer& securedPeer = StartPeer("Secured", {"settings=" + WriteSettings(), security});
    Peer& plainPeer = StartPeer("Plain", {security});
    Peer& elsesPeer = StartPeer("Elses", {"security=" + WriteGrants(MakeGrant(R"(user="1234567")", "*"))});

    RscManagerOptions options;
    options.connectTimeout = std::chrono::milliseconds(50);
    RscManager::CreateClientInstance("Tool", options);
    ASSERT_EQ(::seteuid(otherUser), 0);
    EXPECT_THROW(GetService("Strict"), InvalidOperationException);
    EXPECT_THROW(GetService("Elses"), InvalidOperationException);
    const auto secured = GetService("Secured");
    EXPECT_EQ(secured->Add(1, 2), 3);
    EXPECT_THROW(secured->Nothing(), RscException);
    EXPECT_NE(GetThrownMessage<RscException>([] { GetService("Plain")->Add(1, 2); }).find("not allowed to this user"),
              String::npos);
    ASSERT_EQ(::seteuid(0), 0);
    const String audit =
        fmt::format("Refused operation '{{}}' of service 'Vela.Testing.ITestService' to process 'Tool' "
                    "(pid {}, uid {}).",
                    ::getpid(), otherUser);
    securedPeer.Await(fmt::format(fmt::runtime(audit), "Nothing"));
    plainPeer.Await(fmt::format(fmt::runtime(audit), "Add"));
    elsesPeer.Await(fmt::format("(pid {}, uid {}): the system belongs to another user", ::getpid(), otherUser));
}

TEST_F(SecuredService, TakesTcpClientsThatKnowTheSecretOnly)
{
    const CapturedLog log;
    const std::uint16_t port = FindFreePort();
    RscManager::CreateInstance(ownName, port, RscManagerOptions(), true);
    PublishOwn();
    struct stat status
    {
    };
    ASSERT_EQ(::stat((directory / "system-secret").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);

    RawClient impatient(port);
    const auto challenge = impatient.Receive();
    ASSERT_TRUE(challenge);
    EXPECT_EQ(challenge->kind, RawClient::challenge);
    EXPECT_FALSE(impatient.Introduce());
    EXPECT_TRUE(log.Contains("no proof of the system's secret"));

    RawClient guessing(port);
    guessing.Receive();
    guessing.SendFrame(RawClient::proof, 0, MakePayload(ClientProofMessage{}));
    const auto answer = guessing.Receive();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->kind, RawClient::refusal);
    EXPECT_TRUE(guessing.IsClosed());
    EXPECT_TRUE(log.Contains("wrong proof of the system's secret"));

    EXPECT_NE(RawClient(port).Receive()->payload, challenge->payload) << "a proof must not be of use twice";
    EXPECT_EQ(GetService(ServiceProvider::LocalPort(port))->Add(1, 2), 3);
}

TEST_F(SecuredService, TakesTheGatewayPortFromTheEnvironmentInTheMainProcess)
{
    const std::uint16_t port = FindFreePort();
    Commons::Environment::SetVariable(RscManager::gatewayPortVariable, std::to_string(port));
    EXPECT_EQ(RscManager::CreateInstance(ownName, 0, RscManagerOptions(), false).GetPort(), 0);
    RscManager::DisposeInstance();
    EXPECT_EQ(RscManager::CreateInstance(ownName, -1, RscManagerOptions(), true).GetPort(), port);
    RscManager::DisposeInstance();
    Commons::Environment::SetVariable(RscManager::gatewayPortVariable, "70000");
    EXPECT_THROW(RscManager::CreateInstance(ownName, -1, RscManagerOptions(), true), InvalidOperationException);
    Commons::Environment::SetVariable(RscManager::gatewayPortVariable, "");
    EXPECT_EQ(RscManager::CreateInstance(ownName, -1, RscManagerOptions(), true).GetPort(), 0);
}

} // namespace Vela::System::Rsc::Testing
