#include <Vela/System/Kiro/BinaryContract.hpp>

#include <Contract/Architecture.hpp>
#include <Contract/DynamicSection.hpp>
#include <Contract/LibraryNote.hpp>
#include <FuzzTarget.hpp>

#include <algorithm>

namespace Vela::Fuzz
{

namespace
{

using namespace System::Kiro;
using namespace System::Kiro::Internal::Contract;

bool IsPrintable(const String& text)
{
    return std::all_of(text.begin(), text.end(), [](char character) { return character >= ' ' && character <= '~'; });
}

bool Run(std::string_view input)
{
    std::size_t reads = 0;
    const ReadBytes read = [&](std::uint64_t offset, std::span<std::byte> target)
    {
        ++reads;
        if (offset > input.size() || target.size() > input.size() - offset)
        {
            return false;
        }
        std::ranges::copy(AsBytes(input).subspan(static_cast<std::size_t>(offset), target.size()), target.begin());
        return true;
    };
    std::optional<LibraryNote> note;
    const auto refusal = GetRefusal([&] { note = LibraryNote::Read("libFuzz.so", read); });
    Require(!refusal || refusal->find("libFuzz.so") != refusal->npos, "a refusal names the library");
    Require(reads < 150'000, "a file is read in reasonable time");
    const auto architecture = Architecture::Read(read);
    const auto foreign = GetRefusal([&] { Architecture::RequireOwn("libFuzz.so", read); });
    Require(foreign.has_value() == (architecture && *architecture != Architecture::GetOwn()),
            "exactly another architecture is refused");
    Require(!foreign || foreign->find(architecture->ToString()) != foreign->npos,
            "the architecture of a foreign library is named");
    if (const auto section = DynamicSection::Read(read))
    {
        Require(reads < 300'000, "what a library needs is read in reasonable time");
    }
    if (note)
    {
        Require(IsPrintable(note->sdkVersion) && IsPrintable(note->compiler), "texts of a note are printable");
        const bool isRefused = GetRefusal([&] { note->CheckContract("libFuzz.so"); }).has_value();
        Require(isRefused == (note->contractVersion != BinaryContract::contractVersion ||
                              note->layoutHash != BinaryContract::layoutHash),
                "exactly another contract is refused");
    }
    return note.has_value();
}

const FuzzTarget target("library-notes", &Run);

} // namespace

} // namespace Vela::Fuzz
