#include "MappedFiles.hpp"
#include "TemporaryDirectory.hpp"
#include "TestProcess.hpp"

#include <Pm/SharedLibraryLoader.hpp>
#include <Vela/CaughtException.hpp>
#include <Vela/System/Kiro/BinaryContract.hpp>

#include <Contract/Architecture.hpp>
#include <Contract/LibraryNote.hpp>
#include <elf.h>

#include <filesystem>

using namespace Vela;
using namespace Vela::System::Kiro;
using namespace Vela::System::Kiro::Internal::Contract;
using namespace Vela::Testing;
using Internal::Pm::SharedLibraryLoader;
using Vela::System::Commons::Environment;

namespace
{

class LibraryNotes : public testing::Test
{
protected:
    /// The message with which a file is refused; empty when it is loaded.
    static String GetRefusal(const String& path)
    {
        String message;
        try
        {
            auto loaded = SharedLibraryLoader::Load(path, false, {});
            SharedLibraryLoader::Unload(loaded);
        }
        catch (const Exception& exception)
        {
            message = exception.GetMessage();
        }
        EXPECT_FALSE(IsMapped(path));
        return message;
    }

    /// Writes a library over the former one. It must not be mapped.
    [[nodiscard]] String Write(const String& bytes) const
    {
        return directory.Write("libPatched.so", bytes);
    }

    LibraryNotes()
    {
        AppDomain::CreateInstance();
        Environment::Setup();
        Environment::SetVariable("RECORDING_SCRIPT", "");
        Environment::SetVariable("RECORDING_TRACE", "");
        std::filesystem::copy_file(GetLibraryPath("Recording"), directory / "libRecording.so");
        recording = directory.Read("libRecording.so");
    }

    ~LibraryNotes() override
    {
        Environment::Dispose();
    }

    const TemporaryDirectory directory;
    /// The bytes of a real component library.
    String recording;
};

} // namespace

TEST_F(LibraryNotes, TellWhatALibraryWasBuiltWith)
{
    const auto note = LibraryNote::Read("", ReadFrom(GetLibraryPath("Recording")));
    ASSERT_TRUE(note);
    EXPECT_EQ(note->contractVersion, BinaryContract::contractVersion);
    EXPECT_EQ(note->layoutHash, BinaryContract::layoutHash);
    EXPECT_EQ(note->sdkVersion, BinaryContract::sdkVersion);
    EXPECT_EQ(note->compiler, BinaryContract::compiler);
    EXPECT_FALSE(LibraryNote::Read("", ReadFrom(GetLibraryPath("NoEntry"))));
    EXPECT_FALSE(LibraryNote::Read("", ReadFrom(directory / "missing")));
}

/// The libraries would end this process if any of their code ran.
TEST_F(LibraryNotes, OfAnotherContractKeepALibraryFromBeingLoaded)
{
    const String otherVersion = GetLibraryPath("OtherVersion");
    EXPECT_EQ(GetRefusal(otherVersion),
              fmt::format("Library '{}' has contract version {}, this runtime has contract version {}: build the "
                          "library again with the SDK {}.",
                          otherVersion, BinaryContract::contractVersion + 1, BinaryContract::contractVersion,
                          BinaryContract::sdkVersion));
    const String otherLayout = GetLibraryPath("OtherLayout");
    EXPECT_EQ(GetRefusal(otherLayout),
              fmt::format("Library '{}' was built with interfaces of layout {:016x} (SDK {}, {}), this runtime's have "
                          "layout {:016x} (SDK {}).",
                          otherLayout, BinaryContract::layoutHash + 1, BinaryContract::sdkVersion,
                          BinaryContract::compiler, BinaryContract::layoutHash, BinaryContract::sdkVersion));
}

TEST_F(LibraryNotes, OfAnotherSizeAreOfAnotherVersionOrDamaged)
{
    const auto note = recording.find(String("Vela\0\0\0\0", 8));
    ASSERT_NE(note, String::npos);
    String patched = recording;
    patched[note - 8] = 20;
    EXPECT_EQ(GetRefusal(Write(patched)),
              fmt::format("Library '{}' is damaged: its contract note has 20 bytes instead of 108.",
                          directory / "libPatched.so"));
    patched[note + 8] = 9;
    EXPECT_NE(GetRefusal(Write(patched)).find("has contract version 9"), String::npos);
}

TEST_F(LibraryNotes, AreNotLookedForInALibraryForAnotherArchitecture)
{
    const String own = Architecture::GetOwn().ToString();
    const auto getRefusal = [this](std::size_t position, char value)
    {
        String patched = recording;
        patched[position] = value;
        return GetRefusal(Write(patched));
    };
    EXPECT_EQ(getRefusal(offsetof(Elf32_Ehdr, e_machine), static_cast<char>(EM_RISCV)),
              fmt::format("Library '{}' has the wrong architecture: it is made for RISC-V{}, this process for {}.",
                          directory / "libPatched.so", own.substr(own.find(' ')), own));
    EXPECT_NE(getRefusal(EI_CLASS, sizeof(void*) == 8 ? ELFCLASS32 : ELFCLASS64)
                  .find(sizeof(void*) == 8 ? "(32-bit, little-endian)" : "(64-bit, little-endian)"),
              String::npos);
    EXPECT_NE(getRefusal(EI_DATA, ELFDATA2MSB).find("big-endian"), String::npos);
}
