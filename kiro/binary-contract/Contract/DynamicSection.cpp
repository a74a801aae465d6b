#include <Contract/DynamicSection.hpp>
#include <Contract/ElfLayout.hpp>

#include <algorithm>
#include <array>
#include <limits>

namespace Vela::System::Kiro::Internal::Contract
{

namespace
{

/// Far more than any library has.
constexpr unsigned maxEntries = 4096;

template <typename Layout>
class Reader
{
    using Segment = typename Layout::Segment;
    using Entry = typename Layout::DynamicEntry;

public:
    explicit Reader(const ReadBytes& readBytes)
        : read(readBytes)
    {
    }

    std::optional<DynamicSection> Read()
    {
        ReadSegments();
        const auto dynamic = std::find_if(segments.begin(), segments.end(),
                                          [](const Segment& segment) { return segment.p_type == PT_DYNAMIC; });
        if (dynamic == segments.end())
        {
            return std::nullopt;
        }
        const std::vector<Entry> entries = ReadEntries(*dynamic);
        const auto texts =
            std::find_if(entries.begin(), entries.end(), [](const Entry& entry) { return entry.d_tag == DT_STRTAB; });
        const auto textsOffset = texts == entries.end() ? std::nullopt : FindOffset(texts->d_un.d_ptr);
        if (!textsOffset)
        {
            return std::nullopt;
        }
        DynamicSection section;
        for (const Entry& entry : entries)
        {
            const auto getText = [&]
            {
                return ReadText(*textsOffset + entry.d_un.d_val);
            };
            switch (entry.d_tag)
            {
            case DT_NEEDED:
                section.needed.push_back(getText());
                break;
            case DT_SONAME:
                section.name = getText();
                break;
            case DT_RPATH:
                section.runPath = section.runPath.empty() ? getText() : section.runPath;
                break;
            case DT_RUNPATH:
                // It counts alone where both are given.
                section.runPath = getText();
                break;
            default:
                break;
            }
        }
        return section;
    }

private:
    void ReadSegments()
    {
        const auto header = ReadAt<typename Layout::Header>(read, 0);
        const unsigned count = header && header->e_phentsize == sizeof(Segment) ? header->e_phnum : 0;
        for (unsigned i = 0; i < count; ++i)
        {
            const auto segment = ReadAt<Segment>(read, std::uint64_t{header->e_phoff} + i * sizeof(Segment));
            if (!segment)
            {
                return;
            }
            if (segment->p_type == PT_DYNAMIC || segment->p_type == PT_LOAD)
            {
                segments.push_back(*segment);
            }
        }
    }

    [[nodiscard]] std::vector<Entry> ReadEntries(const Segment& dynamic) const
    {
        std::vector<Entry> entries;
        const std::uint64_t count = std::min<std::uint64_t>(dynamic.p_filesz / sizeof(Entry), maxEntries);
        for (std::uint64_t i = 0; i < count; ++i)
        {
            const auto entry = ReadAt<Entry>(read, dynamic.p_offset + i * sizeof(Entry));
            if (!entry || entry->d_tag == DT_NULL)
            {
                break;
            }
            entries.push_back(*entry);
        }
        return entries;
    }

    /// Where in the file stands what is mapped to an address.
    [[nodiscard]] std::optional<std::uint64_t> FindOffset(std::uint64_t address) const
    {
        for (const Segment& segment : segments)
        {
            if (segment.p_type == PT_LOAD && address >= segment.p_vaddr && address - segment.p_vaddr < segment.p_filesz)
            {
                return address - segment.p_vaddr + segment.p_offset;
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] String ReadText(std::uint64_t offset)
    {
        String text;
        for (; charactersLeft > 0; --charactersLeft)
        {
            const auto character = ReadAt<char>(read, offset + text.size());
            if (!character || *character == '\0')
            {
                break;
            }
            text += *character;
        }
        return text;
    }

    const ReadBytes& read;
    std::vector<Segment> segments;
    /// Of all texts together.
    unsigned charactersLeft = 65536;
};

} // namespace

std::optional<DynamicSection> DynamicSection::Read(const ReadBytes& read)
{
    return ReadInItsLayout(read, [&]<typename Layout>(Layout) { return Reader<Layout>(read).Read(); });
}

} // namespace Vela::System::Kiro::Internal::Contract
