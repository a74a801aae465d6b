#include <Diagnostics/StackWalk.hpp>
#include <fcntl.h>
#include <ucontext.h>
#include <unistd.h>
#include <unwind.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

namespace Vela::System::Commons::Diagnostics
{

namespace
{

using Registers = decltype(ucontext_t::uc_mcontext);

#if defined(__x86_64__)
std::uintptr_t GetProgramCounter(const Registers& registers) noexcept
{
    return static_cast<std::uintptr_t>(registers.gregs[REG_RIP]);
}

/// Where the first instruction of a function would return to.
std::uintptr_t GetCaller(const Registers& registers) noexcept
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): registers are numbers.
    return *reinterpret_cast<const std::uintptr_t*>(registers.gregs[REG_RSP]);
}
#elif defined(__aarch64__)
std::uintptr_t GetProgramCounter(const Registers& registers) noexcept
{
    return static_cast<std::uintptr_t>(registers.pc);
}

std::uintptr_t GetCaller(const Registers& registers) noexcept
{
    constexpr std::size_t linkRegister = 30;
    return static_cast<std::uintptr_t>(registers.regs[linkRegister]);
}
#elif defined(__arm__)
std::uintptr_t GetProgramCounter(const Registers& registers) noexcept
{
    return static_cast<std::uintptr_t>(registers.arm_pc);
}

std::uintptr_t GetCaller(const Registers& registers) noexcept
{
    return static_cast<std::uintptr_t>(registers.arm_lr);
}
#else
#error "Where are the program counter and the return address of this processor?"
#endif

_Unwind_Reason_Code AddFrame(_Unwind_Context* unwound, void* argument)
{
    auto& frames = *static_cast<StackFrames*>(argument);
    if (frames.count == frames.addresses.size())
    {
        return _URC_END_OF_STACK;
    }
    const auto address = static_cast<std::uintptr_t>(_Unwind_GetIP(unwound));
    if (address != 0)
    {
        frames.addresses[frames.count++] = address;
    }
    return _URC_NO_REASON;
}

/// The mappings of this process, line by line, through a buffer that belongs to the reader.
class Mappings
{
public:
    Mappings() noexcept
        : file(::open("/proc/self/maps", O_RDONLY | O_CLOEXEC))
    {
    }

    Mappings(const Mappings&) = delete;
    Mappings& operator=(const Mappings&) = delete;

    ~Mappings()
    {
        if (file >= 0)
        {
            ::close(file);
        }
    }

    struct Entry
    {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        std::uintptr_t offset = 0;
        std::string_view path;
    };

    /// The path is valid until the next call.
    bool Read(Entry& entry) noexcept
    {
        std::string_view line;
        if (!ReadLine(line))
        {
            return false;
        }
        entry = {};
        entry.begin = ReadNumber(line, '-');
        entry.end = ReadNumber(line, ' ');
        SkipWord(line);
        entry.offset = ReadNumber(line, ' ');
        SkipWord(line);
        SkipWord(line);
        const auto path = line.find_first_not_of(' ');
        entry.path = path == std::string_view::npos ? std::string_view() : line.substr(path);
        return true;
    }

private:
    bool ReadLine(std::string_view& line) noexcept
    {
        for (;;)
        {
            const char* begin = buffer.data() + position;
            if (const void* end = std::memchr(begin, '\n', filled - position))
            {
                const auto length = static_cast<std::size_t>(static_cast<const char*>(end) - begin);
                line = {begin, length};
                position += length + 1;
                return true;
            }
            std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(position),
                      buffer.begin() + static_cast<std::ptrdiff_t>(filled), buffer.begin());
            filled -= position;
            position = 0;
            const auto count = ::read(file, buffer.data() + filled, buffer.size() - filled);
            if (count == 0 || (count < 0 && errno != EINTR))
            {
                return false;
            }
            filled += count > 0 ? static_cast<std::size_t>(count) : 0;
        }
    }

    static std::uintptr_t ReadNumber(std::string_view& line, char end) noexcept
    {
        std::uintptr_t number = 0;
        while (!line.empty() && line.front() != end)
        {
            const char digit = line.front();
            number = number * 16 + static_cast<std::uintptr_t>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
            line.remove_prefix(1);
        }
        line.remove_prefix(line.empty() ? 0 : 1);
        return number;
    }

    static void SkipWord(std::string_view& line) noexcept
    {
        const auto end = line.find(' ');
        line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    }

    int file;
    /// Longer than any line: a path has 4096 bytes at most.
    std::array<char, 8192> buffer{};
    std::size_t position = 0;
    std::size_t filled = 0;
};

void WriteModule(PlainWriter& writer, std::uintptr_t address) noexcept
{
    Mappings mappings;
    Mappings::Entry entry;
    std::uintptr_t base = 0;
    while (mappings.Read(entry))
    {
        // The first mapping of a file; the others follow it.
        base = entry.offset == 0 && !entry.path.empty() ? entry.begin : base;
        if (address >= entry.begin && address < entry.end)
        {
            if (!entry.path.empty())
            {
                writer.Text(" ").Text(entry.path.data(), entry.path.size()).Text("+").Address(address - base);
            }
            return;
        }
    }
}

} // namespace

void WalkStack(void* context, StackFrames& frames) noexcept
{
    frames.count = 0;
    _Unwind_Backtrace(AddFrame, &frames);
    const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext;
    const std::uintptr_t interrupted = GetProgramCounter(registers);
    // Some unwinders tell the address of the interrupted instruction, some the one behind it.
    auto* const begin = frames.addresses.begin();
    auto* const end = begin + frames.count;
    auto* const found = std::find_if(begin, end,
                                     [interrupted](std::uintptr_t address)
                                     { return address == interrupted || address == interrupted + 1; });
    if (found != end)
    {
        frames.count = static_cast<std::size_t>(std::move(found, end, begin) - begin);
        return;
    }
    // No unwinder knows the way back from a jump into nowhere, but who has jumped is known.
    frames.addresses[0] = interrupted;
    frames.addresses[1] = GetCaller(registers);
    frames.count = 2;
}

void WriteStack(PlainWriter& writer, const StackFrames& frames) noexcept
{
    for (std::size_t index = 0; index < frames.count; ++index)
    {
        writer.Text("  #").Number(index, 2).Text(" ").Address(frames.addresses[index]);
        WriteModule(writer, frames.addresses[index]);
        writer.EndLine();
    }
}

} // namespace Vela::System::Commons::Diagnostics
