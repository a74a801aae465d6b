#include "TestSystem.hpp"
#include "libraries/SharedThing.hpp"

#include <Vela/Exceptions.hpp>
#include <Vela/Singleton.hpp>
#include <Vela/System/Commons/Diagnostics/Logger.hpp>
#include <Vela/System/Commons/Runtime/SharedLibrary.hpp>

#include <ThrownMessage.hpp>
#include <gtest/gtest.h>
#include <link.h>

#include <cstring>
#include <fstream>

using namespace Vela;
using Vela::System::Commons::Diagnostics::Logger;
using Vela::System::Commons::Runtime::SharedLibrary;
using Vela::Testing::SharedThing;
using Vela::Testing::TestSystem;

namespace
{

const String libraryName = "libtest-commons-loadable.so";

String GetLibrary()
{
    return TestSystem::GetBuiltFile("tests/" + libraryName);
}

bool IsMapped()
{
    std::ifstream maps("/proc/self/maps");
    const String text{std::istreambuf_iterator<char>(maps), std::istreambuf_iterator<char>()};
    return text.find(libraryName) != String::npos;
}

template <typename Function>
Function* GetFunction(const SharedLibrary& library, const char* name)
{
    return reinterpret_cast<Function*>(library.GetFunctionAddress(name));
}

} // namespace

TEST(SharedLibrary, SharesSingletonsWithItsHostAndIsUnmappedAfterwards)
{
    Singleton<SharedThing>::CreateInstance().number = 42;
    ASSERT_FALSE(IsMapped());
    {
        SharedLibrary library;
        library.Load(GetLibrary());
        EXPECT_TRUE(IsMapped());
        EXPECT_EQ(GetFunction<int()>(library, "GetSharedNumber")(), 42);
        GetFunction<void()>(library, "Talk")();
        EXPECT_THROW(library.Load(GetLibrary()), InvalidOperationException);
        library.Unload();
        EXPECT_FALSE(IsMapped());
        library.Unload();
        library.Load(GetLibrary());
    }
    EXPECT_FALSE(IsMapped());
    Singleton<SharedThing>::DisposeInstance();
    EXPECT_EQ(Logger::Get("(anonymous namespace).Talker").GetCategory(), "(anonymous namespace).Talker")
        << "a logger outlives the library that made it";
}

TEST(SharedLibrary, FindsOnlyWhatTheLibraryItselfDefines)
{
    SharedLibrary library;
    EXPECT_EQ(library.GetFunctionAddress("Talk"), nullptr);
    library.Load(GetLibrary());
    EXPECT_NE(library.GetFunctionAddress("Talk"), nullptr);
    EXPECT_EQ(library.GetFunctionAddress("DependencyEntry"), nullptr) << "defined by a library that it depends on";
    EXPECT_EQ(library.GetFunctionAddress("malloc"), nullptr);
    EXPECT_EQ(library.GetFunctionAddress("NoSuchFunction"), nullptr);
}

TEST(SharedLibrary, RefusesAFileThatIsCutOffBeforeItIsMapped)
{
    std::ifstream stream(GetLibrary(), std::ios::binary);
    const String image{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    // Behind its segments a library may have what nobody maps, such as its debug information.
    std::size_t end = 0;
    ElfW(Ehdr) header{};
    std::memcpy(&header, image.data(), sizeof(header));
    for (std::size_t index = 0; index < header.e_phnum; ++index)
    {
        ElfW(Phdr) segment{};
        std::memcpy(&segment, image.data() + header.e_phoff + index * sizeof(segment), sizeof(segment));
        end = segment.p_type == PT_LOAD ? std::max<std::size_t>(end, segment.p_offset + segment.p_filesz) : end;
    }
    const Vela::Testing::TemporaryDirectory directory;
    SharedLibrary library;
    for (std::size_t size = 0; size < end; size += 1 + end / 200)
    {
        const String path = directory.Write("libPart.so", image.substr(0, size));
        const String message = Vela::Testing::GetThrownMessage<Exception>([&] { library.Load(path); });
        EXPECT_NE(message.find(path), String::npos) << message;
    }
}

TEST(SharedLibrary, PassesOnWhatTheLoaderSays)
{
    SharedLibrary library;
    try
    {
        library.Load("/no/such/libX.so");
        FAIL();
    }
    catch (const Exception& exception)
    {
        EXPECT_EQ(exception.GetMessage(), "Could not load library '/no/such/libX.so': /no/such/libX.so: cannot open "
                                          "shared object file: No such file or directory");
    }
    library.Load(GetLibrary());
}
