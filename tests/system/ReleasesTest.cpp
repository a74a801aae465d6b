// Files of different releases meet.

#include "SystemFixture.hpp"

#include <Vela/System/Kiro/BinaryContract.hpp>

#include <filesystem>

namespace Vela::Testing
{
namespace
{

using System::Kiro::BinaryContract::sdkVersion;

/// "libVela.System.Kiro.so.24"
std::string GetSoname(const std::string& library, int releasesEarlier = 0)
{
    const int major = std::stoi(std::string(sdkVersion));
    return "libVela.System." + library + ".so." + std::to_string(major - releasesEarlier);
}

class ReleasesTest : public SystemTest
{
protected:
    /// An executable that finds the libraries of its release beside it, but for the framework library.
    ReleasesTest()
    {
        for (const char* name : {"bin", "lib"})
        {
            std::filesystem::create_directory(system.directory / name);
        }
        std::filesystem::copy_file(TestSystem::GetBuiltFile("bin/Vela.System.Application"), executable);
        for (const char* library : {"Commons", "Rsc", "Nm"})
        {
            Provide(GetSoname(library), GetSoname(library));
        }
    }

    void Provide(const std::string& name, const std::string& builtLibrary) const
    {
        std::filesystem::create_symlink(TestSystem::GetBuiltFile("lib/" + builtLibrary),
                                        system.directory / ("lib/" + name));
    }

    void ExpectRefusal(const std::string& text) const
    {
        StartedProcess process(executable, {"--version"});
        EXPECT_EQ(process.AwaitEnd(), 127) << process.GetOutput();
        EXPECT_TRUE(process.HasOutput(text)) << process.GetOutput();
    }

    const std::string executable = system.directory / "bin/Vela.System.Application";
};

TEST_F(ReleasesTest, AnExecutableDoesNotStartWithTheLibraryOfAnotherMajorVersion)
{
    Provide(GetSoname("Kiro", 1), GetSoname("Kiro"));
    ExpectRefusal(GetSoname("Kiro") + ": cannot open shared object file");
}

TEST_F(ReleasesTest, AnExecutableDoesNotStartWithAnOlderLibraryThatLacksAFunction)
{
    Provide(GetSoname("Kiro"), GetSoname("Nm"));
    ExpectRefusal("undefined symbol: _Z");
}

TEST_F(ReleasesTest, AnExecutableStartsWithTheLibrariesOfItsOwnRelease)
{
    Provide(GetSoname("Kiro"), GetSoname("Kiro"));
    StartedProcess process(executable, {"--version"});
    EXPECT_EQ(process.AwaitEnd(), 0) << process.GetOutput();
}

TEST_F(ReleasesTest, AComponentLibraryOfAnotherMajorVersionIsRefused)
{
    system.WriteConfig(
        "<Processes><Process name='MainProcess'/></Processes><Libraries><Library name='Old' binaryPath='" +
        TestSystem::GetBuiltFile("lib/libOtherRelease.so") +
        "'/></Libraries><Components><Component name='C' type='T' library='Old' "
        "process='MainProcess'/></Components>");
    StartedProcess main = system.Start();
    EXPECT_EQ(main.AwaitEnd(), 1) << main.GetOutput();
    EXPECT_TRUE(main.HasOutput("was linked with " + GetSoname("Kiro", 1) + ", this runtime has " + GetSoname("Kiro") +
                               ": build the library again"))
        << main.GetOutput();
    EXPECT_TRUE(system.TakeCrashRecord().starts_with("reason: failed set-up\n"));
    EXPECT_EQ(system.FindLeftovers(), "");
}

} // namespace
} // namespace Vela::Testing
