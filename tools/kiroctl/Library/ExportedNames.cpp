#include "ExportedNames.hpp"

#include <Contract/ElfLayout.hpp>

#include <algorithm>
#include <cstdint>

namespace Vela::Kiroctl
{

namespace
{

namespace Contract = System::Kiro::Internal::Contract;
using Contract::ReadAt;
using Contract::ReadBytes;

/// More than any library has: files may announce anything.
constexpr std::uint64_t mostSymbols = 1'000'000;
constexpr std::size_t longestName = 4096;

String ReadText(const ReadBytes& read, std::uint64_t offset)
{
    String text;
    for (auto character = ReadAt<char>(read, offset); character && *character != '\0' && text.size() < longestName;
         character = ReadAt<char>(read, offset + text.size()))
    {
        text += *character;
    }
    return text;
}

template <typename Layout>
std::vector<String> ReadNames(const ReadBytes& read)
{
    using Section = typename Layout::Section;
    using Symbol = typename Layout::Symbol;
    std::vector<String> names;
    const auto header = ReadAt<typename Layout::Header>(read, 0);
    const auto readSection = [&](std::uint64_t number)
    {
        return ReadAt<Section>(read, std::uint64_t{header->e_shoff} + number * sizeof(Section));
    };
    const unsigned sections = header && header->e_shentsize == sizeof(Section) ? header->e_shnum : 0;
    for (unsigned i = 0; i < sections; ++i)
    {
        const auto section = readSection(i);
        if (!section || section->sh_type != SHT_DYNSYM)
        {
            continue;
        }
        const auto texts = readSection(section->sh_link);
        const std::uint64_t count = texts ? std::min<std::uint64_t>(section->sh_size / sizeof(Symbol), mostSymbols) : 0;
        for (std::uint64_t k = 0; k < count; ++k)
        {
            const auto symbol = ReadAt<Symbol>(read, section->sh_offset + k * sizeof(Symbol));
            if (!symbol)
            {
                break;
            }
            // The binding is written alike in both word sizes.
            if (symbol->st_shndx != SHN_UNDEF && ELF64_ST_BIND(symbol->st_info) != STB_LOCAL)
            {
                names.push_back(ReadText(read, std::uint64_t{texts->sh_offset} + symbol->st_name));
            }
        }
    }
    return names;
}

} // namespace

std::vector<String> ReadExportedNames(const ReadBytes& read)
{
    return Contract::ReadInItsLayout(read, [&]<typename Layout>(Layout) { return ReadNames<Layout>(read); });
}

} // namespace Vela::Kiroctl
