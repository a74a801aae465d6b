#include "MappedFiles.hpp"
#include "ScopedTrustPolicy.hpp"
#include "TemporaryDirectory.hpp"
#include "TestProcess.hpp"

#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/AppDomain.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/IComponentFactory.hpp>

#include <filesystem>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Pm;
using namespace Vela::Testing;
using Vela::System::Commons::Environment;

namespace
{

class Loader : public testing::Test
{
protected:
    Loader()
    {
        AppDomain::CreateInstance();
        Environment::Setup();
        Environment::SetVariable(ShadowCopy::shadowDirEnvName, "");
        Environment::SetVariable("RECORDING_SCRIPT", "");
        Environment::SetVariable("RECORDING_TRACE", "");
    }

    ~Loader() override
    {
        Environment::Dispose();
    }

    /// A copy of a library of the build tree under a name of this test.
    String CopyLibrary(const String& name, const String& fileName)
    {
        std::filesystem::copy_file(GetLibraryPath(name), directory / fileName);
        return directory / fileName;
    }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(Loader, FindsTheLinuxFileOfAConfiguredName)
{
    const String linuxFile = directory.Write("libFoo.so", "");
    for (const char* name : {"Foo.dll", "libFoo.dll", "Foo.so", "libFoo.so"})
    {
        EXPECT_EQ(SharedLibraryLoader::ProbeLibraryName(directory / name), linuxFile) << name;
    }
    const String asConfigured = directory.Write("Foo.dll", "");
    EXPECT_EQ(SharedLibraryLoader::ProbeLibraryNames({directory / "Foo.dll", directory / "Foo.so"}),
              (std::vector<String>{asConfigured, linuxFile}));
}

TEST_F(Loader, RunsNoCodeOfALibraryThatOthersCanChangeWhenThatIsRefused)
{
    using System::Commons::Io::TrustedFile;
    using System::Commons::Io::TrustPolicy;

    const ScopedTrustPolicy refuse(TrustedFile::Library, TrustPolicy::Refuse);
    const String library = CopyLibrary("Recording", "libRecording.so");
    std::filesystem::permissions(library, std::filesystem::perms(0755));
    EXPECT_NO_THROW({
        LoadedLibrary loaded = SharedLibraryLoader::Load(library, false, {});
        SharedLibraryLoader::Unload(loaded);
    });
    std::filesystem::permissions(library, std::filesystem::perms(0775));
    EXPECT_THROW(std::ignore = SharedLibraryLoader::Load(library, false, {}), InvalidOperationException);
    EXPECT_FALSE(IsMapped(library));

    // A copy is no safer than the directory in which it is made.
    std::filesystem::permissions(library, std::filesystem::perms(0755));
    std::filesystem::create_directory(directory / "shadow");
    std::filesystem::permissions(directory / "shadow", std::filesystem::perms(0777));
    Environment::SetVariable(ShadowCopy::shadowDirEnvName, directory / "shadow");
    EXPECT_THROW(std::ignore = SharedLibraryLoader::Load(library, true, {}), InvalidOperationException);
}

TEST_F(Loader, SaysWhichFileIsMissing)
{
    const auto getMessage = [&](const String& name)
    {
        return GetMessageOf<InvalidOperationException>(
            [&] { std::ignore = SharedLibraryLoader::ProbeLibraryName(directory / name); });
    };
    EXPECT_EQ(getMessage("Bar.dll"), "Library '" + (directory / "libBar.so") + "' does not exist.");
    EXPECT_EQ(getMessage("Bar.sox"), "Library '" + (directory / "Bar.sox") + "' does not exist.");
}

TEST_F(Loader, ReallyUnmapsALibraryWhenItIsUnloaded)
{
    const String path = CopyLibrary("Recording", "libOne.so");
    LoadedLibrary loaded = SharedLibraryLoader::Load(path, false, {});
    EXPECT_EQ(loaded.path, path);
    EXPECT_EQ(loaded.referenceCount, 0U);
    EXPECT_EQ(loaded.library->GetVersion(), BasicVersion(1, 2, 3, 4));
    EXPECT_TRUE(loaded.library->GetComponentFactory().ContainsComponentType("Recorder"));
    EXPECT_TRUE(IsMapped(path));
    EXPECT_TRUE(SharedLibraryLoader::Unload(loaded));
    EXPECT_FALSE(IsMapped(path));
}

TEST_F(Loader, LoadsAShadowCopyAndDeletesItAfterUnloading)
{
    CopyLibrary("Recording", "libTwo.so");
    directory.Write("libHelper.so", "helper");
    LoadedLibrary loaded = SharedLibraryLoader::Load(directory / "Two.dll", true, {directory / "Helper.dll"});
    EXPECT_EQ(loaded.path, directory / "~libTwo/libTwo.so");
    EXPECT_TRUE(IsMapped(loaded.path));
    EXPECT_FALSE(IsMapped(directory / "libTwo.so"));
    EXPECT_EQ(directory.Read("~libTwo/libHelper.so"), "helper");
    EXPECT_TRUE(SharedLibraryLoader::Unload(loaded));
    EXPECT_FALSE(IsMapped(loaded.path));
    EXPECT_FALSE(std::filesystem::exists(directory / "~libTwo"));
}

TEST_F(Loader, LoadsASharedObjectWithoutAnEntryFunction)
{
    LoadedLibrary loaded = SharedLibraryLoader::Load(GetLibraryPath("NoEntry"), false, {});
    EXPECT_EQ(loaded.library, nullptr);
    EXPECT_TRUE(SharedLibraryLoader::Unload(loaded));
}

TEST_F(Loader, LeavesNothingLoadedBehindARefusedLibrary)
{
    const String obsolete = GetLibraryPath("FirstGeneration");
    EXPECT_EQ(
        GetMessageOf<InvalidOperationException>([&] { std::ignore = SharedLibraryLoader::Load(obsolete, false, {}); }),
        "Library '" + obsolete + "' has SDK version 1.x and is not supported any more");
    EXPECT_FALSE(IsMapped(obsolete));

    const String noLibrary = directory.Write("libText.so", "This is no library.");
    EXPECT_NE(GetMessageOf<Exception>([&] { std::ignore = SharedLibraryLoader::Load(noLibrary, false, {}); }), "");
}

TEST_F(Loader, NeedsAnApplicationDomain)
{
    // The domain does not own what is registered in it.
    Environment::Dispose();
    Singleton<AppDomain>::DisposeInstance();
    const String path = CopyLibrary("Recording", "libThree.so");
    EXPECT_EQ(GetMessageOf<Exception>([&] { std::ignore = SharedLibraryLoader::Load(path, false, {}); }),
              "Singleton instance of type 'Vela::AppDomain' was not created yet!");
    EXPECT_FALSE(IsMapped(path));
}

TEST_F(Loader, HandsOnExceptionsOfTheEntryFunctionWithoutTheLibrary)
{
    const String path = CopyLibrary("Recording", "libFour.so");
    const auto load = [&](const String& action)
    {
        Environment::SetVariable("RECORDING_SCRIPT", directory.Write("script", "- Load throw " + action + "\n"));
        std::ignore = SharedLibraryLoader::Load(path, false, {});
    };
    try
    {
        load("own out of ink");
        FAIL();
    }
    catch (const std::exception& exception)
    {
        // Its class lives in the library, which is gone.
        EXPECT_FALSE(IsMapped(path));
        EXPECT_STREQ(exception.what(), "out of ink");
    }
    EXPECT_THROW(load("unknown x"), UnspecifiedException);
    EXPECT_EQ(GetMessageOf<InvalidOperationException>([&] { load("platform out of paper"); }), "out of paper");
    EXPECT_FALSE(IsMapped(path));
}

TEST_F(Loader, KeepsALibraryInUseMapped)
{
    const String path = CopyLibrary("Recording", "libFive.so");
    LoadedLibrary loaded = SharedLibraryLoader::Load(path, false, {});
    const LibraryUsage::Hold hold(loaded.usage);
    EXPECT_FALSE(SharedLibraryLoader::Unload(loaded));
    EXPECT_TRUE(IsMapped(path));
}
