#include <Vela/Exceptions.hpp>

#include <Contract/Architecture.hpp>
#include <dlfcn.h>
#include <elf.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

namespace Vela::System::Kiro::Internal::Contract
{

namespace
{

struct MachineName
{
    std::uint16_t machine;
    const char* name;
};

constexpr MachineName machineNames[] = {{EM_386, "x86"},         {EM_X86_64, "x86-64"}, {EM_ARM, "ARM"},
                                        {EM_AARCH64, "ARM64"},   {EM_RISCV, "RISC-V"},  {EM_PPC, "PowerPC"},
                                        {EM_PPC64, "PowerPC64"}, {EM_MIPS, "MIPS"},     {EM_S390, "S/390"}};

String GetMachineName(std::uint16_t machine)
{
    const auto* found = std::find_if(std::begin(machineNames), std::end(machineNames),
                                     [machine](const MachineName& entry) { return entry.machine == machine; });
    return found == std::end(machineNames) ? fmt::format("machine {}", machine) : found->name;
}

} // namespace

String Architecture::ToString() const
{
    return fmt::format("{} ({}, {})", GetMachineName(machine),
                       wordClass == ELFCLASS64   ? "64-bit"
                       : wordClass == ELFCLASS32 ? "32-bit"
                                                 : "unknown word size",
                       byteOrder == ELFDATA2LSB   ? "little-endian"
                       : byteOrder == ELFDATA2MSB ? "big-endian"
                                                  : "unknown byte order");
}

bool Architecture::HasOwnByteOrder() const
{
    return byteOrder == GetOwn().byteOrder;
}

std::optional<Architecture> Architecture::Read(const ReadBytes& read)
{
    // Up to the machine, the header is the same for both word sizes.
    const auto start = ReadAt<std::array<unsigned char, offsetof(Elf32_Ehdr, e_version)>>(read, 0);
    if (!start || std::memcmp(start->data(), ELFMAG, SELFMAG) != 0)
    {
        return std::nullopt;
    }
    constexpr std::size_t machineAt = offsetof(Elf32_Ehdr, e_machine);
    const bool isBigEndian = (*start)[EI_DATA] == ELFDATA2MSB;
    const unsigned low = (*start)[machineAt + (isBigEndian ? 1 : 0)];
    const unsigned high = (*start)[machineAt + (isBigEndian ? 0 : 1)];
    return Architecture{(*start)[EI_CLASS], (*start)[EI_DATA], static_cast<std::uint16_t>(high << 8U | low)};
}

const Architecture& Architecture::GetOwn()
{
    // The header of the file that this function stands in is mapped with it: no descriptor is needed to read it.
    static const Architecture own = []
    {
        Dl_info info{};
        if (::dladdr(reinterpret_cast<const void*>(&Architecture::GetOwn), &info) == 0)
        {
            throw InvalidOperationException("The architecture of this process is unknown.");
        }
        const auto* image = static_cast<const std::byte*>(info.dli_fbase);
        return Read([image](std::uint64_t offset, std::span<std::byte> target)
                    { return std::copy_n(image + offset, target.size(), target.begin()) == target.end(); })
            .value();
    }();
    return own;
}

void Architecture::RequireOwn(const String& path, const ReadBytes& read)
{
    const auto architecture = Read(read);
    if (architecture && *architecture != GetOwn())
    {
        throw InvalidOperationException("Library '{0}' has the wrong architecture: it is made for {1}, this process "
                                        "for {2}.",
                                        path, architecture->ToString(), GetOwn().ToString());
    }
}

} // namespace Vela::System::Kiro::Internal::Contract
