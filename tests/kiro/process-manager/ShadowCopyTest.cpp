#include "TemporaryDirectory.hpp"
#include "TestProcess.hpp"

#include <Pm/ShadowCopy.hpp>
#include <Vela/Exceptions.hpp>

using namespace Vela;
using namespace Vela::System::Kiro::Internal::Pm;
using namespace Vela::Testing;
using Vela::System::Commons::Environment;

namespace
{

class ShadowCopyTest : public testing::Test
{
protected:
    ShadowCopyTest()
    {
        Environment::Setup();
        Environment::SetVariable(ShadowCopy::shadowDirEnvName, "");
    }

    ~ShadowCopyTest() override
    {
        Environment::Dispose();
    }

    TemporaryDirectory directory;
};

} // namespace

TEST_F(ShadowCopyTest, FindsItsDirectoryByTheEnvironmentElseBesideTheLibrary)
{
    EXPECT_EQ(ShadowCopy::GetShadowPath("/opt/x/libFoo.so"), "/opt/x/~libFoo");
    EXPECT_EQ(ShadowCopy::GetShadowPath("libFoo.so"), "");
    Environment::SetVariable(ShadowCopy::shadowDirEnvName, "/tmp/shadow");
    const ShadowCopy copy("/opt/x/libFoo.so", {});
    EXPECT_EQ(copy.GetDestinationLibraryPath(), "/tmp/shadow/~libFoo/libFoo.so");
    EXPECT_EQ(ShadowCopy::GetShadowPath("libFoo.so"), "/tmp/shadow/~libFoo");
}

TEST_F(ShadowCopyTest, NeedsADestinationAndALibrary)
{
    const auto getText = [](const String& destination, const String& libraryPath)
    {
        try
        {
            const ShadowCopy copy(destination, libraryPath, {});
        }
        catch (const ArgumentNullException& exception)
        {
            return exception.GetDetail();
        }
        return String();
    };
    EXPECT_EQ(getText("", ""), "argument 'destination'");
    EXPECT_EQ(getText("/tmp/x", ""), "argument 'libraryPath'");
    EXPECT_THROW(ShadowCopy("libFoo.so", {}), ArgumentNullException);
}

TEST_F(ShadowCopyTest, CopiesTheLibraryAndItsDependenciesOverOlderCopies)
{
    const String library = directory.Write("in/libFoo.so", "new");
    const String dependency = directory.Write("elsewhere/libBar.so", "bar");
    directory.Write("out/libFoo.so", "old");
    {
        const ShadowCopy copy(directory / "out", library, {dependency});
        copy.Copy();
    }
    EXPECT_EQ(directory.Read("out/libFoo.so"), "new");
    EXPECT_EQ(directory.Read("out/libBar.so"), "bar");

    ShadowCopy(directory / "out", library, {}).Delete();
    EXPECT_FALSE(std::filesystem::exists(directory / "out"));
    EXPECT_EQ(directory.Read("in/libFoo.so"), "new");
    // There is nothing to delete any more, which is fine.
    ShadowCopy(directory / "out", library, {}).Delete();
}
