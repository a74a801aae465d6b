#include <Vela/Exceptions.hpp>
#include <Vela/System/Kiro/BinaryContract.hpp>

#include <Contract/Architecture.hpp>
#include <Contract/DynamicSection.hpp>
#include <Contract/ElfLayout.hpp>
#include <Contract/LibraryNote.hpp>
#include <Contract/Release.hpp>

#include <algorithm>
#include <array>

namespace Vela::System::Kiro::Internal::Contract
{

namespace
{

/// Written alike in both word sizes.
using NoteHeader = Elf32_Nhdr;

template <typename Layout>
class LibraryReader
{
    using Segment = typename Layout::Segment;

public:
    LibraryReader(const String& libraryPath, const ReadBytes& readBytes)
        : path(libraryPath)
        , read(readBytes)
    {
    }

    /// The descriptor of the note. What makes no sense in other places is left to the dynamic loader to refuse.
    [[nodiscard]] std::optional<BinaryContract::Description> Read()
    {
        const auto header = ReadAt<typename Layout::Header>(read, 0);
        const unsigned segments = header && header->e_phentsize == sizeof(Segment) ? header->e_phnum : 0;
        std::optional<BinaryContract::Description> description;
        for (unsigned i = 0; i < segments && !description; ++i)
        {
            const auto segment = ReadAt<Segment>(read, std::uint64_t{header->e_phoff} + i * sizeof(Segment));
            if (segment && segment->p_type == PT_NOTE)
            {
                description = FindDescription(*segment);
            }
        }
        return description;
    }

private:
    /// The notes of others are not judged: the search ends where one makes no sense.
    std::optional<BinaryContract::Description> FindDescription(const Segment& segment)
    {
        const std::uint64_t alignment = segment.p_align == 8 ? 8 : 4;
        const auto align = [alignment](std::uint64_t size)
        {
            return (size + alignment - 1) / alignment * alignment;
        };
        const std::uint64_t size = segment.p_filesz;
        for (std::uint64_t position = 0; position < size && notesLeft > 0; --notesLeft)
        {
            const auto note = ReadAt<NoteHeader>(read, segment.p_offset + position);
            if (!note)
            {
                break;
            }
            const std::uint64_t name = position + sizeof(NoteHeader);
            const std::uint64_t description = align(name + note->n_namesz);
            if (description > size || note->n_descsz > size - description)
            {
                break;
            }
            if (IsOurs(*note, segment.p_offset + name))
            {
                return ReadDescription(segment.p_offset + description, note->n_descsz);
            }
            position = align(description + note->n_descsz);
        }
        return std::nullopt;
    }

    [[nodiscard]] bool IsOurs(const NoteHeader& note, std::uint64_t nameOffset) const
    {
        constexpr std::size_t nameSize = BinaryContract::noteName.size() + 1;
        if (note.n_type != BinaryContract::noteType || note.n_namesz != nameSize)
        {
            return false;
        }
        const auto name = ReadAt<std::array<char, nameSize>>(read, nameOffset);
        return name && std::equal(name->begin(), name->end() - 1, BinaryContract::noteName.begin()) &&
               name->back() == '\0';
    }

    /// A note of another version may have another size; one of this version may not.
    [[nodiscard]] std::optional<BinaryContract::Description> ReadDescription(std::uint64_t offset,
                                                                             std::uint32_t size) const
    {
        BinaryContract::Description description{};
        const auto bytes = std::as_writable_bytes(std::span(&description, 1));
        if (!read(offset, bytes.first(std::min<std::size_t>(size, bytes.size()))))
        {
            return std::nullopt;
        }
        const bool isWhole = size == bytes.size() || (size >= sizeof(description.contractVersion) &&
                                                      description.contractVersion != BinaryContract::contractVersion);
        if (!isWhole)
        {
            throw InvalidOperationException("Library '{0}' is damaged: its contract note has {1} bytes instead of {2}.",
                                            path, size, bytes.size());
        }
        return description;
    }

    const String& path;
    const ReadBytes& read;
    /// More than any library has, and few enough to be read at once.
    unsigned notesLeft = 1000;
};

template <std::size_t Size>
String GetText(const std::array<char, Size>& characters)
{
    String text(characters.begin(), std::find(characters.begin(), characters.end(), '\0'));
    std::replace_if(
        text.begin(), text.end(), [](char character) { return character < ' ' || character > '~'; }, '?');
    return text;
}

} // namespace

std::optional<LibraryNote> LibraryNote::Read(const String& path, const ReadBytes& read)
{
    const auto description =
        ReadInItsLayout(read, [&]<typename Layout>(Layout) { return LibraryReader<Layout>(path, read).Read(); });
    if (!description)
    {
        return std::nullopt;
    }
    return LibraryNote{description->contractVersion,
                       std::uint64_t{description->layoutHashHigh} << 32U | description->layoutHashLow,
                       GetText(description->sdkVersion), GetText(description->compiler)};
}

void LibraryNote::CheckContract(const String& path) const
{
    if (contractVersion != BinaryContract::contractVersion)
    {
        throw InvalidOperationException("Library '{0}' has contract version {1}, this runtime has contract version "
                                        "{2}: build the library again with the SDK {3}.",
                                        path, contractVersion, BinaryContract::contractVersion,
                                        BinaryContract::sdkVersion);
    }
    if (layoutHash != BinaryContract::layoutHash)
    {
        throw InvalidOperationException("Library '{0}' was built with interfaces of layout {1:016x} (SDK {2}, {3}), "
                                        "this runtime's have layout {4:016x} (SDK {5}).",
                                        path, layoutHash, sdkVersion, compiler, BinaryContract::layoutHash,
                                        BinaryContract::sdkVersion);
    }
}

void CheckLibraryFile(const String& path)
{
    const ReadBytes read = ReadFrom(path);
    Architecture::RequireOwn(path, read);
    if (const auto note = LibraryNote::Read(path, read))
    {
        note->CheckContract(path);
    }
    if (const auto section = DynamicSection::Read(read))
    {
        CheckRelease(path, *section);
    }
}

} // namespace Vela::System::Kiro::Internal::Contract
