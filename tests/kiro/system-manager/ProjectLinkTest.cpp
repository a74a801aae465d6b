#include "CapturedLog.hpp"

#include <Sm/SystemManager.hpp>
#include <Vela/System/Commons/Environment.hpp>

#include <TemporaryDirectory.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace Vela::Testing;
using Vela::System::Commons::Environment;
using Vela::System::Kiro::Internal::Sm::SystemManager;

namespace fs = std::filesystem;

namespace
{

class ProjectLinkTest : public testing::Test
{
protected:
    ProjectLinkTest()
    {
        Environment::Setup();
    }

    ~ProjectLinkTest() override
    {
        unsetenv(engineeringVariable);
        unsetenv(currentVariable);
        Environment::Dispose();
    }

    void SetVariables()
    {
        Environment::SetVariable(engineeringVariable, directory / "projects/engineering");
        Environment::SetVariable(currentVariable, directory / "projects/current");
        fs::create_directories(directory / "projects");
    }

    static constexpr const char* engineeringVariable = "VELA_PATH_PROJECT_ZORBE_DIR";
    static constexpr const char* currentVariable = "VELA_PATH_PROJECT_CURRENT_DIR";

    TemporaryDirectory directory;
    CapturedLog log;
};

} // namespace

TEST_F(ProjectLinkTest, IsMadeRelativeWhereNothingIs)
{
    SetVariables();
    // The engineering tool's directory may come later.
    SystemManager::CreateProjectSymlink();
    EXPECT_EQ(fs::read_symlink(directory / "projects/current"), "engineering");

    // The link is broken for now: it stays as it is.
    Environment::SetVariable(engineeringVariable, directory / "projects/other");
    SystemManager::CreateProjectSymlink();
    EXPECT_EQ(fs::read_symlink(directory / "projects/current"), "engineering");
}

TEST_F(ProjectLinkTest, IsMadeWhereThePathEndsWithASlash)
{
    SetVariables();
    Environment::SetVariable(currentVariable, directory / "projects/current/");
    SystemManager::CreateProjectSymlink();
    EXPECT_EQ(fs::read_symlink(directory / "projects/current"), "engineering");
    // The link, now broken, is left alone.
    EXPECT_NO_THROW(SystemManager::CreateProjectSymlink());
}

TEST_F(ProjectLinkTest, NeverReplacesWhatIsThere)
{
    SetVariables();
    directory.Write("projects/current", "a file");
    SystemManager::CreateProjectSymlink();
    EXPECT_EQ(directory.Read("projects/current"), "a file");

    fs::remove(directory / "projects/current");
    fs::create_directory(directory / "projects/current");
    SystemManager::CreateProjectSymlink();
    EXPECT_FALSE(fs::is_symlink(directory / "projects/current"));
}

TEST_F(ProjectLinkTest, SaysWhichVariableIsMissing)
{
    SystemManager::CreateProjectSymlink();
    EXPECT_THAT(log.GetLines(), testing::ElementsAre("Info: VELA_PATH_PROJECT_ZORBE_DIR environment variable not set"));
    Environment::SetVariable(engineeringVariable, directory / "engineering");
    SystemManager::CreateProjectSymlink();
    EXPECT_TRUE(log.Has("Info: VELA_PATH_PROJECT_CURRENT_DIR environment variable not set"));
}

TEST_F(ProjectLinkTest, FailsWhenTheLinkCannotBeMade)
{
    SetVariables();
    Environment::SetVariable(currentVariable, directory / "missing/current");
    EXPECT_THROW(SystemManager::CreateProjectSymlink(), std::exception);
}
