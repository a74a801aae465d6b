#pragma once

#include <Contract/Architecture.hpp>
#include <elf.h>

namespace Vela::System::Kiro::Internal::Contract
{

/// The structures in a file of machine code, which depend on its word size.
struct ElfLayout32
{
    using Header = Elf32_Ehdr;
    using Segment = Elf32_Phdr;
    using Section = Elf32_Shdr;
    using Symbol = Elf32_Sym;
    using DynamicEntry = Elf32_Dyn;
};

struct ElfLayout64
{
    using Header = Elf64_Ehdr;
    using Segment = Elf64_Phdr;
    using Section = Elf64_Shdr;
    using Symbol = Elf64_Sym;
    using DynamicEntry = Elf64_Dyn;
};

/// Answers what `readLayout` does with the layout of the file.
/// @return an empty answer when the file is not one of machine code, or has not this machine's byte order
template <typename ReadLayout>
auto ReadInItsLayout(const ReadBytes& read, const ReadLayout& readLayout) -> decltype(readLayout(ElfLayout64()))
{
    const auto architecture = Architecture::Read(read);
    if (!architecture || !architecture->HasOwnByteOrder())
    {
        return {};
    }
    return architecture->wordClass == ELFCLASS64 ? readLayout(ElfLayout64()) : readLayout(ElfLayout32());
}

} // namespace Vela::System::Kiro::Internal::Contract
